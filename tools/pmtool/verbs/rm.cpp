#include "edited_file.h"
#include "verbs/verbs.h"
#include <algorithm>
#include <memory>
#include <set>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct RmOptions {
    SourceOptions source;
    TargetOptions target;
    std::vector<std::string> paths;
};

kit::Edit removal_of(std::string pattern) {
    return {kit::Edit::Verb::remove, std::move(pattern)};
}

// What a path is for, by path: a property, or else the node; of a pattern all that matches.
std::vector<std::string> targets_of(const EditedFile& file, const std::string& path) {
    const kit::Pattern pattern(kit::full_path(path));
    std::vector<kit::Match> found = kit::find_all(file.root(), pattern);
    const bool has_property =
        std::ranges::any_of(found, [](const kit::Match& match) { return match.property.has_value(); });
    if (pattern.is_literal() && has_property) {
        std::erase_if(found, [](const kit::Match& match) { return !match.property; });
    }
    // To a pattern the root isn't one of the things that go.
    if (!pattern.is_literal()) {
        std::erase_if(found, [](const kit::Match& match) { return match.path == "\\"; });
    }
    std::vector<std::string> paths(found.size());
    std::ranges::transform(found, paths.begin(), &kit::Match::path);
    return paths;
}

// Whether a path lies in a node that goes as a whole.
bool is_below(const std::string& path, const std::set<std::string>& gone) {
    for (std::size_t at = 0; at + 1 < path.size(); ++at) {
        if (path[at] == '\\' && gone.contains(path.substr(0, at + 1))) return true;
    }
    return false;
}

// Several paths may match the same, and what lies in a node that another matches: each goes once.
std::vector<kit::Edit> removals_of(const EditedFile& file, const std::vector<std::string>& paths) {
    if (paths.size() == 1) return {removal_of(kit::full_path(paths.front()))};
    std::vector<std::string> targets;
    std::set<std::string> gone;
    for (const std::string& path : paths) {
        for (const std::string& target : targets_of(file, path)) {
            if (gone.insert(target).second) targets.push_back(target);
        }
    }
    std::vector<kit::Edit> edits;
    for (const std::string& target : targets) {
        if (!is_below(target, gone)) edits.push_back(removal_of(kit::escaped(target)));
    }
    return edits;
}

int remove(const RmOptions& options) {
    EditedFile file(options.source, options.target);
    for (const std::string& path : options.paths) {
        (void)file.require(path);
    }
    return file.change(removals_of(file, options.paths));
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
    add_edited(line, options->source);
    line.arguments("PATH", options->paths, "Paths or patterns").utf8();
    add_other_output(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
