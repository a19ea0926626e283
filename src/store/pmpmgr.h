#pragma once

#include "store/pool.h"
#include "store/print_index.h"
#include <array>
#include <cstdint>
#include <cstring>
#include <pm/mem_obj.h>
#include <pm/object.h>
#include <string_view>

// The interned names of one tree: one counted copy of each distinct text. Two names of a tree are equal
// exactly when they are the same entry, so that walks compare pointers only. With the names goes the memory
// of the tree: its nodes, properties and values come from the same pool.
//
// The buckets and their chains are the truth about which names there are. Once there are more than
// `index_from` names an index stands beside them; without memory for it the chains are walked.
class PM_PathStrings : public PM_Mem_Obj {
public:
    static constexpr std::size_t index_from = 16;

    class Entry : public PM_Mem_Obj {
    public:
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;

        // Stands behind the last member, in the same block.
        const char16_t* text() const { return reinterpret_cast<const char16_t*>(&m_print + 1); }
        std::u16string_view view() const { return {text(), m_length}; }
        bool is(std::u16string_view other) const {
            return m_length == other.size() && (other.data() == text() || has_units(other.data()));
        }
        std::int32_t count() const { return m_count; }
        std::uint32_t print() const { return m_print; }

    private:
        friend class PM_PathStrings;
        friend class pm::Pool;
        Entry(std::size_t length, std::uint32_t print) noexcept
            : m_length(static_cast<std::uint32_t>(length)), m_print(print) {}
        ~Entry() override = default;
        bool has_units(const char16_t* units) const;
        // Of an entry and its text.
        static std::size_t bytes_for(std::size_t length);
        void link_at(Entry*& head) noexcept;
        void unlink() noexcept;

        Entry* m_next = nullptr;
        Entry** m_link = nullptr; // what points to this entry: its bucket, or m_next of the one in front
        std::int32_t m_count = 1;
        std::uint32_t m_length;
        std::uint32_t m_print; // tells most texts apart without looking at them; the text follows
    };

    // A text with the number that its look-up needs.
    struct Key {
        explicit Key(std::u16string_view key_text);
        std::uint8_t bucket() const; // all bytes, combined by exclusive or

        std::u16string_view text;
        std::uint32_t print;
    };

    PM_PathStrings() = default;
    // Every entry goes, whatever its count, and with them all that was made in pool().
    ~PM_PathStrings() override = default;
    PM_PathStrings(const PM_PathStrings&) = delete;
    PM_PathStrings& operator=(const PM_PathStrings&) = delete;

    // The interned text, with one reference more. A new text goes to the head of its bucket. Number 55,
    // place u"PM_PathStrings::Add()", detail u"entry" or empty, with nothing changed.
    const char16_t* Add(const char16_t* text) { return Add(Key(text)).text(); }
    Entry& Add(const Key& key);
    // The same for a text that isn't there.
    Entry& AddNew(const Key& key);

    // Null if the text isn't there.
    Entry* Find(const char16_t* text) const { return Find(Key(text)); }
    Entry* Find(const Key& key) const;

    // One reference less; the last one removes the text. A text that isn't there is ignored.
    void Release(const char16_t* text);
    // The same, and one reference more, without a look-up.
    void Release(Entry& entry) {
        if (--entry.m_count == 0) remove(entry);
    }
    static Entry& AddReference(Entry& entry) {
        ++entry.m_count;
        return entry;
    }

    pm::Pool& pool() { return m_pool; }

private:
    Entry& make_entry(const Key& key);
    void remove(Entry& entry);
    void add_to_index(Entry& entry);

    pm::Pool m_pool;
    std::array<Entry*, 256> m_buckets{};
    std::size_t m_count = 0;
    pm::PrintIndex<Entry> m_index;
};

// Gives the components of a path text one after the other. Runs of "\" count as one, leading and trailing
// ones vanish.
class PM_PathReader {
public:
    explicit PM_PathReader(const char16_t* text) : m_at(text != nullptr ? text : u"") {}

    // False at the end of the text.
    bool next() {
        const char16_t* at = m_at;
        while (*at == u'\\') {
            ++at;
        }
        const char16_t* const begin = at;
        for (;; ++at) {
            while (*at > u'\\') { // most letters
                ++at;
            }
            if (*at == u'\\' || *at == u'\0') break;
            if (*at == u'*') m_has_star = true;
        }
        m_at = at;
        m_component = {begin, static_cast<std::size_t>(at - begin)};
        return at != begin;
    }
    std::u16string_view component() const { return m_component; }

    // How far it has got, and whether a component so far holds a "*".
    const char16_t* at() const { return m_at; }
    bool has_star() const { return m_has_star; }

private:
    const char16_t* m_at;
    bool m_has_star = false;
    std::u16string_view m_component;
};

// A path text split into interned names; lives on the stack of an operation and holds one reference for each
// component.
class PM_Path : public PM_Mem_Obj {
public:
    static constexpr int max_components = 256;

