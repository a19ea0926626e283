#pragma once

#include "store/pool.h"
#include <algorithm>
#include <cstdint>

namespace pm {

// Finds elements by their prints, 32-bit hashes with a std::uint32_t print() const to ask for it. It stands
// beside a list that stays the truth about order, and owns nothing of it: whoever can't have it walks the
// list.
//
// Open addressing with linear probing. A byte a slot, 0 for a free one, keeps most foreign elements of a run
// from being looked at.
template<class T>
class PrintIndex {
public:
    // Releases what the index has taken of `pool`; it is empty and can be used again.
    void clear(Pool& pool) noexcept {
        pool.release(m_slots, bytes_of(m_capacity));
        *this = PrintIndex();
    }

    // Whether there is one at all: it then holds every element of its list.
    bool active() const { return m_capacity != 0; }

    // The element of that print that `is` accepts, or null.
    template<class Is>
    T* find(std::uint32_t print, Is is) const {
        if (!active()) return nullptr;
        const std::uint8_t tag = tag_of(print);
        for (std::size_t at = print & mask(); m_tags[at] != 0; at = (at + 1) & mask()) {
            if (m_tags[at] == tag && is(*m_slots[at])) return m_slots[at];
        }
        return nullptr;
    }

    // Makes room for `count` elements in all; false, with nothing changed, without memory.
    [[nodiscard]] bool reserve(Pool& pool, std::size_t count) noexcept {
        if (count <= room_of(m_capacity)) return true;
        std::size_t capacity = std::max(m_capacity, first_capacity);
        while (room_of(capacity) < count) {
            capacity *= 2;
        }
        return rebuild(pool, capacity);
    }

    // There must be room.
    void insert(T& element) noexcept {
        place(element);
        ++m_count;
    }

    // How many there are.
    std::size_t count() const { return m_count; }

    // The element is in the index.
    void erase(const T& element) noexcept {
        std::size_t gap = element.print() & mask();
        while (m_slots[gap] != &element) {
            gap = (gap + 1) & mask();
        }
        // What stands behind the gap, and would be looked for in front of it or in it, moves into it.
        for (std::size_t at = (gap + 1) & mask(); m_tags[at] != 0; at = (at + 1) & mask()) {
            const std::size_t home = m_slots[at]->print() & mask();
            if (((at - home) & mask()) < ((at - gap) & mask())) continue;
            m_slots[gap] = m_slots[at];
            m_tags[gap] = m_tags[at];
            gap = at;
        }
        m_slots[gap] = nullptr;
        m_tags[gap] = 0;
        --m_count;
    }

private:
    static constexpr std::size_t first_capacity = 16;

    static std::size_t room_of(std::size_t capacity) { return capacity / 8 * 7; }
    static std::size_t bytes_of(std::size_t capacity) { return capacity * (sizeof(T*) + 1); }
    static std::uint8_t tag_of(std::uint32_t print) { return static_cast<std::uint8_t>(print >> 24 | 0x80U); }
    std::size_t mask() const { return m_capacity - 1; }

    bool rebuild(Pool& pool, std::size_t capacity) noexcept {
        PrintIndex larger;
        larger.m_capacity = capacity;
        larger.m_slots = static_cast<T**>(pool.allocate(bytes_of(larger.m_capacity)));
        if (larger.m_slots == nullptr) return false;
        std::fill_n(larger.m_slots, larger.m_capacity, nullptr);
        larger.m_tags = reinterpret_cast<std::uint8_t*>(larger.m_slots + larger.m_capacity);
        std::fill_n(larger.m_tags, larger.m_capacity, std::uint8_t{0});
        for (std::size_t at = 0; at < m_capacity; ++at) {
            if (m_tags[at] != 0) larger.place(*m_slots[at]);
        }
        larger.m_count = m_count;
        pool.release(m_slots, bytes_of(m_capacity));
        *this = larger;
        return true;
    }

    void place(T& element) noexcept {
        const std::uint32_t print = element.print();
        std::size_t at = print & mask();
        while (m_tags[at] != 0) {
            at = (at + 1) & mask();
        }
        m_slots[at] = &element;
        m_tags[at] = tag_of(print);
    }

    T** m_slots = nullptr;
    std::uint8_t* m_tags = nullptr; // behind the slots
    std::size_t m_capacity = 0;     // a power of two
    std::size_t m_count = 0;
};

} // namespace pm
