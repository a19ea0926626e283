#pragma once

#include <cstdlib>
#include <string_view>

namespace pm::test {

// Whether tests that try a part of all cases are to try all of them: PM_TORTURE=1. That takes from minutes to
// hours.
inline bool is_torture() {
    const char* const value = std::getenv("PM_TORTURE");
    return value != nullptr && std::string_view(value) == "1";
}

} // namespace pm::test
