#pragma once

#include "support/tree_dump.h"
#include <string>
#include <vector>

namespace pm::test {

// A property as `name type bytes`: a number as decimal text, a text as it is, other bytes in hexadecimal.
inline std::string item_text(const TreeItem& item) {
    const std::string start = item.path + ' ' + type_name(item.type) + ' ';
    if (item.type == PROP_LONG) return start + std::to_string(item.as<std::int32_t>());
    return start + (item.type == PROP_STRING ? item.text() : hex_text(item.bytes));
}

// All properties below a node as item_text() gives them.
inline std::vector<std::string> tree_text(const PM_Object& object, const char16_t* path = u"\\") {
    std::vector<std::string> lines;
    for (const TreeItem& item : tree_items(object, path)) {
        lines.push_back(item_text(item));
    }
    return lines;
}

} // namespace pm::test
