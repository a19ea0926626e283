#pragma once

#include "platform/compound_format.h"
#include "platform/compound_tree.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace pm {

// An entry of the directory.
struct CompoundEntry {
    CompoundName name;  // empty if the size that the entry tells for it can't be one
    bool sound = false; // whether it is a storage or a stream with a name that the format allows
    std::uint8_t type = 0;
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::uint32_t child = 0;
    std::uint32_t start = 0;
    std::uint64_t size = 0;
    std::array<std::byte, 20> class_and_state{};
};

// `entry` is compound::entry_size bytes; the size has 64 bits in files of large sectors only.
CompoundEntry parse_compound_entry(std::span<const std::byte> entry, bool large_sectors);

// The tree of a compound file, whoever wrote it. Null if the header, the allocation table or the directory as
// a whole can't be read. Elements are taken in whatever order and colours the directory has them. What can't
// be opened hides nothing else: an entry of an unknown type or with a name that isn't allowed, and a stream
// that isn't there to its full size, stand in the tree marked as not sound, and empty; a second entry of one
// name counts as a repeat of the first; a storage with an entry that has no name, or is out of reach, is
// marked as not complete.
std::unique_ptr<CompoundTree> read_compound_file(std::span<const std::byte> file);

} // namespace pm
