#pragma once

#include "devices/device.h"
#include "devices/settings.h"
#include <algorithm>
#include <pm/kit/compatibility.h>
#include <string>
#include <string_view>
#include <vector>

// What a rule asks and answers.
namespace pm::kit::devices {

// Why something isn't possible. Paths below the description's node are made whole by Device::path().
struct Fault {
    std::string description_path;
    std::string described = {};
    std::vector<Offer> offers = {};
    std::string message;
    std::optional<Severity> severity = {}; // instead of the rule's
    std::string text = {};
};

class Checker {
public:
    Checker(const Device& of_device, Settings& of_configuration, const CompatibilityOptions& with)
        : device(of_device), settings(of_configuration), options(with) {}

    const Device& device;
    Settings& settings;
    const CompatibilityOptions& options;

    // What follows is said by this rule.
    void begin(std::string_view rule, Severity severity) {
        m_rule = rule;
        m_severity = severity;
    }

    void pass(Setting& setting, const std::string& description_path);
    void fail(Setting& setting, Fault fault);
    // The description has nothing at that path to compare with; `what` ends "The description tells no ...".
    void silent(Setting& setting, std::string description_path, std::string_view what);
    // Its value is of a type, or in words, that the rule can't compare.
    void unreadable(Setting& setting, std::string_view wanted);
    // No rule speaks of it.
    void pass_over(Setting& setting);
    void pass_over(const UnknownProperty& property);
    // Another rule has found what is wrong with it.
    static void leave(Setting& setting) { setting.was_looked_at = true; }
    // It was held against the description together with the one that was looked at last.
    void follow(Setting& setting);
    // It belongs to what is chosen, and that isn't there. If the configuration chooses, another rule finds
    // it; `what` ends "The description tells no default ..." otherwise.
    void without_choice(Setting& setting, std::string_view choice, std::string_view default_path,
                        std::string_view what);

    // The chosen one of a setting: the first of the configuration without a key, or the description's own
    // default at `default_path`; null if there is neither.
    Setting* chosen(std::string_view name, std::string_view default_path);

    std::vector<Finding> findings;
    std::vector<Finding> unspoken; // in the order met
    std::vector<Look> looks;

private:
    void look(Setting& setting, const std::string& description_path, std::string_view outcome);

    std::string_view m_rule;
    Severity m_severity = Severity::error;
    std::unordered_map<std::string, Setting> m_defaults;
};

// "\"A4\"", and what messages call a named thing: "\"Roll_1\" (Upper roll)".
[[nodiscard]] std::string quoted(std::string_view text);
[[nodiscard]] std::string called(const Named& item);
// ", the device's default," behind a choice that the configuration doesn't make; the comma at the end only
// where the sentence goes on.
enum class Goes { on, no_further };
[[nodiscard]] std::string by_default(bool is_default, Goes sentence = Goes::on);
[[nodiscard]] std::string by_default(const Setting& setting);

// Offers are at most so many.
inline constexpr std::size_t most_offers = 64;
// Findings beyond so many have none: a large tree with one mistake everywhere takes no more memory than it
// does.
inline constexpr std::size_t most_findings_with_offers = 1000;

// How many first characters agree, in any case.
[[nodiscard]] std::size_t common_begin(std::string_view left, std::string_view right) noexcept;

[[nodiscard]] inline Offer offer_of(const Named& item) {
    return {item.name, item.text, item.path};
}

// All items that have a name, those first whose names begin as the asked one.
template<class List>
std::vector<Offer> nearest(const List& items, std::string_view asked) {
    std::vector<std::pair<std::size_t, const Named*>> order;
    for (const auto& item : items) {
        if (!item.name.empty()) order.emplace_back(common_begin(item.name, asked), &item);
    }
    std::ranges::stable_sort(order, std::ranges::greater(), [](const auto& entry) { return entry.first; });
    if (order.size() > most_offers) order.resize(most_offers);
    std::vector<Offer> offers;
    offers.reserve(order.size());
    for (const auto& [begin, item] : order) {
        offers.push_back(offer_of(*item));
    }
    return offers;
}

// The setting's number within the limits that are there: is it, if not the fault; `what` is "The pen's
// width", `of_what` goes behind the limit.
void check_range(Checker& check, Setting& setting, const Range& range, const std::string& least_path,
                 const std::string& most_path, std::string_view what, std::string_view of_what = {});
// The same of what is counted, so that it has to be whole; all limits come from the property at `path`, which
// is `described`.
void check_count(Checker& check, Setting& setting, const Range& range, const std::string& path,
                 const std::string& described, std::string_view what);

// The setting's number has no bits but those of the property at `path`; `words` names bits, `where` goes
// behind them.
void check_bits(Checker& check, Setting& setting, std::string_view path, std::optional<double> offered,
                std::string_view what, std::string (*words)(int), std::string_view where = {});

} // namespace pm::kit::devices
