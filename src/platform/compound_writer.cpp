#include "platform/compound_writer.h"

#include "platform/compound_directory.h"
#include "platform/compound_format.h"
#include "platform/compound_sectors.h"
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

namespace pm {

using namespace compound;

namespace {

constexpr std::uint64_t sector_size = std::uint64_t{1} << small_shift;
constexpr std::uint64_t numbers_in_sector = sector_size / sizeof(std::uint32_t);
constexpr std::byte unused{0xFF}; // in the tables

bool is_mini(const CompoundElement& stream) {
    return stream.data.size() < mini_cutoff;
}

// The sectors of a file's parts, which follow each other in this order.
struct Layout {
    std::uint64_t fat = 0;
    std::uint64_t difat = 0;
    std::uint64_t directory = 0;
    std::uint64_t mini_fat = 0;
    std::uint64_t mini_stream = 0;
    std::uint64_t streams = 0;

    std::uint64_t mini_sectors = 0; // of the mini stream

    std::uint64_t sectors() const { return fat + difat + directory + mini_fat + mini_stream + streams; }
    std::uint64_t file_size() const { return header_size + sectors() * sector_size; }
};

// The table holds a number for each sector, its own and those of its list too.
void add_tables(Layout& layout) {
    while (layout.fat * numbers_in_sector < layout.sectors()) {
        ++layout.fat;
        const std::uint64_t beyond = layout.fat - std::min<std::uint64_t>(layout.fat, difat_in_header);
        layout.difat = (beyond + numbers_in_sector - 2) / (numbers_in_sector - 1);
    }
}

Layout layout_of(const CompoundDirectory& directory) {
    Layout layout;
    for (const auto& entry : directory.entries()) {
        const std::size_t size = entry.element->data.size();
        (is_mini(*entry.element) ? layout.mini_sectors : layout.streams) +=
            sectors_of(size, is_mini(*entry.element) ? mini_shift : small_shift);
    }
    layout.directory = sectors_of(directory.entries().size() * entry_size, small_shift);
    layout.mini_fat = sectors_of(layout.mini_sectors * sizeof(std::uint32_t), small_shift);
    layout.mini_stream = sectors_of(layout.mini_sectors << mini_shift, small_shift);
    add_tables(layout);
    return layout;
}

// Sectors in a row, the table of their successors, and how far they are used.
class Run {
public:
    Run(std::span<std::byte> sectors, std::span<std::byte> table, unsigned shift)
        : m_sectors(sectors), m_table(table), m_shift(shift) {}

    // Marks the next sectors as no chain's.
    void mark(std::uint64_t count, std::uint32_t what) {
        for (; count > 0; --count) {
            put(what);
        }
    }
    // Gives the first sector of a chain of the next ones.
    std::uint32_t chain(std::uint64_t count) {
        if (count == 0) return end_of_chain;
        const std::uint32_t first = m_next;
        for (; count > 1; --count) {
            put(m_next + 1);
        }
        put(end_of_chain);
        return first;
    }
    // The same with `data` in them.
    std::uint32_t chain(std::span<const std::byte> data) {
        const std::uint32_t first = chain(sectors_of(data.size(), m_shift));
        if (!data.empty()) std::memcpy(bytes(first).data(), data.data(), data.size());
        return first;
    }
    // What stands from a sector on.
    std::span<std::byte> bytes(std::uint32_t sector) const {
        return m_sectors.subspan(std::size_t{sector} << m_shift);
    }

private:
    void put(std::uint32_t successor) { put32(m_table, sizeof(std::uint32_t) * m_next++, successor); }

    std::span<std::byte> m_sectors;
    std::span<std::byte> m_table;
    unsigned m_shift;
    std::uint32_t m_next = 0;
};

class Writer {
public:
    Writer(const CompoundDirectory& directory, const Layout& layout)
        : m_directory(directory), m_layout(layout), m_file(static_cast<std::size_t>(layout.file_size())),
          m_run(sectors(), sectors(), small_shift) {}

    std::vector<std::byte> write() {
        write_table();
        const std::uint32_t directory = m_run.chain(m_layout.directory);
        const std::uint32_t mini_fat = table_chain(m_layout.mini_fat);
        const std::uint32_t mini_stream = m_run.chain(m_layout.mini_stream);
        write_entries(directory, mini_fat, mini_stream);
        write_header(directory, mini_fat);
        return std::move(m_file);
    }

private:
    std::span<std::byte> sectors() { return std::span(m_file).subspan(header_size); }
    std::span<std::byte> part(std::uint32_t first, std::uint64_t count) {
        return count == 0 ? std::span<std::byte>()
                          : m_run.bytes(first).first(static_cast<std::size_t>(count * sector_size));
    }
    std::uint32_t table_chain(std::uint64_t count) {
        const std::uint32_t first = m_run.chain(count);
        std::ranges::fill(part(first, count), unused);
        return first;
    }
    void write_table();
    void list_table_sectors();
    void write_entries(std::uint32_t directory, std::uint32_t mini_fat, std::uint32_t mini_stream);
    void write_header(std::uint32_t directory, std::uint32_t mini_fat);

