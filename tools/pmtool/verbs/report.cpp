#include "failure.h"
#include "options.h"
#include "safe_save.h"
#include "source.h"
#include "verbs/check_defaults.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>
#include <pm/kit/report.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct ReportOptions {
    std::string file;
    std::vector<std::string> configurations;
    std::string section;
    std::string output = "-";
};

// A node of what was read, as the page names it.
struct Part {
    std::string name;
    std::string base;
};

std::vector<Part> parts_of(const Source& source, const std::string& section) {
    if (!source.content.by_section) {
        return {{section.empty() ? source.file : fmt::format("{}[{}]", source.file, section), "\\"}};
    }
    std::vector<Part> parts;
    for (const kit::Section& part : source.content.sections) {
        parts.push_back({fmt::format("{}[{}]", source.file, part.name), '\\' + part.node});
    }
    return parts;
}

// Keeps what was read as long as the page is made.
class Report {
public:
    void add(const ReportOptions& options) {
        if (!options.file.empty()) add_file(options);
        for (const std::string& file : options.configurations) {
            add_configurations(read({.file = file, .section = options.section}), options.section);
        }
    }
    [[nodiscard]] const kit::ReportInput& input() const { return m_input; }

private:
    const Source& read(const SourceOptions& options) {
        m_sources.push_back(std::make_unique<Source>(read_source(options)));
        return *m_sources.back();
    }

    // A description, or a configuration alone.
    void add_file(const ReportOptions& options) {
        const Source& source = read({.file = options.file});
        const pm::Tree& tree = source.content.tree;
        if (const auto base = kit::find_description(tree)) {
            require_one_description(source);
            m_description = &tree;
            m_input.description = {options.file, tree.node(*base).value_or(tree.root()),
                                   kit::explain_description(tree)};
        } else if (options.section.empty()) {
            add_configurations(source, {});
        } else {
            add_configurations(read({.file = options.file, .section = options.section}), options.section);
        }
    }

    void add_configurations(const Source& source, const std::string& section) {
        const pm::Tree& tree = source.content.tree;
        for (const Part& part : parts_of(source, section)) {
            kit::ReportConfiguration configuration{part.name, tree.node(part.base).value_or(tree.root())};
            if (m_description != nullptr) {
                configuration.check =
                    kit::explain_compatibility(tree, *m_description, {.configuration_base = part.base});
            }
            m_input.configurations.push_back(std::move(configuration));
        }
    }

    std::vector<std::unique_ptr<Source>> m_sources;
    const pm::Tree* m_description = nullptr;
    kit::ReportInput m_input;
};

int write_report(const ReportOptions& options) {
    if (options.file.empty() && options.configurations.empty()) {
        throw Mistake("DESCRIPTION or --config is required");
    }
    require_page_extension(options.output);
    Report report;
    report.add(options);
    save_safely(options.output, kit::report_page(report.input()));
    return exit_ok;
}

constexpr Verb verb = {
    "report", "convert", "write a page to look at, in HTML",
    R"(Writes one HTML page, with pictures in it and nothing to load, of a device description: media sizes to scale, sources, outputs and finishing, colours and resolutions, dither matrices, connections, pens and line types, owners and abilities in words.

With --config the page marks what the configuration chooses and shows in red what isn't possible on the device. With several --config, or a file of several sections, the configurations stand side by side with their differences marked. A configuration alone is shown by its settings in groups.)",
    R"(pmtool report dx4200/ -o dx4200.html
pmtool report dx4200/ --config office.pc2 -o office.html
pmtool report dx4200/ --config plotter.pia --config office.pc2 -o both.html
pmtool report plotter.pia -o plotter.html)"};

} // namespace

void add_report(Commands& commands) {
    const auto options = std::make_shared<ReportOptions>();
    VerbLine line = commands.add(verb, [options] { return write_report(*options); });
    line.optional_argument("DESCRIPTION", options->file, "A device description, or a configuration alone");
    line.texts("--config", options->configurations, "CONFIG", "A configuration; may be repeated");
    line.text("--section", options->section, "NAME", "One section of the configurations, by name or number")
        .not_empty();
    line.text("-o,--output", options->output, "FILE", "The page to write; else to standard output");
}

} // namespace pmtool
