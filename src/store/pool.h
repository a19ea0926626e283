#pragma once

#include "base/allocator.h"
#include <array>
#include <cstddef>
#include <new>
#include <utility>

namespace pm {

// The memory of one tree. Small blocks are cut from chunks and, once released, kept in lists by size for the
// next of that size; a larger block is one of its own. With the pool all of it goes at once, whether it was
// released or not, and no destructor runs.
//
// Under the address sanitizer every block is one of its own, so that the use of a released one is found.
class Pool {
public:
    Pool() = default;
    ~Pool();
    Pool(const Pool&) = delete;
    Pool& operator=(const Pool&) = delete;

    // Null when there is no memory. The allocation filter is asked for each block, as by pm::allocate().
    // Blocks are aligned for pointers and doubles.
    void* allocate(std::size_t size) noexcept {
        if (refused(size)) return nullptr;
        return is_small(size) ? allocate_small(size) : allocate_large(size);
    }
    // `size` is that of the allocation. Null is allowed.
    void release(void* block, std::size_t size) noexcept;

    // Null, with nothing constructed, when there is no memory.
    template<class T, class... Args>
    T* make(Args&&... args) {
        void* block = allocate(sizeof(T));
        return block != nullptr ? ::new (block) T(std::forward<Args>(args)...) : nullptr;
    }
    // T is the object's own class.
    template<class T>
    void destroy(T* object) noexcept {
        object->~T();
        release(object, sizeof(T));
    }

private:
    struct Chunk {
        Chunk* next;
    };
    struct Free {
        Free* next;
    };
    // Stands in front of a block of its own; a multiple of what malloc aligns to.
    struct alignas(std::max_align_t) Large {
        Large* previous;
        Large* next;
    };

    static constexpr std::size_t small_limit = 256;
    static constexpr std::size_t grain = 8; // sizes of small blocks are multiples of it
    static constexpr std::size_t first_chunk = 1024;
    static constexpr std::size_t last_chunk = 65536;
    static constexpr std::size_t malloc_overhead = 16;

#if defined(__SANITIZE_ADDRESS__)
    static constexpr bool cuts_chunks = false;
#elif defined(__has_feature)
    static constexpr bool cuts_chunks = !__has_feature(address_sanitizer);
#else
    static constexpr bool cuts_chunks = true;
#endif

    // A block of no bytes counts as a large one.
    static bool is_small(std::size_t size) {
        return cuts_chunks && size - 1 < small_limit;
    }

    void* allocate_small(std::size_t size) noexcept {
        const std::size_t grains = (size + grain - 1) / grain;
        if (m_free[grains] != nullptr) return std::exchange(m_free[grains], m_free[grains]->next);
        const std::size_t bytes = grains * grain;
        if (m_left < bytes && !add_chunk()) return nullptr;
        m_left -= bytes;
        return std::exchange(m_at, m_at + bytes);
    }
    void* allocate_large(std::size_t size) noexcept;
    void release_large(void* block) noexcept;
    bool add_chunk() noexcept;

    std::array<Free*, small_limit / grain + 1> m_free{};
    std::byte* m_at = nullptr; // what is left of the last chunk
    std::size_t m_left = 0;
    std::size_t m_next_chunk = first_chunk;
    Chunk* m_chunks = nullptr;
    Large* m_large = nullptr;
};

} // namespace pm
