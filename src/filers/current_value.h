#pragma once

#include "base/allocator.h"
#include <cstddef>
#include <pm/iterator.h>

namespace pm {

// The value that an iterator gives with a property, released also when a walk is given up.
struct CurrentValue {
    char* text = nullptr;
    std::size_t size = 0;
    PropType type = PROP_NONE;

    CurrentValue() = default;
    ~CurrentValue() { release(text); }
    CurrentValue(const CurrentValue&) = delete;
    CurrentValue& operator=(const CurrentValue&) = delete;

    // The name of the next property of the walk's node, or null.
    const char16_t* next(PM_Iterator& walk) { return walk.nextProp(text, size, type); }
};

} // namespace pm
