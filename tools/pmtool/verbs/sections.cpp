#include "failure.h"
#include "json.h"
#include "options.h"
#include "source.h"
#include "text.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>

namespace pmtool {

namespace {

struct SectionsOptions {
    SourceOptions source;
    bool json = false;
};

int list_sections(const SectionsOptions& options) {
    const std::vector<pm::kit::Section> sections = sections_of(options.source);
    Json list = Json::array();
    for (const pm::kit::Section& section : sections) {
        if (options.json) {
            list.append(std::move(Json::object().text("name", section.name).text("info", section.info)));
        } else {
            fmt::print("{}{}{}\n", printable(section.name), section.info.empty() ? "" : "\t",
                       printable(section.info));
        }
    }
    if (options.json) fmt::print("{}", list.dump());
    return exit_ok;
}

constexpr Verb verb = {
    "sections", "sections", "list the sections of a dpia file or the plotters of a cfg file",
    R"(Lists each section of a dpia file with its info text, or each plotter of a cfg file with its menu name: the name or number, and a tab and the text if there is one.)",
    R"(pmtool sections all.dpia
pmtool sections three-plotters.cfg --json)"};

} // namespace

void add_sections(Commands& commands) {
    const auto options = std::make_shared<SectionsOptions>();
    VerbLine line = commands.add(verb, [options] { return list_sections(*options); });
    add_file_argument(line, options->source);
    add_from(line, options->source);
    line.flag("--json", options->json, "An array of objects with name and info");
}

} // namespace pmtool
