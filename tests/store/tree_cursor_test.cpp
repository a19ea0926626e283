#include "store/tree_cursor.h"

#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/tree_text.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <random>
#include <string>

namespace {

using pm::TreeCursor;
using pm::test::expect_thrown;
using pm::test::tree_text;
using Lines = std::vector<std::string>;

TEST(TreeCursor, SetsPropertiesWhereItStands) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    place.set_long(u"a", 1);
    ASSERT_TRUE(place.push(u"x"));
    ASSERT_TRUE(place.push(u"y"));
    place.set_double(u"b", 2.5);
    place.set_bool(u"c", true);
    ASSERT_TRUE(place.pop());
    place.set_string(u"d", u"text");
    place.set_data(u"e", "ab", 2, PROP_VOID);
    EXPECT_EQ((Lines{"a long 1", "x\\d string text", "x\\e void 6162", "x\\y\\b double 0000000000000440",
                     "x\\y\\c bool 01"}),
              tree_text(object));
}

TEST(TreeCursor, NodesAreMadeWithTheirFirstProperty) {
    PM_Object object;
    TreeCursor place(object, u"base\\deep");
    ASSERT_TRUE(place.push(u"x"));
    EXPECT_FALSE(object.pathExists(u"base"));
    EXPECT_FALSE(object.pathExists(u"x"));
    place.set_long(u"a", 1);
    EXPECT_EQ(Lines{"base\\deep\\x\\a long 1"}, tree_text(object));
}

TEST(TreeCursor, BelowABaseOf255ComponentsIsRoomForAProperty) {
    std::u16string base;
    std::string line;
    for (int level = 0; level < 255; ++level) {
        base += u"\\x";
        line += "x\\";
    }
    PM_Object object;
    TreeCursor place(object, base);
    place.set_long(u"a", 1);
    place.set_long(u"b", 2);
    EXPECT_EQ((Lines{line + "a long 1", line + "b long 2"}), tree_text(object));
    ASSERT_TRUE(place.push(u"y"));
    expect_thrown<PM_Warning>([&] { place.set_long(u"a", 1); }, PM_ERR_BAD_PATH, u"PM_Path::PM_Path()",
                              (base + u"\\y\\a").substr(0, 259));
}

TEST(TreeCursor, AnotherTypeIs54) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    place.set_long(u"a", 1);
    expect_thrown<PM_Warning>([&] { place.set_bool(u"a", true); }, PM_ERR_WRONG_TYPE, u"PM_Object::SetData()",
                              u"");
    EXPECT_EQ(Lines{"a long 1"}, tree_text(object));
}

TEST(TreeCursor, LooksAgainWhenTheTreeMayHaveChanged) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    ASSERT_TRUE(place.push(u"x"));
    place.set_long(u"a", 1);
    object.deletePath(u"x");
    place.look_again();
    place.set_long(u"b", 2);
    EXPECT_EQ(Lines{"x\\b long 2"}, tree_text(object));
}

TEST(TreeCursor, NodesOfOneKindMayHaveOtherNamesAtATurn) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    const auto fill = [&place](const char16_t* node, std::initializer_list<const char16_t*> names) {
        ASSERT_TRUE(place.push(node));
        for (const char16_t* name : names) {
            place.set_long(name, 1);
        }
        ASSERT_TRUE(place.pop());
    };
    fill(u"x", {u"first", u"width", u"height", u"depth"});
    fill(u"y", {u"first", u"height", u"width", u"widths", u"height"});
    fill(u"z", {u"first", u"width", u"width", u"depth", u"new"});
    EXPECT_EQ((Lines{"x\\first long 1", "x\\width long 1", "x\\height long 1", "x\\depth long 1",  //
                     "y\\first long 1", "y\\height long 1", "y\\width long 1", "y\\widths long 1", //
                     "z\\first long 1", "z\\width long 1", "z\\depth long 1", "z\\new long 1"}),
              tree_text(object));
}

