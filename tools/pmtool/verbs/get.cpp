#include "failure.h"
#include "options.h"
#include "source.h"
#include "system.h"
#include "text.h"
#include "value.h"
#include "verbs/verbs.h"
#include <algorithm>
#include <fmt/format.h>
#include <memory>
#include <pm/kit/json.h>
#include <pm/kit/pattern.h>
#include <pm/kit/stored.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct GetOptions {
    SourceOptions source;
    std::vector<std::string> paths;
    bool json = false;
};

// As it is, for programs; a terminal could take it for a command.
std::string value_of(const pm::Property& property) {
    std::string text = plain_text(kit::stored(property));
    return is_terminal(Stream::out) ? printable_lines(text) : text;
}

bool print_matches(const GetOptions& options, const pm::Tree& tree, const std::string& path) {
    const kit::Pattern pattern(kit::full_path(path));
    const std::vector<kit::Match> found = kit::find_all(tree, pattern);
    bool printed = false;
    for (const kit::Match& match : found) {
        if (!match.property) continue;
        printed = true;
        fmt::print("{}\n", options.json ? kit::property_json(*match.property) : value_of(*match.property));
    }
    if (printed || found.empty() || !pattern.is_literal()) return printed;
    throw Failure(fmt::format("{}: {}: this is a node, not a property; show it with: pmtool tree",
                              options.source.file, printable(kit::full_path(path))));
}

int get_values(const GetOptions& options) {
    const Source source = read_source(options.source);
    std::string missing;
    for (const std::string& path : options.paths) {
        if (!print_matches(options, source.content.tree, path) && missing.empty()) {
            missing = kit::full_path(path);
        }
    }
    tell_dropped(source);
    if (!missing.empty()) throw no_such_path(options.source.file, missing);
    return exit_ok;
}

constexpr Verb verb = {
    "get", "look", "print the value of a property",
    R"(Prints the value of each property alone: text without quotes, true or false, hexadecimal digits. A PATH may be a pattern with "*" and "**" as with "ls"; then there is a line for each property that matches. Exit code 1 if there is none.)",
    R"(pmtool get plotter.pia '\media\copies'
pmtool get plotter.pia '\media\size\*\name'
pmtool get plotter.pia '\media\copies' --json | jq .value)"};

} // namespace

void add_get(Commands& commands) {
    const auto options = std::make_shared<GetOptions>();
    VerbLine line = commands.add(verb, [options] { return get_values(*options); });
    add_source(line, options->source);
    line.arguments("PATH", options->paths, "Properties, such as \\media\\default_size").utf8();
    line.flag("--json", options->json, "An object for each property, as in \"dump\"");
}

} // namespace pmtool
