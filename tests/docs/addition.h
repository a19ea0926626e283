#pragma once

#include "support/tree_dump.h"
#include <algorithm>
#include <functional>
#include <pm/object.h>
#include <string>

// What an input adds to a tree that every load of its format makes.
namespace pm::test {

// Deletes the properties of which `is_common` is true.
inline void delete_items(PM_Object& object, const std::function<bool(const TreeItem&)>& is_common) {
    for (const TreeItem& item : tree_items(object)) {
        if (is_common(item)) object.deletePath((u'\\' + to_wide(item.path, utf8_code_page)).c_str());
    }
}

inline bool equal_items(const TreeItem& a, const TreeItem& b) {
    return a.path == b.path && a.type == b.type && a.bytes == b.bytes;
}

// Runs `load`, and then deletes what `plain` holds too, also if the load fails.
class AdditionTo {
public:
    explicit AdditionTo(const PM_Object& plain) : m_plain(tree_items(plain)) {}

    void load_and_compare(PM_Object& object, const std::function<void(PM_Object&)>& load) const {
        try {
            load(object);
        } catch (...) {
            delete_common(object);
            throw;
        }
        delete_common(object);
    }

private:
    void delete_common(PM_Object& object) const {
        delete_items(object, [this](const TreeItem& item) {
            return std::any_of(m_plain.begin(), m_plain.end(),
                               [&item](const TreeItem& each) { return equal_items(item, each); });
        });
    }

    std::vector<TreeItem> m_plain;
};

} // namespace pm::test
