#include "store/pool.h"

#include "support/allocation_failures.h"
#include <algorithm>
#include <cstdint>
#include <gmock/gmock.h>
#include <vector>

namespace {

using pm::test::FailingAllocation;

struct Numbered {
    Numbered(int& sum, int number) : m_sum(&sum), m_number(number) { *m_sum += m_number; }
    ~Numbered() { *m_sum -= m_number; }
    Numbered(const Numbered&) = delete;
    Numbered& operator=(const Numbered&) = delete;

    int* m_sum;
    int m_number;
};

std::vector<std::size_t> asked;

TEST(Pool, BlocksOfAllSizesKeepTheirBytesApart) {
    struct Block {
        unsigned char* bytes;
        std::size_t size;
    };
    pm::Pool pool;
    std::vector<Block> blocks;
    for (std::size_t turn = 0; turn < 3000; ++turn) {
        const std::size_t size = turn * 37 % 600;
        auto* bytes = static_cast<unsigned char*>(pool.allocate(size));
        ASSERT_NE(nullptr, bytes);
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(bytes) % alignof(void*));
        std::fill_n(bytes, size, static_cast<unsigned char>(turn));
        blocks.push_back({bytes, size});
        if (turn % 3 == 0) {
            pool.release(blocks[turn / 3].bytes, blocks[turn / 3].size);
            blocks[turn / 3].size = 0;
        }
    }
    for (std::size_t turn = 0; turn < blocks.size(); ++turn) {
        const auto [bytes, size] = blocks[turn];
        EXPECT_EQ(size, static_cast<std::size_t>(
                            std::count(bytes, bytes + size, static_cast<unsigned char>(turn))));
    }
}

TEST(Pool, WhatWasReleasedIsTakenAgain) {
    pm::Pool pool;
    std::uintptr_t least = UINTPTR_MAX;
    std::uintptr_t most = 0;
    for (int turn = 0; turn < 100'000; ++turn) {
        void* block = pool.allocate(40);
        least = std::min(least, reinterpret_cast<std::uintptr_t>(block));
        most = std::max(most, reinterpret_cast<std::uintptr_t>(block));
        pool.release(block, 40);
    }
#if !defined(__SANITIZE_ADDRESS__) // which keeps released blocks out of use for a while
    EXPECT_EQ(least, most);
#endif
    pool.release(nullptr, 40);
}

TEST(Pool, AsksTheFilterForEachBlockByItsSize) {
    pm::Pool pool;
    asked.clear();
    pm::set_allocation_filter([](std::size_t size) {
        asked.push_back(size);
        return size == 48;
    });
    EXPECT_NE(nullptr, pool.allocate(40));
    EXPECT_EQ(nullptr, pool.allocate(48));
    EXPECT_NE(nullptr, pool.allocate(5000));
    pm::set_allocation_filter(nullptr);
    EXPECT_THAT(asked, testing::ElementsAre(40, 48, 5000));
    EXPECT_NE(nullptr, pool.allocate(48));
}

TEST(Pool, ASizeThatOverflowsIsNull) {
    pm::Pool pool;
    EXPECT_EQ(nullptr, pool.allocate(SIZE_MAX));
    EXPECT_EQ(nullptr, pool.allocate(SIZE_MAX - 10));
}

TEST(Pool, MakesAndDestroysObjects) {
    pm::Pool pool;
    int sum = 0;
    auto* one = pool.make<Numbered>(sum, 1);
    auto* two = pool.make<Numbered>(sum, 2);
    EXPECT_EQ(3, sum);
    pool.destroy(one);
    EXPECT_EQ(2, sum);
    const FailingAllocation failing(0);
    EXPECT_EQ(nullptr, pool.make<Numbered>(sum, 4));
    EXPECT_EQ(2, sum);
    pool.destroy(two);
    EXPECT_EQ(0, sum);
}

TEST(Pool, EndsWithoutDestructors) {
    int sum = 0;
    {
        pm::Pool pool;
        pool.make<Numbered>(sum, 1);
    }
    EXPECT_EQ(1, sum);
}

} // namespace
