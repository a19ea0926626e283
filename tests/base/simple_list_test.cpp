#include "base/simple_list.h"
#include <gtest/gtest.h>
#include <pm/zt_string.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using Names = SimpleList<ZT_String>;

struct Record {
    ZT_String name;
    int value = 0;
};
using Records = SimpleListWithSearch<Record>;

std::vector<std::u16string> texts(const Names& list) {
    std::vector<std::u16string> all;
    for (const ZT_String& name : list)
        all.emplace_back(name.text());
    return all;
}
using Texts = std::vector<std::u16string>;

Names list_of(std::initializer_list<const char16_t*> names) {
    Names list;
    for (const char16_t* name : names)
        list.append(ZT_String(name));
    return list;
}

TEST(SimpleList, FreshOneIsEmpty) {
    const Names list;
    EXPECT_EQ(nullptr, list.head());
    EXPECT_EQ(nullptr, list.tail());
    EXPECT_EQ(0, list.count());
    EXPECT_EQ(Texts{}, texts(list));
}

TEST(SimpleList, AppendsAtTheTail) {
    const Names list = list_of({u"a", u"b", u"c"});
    EXPECT_EQ((Texts{u"a", u"b", u"c"}), texts(list));
    EXPECT_EQ(3, list.count());
    EXPECT_EQ(std::u16string(u"a"), list.head()->text());
    EXPECT_EQ(std::u16string(u"c"), list.tail()->text());
    EXPECT_EQ(nullptr, list.tail()->next);
}

TEST(SimpleList, TakesANodeAsItIs) {
    Names list;
    auto node = std::make_unique<Names::Node>(ZT_String(u"a"));
    const Names::Node* address = node.get();
    list.append(std::move(node));
    EXPECT_EQ(address, list.head());
    EXPECT_EQ(address, list.tail());
}

TEST(SimpleList, ClearLeavesAnEmptyListThatCanBeUsedAgain) {
    Names list = list_of({u"a", u"b"});
    list.clear();
    EXPECT_EQ(nullptr, list.head());
    EXPECT_EQ(nullptr, list.tail());
    EXPECT_EQ(0, list.count());
    list.append(ZT_String(u"c"));
    EXPECT_EQ(Texts{u"c"}, texts(list));
}

TEST(SimpleList, CopyHasNodesOfItsOwn) {
    Names list = list_of({u"a", u"b"});
    const Names copy = list;
    list.clear();
    EXPECT_EQ((Texts{u"a", u"b"}), texts(copy));
}

// Counts its instances; a copy throws when none is left of those that it may make.
struct Limited {
    Limited() { ++alive; }
    Limited(const Limited&) {
        if (copies_left-- == 0) throw std::runtime_error("no copy left");
        ++alive;
    }
    Limited(Limited&&) noexcept { ++alive; }
    Limited& operator=(const Limited&) = default;
    Limited& operator=(Limited&&) = default;
    ~Limited() { --alive; }

    static inline int alive = 0;
    static inline int copies_left = 0;
};

TEST(SimpleList, CopyThatThrowsLeavesNothingBehind) {
    SimpleList<Limited> list;
    for (int node = 0; node < 3; ++node)
        list.append(std::make_unique<SimpleList<Limited>::Node>());
    Limited::copies_left = 2;
    EXPECT_THROW(SimpleList<Limited>{list}, std::runtime_error);
    EXPECT_EQ(3, Limited::alive);
    EXPECT_EQ(3, list.count());
}

TEST(SimpleList, AssignmentReplaces) {
    Names list = list_of({u"a", u"b"});
    const Names other = list_of({u"c"});
    list = other;
    EXPECT_EQ(Texts{u"c"}, texts(list));
    EXPECT_EQ(Texts{u"c"}, texts(other));
}

TEST(SimpleList, MoveLeavesAnEmptyList) {
    Names list = list_of({u"a"});
    const Names moved = std::move(list);
    EXPECT_EQ(Texts{u"a"}, texts(moved));
    EXPECT_EQ(0, list.count());
}

TEST(SimpleList, CursorStepsAndEnds) {
    Names list = list_of({u"a", u"b"});
    Names::Cursor cursor = list.begin();
    EXPECT_EQ(std::u16string(u"a"), (*cursor++).text());
    EXPECT_EQ(std::u16string(u"b"), cursor->text());
    EXPECT_EQ(list.end(), ++cursor);
}

TEST(SimpleList, MillionNodesAreDestroyedWithoutAStackFrameEach) {
    Names list;
    for (int node = 0; node < 1'000'000; ++node)
        list.append(ZT_String());
    EXPECT_EQ(1'000'000, list.count());
}

TEST(SimpleListWithSearch, FindsTheFirstOfAName) {
    Records list;
    list.append(Record{ZT_String(u"a"), 1});
    list.append(Record{ZT_String(u"b"), 2});
    list.append(Record{ZT_String(u"b"), 3});
    ASSERT_NE(nullptr, list.find_by_name(u"b"));
    EXPECT_EQ(2, list.find_by_name(u"b")->value);
    EXPECT_EQ(nullptr, list.find_by_name(u"c"));
}

TEST(SimpleListWithSearch, ComparesCaseAndLength) {
    Records list;
    list.append(Record{ZT_String(u"Roll"), 1});
    EXPECT_EQ(nullptr, list.find_by_name(u"roll"));
    EXPECT_EQ(nullptr, list.find_by_name(u"Rol"));
    EXPECT_EQ(nullptr, list.find_by_name(u"Roll1"));
    EXPECT_EQ(nullptr, list.find_by_name(u""));
}

TEST(SimpleListWithSearch, EmptyNamesAndNamesNeverSetAreEqual) {
    Records never_set;
    never_set.append(Record{});
    EXPECT_EQ(never_set.head(), never_set.find_by_name(u""));
    Records empty;
    empty.append(Record{ZT_String(u""), 1});
    EXPECT_EQ(empty.head(), empty.find_by_name(ZT_String().text()));
}

} // namespace
