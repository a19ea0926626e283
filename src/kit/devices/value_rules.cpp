#include "devices/value_rules.h"
#include "devices/path_pattern.h"
#include "devices/value_words.h"

namespace pm::kit::devices {

namespace {

struct Capability {
    std::string path;
    Value value;
    std::string text; // translated, of its node
};

// All properties that match a path with stars, in the order of the tree.
std::vector<Capability> capabilities_at(const Device& device, std::string_view pattern) {
    const auto components = split_path(pattern);
    if (components.empty()) return {};
    std::vector<Branch> branches{device.place({})};
    for (std::size_t level = 0; level + 1 < components.size(); ++level) {
        const PathPattern component(components[level]);
        std::vector<Branch> next;
        for (const Branch& branch : branches) {
            for (Branch& child : branch.children()) {
                if (component.match(std::array{child.name()})) next.push_back(std::move(child));
            }
        }
        branches = std::move(next);
    }
    std::vector<Capability> found;
    for (const Branch& branch : branches) {
        if (const auto value = branch.value(components.back())) {
            found.push_back({branch.path_of(components.back()), *value, branch.text("localized_name")});
        }
    }
    return found;
}

bool holds(ValueTest test, const Setting& setting, const Value& capability) {
    const auto asked = setting.number;
    const auto offered = number_of(capability);
    const Precision precision = precision_of(setting.value, capability);
    switch (test) {
    case ValueTest::one_of:
    case ValueTest::equal:
        return asked && offered ? is_same(*asked, *offered, precision)
                                : setting.as_name() == value_text(capability);
    case ValueTest::at_most:
        return asked && offered && !is_above(*asked, *offered, precision);
    case ValueTest::at_least:
        return asked && offered && !is_above(*offered, *asked, precision);
    case ValueTest::bits_of: {
        const auto bits = integer_of(asked);
        const auto all = integer_of(offered);
        return bits && all && (*bits & ~*all) == 0;
    }
    }
    return false;
}

void check_value(Checker& check, Setting& setting, const ValueRule& rule,
                 std::vector<Capability> capabilities) {
    const std::string path = check.device.path(rule.capability);
    if (capabilities.empty()) return check.silent(setting, path, "such capability");
    if (rule.test != ValueTest::one_of) capabilities.resize(1);
    std::vector<Offer> offers;
    for (const Capability& capability : capabilities) {
        if (holds(rule.test, setting, capability.value)) return check.pass(setting, capability.path);
        if (offers.size() < most_offers) {
            offers.push_back({value_text(capability.value), capability.text, capability.path});
        }
    }
    check.fail(
        setting,
        {.description_path = rule.test == ValueTest::one_of ? path : capabilities.front().path,
         .described = rule.test == ValueTest::one_of ? std::string() : value_text(capabilities.front().value),
         .offers = std::move(offers),
         .message = "The device doesn't offer " + quoted(setting.text) + " here."});
}

} // namespace

void check_value_rule(Checker& check, const ValueRule& rule) {
    if (!check.settings.has(rule.setting)) return;
    check.begin(rule.name, rule.severity);
    const auto capabilities = capabilities_at(check.device, rule.capability);
    for (Setting& setting : check.settings.all(rule.setting)) {
        check_value(check, setting, rule, capabilities);
    }
}

} // namespace pm::kit::devices