TEST(TreeCursor, NodesOfOneKindAreOnesOfOneLevel) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    for (const char16_t* node : {u"x", u"y"}) {
        ASSERT_TRUE(place.push(node));
        place.set_long(u"first", 1);
        ASSERT_TRUE(place.push(u"size"));
        place.set_double(u"width", 2.5);
        place.set_string(u"unit", u"mm");
        ASSERT_TRUE(place.pop());
        place.set_bool(u"last", true);
        ASSERT_TRUE(place.pop());
    }
    EXPECT_EQ((Lines{"x\\first long 1", "x\\last bool 01", "x\\size\\width double 0000000000000440",
                     "x\\size\\unit string mm", "y\\first long 1", "y\\last bool 01",
                     "y\\size\\width double 0000000000000440", "y\\size\\unit string mm"}),
              tree_text(object));
}

TEST(TreeCursor, NameThatAStarHasGivenIsThereOnce) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    ASSERT_TRUE(place.push(u"x"));
    for (const char16_t* name : {u"a", u"q-1", u"b"})
        place.set_long(name, 1);
    ASSERT_TRUE(place.pop());
    ASSERT_TRUE(place.push(u"y"));
    place.set_long(u"a", 2);
    place.set_long(u"q*", 2);
    place.set_long(u"q-1", 3);
    place.set_long(u"b", 2);
    EXPECT_EQ(
        (Lines{"x\\a long 1", "x\\q-1 long 1", "x\\b long 1", "y\\a long 2", "y\\q-1 long 3", "y\\b long 2"}),
        tree_text(object));
}

TEST(TreeCursor, NodeThatIsReachedAgainKeepsItsProperties) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    for (const char16_t* node : {u"x", u"y", u"x", u"y", u"x"}) {
        ASSERT_TRUE(place.push(node));
        place.set_long(u"a", 1);
        place.set_long(u"b", 2);
        place.set_long(u"c", 3);
        ASSERT_TRUE(place.pop());
    }
    EXPECT_EQ(
        (Lines{"x\\a long 1", "x\\b long 2", "x\\c long 3", "y\\a long 1", "y\\b long 2", "y\\c long 3"}),
        tree_text(object));
}

TEST(TreeCursor, PlaceThatOnlyItsPathNamesIsNotTheNodeInFront) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    ASSERT_TRUE(place.push(u"x"));
    place.set_long(u"a", 1);
    place.set_long(u"b", 1);
    ASSERT_TRUE(place.pop());
    ASSERT_TRUE(place.push(u"y"));
    place.set_long(u"a", 1);
    ASSERT_TRUE(place.push(u"s\\t"));
    place.set_long(u"b", 2);
    EXPECT_EQ((Lines{"x\\a long 1", "x\\b long 1", "y\\a long 1", "y\\s\\t\\b long 2"}), tree_text(object));
}

TEST(TreeCursor, ForgetsNamesThatMayHaveGone) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    ASSERT_TRUE(place.push(u"x"));
    place.set_long(u"first", 1);
    place.set_long(u"second", 2);
    object.deletePath(u"x");
    place.look_again();
    ASSERT_TRUE(place.pop());
    ASSERT_TRUE(place.push(u"y"));
    place.set_long(u"first", 3);
    place.set_long(u"second", 4);
    EXPECT_EQ((Lines{"y\\first long 3", "y\\second long 4"}), tree_text(object));
}

TEST(TreeCursor, LongStringIsCut) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    const std::u16string text(5000, u'x');
    for (const auto& [length, units] : {std::pair(0U, 1U), {4095U, 4096U}, {4096U, 4097U}, {5000U, 4097U}}) {
        const std::u16string each = text.substr(0, length);
        place.set_string(u"a", each);
        EXPECT_EQ(2 * units, object.getPropertySize(u"a"));
    }
}

TEST(TreeCursor, PathOfTooManyComponentsIs51) {
    PM_Object object;
    TreeCursor place(object, u"\\");
    for (int level = 0; level < 255; ++level)
        ASSERT_TRUE(place.push(u"n"));
    place.set_long(u"a", 1);
    ASSERT_TRUE(place.push(u"n"));
    const std::u16string path = std::u16string(place.text()) + u"\\a";
    expect_thrown<PM_Warning>([&] { place.set_long(u"a", 1); }, PM_ERR_BAD_PATH, u"PM_Path::PM_Path()",
                              path.substr(0, 259));
}

