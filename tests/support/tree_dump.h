#pragma once

#include "platform/code_page.h"
#include "store/pmpmgr.h"
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <pm/iterator.h>
#include <pm/object.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pm::test {

inline std::string utf8(std::u16string_view wide) {
    return to_narrow(wide, utf8_code_page);
}

// A property that a walk met.
struct TreeItem {
    std::string path; // below the start of the walk: media\size\0\name
    PropType type;
    std::string bytes; // as they are stored

    template<class Value>
    Value as() const {
        Value value{};
        std::memcpy(&value, bytes.data(), bytes.size() < sizeof value ? bytes.size() : sizeof value);
        return value;
    }
    // The text of wide bytes, without the terminator.
    std::string text() const {
        std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
        std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
        if (!units.empty() && units.back() == u'\0') units.pop_back();
        return utf8(units);
    }
};

inline void append_items(const PM_Node& node, const std::string& path, std::vector<TreeItem>& items) {
    for (const PM_Property* prop = node.first_prop(); prop != nullptr; prop = prop->next()) {
        std::string bytes(prop->size(), '\0');
        if (!bytes.empty()) prop->GetData(bytes.data(), bytes.size());
        items.push_back({path + utf8(prop->name()), prop->type(), std::move(bytes)});
    }
    for (const PM_Node* child = node.first_child(); child != nullptr; child = child->next_sibling()) {
        append_items(*child, path + utf8(child->name()) + '\\', items);
    }
}

// All properties below a node in the tree's order: those of a node before those of its children. Nodes
// without properties don't show.
inline std::vector<TreeItem> tree_items(const PM_Node& node) {
    std::vector<TreeItem> items;
    append_items(node, "", items);
    return items;
}

// Below the node of `path`, which must be there.
inline std::vector<TreeItem> tree_items(const PM_Object& object, const char16_t* path = u"\\") {
    const std::unique_ptr<PM_Iterator> iterator(object.newIterator(path, 0));
    return tree_items(*iterator->currentNode());
}

inline const char* type_name(PropType type) {
    static constexpr const char* names[] = {"none", "long", "double", "string", "bool", "void"};
    return names[type];
}

inline std::string hex_text(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        text += digits[static_cast<unsigned char>(byte) >> 4U];
        text += digits[static_cast<unsigned char>(byte) & 0xFU];
    }
    return text;
}

// The shortest of six and seventeen digits that reads back to the value, as 2.5, 12.0 or 1e+300.
inline std::string double_text(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%g", value);
    if (std::strtod(text, nullptr) != value) std::snprintf(text, sizeof text, "%.17g", value);
    std::string digits = text;
    return digits.find_first_of(".en") == std::string::npos ? digits + ".0" : digits;
}

// The value as a test writes it: 12, 2.5, true, "text", <0AFF> for raw bytes, and nothing where there is
// none.
inline std::string value_text(const TreeItem& item) {
    if (item.bytes.empty()) return item.type == PROP_VOID ? "<>" : "nothing";
    switch (item.type) {
    case PROP_LONG:
        return std::to_string(item.as<std::int32_t>());
    case PROP_DOUBLE:
        return double_text(item.as<double>());
    case PROP_BOOL:
        return item.as<unsigned char>() != 0 ? "true" : "false";
    case PROP_STRING: {
        const bool ended = item.bytes.size() >= 2 && item.bytes.ends_with(std::string_view("\0\0", 2));
        return ended ? '"' + item.text() + '"' : "no terminator";
    }
    case PROP_VOID:
        return '<' + hex_text(item.bytes) + '>';
    default:
        return "no type";
    }
}

// Lines as media\size\0\name="ISO A0".
inline std::vector<std::string> tree_dump(const std::vector<TreeItem>& items) {
    std::vector<std::string> lines;
    lines.reserve(items.size());
    for (const TreeItem& item : items) {
        lines.push_back(item.path + '=' + value_text(item));
    }
    return lines;
}

inline std::vector<std::string> tree_dump(const PM_Object& object, const char16_t* path = u"\\") {
    return tree_dump(tree_items(object, path));
}

} // namespace pm::test
