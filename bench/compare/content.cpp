#include "content.h"

#include <algorithm>
#include <array>
#include <pm/object.h>

namespace pm::bench {
namespace {

struct ShapeData {
    const char* name;
    std::size_t a_node;         // 0: all in one node
    std::size_t distinct_names; // 0: the names of one node, in every node
};

constexpr std::array<ShapeData, 5> shapes{{
    {"ten a node", 10, 0},
    {"1,000 a node", 1000, 0},
    {"all in one node", 0, 0},
    {"10,000 distinct names", 10, 10'000},
    {"100,000 distinct names", 10, 100'000},
}};

constexpr std::array<const char*, 10> node_names{"media", "size",   "source",   "device", "margin",
                                                 "pens",  "colour", "protocol", "port",   "finishing"};
constexpr std::array<const char*, 10> property_names{"copies",    "width",    "height", "name",
                                                     "landscape", "x_offset", "label",  "resolution",
                                                     "quality",   "enabled"};
constexpr std::array<const char*, 8> texts{
    "ISO_A1_portrait", "Bond",   "Roll_1",         "a text of ordinary length",
    "DX-4200",         "Z_Fold", "Drawing office", "C:/plots/spool"};

constexpr std::size_t inner_levels = 4;

// Spreads consecutive numbers; the constants are Knuth's multiplicative hash.
std::uint32_t spread(std::size_t index) {
    const std::uint32_t mixed = static_cast<std::uint32_t>(index + 1) * 2654435761U;
    return mixed ^ (mixed >> 15);
}

std::string numbered(const char* stem, std::size_t number) {
    return std::string(stem) + std::to_string(number);
}

std::string node_name(std::size_t number) {
    const char* const word = node_names[number % node_names.size()];
    return number < node_names.size() ? word : numbered(word, number / node_names.size());
}

// The smallest base of which `levels` digits number all nodes.
std::size_t fan_out(std::size_t nodes) {
    for (std::size_t fan = 1;; ++fan) {
        if (fan * fan * fan * fan >= nodes) return fan;
    }
}

} // namespace

const char* name_of(ContentShape shape) {
    return shapes[static_cast<std::size_t>(shape)].name;
}

Content::Content(ContentShape shape, std::size_t count) : m_shape(shape) {
    const ShapeData& data = shapes[static_cast<std::size_t>(shape)];
    const std::size_t a_node = data.a_node != 0 ? data.a_node : count;
    if (data.a_node == 0) {
        m_nodes.push_back({{keep("settings")}});
    } else {
        add_nodes((count + a_node - 1) / a_node);
    }
    add_properties(count, a_node, data.distinct_names != 0 ? data.distinct_names : a_node);
}

void Content::add_nodes(std::size_t count) {
    const std::size_t fan = fan_out(count);
    std::vector<std::string_view> names;
    for (std::size_t number = 0; number < fan; ++number)
        names.push_back(keep(node_name(number)));
    for (std::size_t index = 0; index < count; ++index) {
        ContentNode node{std::vector<std::string_view>(inner_levels)};
        std::size_t digits = index;
        for (std::size_t level = inner_levels; level-- > 0; digits /= fan)
            node.path[level] = names[digits % fan];
        m_nodes.push_back(std::move(node));
    }
}

void Content::add_properties(std::size_t count, std::size_t a_node, std::size_t distinct_names) {
    std::vector<std::string_view> names;
    for (std::size_t number = 0; number < std::min(distinct_names, count); ++number) {
        names.push_back(distinct_names <= property_names.size() ? keep(property_names[number])
                                                                : keep(numbered("property", number)));
    }
    for (std::size_t index = 0; index < count; ++index) {
        const auto node = static_cast<std::uint32_t>(index / a_node);
        const std::size_t name = names.size() > a_node ? index : index % a_node;
        m_properties.push_back({node, names[name % names.size()], value(index)});
    }
}

ContentValue Content::value(std::size_t index) {
    const std::uint32_t random = spread(index);
    switch (random % 10) {
    case 0:
    case 1:
    case 2:
        return static_cast<int>(random >> 8) % 20'000 - 1000;
    case 3:
        return static_cast<int>(random >> 1);
    case 4:
    case 5:
        return static_cast<int>((random >> 8) % 1'000'000) / 100.0;
    case 6:
        return (random >> 8) / 7.0;
    case 7:
        return std::string_view(texts[(random >> 8) % texts.size()]);
    case 8:
        return std::string_view(keep(numbered("text number ", random >> 8)));
    default:
        return (random >> 8) % 2 == 0;
    }
}

std::string Content::joined_path(const ContentProperty& property, char separator) const {
    std::string joined;
    for (const std::string_view name : path_of(property)) {
        joined += name;
        joined += separator;
    }
    return joined += property.name;
}

void fill(PM_Object& object, const Content& content, const std::string& base) {
    for (const ContentProperty& property : content.properties()) {
        const std::string narrow = base + content.joined_path(property, '\\');
        const std::u16string path(narrow.begin(), narrow.end());
        const auto set = [&](const auto& value) {
            if constexpr (std::is_same_v<decltype(value), const std::string_view&>) {
                object.SetProperty(path.c_str(), std::u16string(value.begin(), value.end()).c_str());
            } else {
                object.SetProperty(path.c_str(), value);
            }
        };
        std::visit(set, property.value);
    }
}

} // namespace pm::bench
