#pragma once

#include <cstdlib>

namespace pm::test {

// Whether the long form of a campaign is asked for: PM_TORTURE=1.
inline bool torture() {
    const char* const value = std::getenv("PM_TORTURE");
    return value != nullptr && *value == '1';
}

} // namespace pm::test
