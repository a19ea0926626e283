#pragma once

#include "codecs/zlib_block.h"
#include "fuzz_support.h"
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <malloc.h>
#include <string_view>

// Of the sanitizers' allocator; null without one.
extern "C" {
__attribute__((weak)) int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*,
                                                                             std::size_t),
                                                                    void (*)(const volatile void*));
__attribute__((weak)) std::size_t __sanitizer_get_allocated_size(const volatile void*);
}

namespace pm::fuzz {

// Counts what is allocated. Without a sanitizer nobody tells of single blocks: the peak is then what is in
// use when it is asked for.
class Heap {
public:
    static void count_from_here() {
        static const bool hooked = __sanitizer_install_malloc_and_free_hooks != nullptr &&
                                   __sanitizer_install_malloc_and_free_hooks(on_malloc, on_free) != 0;
        s_hooked = hooked;
        s_begin = hooked ? 0 : of_malloc();
        s_in_use = s_peak = 0;
    }
    // Bytes above those that were in use where the count began.
    static std::size_t peak() {
        const std::int64_t bytes = s_hooked ? s_peak : of_malloc() - s_begin;
        return bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
    }

private:
    static std::int64_t of_malloc() {
        const struct mallinfo2 heap = mallinfo2();
        return static_cast<std::int64_t>(heap.uordblks + heap.hblkhd);
    }
    static void on_malloc(const volatile void*, std::size_t size) {
        s_in_use += static_cast<std::int64_t>(size);
        if (s_in_use > s_peak) s_peak = s_in_use;
    }
    static void on_free(const volatile void* block) {
        if (block != nullptr) s_in_use -= static_cast<std::int64_t>(__sanitizer_get_allocated_size(block));
    }

    inline static bool s_hooked = false;
    inline static std::int64_t s_begin = 0;
    inline static std::int64_t s_in_use = 0; // less than none when older blocks go
    inline static std::int64_t s_peak = 0;
};

// What a work may take.
struct Cost {
    std::size_t bytes;
    double seconds; // of the processor
};

// So much for each byte of an input, and so much for any. The time is some hundred times what a quiet machine
// takes without a sanitizer.
inline Cost linear_cost(std::size_t input_size, std::size_t bytes_a_byte, double microseconds_a_byte = 50) {
    constexpr std::size_t bytes_of_any = 1 << 20;
    constexpr double seconds_of_any = 2;
    return {bytes_of_any + bytes_a_byte * input_size,
            seconds_of_any + microseconds_a_byte * 1e-6 * static_cast<double>(input_size)};
}

// What a tree may take for each byte of the text that it is read from, and the time for that. The shortest
// line that makes a node or a property has three bytes.
inline constexpr std::size_t tree_bytes_a_byte = 512;

inline Cost load_cost(std::size_t text_size) {
    return linear_cost(text_size, tree_bytes_a_byte);
}
// Of a file whose text may be compressed, for which its header has a word: a block gives at most so many
// times its own size.
inline Cost load_cost(std::string_view file) {
    const bool compressed = file.find("compress") != std::string_view::npos;
    return load_cost(compressed ? most_expansion * file.size() : file.size());
}

// Measures from its making on.
class CostBound {
public:
    explicit CostBound(const Cost& allowed) : m_allowed(allowed) {
        Heap::count_from_here();
        m_start = now();
    }
    CostBound(const CostBound&) = delete;
    CostBound& operator=(const CostBound&) = delete;

    // To be called while what the work gave still lives.
    void require_held() const {
        require(Heap::peak() <= m_allowed.bytes);
        require(now() - m_start <= m_allowed.seconds);
    }

private:
    static double now() {
        std::timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }

    Cost m_allowed;
    double m_start = 0;
};

} // namespace pm::fuzz
