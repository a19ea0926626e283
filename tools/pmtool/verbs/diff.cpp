#include "failure.h"
#include "json.h"
#include "options.h"
#include "progress.h"
#include "source.h"
#include "terminal.h"
#include "text.h"
#include "verbs/verbs.h"
#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/pattern.h>
#include <pm/kit/stored.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct DiffOptions {
    SourceOptions first;
    std::string second; // read with the options of the first
    std::string path = "\\";
    kit::CompareOptions compare;
    bool no_order = false;
    bool strict = false;
    bool quiet = false;
    bool json = false;
    bool script = false;
    std::string color = "auto";
};

void add_value(Json& row, std::string_view name, const std::optional<kit::Stored>& value) {
    if (value) {
        row.text(name, kit::value_text(*value));
    } else {
        row.null(name);
    }
}

std::vector<std::string> shown_all(std::vector<std::string> paths) {
    std::ranges::transform(paths, paths.begin(),
                           [](const std::string& path) { return shown(pm::to_utf16(path)); });
    return paths;
}

void print_json(const std::vector<kit::Difference>& differences) {
    Json list = Json::array();
    for (const kit::Difference& difference : differences) {
        Json row = Json::object();
        row.text("change", kit::change_name(difference.change));
        row.text("path", shown(pm::to_utf16(difference.path)));
        add_value(row, "before", difference.before);
        add_value(row, "after", difference.after);
        if (difference.change == kit::Change::order) row.texts("moved", shown_all(difference.moved));
        list.append(std::move(row));
    }
    fmt::print("{}", list.dump());
}

Ink ink_of(kit::Change change) {
    if (change == kit::Change::added) return Ink::added;
    return change == kit::Change::removed ? Ink::removed : Ink::value;
}

void print_lines(const std::vector<kit::Difference>& differences, const Display& display) {
    for (const kit::Difference& difference : differences) {
        fmt::print("{}\n", display.ink(ink_of(difference.change), kit::difference_text(difference)));
    }
}

void print(const DiffOptions& options, const std::vector<kit::Difference>& differences) {
    if (options.quiet) return;
    if (options.json) {
        print_json(differences);
    } else if (options.script) {
        fmt::print("{}", kit::script(differences));
    } else if (differences.empty()) {
        fmt::print("{} and {} hold equal trees.\n", kit::printable_text(options.first.file),
                   kit::printable_text(options.second));
    } else {
        print_lines(differences, Display(options.color));
    }
}

int diff(const DiffOptions& options) {
    if (options.first.file == "-" && options.second == "-") {
        throw Mistake("only one of A and B can be standard input");
    }
    const Source first = read_source(options.first);
    SourceOptions other = options.first;
    other.file = options.second;
    const Source second = read_source(other);
    const std::string path = kit::full_path(options.path);
    kit::CompareOptions compare = options.compare;
    compare.order = !options.no_order;
    compare.strictness = options.strict;
    const auto differences = [&] {
        const Progress progress("comparing");
        return kit::compare_at(first.content.tree, second.content.tree, path, compare);
    }();
    if (!differences) throw no_such_path(options.first.file, path);
    tell_dropped(first);
    tell_dropped(second);
    print(options, *differences);
    return differences->empty() ? exit_ok : exit_negative;
}

constexpr Verb verb = {
    "diff", "compare", "tell how two trees differ, whatever the formats",
    R"(Compares two files, or what has the path PATH in them, and lists what turns A into B: "+" is added, "-" removed, "~" has another type or value; a path that ends in a backslash is a node. Of files with several trees all sections are compared, each as a node. Doubles are equal when all their bits are.

Exit code 0 if the trees are equal, 1 if they differ, 2 for trouble.)",
    R"(pmtool diff old.pia new.doc '\media'
pmtool diff a.pia b.pia --exclude '**\timestamp' --tolerance 1e-9
pmtool diff a.pia b.pia --script > changes    for "apply")"};

} // namespace

void add_diff(Commands& commands) {
    const auto options = std::make_shared<DiffOptions>();
    VerbLine line = commands.add(verb, [options] { return diff(*options); });
    line.other_name("compare");
    line.argument("A", options->first.file, "A file; \"-\" is standard input");
    line.argument("B", options->second, "Another file");
    line.optional_argument("PATH", options->path, "The node or property to compare").utf8();
    add_from(line, options->first);
    line.text("--section", options->first.section, "NAME", "One section of both, by name or number")
        .not_empty();
    add_keep_going(line, options->first);
    line.number("--tolerance", options->compare.tolerance, "Doubles that differ by no more than N are equal");
    line.texts("--exclude", options->compare.exclude, "PATTERN",
               "What matches doesn't count; may be repeated")
        .utf8();
    line.flag("--no-order", options->no_order, "The order of properties and nodes doesn't count");
    line.flag("--strict", options->strict,
              "Whether a property keeps its type counts too; few formats store it");
    line.flag("-q,--quiet", options->quiet, "Print nothing; the exit code tells");
    line.flag("--json", options->json, "An array of differences");
    line.flag("--script", options->script, "Lines for \"apply\" that turn A into B");
    add_color(line, options->color);
}

} // namespace pmtool
