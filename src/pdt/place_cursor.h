#pragma once

#include "store/tree_cursor.h"
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pm {

// The place in the tree at which a load of a description writes: goes from one property's path to the next by
// what differs, so that the names that stay aren't looked up again.
class PlaceCursor {
public:
    PlaceCursor(PM_Object& object, std::u16string_view base);

    static constexpr int no_index = -1;

    // Goes to the node of a property, as SetProperty would find it by this path, which begins with the base,
    // and this index. Null if the path needs the long way: one that is long, has no last name, or has not one
    // "*" for an index in front of that and none without an index.
    TreeCursor* go_to(std::u16string_view path, int index);
    // Of the path that was gone to. Valid as long as the path, and until the next call.
    TreeCursor::Name name() const { return {m_name, true}; }

private:
    bool stands_at(std::u16string_view nodes, int index) const;
    bool resolve(std::u16string_view nodes, int index);
    void move_to(std::u16string_view nodes);

    // So short that neither the path nor the number of its components comes near a limit.
    static constexpr std::size_t longest_path = 400;

    TreeCursor m_cursor;
    std::size_t m_base_length;
    bool m_base_is_plain;
    bool m_base_ends; // in a separator

    std::u16string m_given; // the path behind the base up to the name, as last gone to
    int m_index = no_index; // and the index it came with
    std::size_t m_star = std::u16string_view::npos; // where the index stands in it
    std::u16string m_nodes;                         // the same with the index in it
    std::vector<std::size_t> m_ends;                // of its components
    std::u16string_view m_name;

    std::u16string m_resolved; // the place with the index in it
    std::size_t m_same = 0;    // how far it is that of the place before
};

} // namespace pm
