#include "kit/random_tree.h"
#include <gmock/gmock.h>
#include <pm/inspect.h>
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/merge.h>

namespace pm::kit::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Merge : public ::testing::Test {
protected:
    Merge() {
        const auto edits =
            parse_script("set \\x long 1\nset \\y long 1\nset \\n\\p long 1\nset \\n\\q long 1\n");
        base = applied(base, edits);
        a = copy(base);
        b = copy(base);
    }
    void change(Tree& tree, const char* text) { tree = applied(tree, parse_script(text)); }
    // What is left to change in the merged tree to have the base with these edits.
    std::vector<std::string> beside(const Merged& merged, const char* text) {
        std::vector<std::string> lines;
        for (const Difference& difference : compare(applied(base, parse_script(text)), merged.tree)) {
            lines.push_back(difference_text(difference));
        }
        return lines;
    }
    static std::vector<std::string> conflicts(const Merged& merged) {
        std::vector<std::string> lines;
        for (const Conflict& conflict : merged.conflicts) {
            lines.push_back(conflict_text(conflict));
        }
        return lines;
    }

    Tree base;
    Tree a;
    Tree b;
};

TEST_F(Merge, TakesTheChangesOfBothSides) {
    change(a, "set \\x long 2\nrm \\n\\p\nset \\new\\r bool true");
    change(b, "set \\y double 2\nset \\n\\s long 3\nset \\n\\e\\");
    const Merged merged = merge(base, a, b);
    EXPECT_THAT(merged.conflicts, IsEmpty());
    EXPECT_THAT(beside(merged, "set \\x long 2\nrm \\n\\p\nset \\new\\r bool true\nset \\y double 2\n"
                               "set \\n\\s long 3\nset \\n\\e\\"),
                IsEmpty());
}

TEST_F(Merge, EqualChangesAreNoConflict) {
    change(a, "set \\x long 2\nrm \\n\\\nset \\z long 1");
    EXPECT_THAT(merge(base, a, a).conflicts, IsEmpty());
    EXPECT_TRUE(identical(a, merge(base, a, a).tree));
}

TEST_F(Merge, UnequalChangesAre) {
    change(a, "set \\x long 2\nrm \\y\nset \\z long 1");
    change(b, "set \\x long 3\nset \\y long 4\nset \\z double 1");
    const Merged merged = merge(base, a, b);
    EXPECT_THAT(conflicts(merged), ElementsAre("\\x: long 1 -> long 2 | long 3",
                                               "\\z: - -> long 1 | double 1.0", "\\y: long 1 -> - | long 4"));
    EXPECT_TRUE(identical(a, merged.tree));
    EXPECT_EQ(4, merge(base, a, b, Prefer::second).tree.get<int>("\\y"));
}

TEST_F(Merge, NodeThatOneSideRemovedAndTheOtherLeftGoes) {
    change(a, "rm \\n\\");
    EXPECT_TRUE(identical(a, merge(base, a, b).tree));
    EXPECT_TRUE(identical(a, merge(base, b, a).tree));
    EXPECT_THAT(merge(base, b, a).conflicts, IsEmpty());
}

TEST_F(Merge, NodeThatOneSideRemovedAndTheOtherChangedIsAConflict) {
    change(a, "rm \\n\\");
    change(b, "set \\n\\p long 2");
    const Merged merged = merge(base, a, b);
    EXPECT_THAT(conflicts(merged), ElementsAre("\\n\\p: long 1 -> - | long 2"));
    EXPECT_TRUE(identical(a, merged.tree));
    EXPECT_EQ(2, merge(base, a, b, Prefer::second).tree.get<int>("\\n\\p"));
}

TEST_F(Merge, NodeThatOneSideRemovedAndTheOtherFilledIsAConflict) {
    change(a, "rm \\n\\");
    change(b, "set \\n\\new\\");
    EXPECT_THAT(conflicts(merge(base, a, b)),
                ElementsAre("\\n\\new\\: removed on one side, changed on the other"));
}

TEST_F(Merge, EachAdditionToANodeThatOneSideRemovedIsAConflict) {
    change(a, "rm \\n\\");
    change(b, "set \\n\\p long 2\nset \\n\\new long 3\nset \\n\\m\\r long 4\nset \\n\\m\\e\\");
    const Merged merged = merge(base, a, b);
    EXPECT_THAT(conflicts(merged), ElementsAre("\\n\\p: long 1 -> - | long 2", "\\n\\new: - -> - | long 3",
                                               "\\n\\m\\r: - -> - | long 4",
                                               "\\n\\m\\e\\: removed on one side, changed on the other"));
    EXPECT_TRUE(identical(a, merged.tree));
    const Merged back = merge(base, b, a);
    EXPECT_THAT(conflicts(back), ElementsAre("\\n\\p: long 1 -> long 2 | -", "\\n\\new: - -> long 3 | -",
                                             "\\n\\m\\r: - -> long 4 | -",
                                             "\\n\\m\\e\\: removed on one side, changed on the other"));
    EXPECT_THAT(beside(back, "set \\n\\p long 2\nrm \\n\\q\nset \\n\\new long 3\nset \\n\\m\\r long 4\n"
                             "set \\n\\m\\e\\"),
                IsEmpty());
}

TEST_F(Merge, ConflictsOfAListAreInTheOrderThatItGets) {
    change(a, "rm \\x\nset \\y long 2");
    change(b, "set \\x long 3\nset \\y long 3");
    EXPECT_THAT(conflicts(merge(base, a, b)),
                ElementsAre("\\y: long 1 -> long 2 | long 3", "\\x: long 1 -> - | long 3"));
}

TEST_F(Merge, OrderOfTheSideThatChangedIt) {
    change(b, "mv \\x \\x\nset \\z long 1");
    EXPECT_TRUE(identical(b, merge(base, a, b).tree));
    EXPECT_TRUE(identical(b, merge(base, b, a).tree));
}

TEST_F(Merge, OfRandomTreesKeepsItsIdentities) {
    RandomTree random(21);
    for (int i = 0; i < 200; ++i) {
        const Tree start = random.make(40);
        Tree one = copy(start);
        random.change(one, 6);
        Tree two = copy(start);
        random.change(two, 6);
        ASSERT_TRUE(identical(start, merge(start, start, start).tree));
        ASSERT_TRUE(identical(one, merge(start, one, one).tree));
        ASSERT_THAT(merge(start, one, start).conflicts, IsEmpty());
        ASSERT_THAT(compare(one, merge(start, one, start).tree), IsEmpty());
        ASSERT_THAT(compare(two, merge(start, start, two).tree), IsEmpty());
        // Either way round there are the same conflicts, and the same content but for the order.
        const Merged there = merge(start, one, two);
        const Merged back = merge(start, two, one, Prefer::second);
        ASSERT_EQ(there.conflicts.size(), back.conflicts.size());
        ASSERT_THAT(compare(there.tree, back.tree, {.order = false}), IsEmpty());
    }
}

} // namespace
} // namespace pm::kit::test
