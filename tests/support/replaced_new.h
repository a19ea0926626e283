#ifndef PM_TESTS_SUPPORT_REPLACED_NEW_H
#define PM_TESTS_SUPPORT_REPLACED_NEW_H

// Puts forms of operator new that can fail in place of those of the whole program. One source of a program
// includes it, and says in refuses_block() which requests fail.

#include <cstddef>
#include <cstdlib>
#include <new>

namespace pm::test {

// Asked for each block.
bool refuses_block(std::size_t size) noexcept;

inline void* block_or_null(std::size_t size) noexcept {
    return refuses_block(size) ? nullptr : std::malloc(size > 0 ? size : 1);
}

inline void* block_or_throw(std::size_t size) {
    void* const block = block_or_null(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

} // namespace pm::test

// All forms: a sanitizer has each of its own.
void* operator new(std::size_t size) {
    return pm::test::block_or_throw(size);
}
void* operator new[](std::size_t size) {
    return pm::test::block_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return pm::test::block_or_null(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return pm::test::block_or_null(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept {
    std::free(block);
}

#endif