    const CompoundDirectory& m_directory;
    const Layout& m_layout;
    std::vector<std::byte> m_file;
    Run m_run; // the table is at the start of the sectors that it is of
};

void Writer::write_table() {
    std::ranges::fill(part(0, m_layout.fat + m_layout.difat), unused);
    m_run.mark(m_layout.fat, fat_sector);
    m_run.mark(m_layout.difat, difat_sector);
    list_table_sectors();
}

// The list begins in the header; each sector of its own ends in the number of the next one.
void Writer::list_table_sectors() {
    std::span<std::byte> list = std::span(m_file).subspan(difat_at, difat_in_header * sizeof(std::uint32_t));
    std::ranges::fill(list, unused);
    auto next = static_cast<std::uint32_t>(m_layout.fat);
    std::size_t room = difat_in_header;
    for (std::uint32_t sector = 0, place = 0; sector < m_layout.fat; ++sector, ++place) {
        if (place == room) {
            list = part(next++, 1);
            room = numbers_in_sector - 1;
            place = 0;
            const bool last = next == m_layout.fat + m_layout.difat;
            put32(list, room * sizeof(std::uint32_t), last ? end_of_chain : next);
        }
        put32(list, place * sizeof(std::uint32_t), sector);
    }
}

void put_entry(std::span<std::byte> at, const CompoundDirectory::Entry& entry, std::uint8_t type) {
    const CompoundElement& element = *entry.element;
    for (std::size_t unit = 0; unit < element.name.size(); ++unit) {
        put16(at, unit * sizeof(char16_t), element.name[unit]);
    }
    put16(at, name_size_at, static_cast<std::uint16_t>((element.name.size() + 1) * sizeof(char16_t)));
    at[type_at] = std::byte(type);
    at[colour_at] = entry.colour;
    put32(at, left_at, entry.left);
    put32(at, right_at, entry.right);
    put32(at, child_at, entry.child);
    std::ranges::copy(element.class_and_state, at.begin() + class_and_state_at);
}

void Writer::write_entries(std::uint32_t directory, std::uint32_t mini_fat, std::uint32_t mini_stream) {
    const std::span<std::byte> table = part(directory, m_layout.directory);
    Run mini(part(mini_stream, m_layout.mini_stream), part(mini_fat, m_layout.mini_fat), mini_shift);
    std::span<std::byte> rest = table;
    for (const auto& entry : m_directory.entries()) {
        const CompoundElement& element = *entry.element;
        const bool is_stream = element.kind == CompoundKind::stream;
        put_entry(rest, entry, is_stream ? stream_entry : storage_entry);
        if (is_stream) {
            put32(rest, start_at, (is_mini(element) ? mini : m_run).chain(element.data));
            put32(rest, size_at, static_cast<std::uint32_t>(element.data.size()));
        }
        rest = rest.subspan(entry_size);
    }
    table[type_at] = std::byte(root_entry);
    put32(table, start_at, mini_stream);
    put32(table, size_at, static_cast<std::uint32_t>(m_layout.mini_sectors << mini_shift));
    for (; !rest.empty(); rest = rest.subspan(entry_size)) {
        for (const std::size_t link : {left_at, right_at, child_at}) {
            put32(rest, link, no_entry);
        }
    }
}

void Writer::write_header(std::uint32_t directory, std::uint32_t mini_fat) {
    const std::span<std::byte> header(m_file);
    std::memcpy(header.data(), signature.data(), signature.size());
    put16(header, minor_version_at, minor_version);
    put16(header, version_at, small_version);
    put16(header, byte_order_at, little_endian);
    put16(header, sector_shift_at, small_shift);
    put16(header, mini_shift_at, mini_shift);
    put32(header, fat_count_at, static_cast<std::uint32_t>(m_layout.fat));
    put32(header, directory_start_at, directory);
    put32(header, mini_cutoff_at, mini_cutoff);
    put32(header, mini_fat_start_at, mini_fat);
    put32(header, mini_fat_count_at, static_cast<std::uint32_t>(m_layout.mini_fat));
    put32(header, difat_start_at,
          m_layout.difat == 0 ? end_of_chain : static_cast<std::uint32_t>(m_layout.fat));
    put32(header, difat_count_at, static_cast<std::uint32_t>(m_layout.difat));
}

bool is_whole(const CompoundDirectory::Entry& entry) {
    return entry.element->sound && entry.element->complete && entry.element->repeats == 0;
}

} // namespace

std::optional<std::vector<std::byte>> write_compound_file(const CompoundTree& tree, std::size_t limit) {
    const CompoundDirectory directory(tree);
    if (!std::ranges::all_of(directory.entries(), is_whole)) return std::nullopt;
    const Layout layout = layout_of(directory);
    if (layout.file_size() > limit) return std::nullopt;
    return Writer(directory, layout).write();
}

} // namespace pm
