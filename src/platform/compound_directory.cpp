#include "platform/compound_directory.h"

#include <bit>

namespace pm {

using namespace compound;

// The elements of a storage get numbers that follow each other, in order, so that a part of them is a range.
CompoundDirectory::CompoundDirectory(const CompoundTree& tree) {
    m_entries.push_back({&tree.root()});
    for (std::size_t number = 0; number < m_entries.size(); ++number) {
        const CompoundChildren& children = m_entries[number].element->children;
        const std::size_t first = m_entries.size();
        for (const auto& child : children) {
            m_entries.push_back({child.second});
        }
        m_entries[number].child = balanced(first, children.size());
    }
}

// All levels are full but the last, which is red unless it is full too.
std::uint32_t CompoundDirectory::balanced(std::size_t first, std::size_t count) {
    const bool last_level_full = std::has_single_bit(count + 1);
    return build(first, count, last_level_full ? 0 : static_cast<std::size_t>(std::bit_width(count)));
}

std::uint32_t CompoundDirectory::build(std::size_t first, std::size_t count, std::size_t level_of_red) {
    if (count == 0) return no_entry;
    const std::size_t before = count / 2;
    const std::size_t middle = first + before;
    const std::size_t below = level_of_red > 0 ? level_of_red - 1 : 0;
    m_entries[middle].colour = level_of_red == 1 ? red : black;
    m_entries[middle].left = build(first, before, below);
    m_entries[middle].right = build(middle + 1, count - before - 1, below);
    return static_cast<std::uint32_t>(middle);
}

} // namespace pm
