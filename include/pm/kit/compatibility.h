#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <pm/kit/diagnostic.h>
#include <pm/kit/export.h>
#include <pm/tree.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Is this configuration possible on this device? A configuration is a tree of choices (a PIA file, a section
// of a DPIA file, a PC2 file, a plotter of a CFG file, a PCP file), a description one of capabilities as
// FILE_PDT makes it, or one that was saved from it.
//
//     for (const pm::kit::Finding& finding : pm::kit::check_compatibility(configuration, description)) {
//         std::cout << finding.configuration_path << ": " << finding.message << '\n';
//     }
//
// No format fixes where a configuration keeps a choice. So a map tells it: which paths hold which setting.
// Rules know settings and capabilities only. docs/compatibility.md lists the rules, the settings and the map.
//
// All texts are UTF-8. Paths of findings are those of the trees as given, base included. Nothing here changes
// a tree or keeps a pointer into one, but reading a tree belongs to its thread, as ever.
namespace pm::kit {

// One thing that the device offers where the configuration asks for something else.
struct Offer {
    std::string value; // as this configuration would name it: "Z_Fold", "600 x 600", "0.05 to 12"
    std::string text; // the description's translated text, or the keyword of a number; empty if there is none
    std::string path; // in the description

    bool operator==(const Offer&) const = default;
};

// One answer of one rule. What passes gives no finding.
struct Finding {
    std::string rule; // of compatibility_rules() or of the map
    Severity severity = Severity::error;
    std::string configuration_path; // of the property that holds the choice
    std::string description_path;   // of the capability looked at, whether it is there or not; may be empty
    std::string configured;         // the value in the configuration
    std::string described;          // the value in the description; empty if there is no single one
    std::string text;               // the description's text of the configured value, if it knows it
    std::vector<Offer> offers; // instead, the nearest first, at most 64; none behind the first 1000 findings
    std::string message;       // one sentence, without the paths

    bool operator==(const Finding&) const = default;
};

// Whether a rule looked at a setting, and where: what `--explain` shows.
struct Look {
    std::string rule;
    std::string setting;
    std::string configuration_path; // of the value; of one that isn't set the paths it would have, by ", "
    std::string description_path;
    std::string outcome; // "passed", "found", "unspoken" or "not set"

    bool operator==(const Look&) const = default;
};

// A rule, as the documents list it.
struct CompatibilityRule {
    std::string_view name;
    std::string_view group; // "media", "finishing", "colour", "pens", "io" or "general"
    Severity severity;      // of most of its findings; docs/compatibility.md tells the others
    std::string_view meaning;
    std::vector<std::string_view> settings;     // that it looks at
    std::vector<std::string_view> capabilities; // paths below the description's node, "*" for any name
};

// --- the map

// How a value of the configuration is to be taken.
enum class SettingForm {
    as_is,       // "as-is"
    name,        // "name": a text whose blanks are "_" in the description
    length,      // "length": millimetres, or inches where the setting `metric` says so
    yes_no,      // "yes-no": a truth value, a number that isn't 0, or a text that begins with "Y" or "N"
    orientation, // "orientation": a truth value, or a text that begins with "landscape" or "portrait"
    colour,      // "colour": a truth value, or a text that begins with "colo" or "mono"
    unit         // "unit": true or "M..." for millimetres, false or "I..." for inches
};

// Where a configuration keeps a setting. `path` is below the configuration's node; a "*" in a component
// stands for any characters, and what it stands for is the setting's key: the pen of
// "\Plotter/Device/WidthTable\Color*". Two of them make a key with "\" between.
struct SettingPath {
    std::string setting;
    std::string path;
    std::string key = {}; // for a path without "*"
    SettingForm form = SettingForm::as_is;
    std::map<std::int32_t, std::int32_t> codes =
        {};                     // numbers of the configuration and those of the description; if any, all
    bool zero_is_unset = false; // 0, false and an empty text say nothing
    bool any_case = false;      // ASCII letters of the path match in any case
    bool is_default = false; // of a description's own default: the only paths that check_description() takes
    std::string owner =
        {}; // the text of owners that has a digit for it, "\media\ui_owner"; empty: the setting's
    std::int32_t owner_digit = -1;

    bool operator==(const SettingPath&) const = default;
};

// Paths that the rule `unspoken` passes over while they hold one of these values, or with whatever value if
// there are none. Values are texts as findings have them. The first path that matches counts.
struct QuietPath {
    std::string path;
    std::vector<std::string> values = {};
    bool any_case = false;

