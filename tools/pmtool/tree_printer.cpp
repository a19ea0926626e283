#include "tree_printer.h"

#include "text.h"
#include "value.h"
#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace pmtool {

namespace {

using Json = nlohmann::ordered_json;

// No tree is deeper: `levels` below a node that mean all of them.
constexpr int all_levels = 1 << 20;
constexpr std::size_t indentation = 2;

void append_text(const pm::Node& node, int levels, std::size_t indent, std::string& out) {
    for (const pm::Property property : node.properties()) {
        out.append(indent, ' ');
        out += property_line(property) += '\n';
    }
    if (levels == 0) return;
    for (const pm::Node child : node.children()) {
        out.append(indent, ' ');
        (out += printable(shown(child.name16()))) += "\\\n";
        append_text(child, levels - 1, indent + indentation, out);
    }
}

Json json_value(const Value& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    if (const auto* yes = std::get_if<bool>(&value)) return *yes;
    const auto* real = std::get_if<double>(&value);
    if (real != nullptr && std::isfinite(*real)) return *real;
    return plain_text(value);
}

Json json_node(const pm::Node& node, int levels) {
    Json properties = Json::array();
    for (const pm::Property property : node.properties()) {
        const Value value = property.value();
        properties.push_back(
            {{"name", shown(property.name16())}, {"type", type_name(value)}, {"value", json_value(value)}});
    }
    Json nodes = Json::array();
    if (levels > 0) {
        for (const pm::Node child : node.children()) {
            Json row = {{"name", shown(child.name16())}};
            row.update(json_node(child, levels - 1));
            nodes.push_back(std::move(row));
        }
    }
    return {{"properties", std::move(properties)}, {"nodes", std::move(nodes)}};
}

} // namespace

std::string tree_text(const pm::Node& node, int depth) {
    std::string text;
    append_text(node, depth > 0 ? depth : all_levels, 0, text);
    return text;
}

std::string tree_json(const pm::Node& node, int depth) {
    return json_node(node, depth > 0 ? depth : all_levels).dump(2) + '\n';
}

std::string property_line(const pm::Property& property) {
    const Value value = property.value();
    return fmt::format("{}: {} = {}", printable(shown(property.name16())), type_name(value),
                       shown_text(value));
}

} // namespace pmtool
