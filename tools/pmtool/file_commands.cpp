#include "bundle.h"
#include "check.h"
#include "commands.h"
#include "failure.h"
#include "text.h"
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <vector>

namespace pmtool {

namespace {

struct ConvertOptions {
    SourceOptions source;
    OutputOptions output;
};

// A DPIA file gets each section of a DPIA input, or else all of the input as one section.
int convert_to_dpia(const Source& source, const std::string& file) {
    std::vector<BundlePart> parts;
    if (source.format->type == PM_Object::FILE_DPIA) {
        for (const Section& section : sections_of(source)) {
            if (!source.section.empty() && section.name != source.section) continue;
            parts.push_back(
                {section.name, section.info, {source.file, source.path, section.name, source.format}});
        }
    } else {
        parts.push_back({std::filesystem::path(source.file).stem().string(), "", source});
    }
    write_bundle(file, parts);
    return exit_ok;
}

int convert(const ConvertOptions& options) {
    const Source source = find_source(options.source);
    const Format& format = output_format(options.output);
    if (format.type == PM_Object::FILE_DPIA) return convert_to_dpia(source, options.output.file);
    PM_Object object;
    load_one_tree(object, source);
    const bool is_pia = format.type == PM_Object::FILE_PIA;
    std::string tag = options.output.tag.value_or(is_pia ? tag_of(source) : "");
    if (options.output.compress) tag = with_compression(tag);
    save_tree(object, {options.output.file, &format, pm::to_utf16(tag), options.output.utf8});
    return exit_ok;
}

int check(const SourceOptions& options) {
    const Source source = find_source(options);
    const std::vector<std::string> lines = find_bad_lines(source);
    for (const std::string& line : lines) {
        fmt::print("{}\n", line);
    }
    if (!lines.empty()) return exit_negative;
    fmt::print("{}: no bad lines\n", source.file);
    return exit_ok;
}

int identify_files(const std::vector<std::string>& files) {
    int status = exit_ok;
    for (const std::string& file : files) {
        try {
            const Identity identity = identify(file);
            fmt::print("{}: {} ({}): {}\n", file, identity.format->name, identity.format->title,
                       identity.evidence);
        } catch (const Failure& e) {
            std::fflush(stdout);
            fmt::print(stderr, "pmtool: {}\n", e.what());
            status = exit_trouble;
        }
    }
    return status;
}

void add_convert(Commands& commands) {
    const auto options = std::make_shared<ConvertOptions>();
    CLI::App& command = commands.add("convert", "Read a file and write its tree to another",
                                     [options] { return convert(*options); });
    add_source_options(command, options->source);
    command.add_option("OUT", options->output.file, "The file to write")->required();
    add_output_options(command, options->output);
}

void add_check(Commands& commands) {
    const auto options = std::make_shared<SourceOptions>();
    CLI::App& command = commands.add("check", "List all bad lines of a file; exit code 1 if there are any",
                                     [options] { return check(*options); });
    add_source_options(command, *options);
}

void add_identify(Commands& commands) {
    const auto files = std::make_shared<std::vector<std::string>>();
    CLI::App& command = commands.add("identify", "Tell the formats of files from their content",
                                     [files] { return identify_files(*files); });
    command.add_option("FILE", *files, "The files")->required();
}

} // namespace

void add_file_commands(Commands& commands) {
    add_convert(commands);
    add_check(commands);
    add_identify(commands);
}

} // namespace pmtool
