#include <algorithm>
#include <array>
#include <limits>
#include <nlohmann/json.hpp>
#include <pm/kit/compatibility.h>
#include <pm/kit/error.h>

namespace pm::kit {

namespace {

using Json = nlohmann::ordered_json;

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
    Members(const Json& json, std::string_view what) : m_what(what) {
        if (!json.is_object()) throw Error(m_what + " is no object.");
        m_json = &json;
    }

    // Null if there is no such member.
    const Json* member(std::string_view name) {
        m_known.push_back(name);
        const auto found = m_json->find(std::string(name));
        return found == m_json->end() ? nullptr : &*found;
    }
    std::string text(std::string_view name, bool is_needed = false) {
        const Json* found = member(name);
        if (found == nullptr && !is_needed) return {};
        if (found == nullptr || !found->is_string() ||
            (is_needed && found->get_ref<const std::string&>().empty())) {
            throw Error(m_what + " has no text \"" + std::string(name) + "\".");
        }
        return *found;
    }
    bool truth(std::string_view name) {
        const Json* found = member(name);
        if (found != nullptr && !found->is_boolean()) throw wrong(name, "a truth value");
        return found != nullptr && found->get<bool>();
    }
    const Json* list(std::string_view name) {
        const Json* found = member(name);
        if (found != nullptr && !found->is_array()) throw wrong(name, "a list");
        return found;
    }
    const Json* object(std::string_view name) {
        const Json* found = member(name);
        if (found != nullptr && !found->is_object()) throw wrong(name, "an object");
        return found;
    }
    Error wrong(std::string_view name, std::string_view wanted) const {
        return Error("\"" + std::string(name) + "\" of " + m_what + " is not " + std::string(wanted) + '.');
    }
    void expect_no_more() const {
        for (const auto& [name, value] : m_json->items()) {
            if (std::ranges::find(m_known, name) == m_known.end()) {
                throw Error(m_what + " has no member \"" + name + "\".");
            }
        }
    }

private:
    std::string m_what;
    const Json* m_json = nullptr;
    std::vector<std::string_view> m_known;
};

std::int32_t code_of(const Json& json) {
    if (json.is_number_integer()) {
        const auto number = json.get<std::int64_t>();
        if (number >= std::numeric_limits<std::int32_t>::min() &&
            number <= std::numeric_limits<std::int32_t>::max()) {
            return static_cast<std::int32_t>(number);
        }
    }
    throw Error("A code is no integer of 32 bits.");
}

std::int32_t code_of(const std::string& text) {
    const Json json = Json::parse(text, nullptr, false);
    return code_of(json);
}

SettingPath read_setting(const Json& json) {
    Members members(json, "A setting");
    SettingPath path;
    path.setting = members.text("setting", true);
    path.path = members.text("path", true);
    path.key = members.text("key");
    const std::string form = members.text("form");
    if (!form.empty()) path.form = one_of_names<SettingForm>(form_names, form, "form");
    if (const Json* codes = members.object("codes")) {
        for (const auto& [number, code] : codes->items()) {
            path.codes[code_of(number)] = code_of(code);
        }
    }
    path.zero_is_unset = members.truth("zero-is-unset");
    path.any_case = members.truth("any-case");
    path.is_default = members.truth("default");
    if (const Json* owner = members.object("owner")) {
        Members parts(*owner, "An owner");
        path.owner = parts.text("path", true);
        const Json* digit = parts.member("digit");
        path.owner_digit = digit != nullptr ? code_of(*digit) : -1;
        if (path.owner_digit < 0 || path.owner_digit > most_digit) {
            throw Error("An owner has no digit from 0 to 255.");
        }
        parts.expect_no_more();
    }
    members.expect_no_more();
    return path;
}

QuietPath read_quiet(const Json& json) {
    Members members(json, "A quiet path");
    QuietPath quiet;
    quiet.path = members.text("path", true);
    if (const Json* values = members.list("values")) {
        for (const Json& value : *values) {
            if (!value.is_string()) throw Error("A quiet value is no text.");
            quiet.values.push_back(value);
        }
    }
    quiet.any_case = members.truth("any-case");
    members.expect_no_more();
    return quiet;
}

ValueRule read_rule(const Json& json) {
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
    rule.capability = members.text("capability", true);
    members.expect_no_more();
    return rule;
}

template<class Item>
void read_list(std::vector<Item>& into, const Json* list, Item (*read)(const Json&)) {
    if (list == nullptr) return;
    std::vector<Item> items;
    for (const Json& json : *list) {
        items.push_back(read(json));
    }
    into.insert(into.begin(), std::make_move_iterator(items.begin()), std::make_move_iterator(items.end()));
}

Json parse(std::string_view text) {
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        const auto end = text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
        throw Error("The map is no JSON.",
                    1 + static_cast<std::uint64_t>(std::count(text.begin(), end, '\n')));
    }
}