    // With `add` false one unknown component leaves the whole path empty. A null text is an empty path.
    // Number 51 (PM_Warning), place u"PM_Path::PM_Path()", detail the text, for a 257th component; the
    // references taken until then stay behind in the table.
    PM_Path(PM_PathStrings& strings, const char16_t* text, bool add);
    ~PM_Path() override;
    PM_Path(const PM_Path&) = delete;
    PM_Path& operator=(const PM_Path&) = delete;

    // Null for an index of count() or more.
    PM_PathStrings::Entry* component(int index) const {
        return index >= 0 && index < m_count ? m_components[index] : nullptr;
    }
    int count() const { return m_count; }
    PM_PathStrings::Entry* last() const { return component(m_count - 1); }
    // Index of the first component whose text was new to the table: no node or property of that name can
    // exist. max_components if there is none.
    int first_new() const { return m_first_new; }
    // To be called when nodes of these names have been made and the path is used on.
    void mark_known() { m_first_new = max_components; }

    // Puts a name of the same table behind the last component; false, with nothing done, if there is no room.
    bool push(PM_PathStrings::Entry& name);
    void pop();

private:
    void add_component(PM_PathStrings::Entry& entry) { m_components[m_count++] = &entry; }
    void release_all();

    PM_PathStrings* m_strings;
    PM_PathStrings::Entry* m_components[max_components]; // only the first m_count are set
    std::int32_t m_count = 0;
    std::int32_t m_first_new = max_components;
};

// A typed value of a node. It is made and destroyed by its node; a value of up to `small_value` bytes lies in
// the property itself, a larger one in the pool of the tree.
class PM_Property : public PM_Mem_Obj {
public:
    static constexpr std::size_t small_value = 16;

    PM_Property(const PM_Property&) = delete;
    PM_Property& operator=(const PM_Property&) = delete;

    // Copies `size` bytes in; an equal size takes no memory. `pool` is that of the tree. Number 55, place
    // u"PM_Property::SetData()", detail u"Property Manager": the property then has size 0 and no data.
    void SetData(pm::Pool& pool, const void* data, std::size_t size);
    // The first value of a property that has just been made, strictly; failing as SetData().
    template<class T>
    void start(PropType type, T value) {
        static_assert(sizeof value <= small_value);
        set_kind(type, true);
        if (pm::refused(sizeof value)) raise_no_memory();
        m_held = sizeof value;
        std::memcpy(m_value.small, &value, sizeof value);
    }
    // Leaves no data.
    void drop_value(pm::Pool& pool) noexcept;
    // Copies the value out. PM_Warning, place u"PM_Property::GetData()", detail the name: number 59 if there
    // is no data, 58 if `size`, the room in the buffer, is too small. A null buffer has no room.
    void GetData(void* buffer, std::size_t size) const;

    // The same for a number; one that has another size does what GetData() does with it.
    template<class T>
    void get_number(T& out) const {
        if (m_held != sizeof out) return GetData(&out, sizeof out);
        std::memcpy(&out, m_value.small, sizeof out);
    }

    const char16_t* name() const { return m_name->text(); }
    PM_PathStrings::Entry& entry() const { return *m_name; }
    std::uint32_t print() const { return m_print; }
    PM_Property* next() const { return m_next; }
    PropType type() const { return static_cast<PropType>(m_type); }
    bool strict() const { return m_strict; }
    std::size_t size() const {
        return m_held <= small_value ? m_held : m_held == large ? m_value.large.size : 0;
    }
    // Null if there is none; a value of no bytes may be there.
    const unsigned char* data() const {
        return m_held <= small_value ? m_value.small : m_held == large ? m_value.large.data : nullptr;
    }
    void set_kind(PropType type, bool strict) {
        m_type = static_cast<std::int16_t>(type);
        m_strict = strict;
    }

private:
    friend class PM_Node;
    friend class pm::Pool;

    // What stands in m_held where no small value is held, which stands there by its size.
    static constexpr std::uint8_t large = small_value + 1;
    static constexpr std::uint8_t nothing = small_value + 2;
    union Value {
        unsigned char small[small_value];
        struct {
            unsigned char* data;
            std::uint64_t size;
        } large;
    };

    // Takes a reference of the name, which its node gives back.
    explicit PM_Property(PM_PathStrings::Entry& name)
        : m_name(&PM_PathStrings::AddReference(name)), m_print(name.print()) {}
    ~PM_Property() override = default;
    bool make_room(pm::Pool& pool, std::size_t size) noexcept;
    [[noreturn]] static void raise_no_memory();

    PM_PathStrings::Entry* m_name;
    PM_Property* m_next = nullptr;
    Value m_value{};
    std::uint32_t m_print; // the name's, so that a walk needn't look at names
    std::int16_t m_type = PROP_NONE;
    bool m_strict = true;
    std::uint8_t m_held = nothing;
};

