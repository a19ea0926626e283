#pragma once

#include <cstdint>

// The memory of the whole test program, which fails on demand.
namespace pm::test {

// Whose requests count.
enum class MemoryOf {
    library, // its own allocator, an object of a pool as if it were a block
    process  // all of malloc, that of the libraries underneath too; under a sanitizer operator new alone
};

enum class Failing { once, from_then_on };

// While one lives, the request with the given place in order (from 0) gets nothing, or none does from there
// on.
class MemoryFault {
public:
    MemoryFault(MemoryOf whose, Failing how, std::uint64_t place);
    ~MemoryFault();
    MemoryFault(const MemoryFault&) = delete;
    MemoryFault& operator=(const MemoryFault&) = delete;

    // Whether the work got as far as the failing request, of this one or of the last.
    static bool was_hit();
    // The requests that counted since the last one began.
    static std::uint64_t requests();
};

// While one lives, requests neither count nor fail: what the test needs for itself.
class Spared {
public:
    Spared();
    ~Spared();
    Spared(const Spared&) = delete;
    Spared& operator=(const Spared&) = delete;
};

// Whether malloc is this program's, and not a sanitizer's.
#ifdef PM_TEST_REPLACES_MALLOC
inline constexpr bool replaces_malloc = true;
#else
inline constexpr bool replaces_malloc = false;
#endif

// Blocks of malloc that weren't released yet; always 0 under a sanitizer, which looks for leaks itself.
std::int64_t live_blocks();

} // namespace pm::test
