#include "store/pmpmgr.h"

#include "base/allocator.h"
#include <algorithm>
#include <bit>
#include <cstring>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <utility>

namespace {

constexpr const char16_t* source = u"$Workfile: pmpmgr $ $Revision: #1 $";

[[noreturn]] void raise_warning(std::uint32_t number, const char16_t* place, const char16_t* detail) {
    throw PM_Warning(number, place, detail, source);
}

[[noreturn]] void raise_no_memory(const char16_t* place, const char16_t* detail) {
    throw PM_Memory_Exception(place, detail, source);
}

constexpr std::size_t word_units = sizeof(std::uint64_t) / sizeof(char16_t);
constexpr unsigned unit_bits = 16;

inline std::uint64_t word_at(const char16_t* units) {
    std::uint64_t word = 0;
    std::memcpy(&word, units, sizeof word);
    return word;
}

// A text of less than a word as one: its first unit, the one in the middle and its last.
inline std::uint64_t short_word(std::u16string_view text) {
    if (text.empty()) return 0;
    return text.front() | std::uint64_t{text[text.size() / 2]} << unit_bits |
           std::uint64_t{text.back()} << 2 * unit_bits;
}

inline std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) {
    hash = (hash ^ word) * 0x9E3779B97F4A7C15U;
    return hash ^ hash >> 32U;
}

// Reads words only, the last of which may overlap the one in front.
inline std::uint32_t print_of(std::u16string_view text) {
    std::uint64_t hash = text.size();
    std::uint64_t last = 0;
    if (text.size() < word_units) {
        last = short_word(text);
    } else {
        const char16_t* const end = text.data() + text.size() - word_units;
        for (const char16_t* at = text.data(); at < end; at += word_units) {
            hash = mixed(hash, word_at(at));
        }
        last = word_at(end);
    }
    return static_cast<std::uint32_t>(mixed(hash, last) * 0xD6E8FEB86659FD93U >> 32U);
}

// Whether `size` units are equal, without a call for the short texts that names are.
inline bool same_units(const char16_t* a, const char16_t* b, std::size_t size) {
    if (size < word_units) return std::equal(a, a + size, b);
    const std::size_t last = size - word_units; // where the last word begins, which may overlap
    for (std::size_t at = 0; at < last; at += word_units) {
        if (word_at(a + at) != word_at(b + at)) return false;
    }
    return word_at(a + last) == word_at(b + last);
}

inline bool same_text(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && same_units(a.data(), b.data(), b.size());
}

} // namespace

PM_PathStrings::Key::Key(std::u16string_view key_text) : text(key_text), print(print_of(key_text)) {}

bool PM_PathStrings::Entry::has_units(const char16_t* units) const {
    return same_units(text(), units, m_length);
}

std::uint8_t PM_PathStrings::Key::bucket() const {
    unsigned folded = 0;
    for (const char16_t unit : text) {
        folded ^= unit;
    }
    return static_cast<std::uint8_t>(folded ^ folded >> 8U);
}

std::size_t PM_PathStrings::Entry::bytes_for(std::size_t length) {
    constexpr std::size_t members = sizeof(PM_Mem_Obj) + 2 * sizeof(void*) + 3 * sizeof(std::uint32_t);
    static_assert(members <= sizeof(Entry));
    return std::max(sizeof(Entry), members + (length + 1) * sizeof(char16_t));
}

void PM_PathStrings::Entry::link_at(Entry*& head) noexcept {
    m_next = std::exchange(head, this);
    m_link = &head;
    if (m_next != nullptr) m_next->m_link = &m_next;
}

void PM_PathStrings::Entry::unlink() noexcept {
    *m_link = m_next;
    if (m_next != nullptr) m_next->m_link = m_link;
}

PM_PathStrings::Entry* PM_PathStrings::Find(const Key& key) const {
    const auto is = [&key](const Entry& entry) {
        return entry.m_print == key.print && same_text(entry.view(), key.text);
    };
    if (m_index.active()) return m_index.find(key.print, is);
    Entry* entry = m_buckets[key.bucket()];
    while (entry != nullptr && !is(*entry)) {
        entry = entry->m_next;
    }
    return entry;
}

