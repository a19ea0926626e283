#include "failure.h"
#include "source.h"
#include "target.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>

namespace pmtool {

namespace {

struct ExtractOptions {
    SourceOptions source;
    TargetOptions target;
};

int extract(ExtractOptions options) {
    const Format& format = format_of_output(options.target.file, options.target.to);
    if (format.is(PM_Object::FILE_DPIA)) {
        throw Failure(fmt::format("{}: a section is written as pia, doc or json", options.target.file));
    }
    const TargetLock lock(options.target, {&options.source});
    const Source source = read_source(options.source, damage_by(options.target));
    const std::vector<std::string> losses = losses_unless_told(options.source, source);
    Writing writing{source.content.tree, format, form_of(format, options.target, source), losses};
    writing.notes = dropped_info_texts(source);
    return write_by_rule(writing, options.target);
}

constexpr Verb verb = {
    "extract", "sections", "write one section of a dpia or cfg file to a file of its own",
    R"(Writes the section NAME of a dpia file, or the plotter of that number of a cfg file, as a pia, doc or json file, by the rule of "convert".)",
    R"(pmtool extract all.dpia Office -o office.pia)"};

} // namespace

void add_extract(Commands& commands) {
    const auto options = std::make_shared<ExtractOptions>();
    VerbLine line = commands.add(verb, [options] { return extract(*options); });
    add_file_argument(line, options->source);
    line.argument("NAME", options->source.section, "The section's name or the plotter's number").not_empty();
    line.required_text("-o,--output", options->target.file, "FILE",
                       "The file to write; \"-\" is standard output");
    add_from(line, options->source);
    line.flag("--keep-going", options->source.keep_going,
              "Take what can be read of a damaged file, and list what was dropped");
    add_form(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
