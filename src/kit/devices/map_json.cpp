#include "devices/json_tree.h"
#include "devices/path_pattern.h"
#include <algorithm>
#include <array>
#include <pm/kit/compatibility.h>
#include <pm/kit/error.h>

namespace pm::kit {

namespace {

constexpr std::array<std::string_view, 7> form_names{"as-is",       "name",   "length", "yes-no",
                                                     "orientation", "colour", "unit"};
constexpr std::array<std::string_view, 5> test_names{"one-of", "at-most", "at-least", "equal", "bits-of"};
constexpr std::array<std::string_view, 3> severities{"note", "warning", "error"};
constexpr int most_digit = 255;

template<class Enum, std::size_t count>
Enum one_of_names(const std::array<std::string_view, count>& names, const std::string& text,
                  std::string_view what) {
    const auto found = std::ranges::find(names, text);
    if (found == names.end()) throw Error("There is no " + std::string(what) + " \"" + text + "\".");
    return static_cast<Enum>(found - names.begin());
}

// One object of the map: what of it is read is taken off its members, and none may be left.
class Members {
public:
    Members(const JsonTree& json, std::string_view what)
        : m_what(what), m_members(json.as<JsonTree::Object>()) {
        if (m_members == nullptr) throw Error(m_what + " is no object.");
    }

    // Null if there is no such member.
    const JsonTree* member(std::string_view name) {
        m_known.push_back(name);
        const auto found = std::ranges::find(*m_members, name, &JsonTree::Object::value_type::first);
        return found == m_members->end() ? nullptr : &found->second;
    }
    std::string text(std::string_view name, bool is_needed = false) {
        const JsonTree* const found = member(name);
        if (found == nullptr && !is_needed) return {};
        const auto* const text = found != nullptr ? found->as<std::string>() : nullptr;
        if (text == nullptr || (is_needed && text->empty())) {
            throw Error(m_what + " has no text \"" + std::string(name) + "\".");
        }
        return *text;
    }
    bool truth(std::string_view name) {
        const bool* const truth = of_kind<bool>(name, "a truth value");
        return truth != nullptr && *truth;
    }
    const JsonTree::List* list(std::string_view name) { return of_kind<JsonTree::List>(name, "a list"); }
    const JsonTree::Object* object(std::string_view name) {
        return of_kind<JsonTree::Object>(name, "an object");
    }
    void expect_no_more() const {
        for (const auto& [name, value] : *m_members) {
            if (std::ranges::find(m_known, name) == m_known.end()) {
                throw Error(m_what + " has no member \"" + name + "\".");
            }
        }
    }

private:
    // Null if there is no such member.
    template<class Kind>
    const Kind* of_kind(std::string_view name, std::string_view wanted) {
        const JsonTree* const found = member(name);
        if (found == nullptr) return nullptr;
        const Kind* const value = found->as<Kind>();
        if (value == nullptr) {
            throw Error("\"" + std::string(name) + "\" of " + m_what + " is not " + std::string(wanted) +
                        '.');
        }
        return value;
    }

