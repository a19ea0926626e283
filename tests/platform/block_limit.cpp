#include "platform/block_limit.h"

#include <cstdlib>
#include <limits>
#include <new>

namespace pm::test {

namespace {

constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();
std::size_t largest_block = no_limit;

void* block_of(std::size_t size) noexcept {
    return size <= largest_block ? std::malloc(size > 0 ? size : 1) : nullptr;
}

void* block_or_throw(std::size_t size) {
    void* block = block_of(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

} // namespace

BlockLimit::BlockLimit(std::size_t size) {
    largest_block = size;
}

BlockLimit::~BlockLimit() {
    largest_block = no_limit;
}

} // namespace pm::test

// In place of those of the whole program, all forms of them: a sanitizer has forms of its own.
void* operator new(std::size_t size) {
    return pm::test::block_or_throw(size);
}
void* operator new[](std::size_t size) {
    return pm::test::block_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return pm::test::block_of(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return pm::test::block_of(size);
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
