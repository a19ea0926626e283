#include "devices/settings.h"
#include "devices/path_pattern.h"
#include "devices/value_words.h"
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <pm/exception.h>

namespace pm::kit::devices {

namespace {

constexpr double millimetres_an_inch = 25.4;

bool begins_with(std::string_view text, std::string_view word) {
    return text.size() >= word.size() &&
           std::ranges::equal(text.substr(0, word.size()), word, {}, [](char c) {
               return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
           });
}

struct Word {
    SettingForm form;
    std::string_view begin;
    double number;
};
constexpr Word words[] = {
    {SettingForm::yes_no, "y", 1},
    {SettingForm::yes_no, "n", 0},
    {SettingForm::orientation, "landscape", 1},
    {SettingForm::orientation, "portrait", 0},
    {SettingForm::colour, "colo", 1},
    {SettingForm::colour, "mono", 0},
    {SettingForm::unit, "m", 1},
    {SettingForm::unit, "i", 0},
};

std::optional<double> number_by_form(const Value& value, SettingForm form) {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) {
        auto number = number_of(value);
        if (number && std::isnan(*number)) return std::nullopt; // compares with nothing
        const bool is_truth = form == SettingForm::yes_no || form == SettingForm::orientation ||
                              form == SettingForm::colour || form == SettingForm::unit;
        if (number && is_truth) number = *number != 0 ? 1 : 0;
        return number;
    }
    for (const Word& word : words) {
        if (word.form == form && begins_with(*text, word.begin)) return word.number;
    }
    return std::nullopt;
}

std::optional<double> number_of_setting(const Value& value, const SettingPath& row) {
    const auto number = number_by_form(value, row.form);
    if (row.codes.empty()) return number;
    const auto integer = integer_of(number);
    const auto code = integer ? row.codes.find(*integer) : row.codes.end();
    return code != row.codes.end() ? std::optional<double>(code->second) : std::nullopt;
}

// With the fewest decimals that come back as the length.
std::string inches_text(double millimetres) {
    constexpr double most_scale = 1e12;
    const double inches = millimetres / millimetres_an_inch;
    for (double scale = 1; scale <= most_scale; scale *= 10) {
        const double rounded = std::round(inches * scale) / scale;
        if (is_same(rounded * millimetres_an_inch, millimetres)) return fmt::format("{}", rounded);
    }
    return fmt::format("{}", inches);
}

bool is_set(const Value& value, const SettingPath& row) {
    if (type_of(value) == PROP_NONE) return false;
    if (!row.zero_is_unset) return true;
    if (const auto* text = std::get_if<std::string>(&value)) return !text->empty();
    return number_of(value) != 0.0;
}

// A value that can't be read at all is none.
Value value_of(const Property& property) {
    try {
        return property.value();
    } catch (const ZT_Exception&) {
        return {};
    }
}

} // namespace

// The rows of a map by the number of their components: what can't match isn't tried.
template<class Row>
class Settings::Rows {
public:
    template<class Wanted>
    Rows(const std::vector<Row>& rows, Wanted wanted) {
        for (const Row& row : rows) {
            if (!wanted(row)) continue;
            PathPattern pattern(row.path, row.any_case);
            const std::size_t depth = pattern.depth();
            if (m_by_depth.size() <= depth) m_by_depth.resize(depth + 1);
            m_by_depth[depth].emplace_back(&row, std::move(pattern));
        }
    }

    // each(row, key) for all rows that match.
    template<class Each>
    void match(const std::vector<std::string>& components, Each each) const {
        if (components.size() >= m_by_depth.size()) return;
        for (const auto& [row, pattern] : m_by_depth[components.size()]) {
            if (const auto key = pattern.match(components)) each(*row, *key);
        }
    }

private:
    std::vector<std::vector<std::pair<const Row*, PathPattern>>> m_by_depth;
};

std::string Setting::as_name() const {
    return row != nullptr && row->form == SettingForm::name ? description_name(text) : text;
}

std::string Setting::in_unit(double described) const {
    return is_in_inches ? inches_text(described) : number_text(described);
}

