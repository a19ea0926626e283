#include "failure.h"
#include "json.h"
#include "options.h"
#include "progress.h"
#include "source.h"
#include "system.h"
#include "text.h"
#include "verbs/check_defaults.h"
#include "verbs/check_device.h"
#include "verbs/verbs.h"
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <memory>
#include <pm/kit/check.h>
#include <pm/kit/stored.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct CheckOptions {
    std::vector<std::string> files;
    std::string from;
    kit::CheckOptions check;
    bool strict = false;
    bool json = false;
    bool list_rules = false;
    DeviceCheck device = {}; // with a device: all else that it takes is filled in from here
};

std::string shown_name(const std::string& file) {
    return file == "-" ? "standard input" : file;
}

std::string place_text(const kit::Place& place) {
    std::string text = kit::printable_text(place.file);
    if (!place.section.empty()) text += fmt::format("[{}]", kit::printable_text(place.section));
    if (place.line != 0) text += fmt::format(":{}", place.line);
    if (place.column != 0) text += fmt::format(":{}", place.column);
    return text;
}

void print_line(const kit::Diagnostic& diagnostic) {
    fmt::print("{}: {}: {} [{}]", place_text(diagnostic.place), kit::severity_name(diagnostic.severity),
               kit::printable_text(diagnostic.message), diagnostic.rule);
    if (diagnostic.number != 0) fmt::print(" (error {})", diagnostic.number);
    fmt::print("\n");
}

Json json_of(const kit::Diagnostic& diagnostic) {
    Json place = Json::object();
    place.text("file", diagnostic.place.file);
    if (!diagnostic.place.section.empty()) place.text("section", diagnostic.place.section);
    if (diagnostic.place.line != 0) place.number("line", diagnostic.place.line);
    if (diagnostic.place.column != 0) place.number("column", diagnostic.place.column);
    Json row = Json::object();
    row.text("rule", diagnostic.rule).text("severity", kit::severity_name(diagnostic.severity));
    row.member("place", std::move(place)).text("message", diagnostic.message);
    if (!diagnostic.path.empty()) row.text("path", diagnostic.path);
    if (diagnostic.number != 0) row.number("number", diagnostic.number);
    return row;
}

// `content` is what was read of it.
std::vector<kit::Diagnostic> check_one(const std::string& file, const kit::CheckOptions& options,
                                       std::optional<std::string>& content) {
    content = content_at_hand(file, "checking");
    const Progress progress("checking " + shown_name(file));
    if (!content && kind_of(file) == FileKind::folder) return kit::check_file(file, options);
    const SignalDelay delay; // a compound file is looked at in a temporary one
    if (!content) return kit::check_file(file, options);
    return kit::check_content(*content, shown_name(file), options);
}

void require_rules(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        if (kit::find_check_rule(name) == nullptr && !is_device_rule(name)) {
            throw Failure(fmt::format("{}: there is no such rule; see pmtool check --rules", name));
        }
    }
}

int list_rules() {
    for (const kit::CheckRule& rule : kit::check_rules()) {
        fmt::print("{:20} {:8} {}\n", rule.name, kit::severity_name(rule.severity), rule.meaning);
    }
    fmt::print("\nOf a device:\n");
    for (const kit::CompatibilityRule& rule : kit::compatibility_rules()) {
        fmt::print("{:20} {:8} {}\n", rule.name, kit::severity_name(rule.severity), rule.meaning);
    }
    return exit_ok;
}

// What can't be read at all is trouble, and no answer, whatever rules are asked for.
constexpr std::array<std::string_view, 2> trouble_rules{"unreadable", "unknown-kind"};

bool is_trouble(const kit::Diagnostic& diagnostic) {
    return std::ranges::find(trouble_rules, diagnostic.rule) != trouble_rules.end();
}

// Whoever names it asks for it.
constexpr std::string_view round_trip_rule = "round-trip";