    std::string m_what;
    const JsonTree::Object* m_members;
    std::vector<std::string_view> m_known;
};

std::int32_t code_of(const JsonTree& json) {
    const auto* const number = json.as<std::int64_t>();
    if (number != nullptr && std::in_range<std::int32_t>(*number)) return static_cast<std::int32_t>(*number);
    throw Error("A code is no integer of 32 bits.");
}

std::int32_t code_of(std::string_view text) {
    return code_of(parse_json(text).value_or(JsonTree()));
}

// The path of a property, in which a star stands once a component.
std::string path_in(Members& members, std::string_view name) {
    std::string path = members.text(name, true);
    const auto components = devices::split_path(path);
    if (components.empty()) throw Error("The path \"" + path + "\" names nothing.");
    if (std::ranges::any_of(components, [](const std::string& component) {
            return component.find('*') != component.rfind('*');
        })) {
        throw Error("A name of the path \"" + path + "\" has two \"*\".");
    }
    return path;
}

SettingPath read_setting(const JsonTree& json) {
    Members members(json, "A setting");
    SettingPath path;
    path.setting = members.text("setting", true);
    path.path = path_in(members, "path");
    path.key = members.text("key");
    const std::string form = members.text("form");
    if (!form.empty()) path.form = one_of_names<SettingForm>(form_names, form, "form");
    if (const JsonTree::Object* const codes = members.object("codes")) {
        for (const auto& [number, code] : *codes) {
            path.codes[code_of(number)] = code_of(code);
        }
    }
    path.zero_is_unset = members.truth("zero-is-unset");
    path.any_case = members.truth("any-case");
    path.is_default = members.truth("default");
    if (members.object("owner") != nullptr) {
        Members parts(*members.member("owner"), "An owner");
        path.owner = path_in(parts, "path");
        const JsonTree* const digit = parts.member("digit");
        path.owner_digit = digit != nullptr ? code_of(*digit) : -1;
        if (path.owner_digit < 0 || path.owner_digit > most_digit) {
            throw Error("An owner has no digit from 0 to 255.");
        }
        parts.expect_no_more();
    }
    members.expect_no_more();
    return path;
}

QuietPath read_quiet(const JsonTree& json) {
    Members members(json, "A quiet path");
    QuietPath quiet;
    quiet.path = path_in(members, "path");
    if (const JsonTree::List* const values = members.list("values")) {
        for (const JsonTree& value : *values) {
            const auto* const text = value.as<std::string>();
            if (text == nullptr) throw Error("A quiet value is no text.");
            quiet.values.push_back(*text);
        }
    }
    quiet.any_case = members.truth("any-case");
    members.expect_no_more();
    return quiet;
}

ValueRule read_rule(const JsonTree& json) {
    Members members(json, "A rule");
    ValueRule rule;
    rule.name = members.text("rule", true);
    if (std::ranges::any_of(compatibility_rules(),
                            [&](const CompatibilityRule& known) { return known.name == rule.name; })) {
        throw Error("There is a built-in rule \"" + rule.name + "\".");
    }
    const std::string severity = members.text("severity");
    if (!severity.empty()) rule.severity = one_of_names<Severity>(severities, severity, "severity");
    rule.setting = members.text("setting", true);
    rule.test = one_of_names<ValueTest>(test_names, members.text("test", true), "test");
    rule.capability = path_in(members, "capability");
    members.expect_no_more();
    return rule;
}

template<class Item>
void read_list(std::vector<Item>& into, const JsonTree::List* list, Item (*read)(const JsonTree&)) {
    if (list == nullptr) return;
    std::vector<Item> items;
    for (const JsonTree& json : *list) {
        items.push_back(read(json));
    }
    into.insert(into.begin(), std::make_move_iterator(items.begin()), std::make_move_iterator(items.end()));
}

JsonTree parse_map(std::string_view text) {
    std::size_t read = 0;
    std::optional<JsonTree> json = parse_json(text, &read);
    if (json) return std::move(*json);
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(read, text.size()));
    throw Error("The map is no JSON.", 1 + static_cast<std::uint64_t>(std::count(text.begin(), end, '\n')));
}

template<class Item>
void write_list(JsonLines& out, std::string_view name, const std::vector<Item>& items);

void write(JsonLines& out, const SettingPath& path) {
    out.member("setting", path.setting);
    out.member("path", path.path);
    if (!path.key.empty()) out.member("key", path.key);
    if (path.form != SettingForm::as_is) out.member("form", form_names[static_cast<std::size_t>(path.form)]);
    if (!path.codes.empty()) {
        out.open_member("codes", '{');
        for (const auto& [number, code] : path.codes) {
            out.member(std::to_string(number), code);
        }
        out.close('}');
    }
    if (path.zero_is_unset) out.member("zero-is-unset", true);
    if (path.any_case) out.member("any-case", true);
    if (path.is_default) out.member("default", true);
    if (!path.owner.empty()) {
        out.open_member("owner", '{');
        out.member("path", path.owner);
        out.member("digit", path.owner_digit);
        out.close('}');
    }
}

void write(JsonLines& out, const ValueRule& rule) {
    out.member("rule", rule.name);
    out.member("severity", severity_name(rule.severity));
    out.member("setting", rule.setting);
    out.member("test", test_names[static_cast<std::size_t>(rule.test)]);
    out.member("capability", rule.capability);
}

void write(JsonLines& out, const QuietPath& quiet) {
    out.member("path", quiet.path);
    if (!quiet.values.empty()) {
        out.open_member("values", '[');
        for (const std::string& value : quiet.values) {
            out.value(value);
        }
        out.close(']');
    }
    if (quiet.any_case) out.member("any-case", true);
}

void write(JsonLines& out, const Offer& offer) {
    out.member("value", offer.value);
    out.member("text", offer.text);
    out.member("path", offer.path);
}

void write(JsonLines& out, const Finding& finding) {
    out.member("rule", finding.rule);
    out.member("severity", severity_name(finding.severity));
    out.member("configuration_path", finding.configuration_path);
    out.member("description_path", finding.description_path);
    out.member("configured", finding.configured);
    out.member("described", finding.described);
    out.member("text", finding.text);
    write_list(out, "offers", finding.offers);
    out.member("message", finding.message);
}

void write(JsonLines& out, const Look& look) {
    out.member("rule", look.rule);
    out.member("setting", look.setting);
    out.member("configuration_path", look.configuration_path);
    out.member("description_path", look.description_path);
    out.member("outcome", look.outcome);
}

template<class Item>
void write_list(JsonLines& out, std::string_view name, const std::vector<Item>& items) {
    out.open_member(name, '[');
    for (const Item& item : items) {
        out.open('{');
        write(out, item);
        out.close('}');
    }
    out.close(']');
}

std::string written(JsonLines& out) {
    out.close('}');
    return out.take() + '\n';
}

} // namespace

CompatibilityMap load_map(std::string_view text) {
    const JsonTree json = parse_map(text);
    Members members(json, "The map");
    CompatibilityMap map;
    if (!members.truth("replace")) map = built_in_map();
    read_list(map.settings, members.list("settings"), read_setting);
    read_list(map.quiet, members.list("quiet"), read_quiet);
    read_list(map.rules, members.list("rules"), read_rule);
    members.expect_no_more();
    return map;
}

std::string map_to_json(const CompatibilityMap& map) {
    JsonLines out;
    out.open('{');
    out.member("replace", true);
    write_list(out, "settings", map.settings);
    write_list(out, "quiet", map.quiet);
    write_list(out, "rules", map.rules);
    return written(out);
}

std::string findings_to_json(const ExplainedFindings& explained) {
    JsonLines out;
    out.open('{');
    write_list(out, "findings", explained.findings);
    if (!explained.looks.empty()) write_list(out, "looks", explained.looks);
    return written(out);
}

} // namespace pm::kit
