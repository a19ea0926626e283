#pragma once

#include <cstddef>
#include <iterator>
#include <pm/view.h>
#include <ranges>
#include <utility>

namespace pm {
class Node;
class Property;
} // namespace pm

// The ranges of node.h.
namespace pm::detail {

// A forward iterator over handles that come one from the other. `Step` holds the position: it compares, and
// has read(), next() and done().
template<class Step, class Handle>
class HandleIterator {
public:
    using value_type = Handle;
    using difference_type = std::ptrdiff_t;
    using iterator_concept = std::forward_iterator_tag;
    using iterator_category = std::input_iterator_tag;

    HandleIterator() = default;
    explicit HandleIterator(Step step) noexcept : m_step(step) {}
    Handle operator*() const noexcept { return m_step.read(); }
    HandleIterator& operator++() noexcept {
        m_step.next();
        return *this;
    }
    HandleIterator operator++(int) noexcept {
        HandleIterator before = *this;
        m_step.next();
        return before;
    }
    friend bool operator==(const HandleIterator&, const HandleIterator&) = default;
    friend bool operator==(const HandleIterator& it, std::default_sentinel_t) noexcept {
        return it.m_step.done();
    }

private:
    Step m_step;
};

template<class Step, class Handle>
class HandleRange : public std::ranges::view_base {
public:
    HandleRange() = default;
    explicit HandleRange(Step first) noexcept : m_first(first) {}
    auto begin() const noexcept { return HandleIterator<Step, Handle>(m_first); }
    static std::default_sentinel_t end() noexcept { return {}; }
    [[nodiscard]] bool empty() const noexcept { return m_first.done(); }
    // Of a range that isn't empty.
    [[nodiscard]] Handle front() const noexcept { return m_first.read(); }

private:
    Step m_first;
};

struct PropertyStep {
    const PM_Property* at = nullptr;
    Property read() const noexcept;
    void next() noexcept { at = pm_view(*at).next; }
    bool done() const noexcept { return at == nullptr; }
    friend bool operator==(const PropertyStep&, const PropertyStep&) = default;
};

struct ChildStep {
    const PM_Node* at = nullptr;
    Node read() const noexcept;
    void next() noexcept { at = pm_view(*at).next_sibling; }
    bool done() const noexcept { return at == nullptr; }
    friend bool operator==(const ChildStep&, const ChildStep&) = default;
};

struct WalkStep {
    const PM_Node* at = nullptr;
    int depth = 0;
    int levels = 0; // 0: all
    std::pair<Node, int> read() const noexcept;
    void next() noexcept {
        PM_Node_View node = pm_view(*at);
        if (node.first_child != nullptr && (levels <= 0 || depth < levels)) {
            at = node.first_child;
            ++depth;
            return;
        }
        while (depth > 0 && node.next_sibling == nullptr) {
            node = pm_view(*node.parent);
            --depth;
        }
        at = depth > 0 ? node.next_sibling : nullptr;
    }
    bool done() const noexcept { return at == nullptr; }
    friend bool operator==(const WalkStep&, const WalkStep&) = default;
};

} // namespace pm::detail

template<class Step, class Handle>
inline constexpr bool std::ranges::enable_borrowed_range<pm::detail::HandleRange<Step, Handle>> = true;
