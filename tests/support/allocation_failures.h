#pragma once

#include "base/allocator.h"

namespace pm::test {

// While one lives, the allocation with the given place in order (from 0) fails.
class FailingAllocation {
public:
    explicit FailingAllocation(int place) {
        left = place;
        hit = false;
        set_allocation_filter([](std::size_t) {
            if (left-- != 0) return false;
            hit = true;
            return true;
        });
    }
    ~FailingAllocation() { set_allocation_filter(nullptr); }
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    // Whether the operation got as far as the failing allocation.
    static bool was_hit() { return hit; }

private:
    static inline int left = 0;
    static inline bool hit = false;
};

// Runs `operation(place)` with each of its allocations failing in turn, until a run meets no failure, and
// gives the number of allocations that were failed. The operation handles what is thrown.
template<class Operation>
int fail_each_allocation(Operation operation) {
    for (int place = 0;; ++place) {
        const FailingAllocation failing(place);
        operation(place);
        if (!FailingAllocation::was_hit()) return place;
    }
}

} // namespace pm::test
