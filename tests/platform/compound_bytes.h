#pragma once

#include "platform/compound_format.h"
#include "platform/compound_tree.h"
#include "platform/compound_writer.h"
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace pm::test {

using Bytes = std::vector<std::byte>;

inline Bytes bytes_of(std::string_view text) {
    const auto* first = reinterpret_cast<const std::byte*>(text.data());
    return {first, first + text.size()};
}

inline std::string text_of(std::span<const std::byte> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// The bytes of a tree, as the library writes them.
inline Bytes file_of(const CompoundTree& tree) {
    auto file = write_compound_file(tree);
    if (!file) throw std::runtime_error("the tree can't be written");
    return *file;
}

inline CompoundElement& add_stream(CompoundTree& tree, CompoundElement& storage, std::u16string_view name,
                                   std::string_view content) {
    CompoundElement* element = tree.create(storage, name, CompoundKind::stream);
    if (element == nullptr) throw std::runtime_error("the name isn't allowed");
    const Bytes bytes = bytes_of(content);
    element->data.assign(bytes.begin(), bytes.end());
    return *element;
}

inline CompoundElement& add_storage(CompoundTree& tree, CompoundElement& storage, std::u16string_view name) {
    CompoundElement* element = tree.create(storage, name, CompoundKind::storage);
    if (element == nullptr) throw std::runtime_error("the name isn't allowed");
    return *element;
}

// Where the directory entry of that name stands in a file; the first one if there are several.
inline std::size_t entry_at(const Bytes& file, std::u16string_view name) {
    for (std::size_t at = compound::header_size; at + compound::entry_size <= file.size();
         at += compound::entry_size) {
        bool same = compound::get16(file, at + compound::name_size_at) == 2 * (name.size() + 1);
        for (std::size_t unit = 0; same && unit < name.size(); ++unit) {
            same = compound::get16(file, at + 2 * unit) == name[unit];
        }
        if (same) return at;
    }
    throw std::runtime_error("no entry of that name");
}

inline void put16(Bytes& file, std::size_t at, unsigned value) {
    file.at(at) = std::byte(value & 0xFF);
    file.at(at + 1) = std::byte(value >> 8 & 0xFF);
}

// The number of the directory entry of that name, in files whose directory is in one piece.
inline std::uint32_t entry_number(const Bytes& file, std::u16string_view name) {
    return static_cast<std::uint32_t>((entry_at(file, name) - entry_at(file, u"Root Entry")) /
                                      compound::entry_size);
}

// Where the successor of a sector stands in a file whose allocation table is one sector.
inline std::size_t successor_at(const Bytes& file, std::uint32_t sector) {
    const std::size_t table = compound::get32(file, compound::difat_at);
    return 512 * (table + 1) + 4 * sector;
}

} // namespace pm::test
