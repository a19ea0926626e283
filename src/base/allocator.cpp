#include "base/allocator.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <pm/mem_obj.h>
#include <pm/zt_string.h>

namespace pm {

AllocationFilter detail::allocation_filter = nullptr;

void* allocate_unasked(std::size_t size) noexcept {
    return std::malloc(std::max<std::size_t>(size, 1));
}

void* allocate(std::size_t size) noexcept {
    return refused(size) ? nullptr : allocate_unasked(size);
}

void* allocate_zeroed(std::size_t size) noexcept {
    return refused(size) ? nullptr : std::calloc(std::max<std::size_t>(size, 1), 1);
}

void release(void* block) noexcept {
    std::free(block);
}

void* reallocate(void* block, std::size_t size) noexcept {
    return refused(size) ? nullptr : std::realloc(block, std::max<std::size_t>(size, 1));
}

void set_allocation_filter(AllocationFilter filter) noexcept {
    detail::allocation_filter = filter;
}

} // namespace pm

PM_Mem_Obj::~PM_Mem_Obj() = default;

void* PM_Mem_Obj::alloc(std::size_t size) noexcept {
    return pm::allocate(size);
}

void* PM_Mem_Obj::operator new(std::size_t size) noexcept {
    return alloc(size);
}

void PM_Mem_Obj::operator delete(void* block) noexcept {
    pm::release(block);
}

ZT_Object::~ZT_Object() = default;

void* ZT_Object::operator new(std::size_t size) {
    void* block = std::malloc(size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void ZT_Object::operator delete(void* block) noexcept {
    std::free(block);
}
