#pragma once

#include "platform/compound_format.h"
#include "platform/compound_tree.h"
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace pm {

// An entry of the directory, its name as far as it is one.
struct CompoundEntry {
    std::u16string name; // empty if the entry's isn't one that the format allows
    std::uint8_t type = 0;
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::uint32_t child = 0;
    std::uint32_t start = 0;
    std::uint64_t size = 0;
};

// `entry` is compound::entry_size bytes; the size has 64 bits in files of large sectors only.
CompoundEntry parse_compound_entry(std::span<const std::byte> entry, bool large_sectors);

// The tree of a compound file, whoever wrote it. Null if the header, the allocation table or the directory as
// a whole can't be read. A storage whose part of the directory is broken, and a stream that isn't there to
// its full size, stand in the tree marked as not sound, and empty.
std::unique_ptr<CompoundTree> read_compound_file(std::span<const std::byte> file);

} // namespace pm
