#pragma once

#include <cstddef>
#include <malloc.h>

// Of the sanitizers' allocator; null without one.
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_current_allocated_bytes();

namespace pm::fuzz {

// The bytes that the process has allocated and not given back.
inline std::size_t heap_in_use() {
    if (__sanitizer_get_current_allocated_bytes != nullptr) return __sanitizer_get_current_allocated_bytes();
    const struct mallinfo2 heap = mallinfo2();
    return heap.uordblks + heap.hblkhd;
}

} // namespace pm::fuzz
