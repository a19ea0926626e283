#include "platform/compound_directory.h"

#include "platform/compound_reader.h"
#include "platform/compound_sectors.h"
#include <algorithm>
#include <bit>
#include <string>
#include <utility>
#include <vector>

namespace pm {

using namespace compound;

namespace {

using Sibling = std::pair<std::u16string, std::uint32_t>; // key of the name, number of the entry

class Directory {
public:
    Directory(std::span<std::byte> file, const CompoundSectors& sectors,
              const std::vector<std::uint32_t>& chain) {
        const std::size_t sector_size = std::size_t{1} << sectors.shift();
        for (const std::uint32_t sector : chain) {
            for (std::size_t at = 0; at < sector_size; at += entry_size) {
                m_entries.push_back(file.subspan(sectors.offset(sector) + at, entry_size));
            }
        }
    }

    void balance() {
        for (const auto entry : m_entries) {
            const auto type = std::to_integer<std::uint8_t>(entry[type_at]);
            if (type != storage_entry && type != root_entry) continue;
            put32(entry, child_at, balanced(siblings(get32(entry, child_at))));
        }
    }

private:
    std::vector<Sibling> siblings(std::uint32_t first) const;
    std::uint32_t balanced(std::span<const Sibling> sorted);
    std::uint32_t build(std::span<const Sibling> sorted, std::size_t level_of_red);

    std::vector<std::span<std::byte>> m_entries;
};

std::vector<Sibling> Directory::siblings(std::uint32_t first) const {
    std::vector<Sibling> found;
    std::vector<std::uint32_t> pending{first};
    while (!pending.empty() && found.size() < m_entries.size()) {
        const std::uint32_t number = pending.back();
        pending.pop_back();
        if (number >= m_entries.size()) continue;
        const CompoundEntry entry = parse_compound_entry(m_entries[number], false);
        found.emplace_back(compound_name_key(entry.name), number);
        pending.insert(pending.end(), {entry.left, entry.right});
    }
    std::sort(found.begin(), found.end(),
              [](const Sibling& a, const Sibling& b) { return CompoundNameOrder()(a.first, b.first); });
    return found;
}

// All levels are full but the last, which is red unless it is full too.
std::uint32_t Directory::balanced(std::span<const Sibling> sorted) {
    const bool last_level_full = std::has_single_bit(sorted.size() + 1);
    return build(sorted, last_level_full ? 0 : static_cast<std::size_t>(std::bit_width(sorted.size())));
}

std::uint32_t Directory::build(std::span<const Sibling> sorted, std::size_t level_of_red) {
    if (sorted.empty()) return no_entry;
    const std::size_t middle = sorted.size() / 2;
    const std::uint32_t number = sorted[middle].second;
    const std::span<std::byte> entry = m_entries[number];
    const std::size_t below = level_of_red > 0 ? level_of_red - 1 : 0;
    entry[colour_at] = level_of_red == 1 ? red : black;
    put32(entry, left_at, build(sorted.first(middle), below));
    put32(entry, right_at, build(sorted.subspan(middle + 1), below));
    return number;
}

} // namespace

bool balance_compound_directory(std::span<std::byte> file) {
    auto sectors = CompoundSectors::open(file);
    if (!sectors) return false;
    const auto chain = sectors->chain(sectors->header_number(directory_start_at));
    if (!chain) return false;
    const auto is_cut = [&](std::uint32_t sector) {
        return sectors->offset(sector) + (std::size_t{1} << sectors->shift()) > file.size();
    };
    if (std::any_of(chain->begin(), chain->end(), is_cut)) return false;
    Directory(file, *sectors, *chain).balance();
    return true;
}

} // namespace pm
