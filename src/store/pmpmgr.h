#pragma once

#include "base/allocator.h"
#include <array>
#include <cstdint>
#include <pm/mem_obj.h>
#include <pm/object.h>
#include <string_view>

// The interned names of one tree: one counted copy of each distinct text. Two names of a tree are equal
// exactly when they are the same entry, so that walks compare pointers only.
class PM_PathStrings : public PM_Mem_Obj {
public:
    class Entry : public PM_Mem_Obj {
    public:
        explicit Entry(std::uint32_t print) noexcept : m_print(print) {}
        ~Entry() override;
        Entry(const Entry&) = delete;
        Entry& operator=(const Entry&) = delete;

        const char16_t* text() const { return m_text; }
        std::int32_t count() const { return m_count; }

    private:
        friend class PM_PathStrings;
        bool set_text(std::u16string_view text) noexcept;
        void link_at(Entry*& head) noexcept;
        void unlink() noexcept;

        char16_t* m_text = nullptr;
        std::int32_t m_count = 1;
        Entry* m_next = nullptr;
        Entry** m_link = nullptr; // what points to this entry: its bucket, or m_next of the one in front
        std::uint32_t m_print;    // tells most texts of a chain apart without looking at them
    };

    // A text with the two numbers that its look-up needs, made in one pass.
    struct Key {
        explicit Key(std::u16string_view key_text);
        std::u16string_view text;
        std::uint8_t bucket = 0;
        std::uint32_t print = 0;
    };

    PM_PathStrings() = default;
    // Deletes every entry, whatever its count.
    ~PM_PathStrings() override;
    PM_PathStrings(const PM_PathStrings&) = delete;
    PM_PathStrings& operator=(const PM_PathStrings&) = delete;

    // The interned text, with one reference more. A new text goes to the head of its bucket. Number 55,
    // place u"PM_PathStrings::Add()", detail u"entry" or empty, with nothing changed.
    const char16_t* Add(const char16_t* text) { return Add(Key(text)).m_text; }
    Entry& Add(const Key& key);
    // The same for a text that isn't there.
    Entry& AddNew(const Key& key);
    // Null if the text isn't there.
    Entry* Find(const char16_t* text) const { return Find(Key(text)); }
    Entry* Find(const Key& key) const;

    // One reference less; the last one removes the text. A text that isn't there is ignored.
    void Release(const char16_t* text);
    // The same, and one reference more, without a look-up.
    void Release(Entry& entry);
    static Entry& AddReference(Entry& entry) {
        ++entry.m_count;
        return entry;
    }

private:
    std::array<Entry*, 256> m_buckets{};
};

// A path text split at "\" into interned names; lives on the stack of an operation and holds one reference
// for each component. Runs of "\" count as one, leading and trailing ones vanish.
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

// A typed value of a node.
class PM_Property : public PM_Mem_Obj {
public:
    // `name` is an entry of `strings`; the property takes a reference of its own.
    PM_Property(PM_PathStrings& strings, PM_PathStrings::Entry& name);
    // Destroys all properties that follow, last first, and then this one.
    ~PM_Property() override;
    PM_Property(const PM_Property&) = delete;
    PM_Property& operator=(const PM_Property&) = delete;

    // Copies `size` bytes in; an equal size reuses the block. Number 55, place u"PM_Property::SetData()",
    // detail u"Property Manager": the property then has size 0 and no data.
    void SetData(const void* data, std::size_t size);
    // Copies the value out. PM_Warning, place u"PM_Property::GetData()", detail the name: number 59 if there
    // is no data, 58 if `size`, the room in the buffer, is too small.
    void GetData(void* buffer, std::size_t size) const;

    const char16_t* name() const { return m_name->text(); }
    PM_PathStrings::Entry& entry() const { return *m_name; }
    PM_Property* next() const { return m_next; }
    PropType type() const { return m_type; }
    bool strict() const { return m_strict; }
    const unsigned char* data() const { return m_data; }
    std::size_t size() const { return m_size; }
    void set_kind(PropType type, bool strict) {
        m_type = type;
        m_strict = strict;
    }

private:
    friend class PM_Node;

    PM_PathStrings* m_strings;
    PM_PathStrings::Entry* m_name;
    unsigned char* m_data = nullptr;
    std::uint64_t m_size = 0;
    bool m_strict = true;
    PropType m_type = PROP_NONE;
    PM_Property* m_next = nullptr;
};

// A named node with its properties and children, each in the order of creation.
class PM_Node : public PM_Mem_Obj {
public:
    PM_Node(PM_PathStrings& strings, PM_PathStrings::Entry& name, PM_Node* parent);
    // Destroys its properties, its children and all siblings that follow: whoever removes one node unlinks
    // it first.
    ~PM_Node() override;
    PM_Node(const PM_Node&) = delete;
    PM_Node& operator=(const PM_Node&) = delete;

    // Appends a child; doesn't look for one of that name. Number 55, place u"PM_Node::AddNode()", detail
    // u"node".
    PM_Node* AddNode(PM_PathStrings::Entry& name);
    // Appends a property; null, with nothing changed, if there is one of that name. Number 55, place
    // u"PM_Node::AddProp", detail u"prop".
    PM_Property* AddProp(PM_PathStrings::Entry& name);
    // As AddProp(), for a name that no property of this node can have.
    PM_Property* append_prop(PM_PathStrings::Entry& name);

    // Names are compared as entries. Null if there is none.
    PM_Node* find_child(const PM_PathStrings::Entry& name) const;
    PM_Property* find_prop(const PM_PathStrings::Entry& name) const;
    // Unlink and delete what find_...() gives; false if that is nothing.
    bool delete_prop(const PM_PathStrings::Entry& name);
    bool delete_child(const PM_PathStrings::Entry& name);

    const char16_t* name() const { return m_name->text(); }
    PM_PathStrings::Entry& entry() const { return *m_name; }
    PM_Node* parent() const { return m_parent; }
    PM_Node* next_sibling() const { return m_next_sibling; }
    PM_Node* first_child() const { return m_first_child; }
    PM_Property* first_prop() const { return m_first_prop; }

private:
    PM_PathStrings* m_strings;
    PM_PathStrings::Entry* m_name;
    PM_Node* m_parent;
    PM_Node* m_next_sibling = nullptr;
    PM_Node* m_first_child = nullptr;
    PM_Node* m_last_child = nullptr;
    PM_Property* m_first_prop = nullptr;
    PM_Property* m_last_prop = nullptr;
};