PM_PathStrings::Entry& PM_PathStrings::Add(const Key& key) {
    Entry* known = Find(key);
    return known != nullptr ? AddReference(*known) : AddNew(key);
}

PM_PathStrings::Entry& PM_PathStrings::AddNew(const Key& key) {
    Entry& entry = make_entry(key);
    entry.link_at(m_buckets[key.bucket()]);
    ++m_count;
    add_to_index(entry);
    return entry;
}

// Entry and text are one block, but each has a failure of its own.
PM_PathStrings::Entry& PM_PathStrings::make_entry(const Key& key) {
    constexpr const char16_t* place = u"PM_PathStrings::Add()";
    if (pm::refused(sizeof(Entry))) raise_no_memory(place, u"entry");
    void* block = m_pool.allocate(Entry::bytes_for(key.text.size()));
    if (block == nullptr) {
        void* const entry_alone = m_pool.allocate(sizeof(Entry));
        m_pool.release(entry_alone, sizeof(Entry));
        raise_no_memory(place, entry_alone != nullptr ? u"" : u"entry");
    }
    auto* entry = ::new (block) Entry(key.text.size(), key.print);
    *std::copy(key.text.begin(), key.text.end(), const_cast<char16_t*>(entry->text())) = u'\0';
    return *entry;
}

void PM_PathStrings::add_to_index(Entry& entry) {
    if (!m_index.active() && m_count <= index_from) return;
    const bool complete = m_index.active();
    if (!m_index.reserve(m_pool, m_count)) return m_index.clear(m_pool);
    if (complete) return m_index.insert(entry);
    for (Entry* each : m_buckets) {
        for (; each != nullptr; each = each->m_next) {
            m_index.insert(*each);
        }
    }
}

void PM_PathStrings::Release(const char16_t* text) {
    if (Entry* entry = Find(text)) Release(*entry);
}

void PM_PathStrings::remove(Entry& entry) {
    entry.unlink();
    --m_count;
    if (m_index.active()) m_index.erase(entry);
    const std::size_t bytes = Entry::bytes_for(entry.view().size());
    entry.~Entry();
    m_pool.release(&entry, bytes);
}

PM_Path::PM_Path(PM_PathStrings& strings, const char16_t* text, bool add) : m_strings(&strings) {
    for (PM_PathReader reader(text); reader.next();) {
        const PM_PathStrings::Key key(reader.component());
        PM_PathStrings::Entry* entry = strings.Find(key);
        if (entry != nullptr) {
            PM_PathStrings::AddReference(*entry);
        } else if (add) {
            m_first_new = std::min(m_first_new, m_count);
            try {
                entry = &strings.AddNew(key);
            } catch (const PM_Memory_Exception&) {
                release_all();
                throw;
            }
        } else {
            release_all();
            return;
        }
        // Kept: the references taken so far stay behind.
        if (m_count == max_components) raise_warning(PM_ERR_BAD_PATH, u"PM_Path::PM_Path()", text);
        add_component(*entry);
    }
}

PM_Path::~PM_Path() {
    release_all();
}

void PM_Path::release_all() {
    for (std::int32_t index = 0; index < m_count; ++index) {
        m_strings->Release(*m_components[index]);
    }
    m_count = 0;
}

bool PM_Path::push(PM_PathStrings::Entry& name) {
    if (m_count == max_components) return false;
    add_component(PM_PathStrings::AddReference(name));
    return true;
}

void PM_Path::pop() {
    m_strings->Release(*m_components[--m_count]);
}

namespace {

// Without a call for the sizes of numbers.
inline void copy_value(void* to, const void* from, std::size_t size) {
    switch (size) {
    case sizeof(char):
        std::memcpy(to, from, sizeof(char));
        break;
    case sizeof(std::int32_t):
        std::memcpy(to, from, sizeof(std::int32_t));
        break;
    case sizeof(double):
        std::memcpy(to, from, sizeof(double));
        break;
    default:
        std::memcpy(to, from, size);
    }
}

} // namespace

