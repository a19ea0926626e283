#include "failure.h"
#include "options.h"
#include "source.h"
#include "text.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>
#include <pm/kit/pattern.h>
#include <pm/kit/stored.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct LsOptions {
    SourceOptions source;
    std::vector<std::string> paths;
    bool with_values = false;
};

void print_property(const LsOptions& options, const std::string& path, const pm::Property& property) {
    const std::string name = printable(shown(pm::to_utf16(path)));
    if (options.with_values) {
        fmt::print("{}: {}\n", name, kit::value_text(kit::stored(property)));
    } else {
        fmt::print("{}\n", name);
    }
}

// What lies in a node, by name.
void list_node(const LsOptions& options, const pm::Node& node) {
    for (const pm::Property property : node.properties()) {
        print_property(options, property.name(), property);
    }
    for (const pm::Node child : node.children()) {
        fmt::print("{}\\\n", printable(shown(child.name16())));
    }
}

// A pattern lists what matches, by path; a plain path of a node what lies in it.
bool list_path(const LsOptions& options, const pm::Tree& tree, const std::string& path) {
    const kit::Pattern pattern(kit::full_path(path));
    const std::vector<kit::Match> found = kit::find_all(tree, pattern);
    for (const kit::Match& match : found) {
        if (match.property) {
            print_property(options, match.path, *match.property);
        } else if (pattern.is_literal()) {
            list_node(options, match.node);
        } else {
            fmt::print("{}\n", printable(shown(pm::to_utf16(match.path))));
        }
    }
    return !found.empty();
}

int list(const LsOptions& options) {
    const Source source = read_source(options.source);
    std::vector<std::string> paths = options.paths;
    if (paths.empty()) paths.emplace_back("\\");
    std::string missing;
    for (const std::string& path : paths) {
        if (!list_path(options, source.content.tree, path) && missing.empty()) missing = kit::full_path(path);
    }
    tell_dropped(source);
    if (!missing.empty()) throw no_such_path(options.source.file, missing);
    return exit_ok;
}

constexpr Verb verb = {
    "ls", "look", "list nodes and properties by path",
    R"(Lists what lies in the node of each PATH, or the property of that path. A name that ends in a backslash is that of a node.

"*" within a name stands for any characters, "**" for any number of names: then all that matches is listed, with its full path. An asterisk itself is written as [*]. Exit code 1 if nothing has the path.)",
    R"(pmtool ls plotter.pia '\media'
pmtool ls plotter.pia '**\name' --long    all properties of that name)"};

} // namespace

void add_ls(Commands& commands) {
    const auto options = std::make_shared<LsOptions>();
    VerbLine line = commands.add(verb, [options] { return list(*options); });
    add_source(line, options->source);
    line.optional_arguments("PATH", options->paths, "Paths or patterns; without one the root").utf8();
    line.flag("-l,--long", options->with_values, "Types and values too");
}

} // namespace pmtool
