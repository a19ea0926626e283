#include "devices/rules.h"
#include "devices/setting_owners.h"
#include "devices/value_words.h"
#include <map>

namespace pm::kit::devices {

namespace {

// --- the model

struct Identity {
    std::string_view setting;
    std::string_view canonical;
    std::string_view localized; // may be empty
    std::string_view what;
};
constexpr std::array<Identity, 3> identities{{
    {"family", "\\meta\\canonical_family_name", "\\meta\\localized_family_name", "family"},
    {"model", "\\meta\\canonical_model_name", "\\meta\\localized_model_name", "model"},
    {"driver_version", "\\meta\\driver_version", "", "version of its driver"},
}};

// --- custom capabilities

// The types of values by `\data_type`: a text, an integer, a number, a truth value, bytes.
constexpr std::array<PropType, 5> custom_types{PROP_STRING, PROP_LONG, PROP_DOUBLE, PROP_BOOL, PROP_VOID};

bool has_custom_type(const CustomCapability& custom, const Value& value) {
    if (custom.type < 0 || static_cast<std::size_t>(custom.type) >= custom_types.size()) return true;
    const PropType wanted = custom_types[static_cast<std::size_t>(custom.type)];
    return type_of(value) == wanted || (wanted == PROP_DOUBLE && type_of(value) == PROP_LONG);
}

bool is_same_value(const Value& left, const Value& right) {
    const auto first = type_of(left) == PROP_BOOL ? std::nullopt : number_of(left);
    const auto second = type_of(right) == PROP_BOOL ? std::nullopt : number_of(right);
    return first && second ? is_same(*first, *second, precision_of(left, right)) : left == right;
}

std::vector<Offer> custom_values(const CustomCapability& custom) {
    std::vector<Offer> offers;
    for (const Value& value : custom.values) {
        offers.push_back({value_text(value), {}, custom.path + "\\value_list"});
        if (offers.size() == most_offers) break;
    }
    return offers;
}

void check_custom_value(Checker& check, Setting& setting, const CustomCapability& custom) {
    if (!has_custom_type(custom, setting.value)) {
        return check.fail(setting, {.description_path = custom.path + "\\data_type",
                                    .described = std::to_string(custom.type),
                                    .offers = custom_values(custom),
                                    .message = called(custom) + " has values of another type."});
    }
    if (custom.is_range) {
        return check_range(check, setting, custom.range, custom.path + "\\range_min",
                           custom.path + "\\range_max", called(custom));
    }
    const auto is_asked = [&](const Value& value) { return is_same_value(value, setting.value); };
    if (custom.values.empty() || std::ranges::any_of(custom.values, is_asked)) {
        return check.pass(setting, custom.path + "\\value_list");
    }
    check.fail(setting, {.description_path = custom.path + "\\value_list",
                         .offers = custom_values(custom),
                         .message = called(custom) + " has no value " + quoted(setting.text) + '.'});
}

} // namespace

void check_model(Checker& check) {
    for (const Identity& identity : identities) {
        const std::string path = check.device.path(identity.canonical);
        const std::string canonical = check.device.text(identity.canonical);
        const std::string localized =
            identity.localized.empty() ? std::string() : check.device.text(identity.localized);
        for (Setting& setting : check.settings.all(identity.setting)) {
            if (canonical.empty() && localized.empty()) {
                check.silent(setting, path, identity.what);
            } else if (setting.text == canonical || (!localized.empty() && setting.text == localized)) {
                check.pass(setting, path);
            } else {
                check.fail(setting, {.description_path = path,
                                     .described = canonical,
                                     .offers = {canonical.empty() ? Offer{localized, {}, path}
                                                                  : Offer{canonical, localized, path}},
                                     .message = "The configuration is made for another " +
                                                std::string(identity.what) + '.'});
            }
        }
    }
}

void check_custom(Checker& check) {
    const std::string list = check.device.path("\\custom_name");
    for (Setting& setting : check.settings.all("custom")) {
        const std::string name = description_name(setting.key);
        if (check.device.custom.empty()) {
            check.silent(setting, list, "custom capabilities");
        } else if (const CustomCapability* custom = check.device.custom.find(name)) {
            check_custom_value(check, setting, *custom);
        } else {
            check.fail(setting, {.description_path = list,
                                 .offers = nearest(check.device.custom, name),
                                 .message = "The device has no custom capability " + quoted(name) + '.'});
        }
    }
}

// One answer for all that is configured of what one digit owns, at the first of it.
void check_owners(Checker& check) {
    struct Owned {
        Setting* first;
        std::size_t more;
    };
    std::map<std::pair<std::string, int>, Owned> owned;
    for (auto& [name, list] : check.settings.by_name()) {
        for (Setting& setting : list) {
            auto [text, digit] = owner_of(setting);
            if (text.empty()) continue;
            const auto [known, is_new] = owned.try_emplace({std::string(text), digit}, Owned{&setting, 0});
            if (!is_new) ++known->second.more;
        }
    }
    for (const auto& [place, found] : owned) {
        const auto& [text, digit] = place;
        const std::string owners = check.device.text(text);
        if (digit < 0 || static_cast<std::size_t>(digit) >= owners.size()) continue;
        const int owner = owners[static_cast<std::size_t>(digit)] - '0';
        const std::string path = check.device.path(text);
        if (owner == check.options.owner.value_or(0)) {
            check.pass(*found.first, path);
            continue;
        }
        const std::string more =
            found.more == 0 ? "" : ", and " + std::to_string(found.more) + " more like it";
        check.fail(*found.first,
                   {.description_path = path,
                    .described = owners,
                    .message = "Owner " + std::to_string(owner) + " has this setting" + more + '.',
                    .severity = check.options.owner ? Severity::warning : Severity::note});
    }
}

// Last of all but the owners: what no rule looked at, and what the map doesn't know.
void check_unspoken(Checker& check) {
    for (Finding& finding : check.unspoken) {
        check.findings.push_back(std::move(finding));
    }
    check.unspoken.clear();
    for (auto& [name, list] : check.settings.by_name()) {
        for (Setting& setting : list) {
            if (!setting.was_looked_at) check.pass_over(setting);
        }
    }
    for (const UnknownProperty& property : check.settings.unknown()) {
        check.pass_over(property);
    }
}

} // namespace pm::kit::devices
