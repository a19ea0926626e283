#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string_view>
#include <type_traits>
#include <utility>

// A singly linked list of owned nodes, appended at the tail. A node is a T followed by its link; walking
// gives the nodes in the order of appending. A copy owns nodes of its own.
template<class T>
class SimpleList {
public:
    struct Node : T {
        Node() = default;
        explicit Node(T content) : T(std::move(content)) {}
        Node* next = nullptr;
    };

    // Holds the node that the next step takes; the end of the list is a null node.
    template<class N>
    class BasicCursor {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = N*;
        using reference = N&;

        explicit BasicCursor(N* node = nullptr) : m_node(node) {}
        N& operator*() const { return *m_node; }
        N* operator->() const { return m_node; }
        BasicCursor& operator++() {
            m_node = m_node->next;
            return *this;
        }
        BasicCursor operator++(int) { return BasicCursor(std::exchange(m_node, m_node->next)); }
        bool operator==(const BasicCursor&) const = default;

    private:
        N* m_node;
    };
    using Cursor = BasicCursor<Node>;
    using ConstCursor = BasicCursor<const Node>;

    SimpleList() = default;
    // Delegates, so that the destructor runs when a later element can't be copied.
    SimpleList(const SimpleList& other) : SimpleList() {
        for (const Node& node : other) {
            append(static_cast<const T&>(node));
        }
    }
    SimpleList(SimpleList&& other) noexcept { swap(other); }
    SimpleList& operator=(SimpleList other) noexcept {
        swap(other);
        return *this;
    }
    virtual ~SimpleList() { clear(); }

    // Takes a node whose link is null.
    void append(std::unique_ptr<Node> node) {
        Node* added = node.release();
        (m_head != nullptr ? m_tail->next : m_head) = added;
        m_tail = added;
        ++m_count;
    }
    void append(T value) { append(std::make_unique<Node>(std::move(value))); }

    // Destroys the nodes one after the other, from the head.
    void clear() noexcept {
        while (m_head != nullptr) {
            const std::unique_ptr<Node> first(m_head);
            m_head = first->next;
        }
        m_tail = nullptr;
        m_count = 0;
    }

    Node* head() const { return m_head; }
    Node* tail() const { return m_tail; }
    std::int32_t count() const { return m_count; }

    Cursor begin() { return Cursor(m_head); }
    Cursor end() { return Cursor(); }
    ConstCursor begin() const { return ConstCursor(m_head); }
    ConstCursor end() const { return ConstCursor(); }

private:
    void swap(SimpleList& other) noexcept {
        std::swap(m_head, other.m_head);
        std::swap(m_tail, other.m_tail);
        std::swap(m_count, other.m_count);
    }

    Node* m_head = nullptr;
    Node* m_tail = nullptr;
    std::int32_t m_count = 0;
};

// A list of records with a ZT_String `name`.
template<class T>
class SimpleListWithSearch : public SimpleList<T> {
public:
    // The first record of that name, compared unit by unit, or null. A name that was never set counts as
    // empty, and an empty name is found as any other.
    const T* find_by_name(std::u16string_view name) const {
        for (const auto& record : *this) {
            if (name_of(record) == name) return &record;
        }
        return nullptr;
    }

protected:
    static std::u16string_view name_of(const T& record) {
        return {record.name.text(), static_cast<std::size_t>(std::max(record.name.length(), 0))};
    }
};
