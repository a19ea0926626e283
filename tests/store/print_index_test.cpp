#include "store/print_index.h"

#include "support/allocation_failures.h"
#include <deque>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

struct Element {
    int number;
    std::uint32_t hash;
    std::uint32_t print() const { return hash; }
};

class PrintIndexTest : public testing::Test {
protected:
    PrintIndexTest() = default;
    ~PrintIndexTest() override { m_index.clear(m_pool); }
    PrintIndexTest(const PrintIndexTest&) = delete;
    PrintIndexTest& operator=(const PrintIndexTest&) = delete;

    Element& insert(int number, std::uint32_t print) {
        Element& element = m_elements.emplace_back(Element{number, print});
        EXPECT_TRUE(m_index.reserve(m_pool, m_index.count() + 1));
        m_index.insert(element);
        return element;
    }
    Element* find(const Element& element) const {
        return m_index.find(element.hash, [&](const Element& each) { return each.number == element.number; });
    }

    pm::Pool m_pool;
    pm::PrintIndex<Element> m_index;
    std::deque<Element> m_elements;
};

TEST_F(PrintIndexTest, IsInactiveUntilSomethingIsReserved) {
    EXPECT_FALSE(m_index.active());
    EXPECT_EQ(nullptr, find(Element{1, 1}));
    insert(1, 1);
    EXPECT_TRUE(m_index.active());
    m_index.clear(m_pool);
    EXPECT_FALSE(m_index.active());
}

TEST_F(PrintIndexTest, ElementsOfOnePrintAreKeptApart) {
    for (int number = 0; number < 200; ++number)
        insert(number, 7);
    for (const Element& element : m_elements)
        EXPECT_EQ(&element, find(element));
    EXPECT_EQ(nullptr, find(Element{200, 7}));
}

TEST_F(PrintIndexTest, StaysActiveWhenTheLastElementIsGone) {
    const Element& only = insert(1, 1);
    m_index.erase(only);
    EXPECT_TRUE(m_index.active());
    EXPECT_EQ(0U, m_index.count());
    EXPECT_EQ(nullptr, find(only));
}

// Prints that share few homes, at the end of the slots too, so that runs of elements wrap round.
TEST_F(PrintIndexTest, FindsWhatIsThereWhileElementsComeAndGo) {
    std::mt19937 random(1);
    std::vector<Element*> present;
    for (int turn = 0; turn < 20'000; ++turn) {
        if (present.size() < 300 && random() % 2 == 0) {
            present.push_back(
                &insert(turn, static_cast<std::uint32_t>(random() % 8 - 4 + (random() << 28U))));
        } else if (!present.empty()) {
            std::swap(present[random() % present.size()], present.back());
            m_index.erase(*present.back());
            EXPECT_EQ(nullptr, find(*present.back()));
            present.pop_back();
        }
        if (!present.empty()) {
            const Element* some = present[random() % present.size()];
            ASSERT_EQ(some, find(*some));
        }
    }
    EXPECT_EQ(present.size(), m_index.count());
    for (const Element* element : present)
        EXPECT_EQ(element, find(*element));
}

TEST_F(PrintIndexTest, WithoutMemoryForMoreItStaysAsItIs) {
    int number = 0;
    {
        const pm::test::FailingAllocation failing(0);
        EXPECT_FALSE(m_index.reserve(m_pool, 1));
        EXPECT_FALSE(m_index.active());
    }
    while (m_index.count() < 56)
        insert(number++, 3);
    const pm::test::FailingAllocation failing(0);
    EXPECT_TRUE(m_index.reserve(m_pool, 56));
    EXPECT_FALSE(m_index.reserve(m_pool, 57));
    for (const Element& element : m_elements)
        EXPECT_EQ(&element, find(element));
}

} // namespace
