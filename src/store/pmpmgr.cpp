#include "store/pmpmgr.h"

#include "base/text.h"
#include <algorithm>
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

// The list from `first` on with its links turned round.
template<class T>
T* reversed(T* first, T* T::*next) {
    T* done = nullptr;
    while (first != nullptr) {
        T* rest = std::exchange(first->*next, done);
        done = std::exchange(first, rest);
    }
    return done;
}

// Deletes a list from its last element to its first, one at a time: told order, flat stack.
template<class T>
void delete_backwards(T* first, T* T::*next) {
    for (T* each = reversed(first, next); each != nullptr;) {
        delete std::exchange(each, std::exchange(each->*next, nullptr));
    }
}

template<auto next, class T>
T* find_named(T* first, T* last, const PM_PathStrings::Entry& name) {
    // The last one made is the one most often asked for.
    if (last != nullptr && &last->entry() == &name) return last;
    while (first != nullptr && &first->entry() != &name) {
        first = first->*next;
    }
    return first;
}

// Takes the element of that name out of a list; null if there is none.
template<class T>
T* unlink_named(T*& first, T*& last, const PM_PathStrings::Entry& name, T* T::*next) {
    T* previous = nullptr;
    for (T* each = first; each != nullptr; previous = std::exchange(each, each->*next)) {
        if (&each->entry() != &name) continue;
        (previous != nullptr ? previous->*next : first) = std::exchange(each->*next, nullptr);
        if (last == each) last = previous;
        return each;
    }
    return nullptr;
}

template<class T>
void append_to(T*& first, T*& last, T* added, T* T::*next) {
    (last != nullptr ? last->*next : first) = added;
    last = added;
}

} // namespace

PM_PathStrings::Key::Key(std::u16string_view key_text) : text(key_text) {
    unsigned folded = 0;
    for (const char16_t unit : text) {
        folded ^= unit;
        print = (print ^ unit) * 0x01000193u; // FNV-1a over units
    }
    bucket = static_cast<std::uint8_t>(folded ^ (folded >> 8));
}

PM_PathStrings::Entry::~Entry() {
    pm::release(m_text);
}

