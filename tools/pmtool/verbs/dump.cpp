#include "failure.h"
#include "options.h"
#include "safe_save.h"
#include "source.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>
#include <pm/kit/json.h>
#include <pm/kit/pattern.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct DumpOptions {
    SourceOptions source;
    std::string path = "\\";
    std::string output = "-";
    bool plain = false;
    bool compact = false;
};

std::string json_of(const DumpOptions& options, const kit::Match& match) {
    const kit::JsonOptions form{.indent = options.compact ? -1 : 2, .plain = options.plain};
    if (match.property) return kit::property_json(*match.property, form) + '\n';
    return kit::to_json(match.node, form);
}

int dump(const DumpOptions& options) {
    require_extension(options.output, format_named("json"));
    const Source source = read_source(options.source);
    const std::string path = kit::full_path(options.path);
    const std::vector<kit::Match> found = kit::find_all(source.content.tree, kit::Pattern(path));
    if (found.empty()) throw no_such_path(options.source.file, path);
    std::string text;
    for (const kit::Match& match : found) {
        text += json_of(options, match);
    }
    tell_dropped(source);
    save_safely(options.output, text);
    return exit_ok;
}

constexpr Verb verb = {
    "dump", "convert", "write the tree as JSON, exactly",
    R"(Writes the tree, or what is below the node PATH, as canonical JSON: an object with "pm9" (the version of this form, 1), "properties" and "nodes", in the order of the tree. Nothing is lost: "convert --from json" makes the same tree of it. "tree --json", "get --json" and "edit" use the same form.

With --plain it is nested objects with a key for each name, for jq and the like; types and much else are lost.)",
    R"(pmtool dump plotter.pia > plotter.json
pmtool dump plotter.pia --plain | jq .media.copies)"};

} // namespace

void add_dump(Commands& commands) {
    const auto options = std::make_shared<DumpOptions>();
    VerbLine line = commands.add(verb, [options] { return dump(*options); });
    add_source(line, options->source);
    line.optional_argument("PATH", options->path, "The node or property to write").utf8();
    line.text("-o,--output", options->output, "FILE", "The file to write");
    line.flag("--plain", options->plain, "Nested objects, for other programs");
    line.flag("--compact", options->compact, "All on one line");
}

} // namespace pmtool
