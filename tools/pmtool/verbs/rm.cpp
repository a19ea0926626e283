#include "edited_file.h"
#include "verbs/verbs.h"
#include <memory>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct RmOptions {
    SourceOptions source;
    TargetOptions target;
    std::vector<std::string> paths;
};

int remove(const RmOptions& options) {
    EditedFile file(options.source, options.target);
    std::vector<kit::Edit> edits;
    for (const std::string& path : options.paths) {
        (void)file.require(path);
        edits.push_back({kit::Edit::Verb::remove, kit::full_path(path)});
    }
    return file.change(edits);
}

constexpr Verb verb = {
    "rm", "change", "remove properties or nodes",
    R"(Removes the property of each PATH, or else the node with all below it. A path that ends in a backslash is a node. "*" and "**" match as with "ls". Exit code 1, and nothing is written, if one of them matches nothing.)",
    R"(pmtool rm plotter.pia '\media\copies'
pmtool rm plotter.pia '\media\size\' --dry-run    see what would go)"};

} // namespace

void add_rm(Commands& commands) {
    const auto options = std::make_shared<RmOptions>();
    VerbLine line = commands.add(verb, [options] { return remove(*options); });
    add_source(line, options->source);
    line.arguments("PATH", options->paths, "Paths or patterns").utf8();
    add_other_output(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
