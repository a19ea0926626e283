#pragma once

#include <cstdint>
#include <pm/pm_c.h>

// The way of failures out of C++.
namespace pm::c {

// The status of the exception that is being handled, told in `error` too unless that is null or too small.
// Takes no memory.
pm9_status tell_failure(pm9_error* error) noexcept;

// Does the work of a function of the interface.
template<class Work>
pm9_status guarded(pm9_error* error, Work work) noexcept {
    try {
        work();
        return PM9_OK;
    } catch (...) {
        return tell_failure(error);
    }
}

// What the interface itself refuses: PM_Warning with place "pm9c".
[[noreturn]] void refuse(const char16_t* detail, std::uint32_t number);

} // namespace pm::c
