#include "edited_file.h"
#include "verbs/verbs.h"
#include <array>
#include <memory>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct Options {
    SourceOptions source;
    TargetOptions target;
    std::string from;
    std::string to;
};

int copy(const Options& options) {
    EditedFile file(options.source, options.target);
    (void)file.require(options.from);
    const std::array edits = {
        kit::Edit{kit::Edit::Verb::copy, kit::full_path(options.from), kit::full_path(options.to)}};
    return file.change(edits);
}

constexpr Verb verb = {
    "cp", "change", "copy properties or nodes",
    R"(Copies a property, or else a node with all below it. A property goes into a TO that ends in a backslash under its own name, and so does all that a FROM with "*" or "**" matches; TO is the new path of a node.

Nothing is replaced: TO must be free. Exit code 1 if nothing matches FROM.)",
    R"(pmtool cp plotter.pia '\media\size\0\' '\media\size\1\')"};

} // namespace

void add_cp(Commands& commands) {
    const auto options = std::make_shared<Options>();
    VerbLine line = commands.add(verb, [options] { return copy(*options); });
    add_source(line, options->source);
    line.argument("FROM", options->from, "A path or pattern");
    line.argument("TO", options->to, "The new path, or a node with a backslash behind it");
    add_other_output(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
