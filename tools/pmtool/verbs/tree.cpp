#include "failure.h"
#include "options.h"
#include "source.h"
#include "terminal.h"
#include "text.h"
#include "value.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>
#include <pm/kit/json.h>
#include <pm/kit/pattern.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

constexpr int deepest_tree = 256;
constexpr std::size_t indentation = 2;
constexpr std::string_view cut_mark = "\xE2\x80\xA6";

struct TreeOptions {
    SourceOptions source;
    std::string path = "\\";
    int depth = 0;
    bool json = false;
    bool flat = false;
    std::string color = "auto";
};

std::string name_of(std::u16string_view name) {
    return printable(shown(name));
}

bool is_empty(const pm::Node& node) {
    return node.children().empty() && node.properties().empty();
}

// "name: type = value"
void print_property(const Display& display, const pm::Property& property, std::size_t indent) {
    const kit::Stored value = kit::stored(property);
    const std::string name = name_of(property.name16());
    const std::string_view type = kit::type_name(value.type);
    const std::size_t used = indent + columns_of(name) + type.size() + 5;
    fmt::print("{:{}}{}: {} = {}\n", "", indent, display.ink(Ink::name, name), display.ink(Ink::type, type),
               display.ink(Ink::value, display.fitted(shown_text(value), used)));
}

void print_properties(const Display& display, const pm::Node& node, std::size_t indent) {
    for (const pm::Property property : node.properties()) {
        print_property(display, property, indent);
    }
}

void print_tree(const Display& display, const pm::Node& top, int depth) {
    print_properties(display, top, 0);
    for (const auto& [node, level] : top.walk(depth == 0 ? 0 : depth + 1)) {
        if (level == 0) continue;
        const std::size_t indent = static_cast<std::size_t>(level - 1) * indentation;
        const bool is_cut = depth != 0 && level > depth;
        if (is_cut) continue;
        const bool hides = depth != 0 && level == depth && !node.children().empty();
        fmt::print("{:{}}{}\n", "", indent, display.ink(Ink::node, name_of(node.name16()) + '\\'));
        print_properties(display, node, indent + indentation);
        if (hides) {
            fmt::print("{:{}}{}\n", "", indent + indentation, display.ink(Ink::cut, cut_mark));
        }
    }
}

// The path of a node with a backslash behind it, as every line of it begins.
std::string path_of(const pm::Node& node) {
    std::string path = printable(shown(pm::to_utf16(node.path())));
    if (!path.ends_with('\\')) path += '\\';
    return path;
}

void print_flat_property(const std::string& node, const pm::Property& property) {
    fmt::print("{}{}: {}\n", node, name_of(property.name16()), kit::value_text(kit::stored(property)));
}

// One line a property, and one for a node that would have none.
void print_flat(const pm::Node& top, int depth) {
    for (const auto& [node, level] : top.walk(depth)) {
        const std::string path = path_of(node);
        if (is_empty(node) && !node.is_root()) fmt::print("{}\n", path);
        for (const pm::Property property : node.properties()) {
            print_flat_property(path, property);
        }
        if (depth != 0 && level == depth && !node.children().empty()) fmt::print("{}{}\n", path, cut_mark);
    }
}

void show_node(const TreeOptions& options, const pm::Node& node) {
    if (options.json) {
        fmt::print("{}", kit::to_json(node, {.levels = options.depth}));
    } else if (options.flat) {
        print_flat(node, options.depth);
    } else {
        print_tree(Display(options.color), node, options.depth);
    }
}

void show_property(const TreeOptions& options, const kit::Match& match) {
    if (options.json) {
        fmt::print("{}\n", kit::property_json(*match.property));
    } else if (options.flat) {
        print_flat_property(path_of(match.node), *match.property);
    } else {
        print_property(Display(options.color), *match.property, 0);
    }
}

int show_tree(const TreeOptions& options) {
    const Source source = read_source(options.source);
    const std::vector<kit::Match> found =
        kit::find_all(source.content.tree, kit::Pattern(kit::full_path(options.path)));
    if (found.empty()) throw no_such_path(options.source.file, kit::full_path(options.path));
    // A node before the property of the same name: it says more.
    const auto node =
        std::ranges::find_if(found, [](const kit::Match& match) { return !match.property.has_value(); });
    const bool is_one = kit::Pattern(options.path).is_literal();
    if (is_one && node != found.end()) {
        show_node(options, node->node);
    } else {
        for (const kit::Match& match : found) {
            match.property ? show_property(options, match) : show_node(options, match.node);
        }
    }
    tell_dropped(source);
    return exit_ok;
}

constexpr Verb verb = {
    "tree", "look", "show the tree of a file",
    R"(Shows the tree, or what is below the node PATH: a property a line as name: type = value, then the nodes, indented. Of a dpia file, and of a cfg file with several plotters, each section is a node.

With --flat each property is a line of its own with its full path, type and value, in the order of the file: for grep, git diff and the like.

Colours go to a terminal only, unless NO_COLOR is set or --color says otherwise; there, lines are cut to its width.)",
    R"(pmtool tree plotter.pia '\media' --depth 1    a part of it
pmtool tree all.dpia --flat | grep copies    lines with full paths
pmtool tree plotter.pia --json | jq .nodes    for programs)"};

} // namespace

void add_tree(Commands& commands) {
    const auto options = std::make_shared<TreeOptions>();
    VerbLine line = commands.add(verb, [options] { return show_tree(*options); });
    add_source(line, options->source);
    line.optional_argument("PATH", options->path, "Node or property to show, such as \\media").utf8();
    line.number("--depth", options->depth, 0, deepest_tree, "Levels below the start, 0 for all");
    line.flag("--flat", options->flat, "One line a property, with its full path");
    line.flag("--json", options->json, "Canonical JSON, as \"dump\" writes it");
    add_color(line, options->color);
}

} // namespace pmtool
