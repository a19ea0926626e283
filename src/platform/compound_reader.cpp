#include "platform/compound_reader.h"

#include "platform/compound_sectors.h"
#include <algorithm>
#include <utility>
#include <vector>

namespace pm {

using namespace compound;

namespace {

std::u16string entry_name(std::span<const std::byte> entry) {
    const std::size_t size = get16(entry, name_size_at);
    if (size < sizeof(char16_t) || size > name_room || size % sizeof(char16_t) != 0) return {};
    std::u16string name;
    for (std::size_t at = 0; at < size; at += sizeof(char16_t)) {
        name.push_back(static_cast<char16_t>(get16(entry, at)));
    }
    const bool terminated = name.back() == u'\0';
    name.pop_back();
    return terminated && compound_name_allowed(name) ? name : std::u16string();
}

class Reader {
public:
    explicit Reader(CompoundSectors sectors) : m_sectors(std::move(sectors)) {}

    std::unique_ptr<CompoundTree> read();

private:
    struct Folder {
        CompoundElement* storage;
        std::uint32_t first; // entry of its tree of children
    };

    std::size_t entry_count() const { return m_directory.size() / entry_size; }
    CompoundEntry entry(std::uint32_t number) const;
    void read_mini_stream(const CompoundEntry& root);
    bool read_children(const Folder& folder);
    bool add_child(CompoundElement& storage, const CompoundEntry& entry);
    std::optional<std::vector<std::byte>> content(const CompoundEntry& entry);
    std::optional<std::vector<std::byte>> mini_content(const CompoundEntry& entry);

    CompoundSectors m_sectors;
    std::vector<std::byte> m_directory;
    std::vector<bool> m_seen; // the entries met so far: each stands in one storage, once
    std::vector<std::byte> m_mini_stream;
    SectorChains m_mini_chains;
    std::unique_ptr<CompoundTree> m_tree = std::make_unique<CompoundTree>();
    std::vector<Folder> m_pending;
};

CompoundEntry Reader::entry(std::uint32_t number) const {
    return parse_compound_entry(std::span(m_directory).subspan(number * entry_size, entry_size),
                                m_sectors.shift() == large_shift);
}

std::unique_ptr<CompoundTree> Reader::read() {
    auto directory = m_sectors.content(m_sectors.header_number(directory_start_at));
    if (!directory || directory->empty()) return nullptr;
    m_directory = std::move(*directory);
    m_seen.resize(entry_count());
    const CompoundEntry root = entry(0);
    if (root.type != root_entry) return nullptr;
    m_seen[0] = true;
    read_mini_stream(root);
    m_pending.push_back({&m_tree->root(), root.child});
    while (!m_pending.empty()) {
        const Folder folder = m_pending.back();
        m_pending.pop_back();
        folder.storage->sound = read_children(folder);
        if (!folder.storage->sound) folder.storage->children.clear();
    }
    return std::move(m_tree);
}

// Without a sound mini stream every small stream fails on its own.
void Reader::read_mini_stream(const CompoundEntry& root) {
    if (root.size == 0) return;
    auto stream = m_sectors.content(root.start, root.size);
    const auto table = m_sectors.content(m_sectors.header_number(mini_fat_start_at));
    if (!stream || !table) return;
    m_mini_stream = std::move(*stream);
    std::vector<std::uint32_t> next = sector_numbers(*table);
    next.resize(std::min(next.size(), ((m_mini_stream.size() - 1) >> mini_shift) + 1));
    m_mini_chains = SectorChains(std::move(next));
}

bool Reader::read_children(const Folder& folder) {
    const std::size_t folders_above = m_pending.size();
    std::vector<std::uint32_t> siblings{folder.first};
    while (!siblings.empty()) {
        const std::uint32_t number = siblings.back();
        siblings.pop_back();
        if (number == no_entry) continue;
        const bool fresh = number < m_seen.size() && !m_seen[number];
        if (fresh) m_seen[number] = true;
        const CompoundEntry child = fresh ? entry(number) : CompoundEntry();
        if (!fresh || !add_child(*folder.storage, child)) {
            m_pending.resize(folders_above);
            return false;
        }
        siblings.insert(siblings.end(), {child.left, child.right});
    }
    return true;
}

// False for what is no element, and for a second one of the same name.
bool Reader::add_child(CompoundElement& storage, const CompoundEntry& entry) {
    const bool is_storage = entry.type == storage_entry;
    if (entry.name.empty() || (!is_storage && entry.type != stream_entry)) return false;
    CompoundElement*& place = storage.children[compound_name_key(entry.name)];
    if (place != nullptr) return false;
    place = &m_tree->make(entry.name, is_storage ? CompoundKind::storage : CompoundKind::stream);
    if (is_storage) {
        m_pending.push_back({place, entry.child});
    } else if (entry.size > 0) {
        auto data = content(entry);
        place->sound = data.has_value();
        if (data) place->data = std::move(*data);
    }
    return true;
}

std::optional<std::vector<std::byte>> Reader::content(const CompoundEntry& entry) {
    return entry.size < mini_cutoff ? mini_content(entry) : m_sectors.content(entry.start, entry.size);
}

std::optional<std::vector<std::byte>> Reader::mini_content(const CompoundEntry& entry) {
    const auto sectors = m_mini_chains.take_chain(entry.start);
    if (!sectors) return std::nullopt;
    return copy_sectors({m_mini_stream, 0, mini_shift}, *sectors, entry.size);
}

} // namespace

CompoundEntry parse_compound_entry(std::span<const std::byte> entry, bool large_sectors) {
    CompoundEntry parsed;
    parsed.name = entry_name(entry);
    parsed.type = std::to_integer<std::uint8_t>(entry[type_at]);
    parsed.left = get32(entry, left_at);
    parsed.right = get32(entry, right_at);
    parsed.child = get32(entry, child_at);
    parsed.start = get32(entry, start_at);
    parsed.size = get32(entry, size_at);
    // Some writers leave rubbish in the upper half where the format has no use for it.
    if (large_sectors) parsed.size |= std::uint64_t{get32(entry, size_at + 4)} << 32;
    return parsed;
}

std::unique_ptr<CompoundTree> read_compound_file(std::span<const std::byte> file) {
    auto sectors = CompoundSectors::open(file);
    return sectors ? Reader(std::move(*sectors)).read() : nullptr;
}

} // namespace pm