    bool operator==(const QuietPath&) const = default;
};

// A rule that needs no code.
enum class ValueTest {
    one_of,   // "one-of": a property that matches `capability` has the value
    at_most,  // "at-most": the number isn't above that of the first such property
    at_least, // "at-least": nor below it
    equal,    // "equal": the value is that of the first such property
    bits_of   // "bits-of": all bits of the number are set in it
};

struct ValueRule {
    std::string name;
    Severity severity = Severity::error;
    std::string setting;
    ValueTest test = ValueTest::one_of;
    std::string capability; // below the description's node; may hold "*"

    bool operator==(const ValueRule&) const = default;
};

struct CompatibilityMap {
    std::vector<SettingPath> settings;
    std::vector<QuietPath> quiet;
    std::vector<ValueRule> rules; // beside those of compatibility_rules(), under names of their own

    bool operator==(const CompatibilityMap&) const = default;
};

// For what the PC2, CFG and PCP readers make, and for configurations laid out like a description.
[[nodiscard]] PM_KIT_API const CompatibilityMap& built_in_map();

// A map from JSON, added to the built-in one, or in place of it with `"replace": true`; its own paths come
// first. Throws kit::Error, with the line where it is known, for what isn't JSON, for a member that isn't
// known or is of another type, for an unknown form, test or severity, for an empty name, and for a path that
// names nothing or has two "*" in one component.
//
//     {"settings": [{"setting": "size", "path": "\\plot\\paper", "form": "name"}],
//      "quiet": [{"path": "\\calibration\\*"}],
//      "rules": [{"rule": "site-type", "setting": "type", "test": "one-of", "capability":
//      "\\media\\type\\*\\name"}]}
[[nodiscard]] PM_KIT_API CompatibilityMap load_map(std::string_view json);
// What load_map() reads as that map, with `"replace": true`.
[[nodiscard]] PM_KIT_API std::string map_to_json(const CompatibilityMap& map);

// --- the check

struct CompatibilityOptions {
    // The node of the description; empty: the root or, if that is none, the first node that is one, by its
    // texts of abilities.
    std::string description_base = {};
    std::string configuration_base = "\\";
    // Owner number, 0 to 3, of whoever made the configuration: what another one owns is a warning. Nothing:
    // each setting that isn't owner 0's is a note.
    std::optional<int> owner = {};
    const CompatibilityMap* map = nullptr; // borrowed; null for built_in_map()
};

// Findings in the order of the rules, and within a rule in that of the configuration, setting by setting.
// Throws kit::Error where a base names no node, where there is no description, or for an owner that isn't 0
// to 3; and what reading a damaged tree throws, std::bad_alloc included.
[[nodiscard]] PM_KIT_API std::vector<Finding> check_compatibility(const Tree& configuration,
                                                                  const Tree& description,
                                                                  const CompatibilityOptions& options = {});

// The same rules on the description's own defaults. Nothing is unspoken or owned there.
[[nodiscard]] PM_KIT_API std::vector<Finding> check_description(const Tree& description,
                                                                const CompatibilityOptions& options = {});

struct ExplainedFindings {
    std::vector<Finding> findings;
    std::vector<Look> looks; // in the order of the rules
};

// The findings of both, with which rule looked where.
[[nodiscard]] PM_KIT_API ExplainedFindings explain_compatibility(const Tree& configuration,
                                                                 const Tree& description,
                                                                 const CompatibilityOptions& options = {});
[[nodiscard]] PM_KIT_API ExplainedFindings explain_description(const Tree& description,
                                                               const CompatibilityOptions& options = {});

// Whether a tree, or a node of it, is a description: the path of its node, "\" for the root.
[[nodiscard]] PM_KIT_API std::optional<std::string> find_description(const Tree& tree);

// All built-in rules, in the order of findings.
[[nodiscard]] PM_KIT_API std::span<const CompatibilityRule> compatibility_rules();

// {"findings": [{"rule", "severity", "configuration_path", "description_path", "configured", "described",
// "text", "offers": [{"value", "text", "path"}], "message"}], "looks": [...]}, looks only if there are any.
// Bytes that are no UTF-8, such as an encoded surrogate, become U+FFFD.
[[nodiscard]] PM_KIT_API std::string findings_to_json(const ExplainedFindings& explained);

} // namespace pm::kit
