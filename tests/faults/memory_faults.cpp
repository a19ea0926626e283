#include "faults/memory_faults.h"

#include "base/allocator.h"
#include <cerrno>

namespace pm::test {

namespace {

bool armed = false;
MemoryOf counted = MemoryOf::library;
Failing manner = Failing::once;
std::uint64_t failing_place = 0;
std::uint64_t seen = 0;
int spared = 0;
std::int64_t live = 0;

bool fails(MemoryOf whose) {
    if (!armed || spared != 0 || whose != counted) return false;
    const std::uint64_t place = seen++;
    if (place < failing_place || (manner == Failing::once && place != failing_place)) return false;
    errno = ENOMEM;
    return true;
}

} // namespace

MemoryFault::MemoryFault(MemoryOf whose, Failing how, std::uint64_t place) {
    counted = whose;
    manner = how;
    failing_place = place;
    seen = 0;
    set_allocation_filter([](std::size_t) { return fails(MemoryOf::library); });
    armed = true;
}

MemoryFault::~MemoryFault() {
    armed = false;
    set_allocation_filter(nullptr);
}

bool MemoryFault::was_hit() {
    return seen > failing_place;
}

std::uint64_t MemoryFault::requests() {
    return seen;
}

Spared::Spared() {
    ++spared;
}

Spared::~Spared() {
    --spared;
}

std::int64_t live_blocks() {
    return live;
}

} // namespace pm::test

#ifdef PM_TEST_REPLACES_MALLOC

namespace {

using pm::test::MemoryOf;

void* noted(void* block) {
    if (block != nullptr) ++pm::test::live;
    return block;
}

bool refused() {
    return pm::test::fails(MemoryOf::process);
}

} // namespace

// In place of the C library's, also for what that library and others take. Its own stand behind them.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) {
    return refused() ? nullptr : noted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
    return refused() ? nullptr : noted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) {
    if (refused()) return nullptr;
    void* const moved = __libc_realloc(block, size);
    return block == nullptr ? noted(moved) : moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
    return refused() ? nullptr : noted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
    void* const block = memalign(alignment, size);
    if (block == nullptr) return ENOMEM;
    *out = block;
    return 0;
}

void free(void* block) {
    if (block != nullptr) --pm::test::live;
    __libc_free(block);
}
}

#else

#include "support/replaced_new.h"

bool pm::test::refuses_block(std::size_t) noexcept {
    return fails(MemoryOf::process);
}

#endif