// A named node with its properties and children, each in the order of creation. The lists are the truth about
// that order; an index stands beside a list of more than so many elements once a name is looked for in it.
// Children, which are few beside properties and lie far from each other, get theirs early.
class PM_Node : public PM_Mem_Obj {
public:
    static constexpr int props_index_from = 16;
    static constexpr int children_index_from = 4;
    static constexpr std::ptrdiff_t longest_path = 1023;

    // `name` is an entry of `strings`; the node takes a reference of its own.
    PM_Node(PM_PathStrings& strings, PM_PathStrings::Entry& name, PM_Node* parent);
    // Destroys all properties and children.
    ~PM_Node() override;
    PM_Node(const PM_Node&) = delete;
    PM_Node& operator=(const PM_Node&) = delete;

    // Appends a child; doesn't look for one of that name. Number 55, place u"PM_Node::AddNode()", detail
    // u"node".
    PM_Node* AddNode(PM_PathStrings::Entry& name);
    // The node that the first `count` components of a path name from here on, with nodes made where they are
    // missing.
    PM_Node* make_nodes(const PM_Path& path, int count);
    // Appends a property; null, with nothing changed, if there is one of that name. Number 55, place
    // u"PM_Node::AddProp", detail u"prop".
    PM_Property* AddProp(PM_PathStrings::Entry& name);
    // As AddProp(), for a name that no property of this node can have.
    PM_Property* append_prop(PM_PathStrings::Entry& name) {
        auto* prop = m_strings->pool().make<PM_Property>(name);
        if (prop == nullptr) raise_no_prop();
        m_props.append(*m_strings, *prop);
        m_prop_bits |= bit_of(name);
        return prop;
    }
    // The same for a name that has yet to be taken in; the table is as before where that fails.
    PM_Property* append_prop(std::u16string_view name);

    // Names are compared as entries. Null if there is none.
    PM_Node* find_child(const PM_PathStrings::Entry& name) const;
    PM_Property* find_prop(const PM_PathStrings::Entry& name) const;
    // The property that a path names from this node on, in one pass over its text and without references.
    // Null also for a path that it leaves to others: with a "*", of more than `longest_path` units or of too
    // many components.
    PM_Property* find_prop_at(const char16_t* path) {
        Place place;
        return find_prop_at(path, place);
    }
    // Where a property that isn't there would stand. No node if some nodes of the path are missing, or if the
    // path is one of those left to others.
    struct Place {
        PM_Node* node = nullptr;
        std::u16string_view name;
    };
    PM_Property* find_prop_at(const char16_t* path, Place& place);
    // Unlink and destroy what find_...() gives; false if that is nothing.
    bool delete_prop(const PM_PathStrings::Entry& name);
    bool delete_child(const PM_PathStrings::Entry& name);

    const char16_t* name() const { return m_name->text(); }
    PM_PathStrings::Entry& entry() const { return *m_name; }
    std::uint32_t print() const { return m_print; }
    PM_Node* parent() const { return m_parent; }
    PM_Node* next_sibling() const { return m_next_sibling; }
    PM_Node* first_child() const { return m_children.first(); }
    PM_Property* first_prop() const { return m_props.first(); }

private:
    // A list with its index, which look-ups make.
    template<class T, T* T::*next, int index_from>
    class List {
    public:
        T* first() const { return m_first; }
        T* find(PM_PathStrings& strings, const PM_PathStrings::Entry& name) const;
        T* find(PM_PathStrings& strings, const PM_PathStrings::Key& name) const;
        void append(PM_PathStrings& strings, T& added) {
            (m_last != nullptr ? m_last->*next : m_first) = &added;
            m_last = &added;
            if (m_index != nullptr) add_to_index(strings.pool(), added);
        }
        T* unlink(PM_PathStrings& strings, const PM_PathStrings::Entry& name);
        void drop_index(pm::Pool& pool) const;

    private:
        template<class Is>
        T* find_if(PM_PathStrings& strings, std::uint32_t print, Is is) const;
        bool make_index(pm::Pool& pool) const;
        void add_to_index(pm::Pool& pool, T& added);

        T* m_first = nullptr;
        T* m_last = nullptr;
        mutable pm::PrintIndex<T>* m_index = nullptr;
    };

    [[noreturn]] static void raise_no_prop();
    void destroy(PM_Property* prop);
    static std::uint32_t bit_of(const PM_PathStrings::Entry& name) {
        return std::uint32_t{1} << (name.print() & 31U);
    }

    // What a walk along siblings reads stands together.
    PM_PathStrings::Entry* m_name;
    PM_Node* m_next_sibling = nullptr;
    std::uint32_t m_print;
    std::uint32_t m_prop_bits = 0; // a bit for the name of each property that was ever here
    PM_PathStrings* m_strings;
    PM_Node* m_parent;
    List<PM_Node, &PM_Node::m_next_sibling, children_index_from> m_children;
    List<PM_Property, &PM_Property::m_next, props_index_from> m_props;
};
