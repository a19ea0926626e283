#include "bundle.h"
#include "commands.h"
#include "failure.h"
#include "text.h"
#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace pmtool {

namespace {

struct ExtractOptions {
    SourceOptions source;
    OutputOptions output;
};

struct BundleOptions {
    std::string output;
    std::vector<std::string> parts;
    std::vector<std::string> infos;
};

int list_sections(const SourceOptions& options) {
    for (const Section& section : sections_of(find_source(options))) {
        fmt::print("{}{}{}\n", section.name, section.info.empty() ? "" : "\t", printable(section.info));
    }
    return exit_ok;
}

int extract(const ExtractOptions& options) {
    const Source source = find_source(options.source);
    PM_Object object;
    load_strictly(object, source);
    const Format& format = output_format(options.output);
    if (format.type == PM_Object::FILE_DPIA) {
        throw Failure(fmt::format("{}: a section is written as pia or doc", options.output.file));
    }
    std::string tag = options.output.tag.value_or("");
    if (options.output.compress) tag = with_compression(tag);
    save_tree(object, {options.output.file, &format, pm::to_utf16(tag), options.output.utf8});
    return exit_ok;
}

std::pair<std::string, std::string> split_at_equals(const std::string& text, std::string_view form) {
    const std::size_t at = text.find('=');
    if (at == std::string::npos) throw Failure(fmt::format("{}: this must have the form {}", text, form));
    return {text.substr(0, at), text.substr(at + 1)};
}

int bundle(const BundleOptions& options) {
    std::vector<BundlePart> parts;
    for (const std::string& text : options.parts) {
        const auto [name, file] = split_at_equals(text, "NAME=FILE");
        parts.push_back({name, {}, find_source({file, {}, {}})});
    }
    for (const std::string& text : options.infos) {
        const auto [name, info] = split_at_equals(text, "NAME=TEXT");
        const auto part = std::ranges::find(parts, name, &BundlePart::name);
        if (part == parts.end()) {
            throw Failure(fmt::format("{}: no section of this name is being written", name));
        }
        part->info = info;
    }
    write_bundle(options.output, parts);
    return exit_ok;
}

void add_sections(Commands& commands) {
    const auto options = std::make_shared<SourceOptions>();
    CLI::App& command =
        commands.add("sections", "List the sections of a dpia file or the plotters of a cfg file",
                     [options] { return list_sections(*options); });
    command.add_option("FILE", options->file, "The file to read")->required();
    command.add_option("--from", options->from,
                       "Format of the file, if its content doesn't tell it: dpia, cfg");
}

void add_extract(Commands& commands) {
    const auto options = std::make_shared<ExtractOptions>();
    CLI::App& command =
        commands.add("extract", "Write one section of a dpia or cfg file to a file of its own",
                     [options] { return extract(*options); });
    command.add_option("FILE", options->source.file, "The file to read")->required();
    command.add_option("NAME", options->source.section, "The section's name or the plotter's number")
        ->required();
    command.add_option("-o,--output", options->output.file, "The file to write")->required();
    command.add_option("--from", options->source.from,
                       "Format of the file, if its content doesn't tell it: dpia, cfg");
    add_output_options(command, options->output);
}

void add_bundle(Commands& commands) {
    const auto options = std::make_shared<BundleOptions>();
    CLI::App& command = commands.add("bundle", "Write a dpia file with a section for each file",
                                     [options] { return bundle(*options); });
    command.add_option("-o,--output", options->output, "The file to write")->required();
    command.add_option("NAME=FILE", options->parts, "Name and content of each section")->required();
    command.add_option("--info", options->infos, "Info text of a section, as NAME=TEXT")
        ->type_size(1)
        ->allow_extra_args(false);
}

} // namespace

void add_section_commands(Commands& commands) {
    add_sections(commands);
    add_extract(commands);
    add_bundle(commands);
}

} // namespace pmtool
