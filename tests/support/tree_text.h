#pragma once

#include "platform/code_page.h"
#include "store/pmpmgr.h"
#include <cstring>
#include <memory>
#include <pm/iterator.h>
#include <pm/object.h>
#include <string>
#include <vector>

namespace pm::test {

inline std::string utf8(std::u16string_view wide) {
    return to_narrow(wide, utf8_code_page);
}

// A property as `name type bytes`: the bytes in hexadecimal, those of a text as UTF-8 without terminator.
inline std::string property_text(const PM_Property& prop) {
    static constexpr const char* type_names[] = {"none", "long", "double", "string", "bool", "void"};
    std::string bytes(prop.size(), '\0');
    prop.GetData(bytes.data(), bytes.size());
    std::string text = utf8(prop.name()) + ' ' + type_names[prop.type()] + ' ';
    if (prop.type() == PROP_LONG) {
        std::int32_t value = 0;
        std::memcpy(&value, bytes.data(), sizeof value);
        return text + std::to_string(value);
    }
    if (prop.type() == PROP_STRING) {
        std::u16string units(bytes.size() / 2, u'\0');
        std::memcpy(units.data(), bytes.data(), units.size() * 2);
        if (!units.empty() && units.back() == u'\0') units.pop_back();
        return text + utf8(units);
    }
    for (const char byte : bytes) {
        constexpr const char* digits = "0123456789ABCDEF";
        text += digits[static_cast<unsigned char>(byte) >> 4];
        text += digits[static_cast<unsigned char>(byte) & 0xF];
    }
    return text;
}

inline void append_tree_text(const PM_Node& node, const std::string& path, std::vector<std::string>& lines) {
    for (const PM_Property* prop = node.first_prop(); prop != nullptr; prop = prop->next()) {
        lines.push_back(path + property_text(*prop));
    }
    for (const PM_Node* child = node.first_child(); child != nullptr; child = child->next_sibling()) {
        append_tree_text(*child, path + utf8(child->name()) + '\\', lines);
    }
}

// All properties below a node as `path\name type bytes`, in the tree's order; nodes without properties don't
// show.
inline std::vector<std::string> tree_text(const PM_Object& object, const char16_t* path = u"\\") {
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(path, 0));
    std::vector<std::string> lines;
    if (walk->currentNode() != nullptr) append_tree_text(*walk->currentNode(), "", lines);
    return lines;
}

} // namespace pm::test
