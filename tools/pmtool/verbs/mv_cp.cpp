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

int relocate(kit::Edit::Verb verb, const Options& options) {
    EditedFile file(options.source, options.target);
    (void)file.require(options.from);
    const std::array edits = {kit::Edit{verb, kit::full_path(options.from), kit::full_path(options.to)}};
    return file.change(edits);
}

void add(Commands& commands, const Verb& verb, kit::Edit::Verb edit) {
    const auto options = std::make_shared<Options>();
    VerbLine line = commands.add(verb, [options, edit] { return relocate(edit, *options); });
    add_edited(line, options->source);
    line.argument("FROM", options->from, "A path or pattern").utf8();
    line.argument("TO", options->to, "The new path, or a node with a backslash behind it").utf8();
    add_other_output(line, options->target);
    add_writing(line, options->target);
}

constexpr Verb mv = {
    "mv", "change", "move or rename properties or nodes",
    R"(Gives a property, or else a node, another path. A property goes into a TO that ends in a backslash under its own name, and so does all that a FROM with "*" or "**" matches; TO is the new path of a node. What is moved within its node to the same path goes to the end of its list.

Nothing is replaced: TO must be free. Exit code 1 if nothing matches FROM.)",
    R"(pmtool mv plotter.pia '\media\copies' '\media\count'    rename)"};

constexpr Verb cp = {
    "cp", "change", "copy properties or nodes",
    R"(Copies a property, or else a node with all below it. A property goes into a TO that ends in a backslash under its own name, and so does all that a FROM with "*" or "**" matches; TO is the new path of a node.

Nothing is replaced: TO must be free. Exit code 1 if nothing matches FROM.)",
    R"(pmtool cp plotter.pia '\media\size\0\' '\media\size\1\')"};

} // namespace

void add_mv(Commands& commands) {
    add(commands, mv, kit::Edit::Verb::move);
}

void add_cp(Commands& commands) {
    add(commands, cp, kit::Edit::Verb::copy);
}

} // namespace pmtool
