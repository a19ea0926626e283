#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace pm {

// Sectors, each with the number of its successor. Nothing is trusted: a chain that leaves the table, meets a
// sector taken before (its own or another chain's) or doesn't end is no chain. All chains of a table together
// cost no more than its size.
class SectorChains {
public:
    SectorChains() = default;
    explicit SectorChains(std::vector<std::uint32_t> next)
        : m_next(std::move(next)), m_taken(m_next.size()) {}

    // False if there is no such sector or it was taken.
    bool take(std::uint32_t sector);
    // The sectors of a chain in order, taken from now on.
    std::optional<std::vector<std::uint32_t>> take_chain(std::uint32_t first);

private:
    std::vector<std::uint32_t> m_next;
    std::vector<bool> m_taken;
};

// Bytes that are cut into sectors of 1 << shift bytes, from `base` on.
struct SectorSpace {
    std::span<const std::byte> bytes;
    std::size_t base;
    unsigned shift;
};

// The first `size` bytes of these sectors; nothing if there are fewer, in the sectors or in the space.
std::optional<std::vector<std::byte>>
copy_sectors(const SectorSpace& space, const std::vector<std::uint32_t>& sectors, std::uint64_t size);

// The numbers of a table as it lies in its sectors.
std::vector<std::uint32_t> sector_numbers(std::span<const std::byte> table);

// The sectors of a compound file, which must outlive this view of it.
class CompoundSectors {
public:
    // Nothing if the header or the allocation table isn't sound.
    static std::optional<CompoundSectors> open(std::span<const std::byte> file);

    unsigned shift() const { return m_shift; }
    std::uint32_t header_number(std::size_t at) const;
    // The sectors of a chain in order; a chain is handed out once.
    std::optional<std::vector<std::uint32_t>> chain(std::uint32_t first) {
        return m_chains.take_chain(first);
    }
    // The first `size` bytes of a chain; nothing if there are fewer of them in chain or file.
    std::optional<std::vector<std::byte>> content(std::uint32_t first, std::uint64_t size);
    // All sectors of a chain; nothing if the file ends before one of them does.
    std::optional<std::vector<std::byte>> content(std::uint32_t first);
    // Where a sector begins in the file.
    std::size_t offset(std::uint32_t sector) const { return (std::size_t{sector} + 1) << m_shift; }

private:
    CompoundSectors(std::span<const std::byte> file, unsigned shift);
    bool read_allocation_table();
    bool list_table_sectors(std::vector<std::uint32_t>& sectors);
    bool is_whole(std::uint32_t sector) const;
    std::size_t sector_size() const { return std::size_t{1} << m_shift; }
    SectorSpace space() const { return {m_file, sector_size(), m_shift}; }

    std::span<const std::byte> m_file;
    unsigned m_shift;
    SectorChains m_chains;
};

} // namespace pm
