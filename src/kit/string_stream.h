#pragma once

#include <ios>
#include <new>

namespace pm::kit {

// A stream that writes to a string fails for want of memory alone, and keeps that to itself.
inline void require_memory(const std::ios& written) {
    if (!written) throw std::bad_alloc();
}

} // namespace pm::kit
