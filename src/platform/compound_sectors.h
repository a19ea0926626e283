#pragma once

#include <cstddef>
#include <cstdint>
#include <memory_resource>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace pm {

// How many sectors of 1 << shift bytes `size` bytes take.
constexpr std::uint64_t sectors_of(std::uint64_t size, unsigned shift) {
    return size == 0 ? 0 : ((size - 1) >> shift) + 1;
}

// Sectors, each with the number of its successor. Nothing is trusted: a chain breaks where it leaves the
// table or meets a sector taken before, its own or another chain's. An end mark ends it, and so does a free
// mark, which some writers leave. All chains of a table together cost no more than its size.
class SectorChains {
public:
    SectorChains() = default;
    explicit SectorChains(std::vector<std::uint32_t> next)
        : m_next(std::move(next)), m_taken(m_next.size()) {}

    // False if there is no such sector or it was taken.
    bool take(std::uint32_t sector);
    // The sectors of a chain in order, taken from now on. Nothing if it breaks.
    std::optional<std::vector<std::uint32_t>> take_chain(std::uint32_t first);
    // The first `count` sectors of a chain, whatever follows them. Nothing if it has fewer.
    std::optional<std::vector<std::uint32_t>> take_chain(std::uint32_t first, std::uint64_t count);
    // The first `count` sectors of a chain, or as many as there are.
    std::vector<std::uint32_t> take_up_to(std::uint32_t first, std::uint64_t count) {
        return follow(first, count).sectors;
    }

private:
    struct Chain {
        std::vector<std::uint32_t> sectors;
        bool broken = false;
    };
    Chain follow(std::uint32_t first, std::uint64_t limit);

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

// The same in place of what is in `copy`; false, with some of them there, if there are fewer.
bool copy_sectors(const SectorSpace& space, std::span<const std::uint32_t> sectors, std::uint64_t size,
                  std::pmr::vector<std::byte>& copy);

// The numbers of a table as it lies in its sectors.
std::vector<std::uint32_t> sector_numbers(std::span<const std::byte> table);

// The sectors of a compound file, which must outlive this view of it.
class CompoundSectors {
public:
    // Nothing if the header or the allocation table isn't sound.
    static std::optional<CompoundSectors> open(std::span<const std::byte> file);

    unsigned shift() const { return m_shift; }
    std::uint32_t header_number(std::size_t at) const;
    // The first `size` bytes of a chain; nothing if there are fewer of them in chain or file. A sector is
    // handed out once.
    std::optional<std::vector<std::byte>> content(std::uint32_t first, std::uint64_t size);
    // The same in place of what is in `copy`; false if there are fewer.
    bool content(std::uint32_t first, std::uint64_t size, std::pmr::vector<std::byte>& copy);
    // The entries of the directory in whole sectors; nothing if its chain breaks.
    std::optional<std::vector<std::byte>> directory();
    // The chains of the mini stream, as far as their table can be read.
    SectorChains mini_chains(std::uint64_t mini_stream_size);

private:
    CompoundSectors(std::span<const std::byte> file, unsigned shift);
    bool read_allocation_table();
    bool list_table_sectors(std::vector<std::uint32_t>& sectors);
    // Where a sector begins in the file.
    std::size_t offset(std::uint32_t sector) const { return (std::size_t{sector} + 1) << m_shift; }
    bool is_whole(std::uint32_t sector) const;
    // The content of sectors that exist, for units that divide a sector: one that the file's end cuts off has
    // all bits set.
    std::vector<std::byte> units_of(const std::vector<std::uint32_t>& sectors, std::size_t unit) const;
    std::size_t sector_size() const { return std::size_t{1} << m_shift; }
    SectorSpace space() const { return {m_file, sector_size(), m_shift}; }

    std::span<const std::byte> m_file;
    unsigned m_shift;
    SectorChains m_chains;
};

} // namespace pm
