#include "commands.h"
#include "failure.h"
#include "paths.h"
#include "text.h"
#include "tree_compare.h"
#include "tree_printer.h"
#include <fmt/format.h>
#include <memory>

namespace pmtool {

namespace {

constexpr int deepest_tree = 256;

struct TreeOptions {
    SourceOptions source;
    std::string path = "\\";
    int depth = 0;
    bool json = false;
};

struct SetOptions {
    SourceOptions source;
    std::string path;
    std::string value;
    std::string type;
    std::string output;
};

struct CompareOptions {
    SourceOptions first;
    SourceOptions second;
};

Failure no_such_path(const std::string& file, const std::u16string& path) {
    return Failure(fmt::format("{}: {}: there is no such property or node", file, printable(shown(path))));
}

int show_tree(const TreeOptions& options) {
    PM_Object object;
    load_strictly(object, find_source(options.source));
    const std::u16string path = full_path(pm::to_utf16(options.path));
    if (const std::optional<pm::Node> node = node_at(object, path)) {
        fmt::print("{}", (options.json ? tree_json : tree_text)(*node, options.depth));
        return exit_ok;
    }
    const std::optional<pm::Property> property = property_at(object, path);
    if (!property) throw no_such_path(options.source.file, path);
    fmt::print("{}\n", property_line(*property));
    return exit_ok;
}

int get_value(const TreeOptions& options) {
    PM_Object object;
    load_strictly(object, find_source(options.source));
    const std::u16string path = full_path(pm::to_utf16(options.path));
    const std::optional<pm::Property> property = property_at(object, path);
    if (!property && node_at(object, path)) {
        throw Failure(fmt::format("{}: {}: this is a node, not a property; show it with: pmtool tree",
                                  options.source.file, printable(shown(path))));
    }
    if (!property) throw no_such_path(options.source.file, path);
    fmt::print("{}\n", plain_text(property->value()));
    return exit_ok;
}

Value value_to_set(const SetOptions& options, const std::optional<Value>& old) {
    if (!options.type.empty()) return parse_value(options.value, options.type);
    if (old) return parse_value(options.value, type_name(*old));
    return parse_value(options.value);
}

void check_settable(const SetOptions& options, const Source& source, const std::u16string& path) {
    if (!source.format->is_written || source.format->type == PM_Object::FILE_DPIA) {
        throw Failure(
            fmt::format("{}: {} files can't be changed; convert it first", source.file, source.format->name));
    }
    if (path == u"\\") throw Failure("the path names no property");
    if (path.find(u'*') != std::u16string::npos) {
        throw Failure(fmt::format("{}: a path with * can't be set", options.path));
    }
}

int set_value(const SetOptions& options) {
    const Source source = find_source(options.source);
    const std::u16string path = full_path(pm::to_utf16(options.path));
    check_settable(options, source, path);
    PM_Object object;
    load_strictly(object, source);
    const std::optional<pm::Property> property = property_at(object, path);
    const std::optional<Value> old = property ? std::optional(property->value()) : std::nullopt;
    const Value value = value_to_set(options, old);
    const std::string tag = is_compressed(source) ? with_compression(tag_of(source)) : tag_of(source);
    translating(source, [&] {
        if (old && old->index() != value.index()) object.deletePath(path.c_str());
        set_property(object, path, value);
    });
    const std::string& target = options.output.empty() ? source.file : options.output;
    save_tree(object, {target, source.format, pm::to_utf16(tag)});
    return exit_ok;
}

std::string entry_line(char mark, const std::u16string& path, const Value& value) {
    const std::string name = printable(shown(path));
    if (path.ends_with(u'\\')) return fmt::format("{} {}\n", mark, name);
    return fmt::format("{} {}: {} = {}\n", mark, name, type_name(value), shown_text(value));
}

// All trees of a file with several, each below its name.
void load_all(PM_Object& object, const SourceOptions& options) {
    const std::vector<Source> parts = parts_of(find_source(options));
    for (const Source& part : parts) {
        const bool is_named = parts.size() > 1 && !part.section.empty();
        load_strictly(object, part, is_named ? join_path(u"\\", pm::to_utf16(part.section)) : u"\\");
    }
}

int compare_files(const CompareOptions& options) {
    PM_Object first;
    PM_Object second;
    load_all(first, options.first);
    load_all(second, options.second);
    const FlatTree a = flatten(first);
    const FlatTree b = flatten(second);
    const std::vector<Difference> differences = compare(a, b);
    for (const Difference& difference : differences) {
        if (difference.first != nullptr) {
            fmt::print("{}", entry_line('-', difference.path, *difference.first));
        }
        if (difference.second != nullptr) {
            fmt::print("{}", entry_line('+', difference.path, *difference.second));
        }
    }
    if (!differences.empty()) return exit_negative;
    fmt::print("{} and {} hold equal trees.\n", options.first.file, options.second.file);
    return exit_ok;
}

void add_tree(Commands& commands) {
    const auto options = std::make_shared<TreeOptions>();
    CLI::App& command =
        commands.add("tree", "Show the tree of a file", [options] { return show_tree(*options); });
    add_source_options(command, options->source);
    command.add_option("PATH", options->path, "Node to start at, such as \\media");
    command.add_option("--depth", options->depth, "Levels below the start, 0 for all")
        ->check(CLI::Range(0, deepest_tree));
    command.add_flag("--json", options->json, "Write JSON");
}

void add_get(Commands& commands) {
    const auto options = std::make_shared<TreeOptions>();
    CLI::App& command =
        commands.add("get", "Print the value of a property", [options] { return get_value(*options); });
    add_source_options(command, options->source);
    command.add_option("PATH", options->path, "The property, such as \\media\\default_size")->required();
}

void add_set(Commands& commands) {
    const auto options = std::make_shared<SetOptions>();
    CLI::App& command =
        commands.add("set", "Set a property in a pia or doc file", [options] { return set_value(*options); });
    command.add_option("FILE", options->source.file, "The file to change")->required();
    command.add_option("PATH", options->path, "The property, such as \\media\\copies")->required();
    command.add_option("VALUE", options->value, "The new value")->required();
    command.add_option("--type", options->type,
                       "Type of the value (" + type_names() +
                           "), if neither the old value nor the form of the new "
                           "one tells it");
    command.add_option("--from", options->source.from,
                       "Format of the file, if its content doesn't tell it: pia, doc");
    command.add_option("-o,--output", options->output, "Write to this file and leave FILE as it is");
}

void add_compare(Commands& commands) {
    const auto options = std::make_shared<CompareOptions>();
    CLI::App& command =
        commands.add("compare", "Tell whether two files hold equal trees, whatever their formats",
                     [options] { return compare_files(*options); });
    command.add_option("A", options->first.file, "A file")->required();
    command.add_option("B", options->second.file, "Another file")->required();
}

} // namespace

void add_tree_commands(Commands& commands) {
    add_tree(commands);
    add_get(commands);
    add_set(commands);
    add_compare(commands);
}

} // namespace pmtool
