#pragma once

#include <cstddef>
#include <limits>
#include <memory>

namespace pm {

// The library's one allocator, on malloc: PM_Mem_Obj::alloc and all blocks that callers come to own. Null
// when there is no memory; a block of no bytes is a block.
void* allocate(std::size_t size) noexcept;
// The block reads as zero and takes real memory only where it is written.
void* allocate_zeroed(std::size_t size) noexcept;
void release(void* block) noexcept;
// The block with another size, moved if need be. Null without memory: `block` then stays as it is.
void* reallocate(void* block, std::size_t size) noexcept;

struct Releaser {
    void operator()(void* block) const noexcept { release(block); }
};

// An owned block; release() hands it to the caller.
template<class T>
using Block = std::unique_ptr<T[], Releaser>;

template<class T>
Block<T> allocate_block(std::size_t count) noexcept {
    if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) return nullptr;
    return Block<T>(static_cast<T*>(allocate(count * sizeof(T))));
}

// Asked before each allocation while set: true makes that allocation give null. For tests.
using AllocationFilter = bool (*)(std::size_t size);
void set_allocation_filter(AllocationFilter filter) noexcept;

namespace detail {
extern AllocationFilter allocation_filter;
}

// The two halves of allocate(), for what cuts objects from larger blocks: the filter is asked for each
// object, as if it were a block of its own.
inline bool refused(std::size_t size) noexcept {
    return detail::allocation_filter != nullptr && detail::allocation_filter(size);
}
void* allocate_unasked(std::size_t size) noexcept;

} // namespace pm
