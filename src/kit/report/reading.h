#pragma once

#include <initializer_list>
#include <optional>
#include <pm/node.h>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// Reading a tree for people: whatever a property's type is, nothing throws for it.
namespace pm::kit::report {

// The node some levels below, by names in UTF-8.
[[nodiscard]] std::optional<Node> below(const Node& node, std::initializer_list<std::string_view> names);
// The nodes directly below the one that below() finds; none without it.
[[nodiscard]] std::vector<Node> children(const Node& node,
                                         std::initializer_list<std::string_view> names = {});
[[nodiscard]] std::optional<Property> property(const Node& node, std::string_view name);

// A value of the type asked for; a number is an integer or a double.
[[nodiscard]] std::optional<double> number(const Node& node, std::string_view name);
[[nodiscard]] std::optional<long> integer(const Node& node, std::string_view name);
[[nodiscard]] std::optional<long> integer(const Property& property);
[[nodiscard]] std::optional<bool> truth(const Node& node, std::string_view name);
// Empty without a text of that name.
[[nodiscard]] std::string text(const Node& node, std::string_view name);
// The translated text of a node, or else the text given.
[[nodiscard]] std::string title(const Node& node, std::string_view otherwise);

// Any value as people read it: "914.4", "yes", bytes as hexadecimal digits with their count. A value that is
// damaged is "unreadable".
[[nodiscard]] std::string shown(const Property& property);
[[nodiscard]] std::string shown(const Value& value);
// Up to four decimals, without zeros at the end; "1e+20" for what has more than fifteen digits.
[[nodiscard]] std::string shown(double value);
// As shown(), but with all digits that tell a number from others.
[[nodiscard]] std::string shown_exactly(const Property& property);
// What sets a value apart from another one that shown_exactly() shows alike: its type, or its last digits.
[[nodiscard]] std::string distinction(const Property& property, bool has_other_type);
// "16,777,216".
[[nodiscard]] std::string grouped(long value);
// "default_source" as "Default source"; what is no such name stays.
[[nodiscard]] std::string spoken(std::string_view name);

// The nodes of a list by the text of one of their properties; of equals the first.
class Index {
public:
    Index(const std::vector<Node>& nodes, std::string_view property);
    [[nodiscard]] std::optional<Node> find(const std::string& text) const;

private:
    std::unordered_map<std::string, Node> m_nodes;
};

} // namespace pm::kit::report
