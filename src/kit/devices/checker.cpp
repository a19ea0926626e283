#include "devices/checker.h"
#include "devices/value_words.h"
#include <cmath>

namespace pm::kit::devices {

namespace {

constexpr int most_bits = 31;
constexpr std::string_view nothing_speaks = "Nothing in the description speaks of it.";

char lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string range_text(const Setting& setting, const Range& range) {
    if (!range.least) return "up to " + setting.in_unit(*range.most);
    if (!range.most) return "from " + setting.in_unit(*range.least);
    return setting.in_unit(*range.least) + " to " + setting.in_unit(*range.most);
}

} // namespace

void Checker::look(Setting& setting, const std::string& description_path, std::string_view outcome) {
    setting.was_looked_at = true;
    looks.push_back(
        {std::string(m_rule), setting.name, setting.path, description_path, std::string(outcome)});
}

void Checker::pass(Setting& setting, const std::string& description_path) {
    look(setting, description_path, "passed");
}

void Checker::fail(Setting& setting, Fault fault) {
    look(setting, fault.description_path, "found");
    const std::size_t most = findings.size() < most_findings_with_offers ? most_offers : 0;
    if (fault.offers.size() > most) fault.offers.resize(most);
    findings.push_back({std::string(m_rule), fault.severity.value_or(m_severity), setting.path,
                        std::move(fault.description_path), setting.text, std::move(fault.described),
                        std::move(fault.text), std::move(fault.offers), std::move(fault.message)});
}

void Checker::follow(Setting& setting) {
    const Look last = looks.back();
    look(setting, last.description_path, last.outcome);
}

void Checker::silent(Setting& setting, std::string description_path, std::string_view what) {
    look(setting, description_path, "unspoken");
    unspoken.push_back({"unspoken",
                        Severity::warning,
                        setting.path,
                        std::move(description_path),
                        setting.text,
                        {},
                        {},
                        {},
                        "The description tells no " + std::string(what) + '.'});
}

void Checker::without_choice(Setting& setting, std::string_view choice, std::string_view default_path,
                             std::string_view what) {
    const Setting* const made = chosen(choice, default_path);
    if (made == nullptr) return silent(setting, device.path(default_path), "default " + std::string(what));
    if (!made->is_default()) return leave(setting);
    silent(setting, device.path(default_path),
           std::string(what) + ' ' + quoted(made->as_name()) + ", which is its default");
}

void Checker::unreadable(Setting& setting, std::string_view wanted) {
    look(setting, {}, "unspoken");
    if (setting.row != nullptr && !setting.row->codes.empty()) wanted = "code that the map knows";
    unspoken.push_back({"unspoken",
                        Severity::warning,
                        setting.path,
                        {},
                        setting.text,
                        {},
                        {},
                        {},
                        "The value is no " + std::string(wanted) + ", so that it can't be compared."});
}

void Checker::pass_over(Setting& setting) {
    look(setting, {}, "unspoken");
    findings.push_back({std::string(m_rule),
                        m_severity,
                        setting.path,
                        {},
                        setting.text,
                        {},
                        {},
                        {},
                        std::string(nothing_speaks)});
}

void Checker::pass_over(const UnknownProperty& property) {
    looks.push_back({std::string(m_rule), {}, property.path, {}, "unspoken"});
    findings.push_back({std::string(m_rule),
                        m_severity,
                        property.path,
                        {},
                        property.text,
                        {},
                        {},
                        {},
                        std::string(nothing_speaks)});
}

Setting* Checker::chosen(std::string_view name, std::string_view default_path) {
    if (Setting* setting = settings.find(name, {})) return setting;
    auto known = m_defaults.find(std::string(name));
    if (known != m_defaults.end()) return &known->second;
    const auto value = device.value(default_path);
    if (!value || value_text(*value).empty()) return nullptr;
    return &m_defaults
                .try_emplace(std::string(name), Setting{nullptr,
                                                        std::string(name),
                                                        {},
                                                        device.path(default_path),
                                                        *value,
                                                        value_text(*value),
                                                        number_of(*value),
                                                        true})
                .first->second;
}

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

std::string called(const Named& item) {
    return item.text.empty() ? quoted(item.name) : quoted(item.name) + " (" + item.text + ')';
}

std::string by_default(bool is_default, Goes sentence) {
    if (!is_default) return {};
    return sentence == Goes::on ? ", the device's default," : ", the device's default";
}

std::string by_default(const Setting& setting) {
    return by_default(setting.is_default());
}

std::size_t common_begin(std::string_view left, std::string_view right) noexcept {
    std::size_t count = 0;
    while (count < left.size() && count < right.size() && lower(left[count]) == lower(right[count])) {
        ++count;
    }
    return count;
}

void check_range(Checker& check, Setting& setting, const Range& range, const std::string& least_path,
                 const std::string& most_path, std::string_view what, std::string_view of_what) {
    if (!range.least && !range.most) return check.silent(setting, most_path, "limits of it");
    if (!setting.number) return check.unreadable(setting, "number");
    const double number = *setting.number;
    const bool is_integer = range.is_integer && type_of(setting.value) == PROP_LONG;
    const Precision precision = is_integer ? Precision::exact : Precision::rounded;
    const bool is_above_most = range.most && is_above(number, *range.most, precision);
    const bool is_below_least = range.least && is_above(*range.least, number, precision);
    const std::string path = is_below_least || !range.most ? least_path : most_path;
    if (!is_above_most && !is_below_least) return check.pass(setting, path);
    const double limit = is_below_least || !range.most ? *range.least : *range.most;
    check.fail(setting, {.description_path = path,
                         .described = number_text(limit),
                         .offers = {{range_text(setting, range), {}, path}},
                         .message = std::string(what) + ", " + setting.said(number) + ", is " +
                                    (is_below_least ? "below the least, " : "above the most, ") +
                                    setting.said(limit) + std::string(of_what) + '.'});
}

void check_count(Checker& check, Setting& setting, const Range& range, const std::string& path,
                 const std::string& described, std::string_view what) {
    const bool is_whole = !setting.number || std::trunc(*setting.number) == *setting.number;
    if (!is_whole) {
        return check.fail(
            setting, {.description_path = path,
                      .described = described,
                      .offers = {{range_text(setting, range), {}, path}},
                      .message = std::string(what) + ", " + number_text(*setting.number) + ", isn't whole."});
    }
    const std::size_t before = check.findings.size();
    check_range(check, setting, {range.least, range.most, true}, path, path, what);
    if (check.findings.size() != before) check.findings.back().described = described;
}

void check_bits(Checker& check, Setting& setting, std::string_view path, std::optional<double> offered,
                std::string_view what, std::string (*words)(int), std::string_view where) {
    const std::string whole = check.device.path(path);
    const auto bits = integer_of(offered);
    if (!bits) return check.silent(setting, whole, what);
    const auto asked = integer_of(setting.number);
    if (!asked) return check.unreadable(setting, "integer");
    if ((*asked & ~*bits) == 0) return check.pass(setting, whole);
    std::vector<Offer> offers;
    for (int bit = 0; bit < most_bits; ++bit) {
        const int value = 1 << bit;
        const auto code = (*bits & value) != 0 ? setting.code_of(value) : std::nullopt;
        if (code) offers.push_back({std::to_string(*code), words(value), whole});
    }
    check.fail(setting, {.description_path = whole,
                         .described = std::to_string(*bits),
                         .offers = std::move(offers),
                         .message = "The device doesn't offer " + std::string(what) + ' ' +
                                    std::to_string(setting.code_of(*asked).value_or(*asked)) +
                                    (words(*asked).empty() ? "" : " (" + words(*asked) + ')') +
                                    std::string(where) + '.',
                         .text = words(*asked)});
}

} // namespace pm::kit::devices
