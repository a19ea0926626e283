#include "platform/compound_reader.h"

#include "platform/compound_sectors.h"
#include <algorithm>
#include <utility>
#include <vector>

namespace pm {

using namespace compound;

namespace {

// Empty if the name's size can't be one.
CompoundName entry_name(std::span<const std::byte> entry) {
    const std::size_t size = get16(entry, name_size_at);
    CompoundName name;
    if (size < sizeof(char16_t) || size > name_room || size % sizeof(char16_t) != 0) return name;
    const std::size_t count = size / sizeof(char16_t) - 1;
    char16_t* const units = name.resize(count);
    for (std::size_t unit = 0; unit < count; ++unit) {
        units[unit] = static_cast<char16_t>(get16(entry, unit * sizeof(char16_t)));
    }
    return name;
}

bool can_be_opened(std::span<const std::byte> entry, const CompoundEntry& parsed) {
    return (parsed.type == storage_entry || parsed.type == stream_entry) &&
           compound_name_allowed(parsed.name) && get16(entry, 2 * parsed.name.size()) == 0;
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
    struct Child {
        std::u16string_view key;
        CompoundEntry entry;
    };
    struct Place {
        std::u16string_view key;
        const Child* child;
    };

    std::size_t entry_count() const { return m_directory.size() / entry_size; }
    CompoundEntry entry(std::uint32_t number) const;
    void read_mini_stream(const CompoundEntry& root);
    void find_children(const Folder& folder);
    void sort_children();
    void add_child(CompoundElement& storage, const Child& child);
    void read_stream(CompoundElement& stream, const CompoundEntry& entry);
    bool copy_mini_content(const CompoundEntry& entry, std::pmr::vector<std::byte>& copy);

    CompoundSectors m_sectors;
    std::vector<std::byte> m_directory;
    std::vector<bool> m_seen; // the entries met so far: each stands in one storage, once
    std::vector<std::byte> m_mini_stream;
    SectorChains m_mini_chains;
    std::unique_ptr<CompoundTree> m_tree = std::make_unique<CompoundTree>();
    std::vector<Folder> m_pending;
    // Of the folder at hand.
    std::vector<std::uint32_t> m_pending_entries;
    std::vector<Child> m_children;
    std::vector<Place> m_sorted;
};

CompoundEntry Reader::entry(std::uint32_t number) const {
    return parse_compound_entry(std::span(m_directory).subspan(number * entry_size, entry_size),
                                m_sectors.shift() == large_shift);
}

std::unique_ptr<CompoundTree> Reader::read() {
    auto directory = m_sectors.directory();
    if (!directory || directory->empty()) return nullptr;
    m_directory = std::move(*directory);
    m_seen.resize(entry_count());
    const CompoundEntry root = entry(0);
    if (root.type != root_entry) return nullptr;
    m_seen[0] = true;
    m_tree->root().class_and_state = root.class_and_state;
    read_mini_stream(root);
    m_pending.push_back({&m_tree->root(), root.child});
    while (!m_pending.empty()) {
        const Folder folder = m_pending.back();
        m_pending.pop_back();
        find_children(folder);
        sort_children();
        for (const Place& place : m_sorted) {
            add_child(*folder.storage, *place.child);
        }
    }
    return std::move(m_tree);
}

// Without a sound mini stream every small stream fails on its own.
void Reader::read_mini_stream(const CompoundEntry& root) {
    if (root.size == 0) return;
    auto stream = m_sectors.content(root.start, root.size);
    if (!stream) return;
    m_mini_stream = std::move(*stream);
    m_mini_chains = m_sectors.mini_chains(m_mini_stream.size());
}

// By their keys, which isn't always the order of the tree. What is compared and moved are views: children are
// large.
void Reader::sort_children() {
    m_sorted.clear();
    for (const Child& child : m_children) {
        m_sorted.push_back({child.key, &child});
    }
    std::stable_sort(m_sorted.begin(), m_sorted.end(),
                     [](const Place& a, const Place& b) { return CompoundNameOrder()(a.key, b.key); });
}

// Of one name, the one nearer to the tree's root first.
void Reader::find_children(const Folder& folder) {
    m_children.clear();
    m_pending_entries.assign(1, folder.first);
    while (!m_pending_entries.empty()) {
        const std::uint32_t number = m_pending_entries.back();
        m_pending_entries.pop_back();
        if (number == no_entry) continue;
        if (number >= m_seen.size() || m_seen[number]) {
            folder.storage->complete = false;
            continue;
        }
        m_seen[number] = true;
        const CompoundEntry child = entry(number);
        m_pending_entries.push_back(child.left);
        m_pending_entries.push_back(child.right);
        if (child.name.empty()) {
            folder.storage->complete = false;
        } else {
            m_children.push_back({m_tree->keep(CompoundName::key_of(child.name)), child});
        }
    }
}

void Reader::add_child(CompoundElement& storage, const Child& child) {
    // They come in order.
    CompoundElement*& place =
        storage.children.try_emplace(storage.children.end(), child.key, nullptr)->second;
    if (place != nullptr) {
        ++place->repeats;
        return;
    }
    const CompoundEntry& entry = child.entry;
    const bool is_storage = entry.type == storage_entry;
    place =
        &m_tree->make(m_tree->keep(entry.name), is_storage ? CompoundKind::storage : CompoundKind::stream);
    place->class_and_state = entry.class_and_state;
    place->sound = entry.sound;
    if (!entry.sound) return;
    if (is_storage) {
        m_pending.push_back({place, entry.child});
    } else {
        read_stream(*place, entry);
    }
}

void Reader::read_stream(CompoundElement& stream, const CompoundEntry& entry) {
    if (entry.size == 0) return; // its start may be anything
    stream.sound = entry.size < mini_cutoff ? copy_mini_content(entry, stream.data)
                                            : m_sectors.content(entry.start, entry.size, stream.data);
    if (!stream.sound) stream.data.clear();
}

bool Reader::copy_mini_content(const CompoundEntry& entry, std::pmr::vector<std::byte>& copy) {
    const SectorSpace space{m_mini_stream, 0, mini_shift};
    if (sectors_of(entry.size, mini_shift) == 1) { // as most streams are
        return m_mini_chains.take(entry.start) && copy_sectors(space, {&entry.start, 1}, entry.size, copy);
    }
    const auto sectors = m_mini_chains.take_chain(entry.start, sectors_of(entry.size, mini_shift));
    return sectors && copy_sectors(space, *sectors, entry.size, copy);
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
    const auto kept = entry.subspan(class_and_state_at, parsed.class_and_state.size());
    std::copy(kept.begin(), kept.end(), parsed.class_and_state.begin());
    parsed.sound = can_be_opened(entry, parsed);
    return parsed;
}

std::unique_ptr<CompoundTree> read_compound_file(std::span<const std::byte> file) {
    auto sectors = CompoundSectors::open(file);
    return sectors ? Reader(std::move(*sectors)).read() : nullptr;
}

} // namespace pm