// One of a few moves at random, with names that are now and then odd.
struct Move {
    int kind;
    std::u16string name;
    int value;
};

Move random_move(std::mt19937& random) {
    static const std::u16string names[] = {u"a",    u"b", u"cc", u"x",  u"y",  u"long name",
                                           u"s\\t", u"*", u"q*", u"\\", u"z\\"};
    const std::size_t odd = random() % 12 == 0 ? std::size(names) : 6;
    return {static_cast<int>(random() % 10), names[random() % odd], static_cast<int>(random() % 5)};
}

// What a move raised, as text.
template<class Action>
std::string outcome(Action action) {
    const auto e = pm::test::thrown_by(action);
    if (!e) return {};
    return std::to_string(e->m_number) + " " + pm::to_narrow(e->m_place) + " " + pm::to_narrow(e->m_detail);
}

void make(TreeCursor& place, PM_Object& object, const Move& move) {
    switch (move.kind) {
    case 0:
    case 1:
        (void)place.push(move.name);
        break;
    case 2:
        (void)place.pop();
        break;
    case 3:
        object.deletePath(move.name.c_str());
        place.look_again();
        break;
    case 4:
        place.look_again();
        break;
    case 5:
        place.set_bool(move.name, true);
        place.leave(move.name);
        break;
    default:
        place.set_long(move.name, move.value);
        place.leave(move.name);
    }
}

// All that the names of the test can ask of the table.
std::string known_names(const PM_Object& object) {
    std::string known;
    for (const char16_t* name :
         {u"a", u"b", u"cc", u"x", u"y", u"long name", u"s", u"t", u"-1", u"q-1", u"z", u"base"})
        known += object.pathExists(name) ? '1' : '0';
    return known;
}

TEST(TreeCursor, DoesWhatPathsDo) {
    std::mt19937 random(1);
    for (int run = 0; run < 3000; ++run) {
        const char16_t* const base =
            std::array<const char16_t*, 9>{
                u"\\",      u"",     u"base", u"\\base\\", u"base\\x", u"*", u"\\base\\\\\\x\\\\",
                u"a\\*\\b", u"\\\\a"}
                .at(random() % 9);
        PM_Object by_nodes;
        PM_Object by_path;
        TreeCursor nodes(by_nodes, base);
        TreeCursor::always_by_path = true;
        TreeCursor path(by_path, base);
        TreeCursor::always_by_path = false;
        for (int step = 0; step < 40; ++step) {
            const Move move = random_move(random);
            ASSERT_EQ(outcome([&] { make(path, by_path, move); }),
                      outcome([&] { make(nodes, by_nodes, move); }));
            ASSERT_EQ(std::u16string(path.text()), nodes.text());
            ASSERT_EQ(known_names(by_path), known_names(by_nodes));
        }
        ASSERT_EQ(tree_text(by_path), tree_text(by_nodes));
    }
}

TEST(TreeCursor, EachFailingAllocationLeavesWhatPathsLeave) {
    const auto fill = [](PM_Object& object, bool by_path, int failing) {
        TreeCursor::always_by_path = by_path;
        TreeCursor place(object, u"base");
        TreeCursor::always_by_path = false;
        const pm::test::FailingAllocation failure(failing);
        const std::string told = outcome([&] {
            place.set_long(u"a", 1);
            (void)place.push(u"x");
            (void)place.push(u"y");
            place.set_string(u"a", u"some text that is not short");
            place.set_long(u"b", 2);
        });
        return std::pair(told, pm::test::FailingAllocation::was_hit());
    };
    for (int failing = 0;; ++failing) {
        PM_Object by_nodes;
        PM_Object by_path;
        const auto [told, hit] = fill(by_nodes, false, failing);
        EXPECT_EQ(fill(by_path, true, failing).first, told) << failing;
        EXPECT_EQ(known_names(by_path), known_names(by_nodes)) << failing;
        if (!hit) break;
    }
}

} // namespace