void PM_Property::SetData(pm::Pool& pool, const void* data, std::size_t size) {
    if (size != this->size()) {
        drop_value(pool);
        if (!make_room(pool, size)) raise_no_memory();
    }
    if (size != 0) copy_value(m_held == large ? m_value.large.data : m_value.small, data, size);
}

void PM_Property::raise_no_memory() {
    ::raise_no_memory(u"PM_Property::SetData()", u"Property Manager");
}

void PM_Property::GetData(void* buffer, std::size_t size) const {
    constexpr const char16_t* place = u"PM_Property::GetData()";
    const unsigned char* const bytes = data();
    if (bytes == nullptr) raise_warning(PM_ERR_NO_VALUE, place, name());
    const std::size_t room = buffer != nullptr ? size : 0;
    if (room < this->size()) raise_warning(PM_ERR_VALUE_TOO_LARGE, place, name());
    if (this->size() != 0) copy_value(buffer, bytes, this->size());
}

bool PM_Property::make_room(pm::Pool& pool, std::size_t size) noexcept {
    if (size <= small_value) {
        if (pm::refused(size)) return false;
        m_held = static_cast<std::uint8_t>(size);
        return true;
    }
    auto* block = static_cast<unsigned char*>(pool.allocate(size));
    if (block == nullptr) return false;
    m_value.large = {block, size};
    m_held = large;
    return true;
}

void PM_Property::drop_value(pm::Pool& pool) noexcept {
    if (m_held == large) pool.release(m_value.large.data, m_value.large.size);
    m_held = nothing;
}

template<class T, T* T::*next, int index_from>
template<class Is>
inline T* PM_Node::List<T, next, index_from>::find_if(PM_PathStrings& strings, std::uint32_t print,
                                                      Is is) const {
    if (m_index != nullptr) return m_index->find(print, is);
    T* each = m_first;
    for (int walked = 0; each != nullptr && !is(*each); each = each->*next) {
        if (++walked == index_from && make_index(strings.pool())) return m_index->find(print, is);
    }
    return each;
}

template<class T, T* T::*next, int index_from>
T* PM_Node::List<T, next, index_from>::find(PM_PathStrings& strings,
                                            const PM_PathStrings::Entry& name) const {
    return find_if(strings, name.print(), [&name](const T& element) { return element.m_name == &name; });
}

template<class T, T* T::*next, int index_from>
inline T* PM_Node::List<T, next, index_from>::find(PM_PathStrings& strings,
                                                   const PM_PathStrings::Key& name) const {
    return find_if(strings, name.print, [&name](const T& element) {
        return element.m_print == name.print && same_text(element.m_name->view(), name.text);
    });
}

template<class T, T* T::*next, int index_from>
void PM_Node::List<T, next, index_from>::add_to_index(pm::Pool& pool, T& added) {
    if (!m_index->reserve(pool, m_index->count() + 1)) return drop_index(pool);
    m_index->insert(added);
}

// Takes the element of that name out of the list; null if there is none.
template<class T, T* T::*next, int index_from>
T* PM_Node::List<T, next, index_from>::unlink(PM_PathStrings& strings, const PM_PathStrings::Entry& name) {
    T* const found = find(strings, name);
    if (found == nullptr) return nullptr;
    T* previous = nullptr;
    for (T* each = m_first; each != found; each = each->*next) {
        previous = each;
    }
    (previous != nullptr ? previous->*next : m_first) = std::exchange(found->*next, nullptr);
    if (m_last == found) m_last = previous;
    if (m_index != nullptr) m_index->erase(*found);
    return found;
}

template<class T, T* T::*next, int index_from>
bool PM_Node::List<T, next, index_from>::make_index(pm::Pool& pool) const {
    std::size_t count = 0;
    for (const T* each = m_first; each != nullptr; each = each->*next) {
        ++count;
    }
    m_index = pool.make<pm::PrintIndex<T>>();
    if (m_index == nullptr) return false;
    if (!m_index->reserve(pool, count)) {
        drop_index(pool);
        return false;
    }
    for (T* each = m_first; each != nullptr; each = each->*next) {
        m_index->insert(*each);
    }
    return true;
}

