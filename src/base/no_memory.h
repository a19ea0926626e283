#pragma once

#include <new>
#include <pm/exception.h>
#include <stdexcept>

namespace pm {

// Runs `work` and gives what it gives. What its texts and lists can't have memory for becomes number 55, so
// that no public operation lets std::bad_alloc out.
template<class Work>
decltype(auto) telling_no_memory(const char16_t* place, const char16_t* detail, const char16_t* source,
                                 Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        throw PM_Memory_Exception(place, detail, source);
    } catch (const std::length_error&) {
        // More than can be addressed.
        throw PM_Memory_Exception(place, detail, source);
    }
}

} // namespace pm
