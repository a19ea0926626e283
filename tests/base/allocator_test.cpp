#include "base/allocator.h"

#include "support/allocation_failures.h"
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <pm/mem_obj.h>

namespace {

using pm::test::FailingAllocation;

class Counted : public PM_Mem_Obj {
public:
    explicit Counted(int& count) : m_count(count) { ++m_count; }
    ~Counted() override { --m_count; }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

private:
    int& m_count;
};

std::size_t last_asked_size = 0;

} // namespace

TEST(Allocator, GivesWritableBlocks) {
    void* block = pm::allocate(1000);
    ASSERT_NE(nullptr, block);
    std::fill_n(static_cast<char*>(block), 1000, 'x');
    pm::release(block);
    pm::release(nullptr);
}

TEST(Allocator, BlockOfNoBytesIsABlock) {
    void* block = pm::allocate(0);
    void* zeroed = pm::allocate_zeroed(0);
    EXPECT_NE(nullptr, block);
    EXPECT_NE(nullptr, zeroed);
    pm::release(block);
    pm::release(zeroed);
}

TEST(Allocator, ZeroedBlocksReadAsZero) {
    for (int run = 0; run < 10; ++run) {
        auto* block = static_cast<char*>(pm::allocate_zeroed(5000));
        EXPECT_EQ(5000, std::count(block, block + 5000, '\0'));
        std::fill_n(block, 5000, 'x');
        pm::release(block);
    }
}

TEST(Allocator, BlockWhoseSizeOverflowsIsNull) {
    EXPECT_EQ(nullptr, pm::allocate_block<std::uint64_t>(SIZE_MAX / 8 + 2));
    EXPECT_EQ(nullptr, pm::allocate_block<char16_t>(SIZE_MAX / 2 + 2));
}

TEST(Allocator, BlocksAreReleasedByFreeToo) {
    const auto free_all = [] {
        std::free(pm::allocate(10));
        std::free(pm::allocate_zeroed(10));
        std::free(pm::allocate_block<char16_t>(10).release());
        std::exit(0);
    };
    EXPECT_EXIT(free_all(), testing::ExitedWithCode(0), "");
}

TEST(Allocator, FilterSeesTheSizeAndRefuses) {
    pm::set_allocation_filter([](std::size_t size) {
        last_asked_size = size;
        return size == 77;
    });
    EXPECT_EQ(nullptr, pm::allocate(77));
    EXPECT_EQ(77U, last_asked_size);
    EXPECT_EQ(nullptr, pm::allocate_zeroed(77));
    pm::allocate_block<char16_t>(39);
    EXPECT_EQ(78U, last_asked_size);
    pm::set_allocation_filter(nullptr);
    const std::unique_ptr<void, pm::Releaser> block(pm::allocate(77));
    EXPECT_NE(nullptr, block);
}

TEST(MemObj, NewGivesNullWithoutMemoryAndConstructsNothing) {
    int alive = 0;
    {
        const FailingAllocation failing(0);
        EXPECT_EQ(nullptr, new Counted(alive));
        EXPECT_TRUE(FailingAllocation::was_hit());
    }
    EXPECT_EQ(0, alive);
}

TEST(MemObj, IsDeletedThroughItsBase) {
    int alive = 0;
    PM_Mem_Obj* object = new Counted(alive);
    ASSERT_NE(nullptr, object);
    EXPECT_EQ(1, alive);
    delete object;
    EXPECT_EQ(0, alive);
}

TEST(MemObj, DeleteReleasesBlocksAndTakesNull) {
    const auto delete_both = [] {
        PM_Mem_Obj::operator delete(pm::allocate(10));
        PM_Mem_Obj::operator delete(nullptr);
        std::exit(0);
    };
    EXPECT_EXIT(delete_both(), testing::ExitedWithCode(0), "");
}

TEST(FailEachAllocation, FailsOneAfterTheOther) {
    int complete = 0;
    const int failures = pm::test::fail_each_allocation([&](int place) {
        for (int i = 0; i < 3; ++i) {
            const std::unique_ptr<void, pm::Releaser> block(pm::allocate(1));
            EXPECT_EQ(i == place, block == nullptr);
        }
        ++complete;
    });
    EXPECT_EQ(3, failures);
    EXPECT_EQ(4, complete);
}