template<class T, T* T::*next, int index_from>
void PM_Node::List<T, next, index_from>::drop_index(pm::Pool& pool) const {
    if (m_index == nullptr) return;
    m_index->clear(pool);
    pool.destroy(std::exchange(m_index, nullptr));
}

PM_Node::PM_Node(PM_PathStrings& strings, PM_PathStrings::Entry& name, PM_Node* parent)
    : m_name(&PM_PathStrings::AddReference(name)), m_print(name.print()), m_strings(&strings),
      m_parent(parent) {}

PM_Node::~PM_Node() {
    m_props.drop_index(m_strings->pool());
    m_children.drop_index(m_strings->pool());
    for (PM_Property* prop = m_props.first(); prop != nullptr;) {
        destroy(std::exchange(prop, prop->m_next));
    }
    for (PM_Node* child = m_children.first(); child != nullptr;) {
        m_strings->pool().destroy(std::exchange(child, child->m_next_sibling));
    }
    m_strings->Release(*m_name);
}

void PM_Node::destroy(PM_Property* prop) {
    prop->drop_value(m_strings->pool());
    m_strings->Release(*prop->m_name);
    m_strings->pool().destroy(prop);
}

PM_Node* PM_Node::make_nodes(const PM_Path& path, int count) {
    PM_Node* node = this;
    for (int index = 0; index < count; ++index) {
        PM_PathStrings::Entry& each = *path.component(index);
        PM_Node* child = index < path.first_new() ? node->find_child(each) : nullptr;
        node = child != nullptr ? child : node->AddNode(each);
    }
    return node;
}

PM_Node* PM_Node::AddNode(PM_PathStrings::Entry& name) {
    auto* node = m_strings->pool().make<PM_Node>(*m_strings, name, this);
    if (node == nullptr) raise_no_memory(u"PM_Node::AddNode()", u"node");
    m_children.append(*m_strings, *node);
    return node;
}

PM_Property* PM_Node::AddProp(PM_PathStrings::Entry& name) {
    return find_prop(name) == nullptr ? append_prop(name) : nullptr;
}

void PM_Node::raise_no_prop() {
    raise_no_memory(u"PM_Node::AddProp", u"prop");
}

PM_Property* PM_Node::append_prop(std::u16string_view name) {
    PM_PathStrings::Entry& entry = m_strings->Add(PM_PathStrings::Key(name));
    try {
        PM_Property* const prop = append_prop(entry);
        m_strings->Release(entry);
        return prop;
    } catch (const PM_Memory_Exception&) {
        m_strings->Release(entry);
        throw;
    }
}

PM_Node* PM_Node::find_child(const PM_PathStrings::Entry& name) const {
    return m_children.find(*m_strings, name);
}

PM_Property* PM_Node::find_prop(const PM_PathStrings::Entry& name) const {
    return (m_prop_bits & bit_of(name)) != 0 ? m_props.find(*m_strings, name) : nullptr;
}

// Names are looked for among those that are there only, not in the table.
PM_Property* PM_Node::find_prop_at(const char16_t* path, Place& place) {
    PM_PathReader reader(path);
    if (!reader.next()) return nullptr;
    PM_Node* node = this;
    for (int count = 0; count < PM_Path::max_components; ++count) {
        const PM_PathStrings::Key name(reader.component());
        if (!reader.next()) {
            if (reader.has_star() || reader.at() - path > longest_path) return nullptr;
            place = {node, name.text};
            return node->m_props.find(*m_strings, name);
        }
        node = node->m_children.find(*m_strings, name);
        if (node == nullptr) return nullptr;
    }
    return nullptr;
}

bool PM_Node::delete_prop(const PM_PathStrings::Entry& name) {
    PM_Property* prop = m_props.unlink(*m_strings, name);
    if (prop != nullptr) destroy(prop);
    return prop != nullptr;
}

bool PM_Node::delete_child(const PM_PathStrings::Entry& name) {
    PM_Node* child = m_children.unlink(*m_strings, name);
    if (child != nullptr) m_strings->pool().destroy(child);
    return child != nullptr;
}
