#pragma once

#include "platform/compound_format.h"
#include "platform/compound_tree.h"
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pm {

// The directory of a file that is to be written: every element of a tree with its number, the root's being 0,
// and the elements of each storage as a balanced red-black tree in the format's order.
class CompoundDirectory {
public:
    struct Entry {
        const CompoundElement* element = nullptr;
        std::uint32_t left = compound::no_entry;
        std::uint32_t right = compound::no_entry;
        std::uint32_t child = compound::no_entry;
        std::byte colour = compound::black;
    };

    // The elements of `tree` must outlive the directory.
    explicit CompoundDirectory(const CompoundTree& tree);

    const std::vector<Entry>& entries() const { return m_entries; }

private:
    std::uint32_t balanced(std::size_t first, std::size_t count);
    std::uint32_t build(std::size_t first, std::size_t count, std::size_t level_of_red);

    std::vector<Entry> m_entries;
};

} // namespace pm