bool PM_PathStrings::Entry::set_text(std::u16string_view text) noexcept {
    m_text = pm::allocate_block<char16_t>(text.size() + 1).release();
    if (m_text != nullptr) *std::copy(text.begin(), text.end(), m_text) = u'\0';
    return m_text != nullptr;
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

PM_PathStrings::~PM_PathStrings() {
    for (Entry* entry : m_buckets) {
        while (entry != nullptr) {
            delete std::exchange(entry, entry->m_next);
        }
    }
}

PM_PathStrings::Entry* PM_PathStrings::Find(const Key& key) const {
    Entry* entry = m_buckets[key.bucket];
    while (entry != nullptr && (entry->m_print != key.print || entry->m_text != key.text)) {
        entry = entry->m_next;
    }
    return entry;
}

PM_PathStrings::Entry& PM_PathStrings::Add(const Key& key) {
    Entry* known = Find(key);
    if (known == nullptr) return AddNew(key);
    AddReference(*known);
    return *known;
}

PM_PathStrings::Entry& PM_PathStrings::AddNew(const Key& key) {
    constexpr const char16_t* place = u"PM_PathStrings::Add()";
    std::unique_ptr<Entry> entry(new Entry(key.print));
    if (!entry) raise_no_memory(place, u"entry");
    if (!entry->set_text(key.text)) raise_no_memory(place, u"");
    entry->link_at(m_buckets[key.bucket]);
    return *entry.release();
}

void PM_PathStrings::Release(const char16_t* text) {
    if (Entry* entry = Find(Key(text))) Release(*entry);
}

void PM_PathStrings::Release(Entry& entry) {
    if (entry.m_count >= 2) {
        --entry.m_count;
        return;
    }
    entry.unlink();
    delete &entry;
}

PM_Path::PM_Path(PM_PathStrings& strings, const char16_t* text, bool add) : m_strings(&strings) {
    std::u16string_view rest = pm::view(text);
    while (!(rest = pm::skip_any(rest, u"\\")).empty()) {
        const std::size_t length = std::min(rest.find(u'\\'), rest.size());
        const PM_PathStrings::Key key(rest.substr(0, length));
        rest.remove_prefix(length);

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

PM_Property::PM_Property(PM_PathStrings& strings, PM_PathStrings::Entry& name)
    : m_strings(&strings), m_name(&PM_PathStrings::AddReference(name)) {}

PM_Property::~PM_Property() {
    delete_backwards(m_next, &PM_Property::m_next);
    pm::release(m_data);
    m_strings->Release(*m_name);
}

void PM_Property::SetData(const void* data, std::size_t size) {
    if (size != m_size) {
        pm::release(std::exchange(m_data, nullptr));
        m_data = pm::allocate_block<unsigned char>(size).release();
        m_size = m_data != nullptr ? size : 0;
        if (m_data == nullptr) raise_no_memory(u"PM_Property::SetData()", u"Property Manager");
    }
    if (size != 0) std::memcpy(m_data, data, size);
}

void PM_Property::GetData(void* buffer, std::size_t size) const {
    constexpr const char16_t* place = u"PM_Property::GetData()";
    if (m_data == nullptr) raise_warning(PM_ERR_NO_VALUE, place, name());
    if (size < m_size) raise_warning(PM_ERR_VALUE_TOO_LARGE, place, name());
    if (m_size != 0) std::memcpy(buffer, m_data, m_size);
}

PM_Node::PM_Node(PM_PathStrings& strings, PM_PathStrings::Entry& name, PM_Node* parent)
    : m_strings(&strings), m_name(&PM_PathStrings::AddReference(name)), m_parent(parent) {}

PM_Node::~PM_Node() {
    for (PM_Node* node = this; node != nullptr; node = node->m_next_sibling) {
        delete std::exchange(node->m_first_prop, nullptr);
        delete std::exchange(node->m_first_child, nullptr);
    }
    delete_backwards(m_next_sibling, &PM_Node::m_next_sibling);
    m_strings->Release(*m_name);
}

PM_Node* PM_Node::AddNode(PM_PathStrings::Entry& name) {
    auto* node = new PM_Node(*m_strings, name, this);
    if (node == nullptr) raise_no_memory(u"PM_Node::AddNode()", u"node");
    append_to(m_first_child, m_last_child, node, &PM_Node::m_next_sibling);
    return node;
}

PM_Property* PM_Node::AddProp(PM_PathStrings::Entry& name) {
    return find_prop(name) == nullptr ? append_prop(name) : nullptr;
}

PM_Property* PM_Node::append_prop(PM_PathStrings::Entry& name) {
    auto* prop = new PM_Property(*m_strings, name);
    if (prop == nullptr) raise_no_memory(u"PM_Node::AddProp", u"prop");
    append_to(m_first_prop, m_last_prop, prop, &PM_Property::m_next);
    return prop;
}

PM_Node* PM_Node::find_child(const PM_PathStrings::Entry& name) const {
    return find_named<&PM_Node::m_next_sibling>(m_first_child, m_last_child, name);
}

PM_Property* PM_Node::find_prop(const PM_PathStrings::Entry& name) const {
    return find_named<&PM_Property::m_next>(m_first_prop, m_last_prop, name);
}

bool PM_Node::delete_prop(const PM_PathStrings::Entry& name) {
    const PM_Property* prop = unlink_named(m_first_prop, m_last_prop, name, &PM_Property::m_next);
    delete prop;
    return prop != nullptr;
}

bool PM_Node::delete_child(const PM_PathStrings::Entry& name) {
    const PM_Node* child = unlink_named(m_first_child, m_last_child, name, &PM_Node::m_next_sibling);
    delete child;
    return child != nullptr;
}