std::string Setting::in_unit(double x, double y) const {
    return in_unit(x) + " x " + in_unit(y);
}

std::string Setting::said(double described) const {
    const std::string number_said = in_unit(described);
    return is_in_inches ? number_said + (number_said == "1" ? " inch" : " inches") : number_said;
}

std::string Setting::said(double x, double y) const {
    return in_unit(x, y) + (is_in_inches ? " inches" : "");
}

std::optional<int> Setting::code_of(int described) const {
    if (row == nullptr || row->codes.empty()) return described;
    const auto found = std::ranges::find(row->codes, described, [](const auto& code) { return code.second; });
    return found == row->codes.end() ? std::nullopt : std::optional<int>(found->first);
}

Settings::Settings(Node node, std::string_view base, const CompatibilityMap& map, bool defaults_only) {
    const Rows<SettingPath> rows(map.settings,
                                 [&](const SettingPath& row) { return row.is_default || !defaults_only; });
    const Rows<QuietPath> quiet(map.quiet, [](const QuietPath&) { return true; });
    std::vector<std::string> components;
    std::string below;
    for (const auto& [current, depth] : node.walk()) {
        if (depth != 0) {
            components.resize(static_cast<std::size_t>(depth) - 1);
            components.push_back(current.name());
        }
        below = base;
        for (const std::string& component : components) {
            below += '\\' + component;
        }
        for (const Property property : current.properties()) {
            components.push_back(property.name());
            read(property, below + '\\' + components.back(), components, rows,
                 defaults_only ? nullptr : &quiet);
            components.pop_back();
        }
    }
    apply_unit();
}

void Settings::read(const Property& property, std::string path, const std::vector<std::string>& components,
                    const Rows<SettingPath>& rows, const Rows<QuietPath>* quiet) {
    bool is_known = false;
    std::optional<Value> value;
    std::vector<std::string_view> seen;
    rows.match(components, [&](const SettingPath& row, const std::string& match) {
        is_known = true;
        if (std::ranges::find(seen, row.setting) != seen.end()) return;
        seen.push_back(row.setting);
        if (!value) value = value_of(property);
        if (!is_set(*value, row)) return;
        const std::string& key = row.key.empty() ? match : row.key;
        auto& list = m_settings[row.setting];
        m_by_key[row.setting].try_emplace(key, list.size());
        list.push_back(
            {&row, row.setting, key, path, *value, value_text(*value), number_of_setting(*value, row)});
    });
    if (is_known || quiet == nullptr) return;
    std::string text = value_text(value_of(property));
    std::optional<bool> is_quiet; // the first path that matches counts
    quiet->match(components, [&](const QuietPath& row, const std::string&) {
        if (!is_quiet) {
            is_quiet = row.values.empty() || std::ranges::find(row.values, text) != row.values.end();
        }
    });
    if (!is_quiet.value_or(false)) m_unknown.push_back({std::move(path), std::move(text)});
}

// Lengths are millimetres; where the setting `metric` says no, they are inches.
void Settings::apply_unit() {
    auto& metric = all("metric");
    if (metric.empty()) return;
    for (Setting& setting : metric) {
        setting.was_looked_at = setting.number.has_value();
    }
    if (metric.front().number != 0.0) return;
    for (auto& [name, list] : m_settings) {
        for (Setting& setting : list) {
            if (setting.row->form == SettingForm::length && setting.number) {
                *setting.number *= millimetres_an_inch;
                setting.is_in_inches = true;
            }
        }
    }
}

std::vector<Setting>& Settings::all(std::string_view name) {
    const auto found = m_settings.find(name);
    return found != m_settings.end() ? found->second : m_settings[std::string(name)];
}

Setting* Settings::find(std::string_view name, std::string_view key) {
    const auto keys = m_by_key.find(name);
    if (keys == m_by_key.end()) return nullptr;
    const auto found = keys->second.find(std::string(key));
    return found == keys->second.end() ? nullptr : &all(name)[found->second];
}

} // namespace pm::kit::devices