Json setting_json(const SettingPath& path) {
    Json json{{"setting", path.setting}, {"path", path.path}};
    if (!path.key.empty()) json["key"] = path.key;
    if (path.form != SettingForm::as_is) json["form"] = form_names[static_cast<std::size_t>(path.form)];
    for (const auto& [number, code] : path.codes) {
        json["codes"][std::to_string(number)] = code;
    }
    if (path.zero_is_unset) json["zero-is-unset"] = true;
    if (path.any_case) json["any-case"] = true;
    if (path.is_default) json["default"] = true;
    if (!path.owner.empty()) json["owner"] = {{"path", path.owner}, {"digit", path.owner_digit}};
    return json;
}

Json rule_json(const ValueRule& rule) {
    return {{"rule", rule.name},
            {"severity", severity_name(rule.severity)},
            {"setting", rule.setting},
            {"test", test_names[static_cast<std::size_t>(rule.test)]},
            {"capability", rule.capability}};
}

Json quiet_json(const QuietPath& quiet) {
    Json json{{"path", quiet.path}};
    if (!quiet.values.empty()) json["values"] = quiet.values;
    if (quiet.any_case) json["any-case"] = true;
    return json;
}

Json offers_json(const std::vector<Offer>& offers) {
    Json list = Json::array();
    for (const Offer& offer : offers) {
        list.push_back({{"value", offer.value}, {"text", offer.text}, {"path", offer.path}});
    }
    return list;
}

Json finding_json(const Finding& finding) {
    return {{"rule", finding.rule},
            {"severity", severity_name(finding.severity)},
            {"configuration_path", finding.configuration_path},
            {"description_path", finding.description_path},
            {"configured", finding.configured},
            {"described", finding.described},
            {"text", finding.text},
            {"offers", offers_json(finding.offers)},
            {"message", finding.message}};
}

Json look_json(const Look& look) {
    return {{"rule", look.rule},
            {"setting", look.setting},
            {"configuration_path", look.configuration_path},
            {"description_path", look.description_path},
            {"outcome", look.outcome}};
}

std::string written(const Json& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace

CompatibilityMap load_map(std::string_view text) {
    const Json json = parse(text);
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
    Json json{
        {"replace", true}, {"settings", Json::array()}, {"quiet", Json::array()}, {"rules", Json::array()}};
    for (const SettingPath& path : map.settings) {
        json["settings"].push_back(setting_json(path));
    }
    for (const QuietPath& quiet : map.quiet) {
        json["quiet"].push_back(quiet_json(quiet));
    }
    for (const ValueRule& rule : map.rules) {
        json["rules"].push_back(rule_json(rule));
    }
    return written(json);
}

std::string findings_to_json(const ExplainedFindings& explained) {
    Json json{{"findings", Json::array()}};
    for (const Finding& finding : explained.findings) {
        json["findings"].push_back(finding_json(finding));
    }
    for (const Look& look : explained.looks) {
        json["looks"].push_back(look_json(look));
    }
    return written(json);
}

} // namespace pm::kit
