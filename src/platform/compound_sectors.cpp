#include "platform/compound_sectors.h"

#include "platform/compound_format.h"
#include <algorithm>
#include <cstring>

namespace pm {

using namespace compound;

bool SectorChains::take(std::uint32_t sector) {
    if (sector >= m_taken.size() || m_taken[sector]) return false;
    m_taken[sector] = true;
    return true;
}

SectorChains::Chain SectorChains::follow(std::uint32_t first, std::uint64_t limit) {
    Chain chain;
    for (std::uint32_t sector = first; chain.sectors.size() < limit; sector = m_next[sector]) {
        chain.broken = sector != end_of_chain && sector != free_sector && !take(sector);
        if (chain.broken || sector == end_of_chain || sector == free_sector) break;
        chain.sectors.push_back(sector);
    }
    return chain;
}

std::optional<std::vector<std::uint32_t>> SectorChains::take_chain(std::uint32_t first) {
    Chain chain = follow(first, m_next.size() + 1); // a cycle is met before
    if (chain.broken) return std::nullopt;
    return std::move(chain.sectors);
}

std::optional<std::vector<std::uint32_t>> SectorChains::take_chain(std::uint32_t first, std::uint64_t count) {
    if (count > m_next.size()) return std::nullopt;
    Chain chain = follow(first, count);
    if (chain.sectors.size() < count) return std::nullopt;
    return std::move(chain.sectors);
}

namespace {

template<class Bytes>
bool fill_from_sectors(const SectorSpace& space, std::span<const std::uint32_t> sectors, std::uint64_t size,
                       Bytes& copy) {
    if (size > sectors.size() << space.shift) return false;
    auto left = static_cast<std::size_t>(size);
    copy.clear();
    copy.reserve(left);
    for (const std::uint32_t sector : sectors) {
        const std::size_t at = space.base + (std::size_t{sector} << space.shift);
        const std::size_t count = std::min(left, std::size_t{1} << space.shift);
        if (at + count > space.bytes.size()) return false;
        const auto part = space.bytes.subspan(at, count);
        copy.insert(copy.end(), part.begin(), part.end());
        left -= count;
    }
    return true;
}

} // namespace

std::optional<std::vector<std::byte>>
copy_sectors(const SectorSpace& space, const std::vector<std::uint32_t>& sectors, std::uint64_t size) {
    std::vector<std::byte> copy;
    if (!fill_from_sectors(space, sectors, size, copy)) return std::nullopt;
    return copy;
}

bool copy_sectors(const SectorSpace& space, std::span<const std::uint32_t> sectors, std::uint64_t size,
                  std::pmr::vector<std::byte>& copy) {
    return fill_from_sectors(space, sectors, size, copy);
}

std::vector<std::uint32_t> sector_numbers(std::span<const std::byte> table) {
    std::vector<std::uint32_t> numbers(table.size() / sizeof(std::uint32_t));
    for (std::size_t place = 0; place < numbers.size(); ++place) {
        numbers[place] = get32(table, place * sizeof(std::uint32_t));
    }
    return numbers;
}

CompoundSectors::CompoundSectors(std::span<const std::byte> file, unsigned shift)
    : m_file(file), m_shift(shift) {}

std::optional<CompoundSectors> CompoundSectors::open(std::span<const std::byte> file) {
    if (file.size() < header_size || file.size() > largest_file) return std::nullopt;
    if (std::memcmp(file.data(), signature.data(), signature.size()) != 0) return std::nullopt;
    const unsigned shift = get16(file, sector_shift_at);
    const bool sound = get16(file, byte_order_at) == little_endian &&
                       (shift == small_shift || shift == large_shift) &&
                       get16(file, mini_shift_at) == mini_shift && get32(file, mini_cutoff_at) == mini_cutoff;
    if (!sound) return std::nullopt;
    CompoundSectors sectors(file, shift);
    if (!sectors.read_allocation_table()) return std::nullopt;
    return sectors;
}

std::uint32_t CompoundSectors::header_number(std::size_t at) const {
    return get32(m_file, at);
}

bool CompoundSectors::is_whole(std::uint32_t sector) const {
    return offset(sector) + sector_size() <= m_file.size();
}

// The list of the table's sectors begins in the header and goes on in sectors of its own, whose last number
// is that of the next one.
bool CompoundSectors::list_table_sectors(std::vector<std::uint32_t>& sectors) {
    const std::size_t wanted = header_number(fat_count_at);
    const std::size_t in_file = m_file.size() >> m_shift;
    if (wanted > in_file) return false;
    std::vector<std::uint32_t> listed =
        sector_numbers(m_file.subspan(difat_at, difat_in_header * sizeof(std::uint32_t)));
    std::vector<bool> seen(in_file);
    for (std::uint32_t next = header_number(difat_start_at); listed.size() < wanted;) {
        if (next >= seen.size() || seen[next] || !is_whole(next)) return false;
        seen[next] = true;
        const auto more = sector_numbers(m_file.subspan(offset(next), sector_size()));
        listed.insert(listed.end(), more.begin(), more.end() - 1);
        next = more.back();
    }
    listed.resize(wanted);
    sectors = std::move(listed);
    return true;
}

bool CompoundSectors::read_allocation_table() {
    std::vector<std::uint32_t> sectors;
    if (!list_table_sectors(sectors)) return false;
    const auto table = copy_sectors(space(), sectors, sectors.size() << m_shift);
    if (!table) return false;
    const std::size_t in_file = (m_file.size() - 1) >> m_shift; // the last may be cut short
    std::vector<std::uint32_t> next = sector_numbers(*table);
    next.resize(std::min(next.size(), in_file));
    m_chains = SectorChains(std::move(next));
    return std::all_of(sectors.begin(), sectors.end(),
                       [this](std::uint32_t each) { return m_chains.take(each); });
}

std::optional<std::vector<std::byte>> CompoundSectors::content(std::uint32_t first, std::uint64_t size) {
    const auto sectors = m_chains.take_chain(first, sectors_of(size, m_shift));
    return sectors ? copy_sectors(space(), *sectors, size) : std::nullopt;
}

bool CompoundSectors::content(std::uint32_t first, std::uint64_t size, std::pmr::vector<std::byte>& copy) {
    const auto sectors = m_chains.take_chain(first, sectors_of(size, m_shift));
    return sectors && copy_sectors(space(), *sectors, size, copy);
}

std::optional<std::vector<std::byte>> CompoundSectors::directory() {
    const auto sectors = m_chains.take_chain(header_number(directory_start_at));
    return sectors ? std::optional(units_of(*sectors, entry_size)) : std::nullopt;
}

SectorChains CompoundSectors::mini_chains(std::uint64_t mini_stream_size) {
    const std::uint64_t count = sectors_of(mini_stream_size, mini_shift);
    const auto sectors = m_chains.take_up_to(header_number(mini_fat_start_at),
                                             sectors_of(count * sizeof(std::uint32_t), m_shift));
    std::vector<std::uint32_t> next = sector_numbers(units_of(sectors, sizeof(std::uint32_t)));
    if (next.size() > count) next.resize(static_cast<std::size_t>(count));
    return SectorChains(std::move(next));
}

std::vector<std::byte> CompoundSectors::units_of(const std::vector<std::uint32_t>& sectors,
                                                 std::size_t unit) const {
    constexpr std::byte missing{0xFF};
    std::vector<std::byte> bytes;
    for (const std::uint32_t sector : sectors) {
        const std::size_t there = std::min(sector_size(), m_file.size() - offset(sector));
        const auto whole = m_file.subspan(offset(sector), there / unit * unit);
        bytes.insert(bytes.end(), whole.begin(), whole.end());
        bytes.resize(bytes.size() + sector_size() - whole.size(), missing);
    }
    return bytes;
}

} // namespace pm
