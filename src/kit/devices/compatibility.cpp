#include "devices/path_pattern.h"
#include "devices/rules.h"
#include "devices/value_rules.h"
#include <algorithm>
#include <pm/kit/error.h>

namespace pm::kit {

namespace {

using namespace devices;

struct Start {
    Node node;
    std::string path; // empty for the root
};

Start node_at(const Tree& tree, const std::string& base, std::string_view what) {
    std::string path;
    for (const std::string& component : split_path(base)) {
        path += '\\' + component;
    }
    const auto node = tree.node(path);
    if (!node) throw Error("There is no node " + base + " in the " + std::string(what) + '.');
    return {*node, std::move(path)};
}

Start description_in(const Tree& description, const CompatibilityOptions& options) {
    if (!options.description_base.empty()) {
        return node_at(description, options.description_base, "description");
    }
    const auto node = find_description_node(description);
    if (!node) {
        throw Error("The tree describes no device: no group of capabilities has a text \"abilities\".");
    }
    return {*node, node->is_root() ? std::string() : node->path()};
}

const CompatibilityMap& map_of(const CompatibilityOptions& options) {
    return options.map != nullptr ? *options.map : built_in_map();
}

// A setting that a rule takes and that the configuration hasn't, with the paths that it would have.
void tell_unset(Checker& check, const CompatibilityMap& map, std::string_view rule, std::string_view setting,
                std::string_view capability) {
    if (check.settings.has(setting)) return;
    std::string paths;
    for (const SettingPath& path : map.settings) {
        if (path.setting == setting) paths += (paths.empty() ? "" : ", ") + path.path;
    }
    check.looks.push_back({std::string(rule), std::string(setting), std::move(paths),
                           capability.empty() ? std::string() : check.device.path(capability), "not set"});
}

void check_value_rules(Checker& check, const CompatibilityMap& map) {
    for (const ValueRule& rule : map.rules) {
        check_value_rule(check, rule);
        tell_unset(check, map, rule.name, rule.setting, rule.capability);
    }
}

std::vector<std::string_view> told_of(std::span<const std::string_view> list) {
    return {list.begin(), std::ranges::find(list, std::string_view())};
}

void expect_owner(const CompatibilityOptions& options) {
    constexpr int most_owner = 3;
    const int owner = options.owner.value_or(0);
    if (owner < 0 || owner > most_owner) {
        throw Error("An owner is a number from 0 to 3, not " + std::to_string(owner) + '.');
    }
}

ExplainedFindings run(const Start& configuration, const Start& description,
                      const CompatibilityOptions& options, bool defaults_only) {
    expect_owner(options);
    const CompatibilityMap& map = map_of(options);
    const Device device(description.node, description.path);
    Settings settings(configuration.node, configuration.path, map, defaults_only);
    Checker check(device, settings, options);
    const auto infos = compatibility_rules();
    for (std::size_t i = 0; i < infos.size(); ++i) {
        const Rule& rule = rules()[i];
        const bool is_of_the_whole = rule.run == check_unspoken || rule.run == check_owners;
        if (rule.run == check_unspoken) check_value_rules(check, map);
        if (is_of_the_whole && defaults_only) continue;
        check.begin(rule.name, rule.severity);
        rule.run(check);
        for (const std::string_view setting : infos[i].settings) {
            tell_unset(check, map, rule.name, setting, rule.capabilities.front());
        }
    }
    return {std::move(check.findings), std::move(check.looks)};
}

} // namespace

std::span<const CompatibilityRule> compatibility_rules() {
    static const std::vector<CompatibilityRule> infos = [] {
        std::vector<CompatibilityRule> list;
        for (const Rule& rule : rules()) {
            list.push_back({rule.name, rule.group, rule.severity, rule.meaning, told_of(rule.settings),
                            told_of(rule.capabilities)});
        }
        return list;
    }();
    return infos;
}

std::optional<std::string> find_description(const Tree& tree) {
    const auto node = find_description_node(tree);
    return node ? std::optional(node->path()) : std::nullopt;
}

ExplainedFindings explain_compatibility(const Tree& configuration, const Tree& description,
                                        const CompatibilityOptions& options) {
    return run(node_at(configuration, options.configuration_base, "configuration"),
               description_in(description, options), options, false);
}

ExplainedFindings explain_description(const Tree& description, const CompatibilityOptions& options) {
    const Start start = description_in(description, options);
    return run(start, start, options, true);
}

std::vector<Finding> check_compatibility(const Tree& configuration, const Tree& description,
                                         const CompatibilityOptions& options) {
    return explain_compatibility(configuration, description, options).findings;
}

std::vector<Finding> check_description(const Tree& description, const CompatibilityOptions& options) {
    return explain_description(description, options).findings;
}

} // namespace pm::kit
