#pragma once

#include "base/allocator.h"
#include "support/exceptions.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>

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

// Runs `work` the same way and expects that whatever it throws is number 55 of its own class; gives how often
// it did.
template<class Work>
int count_memory_exceptions(Work work, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    int told = 0;
    fail_each_allocation([&](int place) {
        const std::type_info* type = nullptr;
        const auto thrown = thrown_by(work, &type);
        if (!thrown) return;
        ++told;
        if (*type != typeid(PM_Memory_Exception) || thrown->m_number != PM_ERR_NO_MEMORY) {
            ADD_FAILURE_AT(file, line)
                << "allocation " << place << ": "
                << exception_text(*type, thrown->m_number, thrown->m_place, thrown->m_detail);
        }
    });
    return told;
}

} // namespace pm::test