bool is_in(const std::vector<std::string>& names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

// What the linter is asked: it knows its own rules alone, and of none it looks for all.
kit::CheckOptions options_of_linter(kit::CheckOptions options) {
    const auto is_of_devices = [](const std::string& name) { return kit::find_check_rule(name) == nullptr; };
    if (!options.rules.empty()) {
        options.rules.insert(options.rules.end(), trouble_rules.begin(), trouble_rules.end());
    }
    std::erase_if(options.rules, is_of_devices);
    std::erase_if(options.without, is_of_devices);
    return options;
}

void tell_trouble(const kit::Diagnostic& diagnostic) {
    std::string_view message = diagnostic.message;
    if (message.ends_with('.')) message.remove_suffix(1);
    const std::string number = diagnostic.number == 0 ? "" : fmt::format(" (error {})", diagnostic.number);
    complain(fmt::format("{}: {}{}", place_text(diagnostic.place), message, number));
}

bool counts(const CheckOptions& options, const kit::Diagnostic& diagnostic) {
    return options.strict || diagnostic.severity != kit::Severity::note;
}

bool is_in_trouble(const std::string& file, const std::vector<kit::Diagnostic>& found) {
    return std::ranges::any_of(found, [&](const kit::Diagnostic& diagnostic) {
        return is_trouble(diagnostic) && diagnostic.place.file == file;
    });
}

// Of descriptions: their own defaults, as the linter's diagnostics, unless `found` tells that the file
// couldn't be read.
std::vector<kit::Diagnostic> check_defaults(const std::string& file, const std::string& from,
                                            const std::optional<std::string>& content,
                                            const kit::CheckOptions& options,
                                            const std::vector<kit::Diagnostic>& found) {
    std::vector<kit::Diagnostic> diagnostics;
    const SourceOptions source{.file = file, .from = from, .section = options.section, .takes_from = true};
    for (const DefaultFinding& each : findings_of_defaults(source, content)) {
        const kit::Finding& finding = each.finding;
        if (is_in(options.without, finding.rule)) continue;
        if (!options.rules.empty() && !is_in(options.rules, finding.rule)) continue;
        if (is_in_trouble(shown_name(each.file), found)) continue;
        diagnostics.push_back({finding.rule,
                               finding.severity,
                               {shown_name(each.file), each.section, 0, 0},
                               finding.configuration_path,
                               fmt::format("{} = {}: {}", printable(finding.configuration_path),
                                           printable(finding.configured), finding_text(finding)),
                               0});
    }
    return diagnostics;
}

int check_device(const CheckOptions& options) {
    DeviceCheck device = options.device;
    device.files = options.files;
    device.from = options.from;
    device.section = options.check.section;
    device.rules = options.check.rules;
    device.without = options.check.without;
    device.strict = options.strict;
    device.json = options.json;
    return check_on_device(device);
}

int check(CheckOptions options) {
    if (options.list_rules) return list_rules();
    if (options.files.empty()) throw Mistake("FILE is required");
    if (!options.device.device.empty()) {
        if (options.check.round_trip) throw Mistake("--roundtrip doesn't go with --device");
        return check_device(options);
    }
    if (options.device.explain || !options.device.map.empty() || !options.device.owner.empty()) {
        throw Mistake("--map, --owner and --explain go with --device");
    }
    require_rules(options.check.rules);
    require_rules(options.check.without);
    if (!options.from.empty()) options.check.type = format_named(options.from).type;
    if (is_in(options.check.rules, round_trip_rule)) options.check.round_trip = true;
    const kit::CheckOptions linter = options_of_linter(options.check);
    int status = exit_ok;
    Json list = Json::array();
    for (const std::string& file : options.files) {
        std::optional<std::string> content;
        std::vector<kit::Diagnostic> found = check_one(file, linter, content);
        std::ranges::move(check_defaults(file, options.from, content, options.check, found),
                          std::back_inserter(found));
        for (const kit::Diagnostic& diagnostic : found) {
            if (is_trouble(diagnostic)) status = exit_trouble;
            if (status == exit_ok && counts(options, diagnostic)) status = exit_negative;
            if (options.json) {
                list.append(json_of(diagnostic));
            } else if (is_trouble(diagnostic)) {
                tell_trouble(diagnostic);
            } else {
                print_line(diagnostic);
            }
        }
        if (found.empty() && !options.json) fmt::print("{}: no bad lines\n", kit::printable_text(file));
    }
    if (options.json) fmt::print("{}", list.dump());
    return status;
}

constexpr Verb verb = {
    "check", "compare", "list all that is wrong with files",
    R"(Lists what the library reports and what a linter of named rules finds, each with its place, severity and rule, and reads on behind what is wrong. Folders are walked. "pmtool check --rules" lists the rules. The defaults of each device description among them are checked too: whether the device can do them.

With --device it lists what of a configuration isn't possible on a device, with what the device offers instead, and what its description doesn't speak of.

Exit code 0 if nothing is wrong, 1 if something is; notes count with --strict only. 2 if a file can't be read at all.)",
    R"(pmtool check plotter.pia
pmtool check devices/ --without missing-translation --json
pmtool check office.pc2 --device dx4200/  tell what isn't possible on that device)"};

} // namespace

void add_check(Commands& commands) {
    const auto options = std::make_shared<CheckOptions>();
    VerbLine line = commands.add(verb, [options] { return check(*options); });
    line.optional_arguments("FILE", options->files, "Files and folders; \"-\" is standard input");
    line.text("--from", options->from, "FORMAT", "Format of the files, if the content doesn't tell it");
    line.text("--section", options->check.section, "NAME", "One section, by name or number").not_empty();
    line.texts("--rule", options->check.rules, "RULE", "This rule only; may be repeated");
    line.texts("--without", options->check.without, "RULE", "Not this rule; may be repeated");
    line.flag("--strict", options->strict, "Notes count too");
    line.flag("--roundtrip", options->check.round_trip,
              "Load, save, load again and compare: rule round-trip");
    line.flag("--rules", options->list_rules, "List the rules");
    line.text("--device", options->device.device, "DESCRIPTION",
              "Hold FILE against this description of a device");
    line.text("--map", options->device.map, "MAP", "JSON that tells where a configuration keeps what");
    line.text("--owner", options->device.owner, "NUMBER",
              "Who made the configuration: what others own is a warning");
    line.flag("--keep-going", options->device.keep_going,
              "With --device: take what can be read of a damaged file, and list what was dropped");
    line.flag("--explain", options->device.explain, "Show which rule looked where");
    line.flag("--json", options->json, "An array of diagnostics, or of findings by file");
}

} // namespace pmtool
