#include "kit/errors.h"
#include "kit/random_tree.h"
#include <gmock/gmock.h>
#include <pm/inspect.h>
#include <pm/kit/difference.h>

namespace pm::kit::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> texts(const std::vector<Difference>& differences) {
    std::vector<std::string> lines;
    for (const Difference& difference : differences) {
        lines.push_back(difference_text(difference));
    }
    return lines;
}

class Compare : public ::testing::Test {
protected:
    Compare() {
        for (Tree* tree : {&a, &b}) {
            tree->set("\\x", 1);
            tree->set("\\y", 0.5);
            tree->set("\\n\\s", "text");
            tree->set("\\m\\t", true);
        }
    }
    std::vector<std::string> differences(const CompareOptions& options = {}) {
        return texts(compare(a, b, options));
    }

    Tree a;
    Tree b;
};

TEST_F(Compare, EqualTreesHaveNone) {
    EXPECT_THAT(differences(), IsEmpty());
    EXPECT_TRUE(identical(a, b));
}

TEST_F(Compare, ValueOfAProperty) {
    b.set("\\x", 2);
    EXPECT_THAT(differences(), ElementsAre("~ \\x: long 1 -> long 2"));
    EXPECT_FALSE(identical(a, b));
}

TEST_F(Compare, TypeOfAProperty) {
    put(b, "\\x", make_stored(Value(1.0)));
    EXPECT_THAT(differences(), ElementsAre("~ \\x: long 1 -> double 1.0"));
    EXPECT_EQ(Change::type, compare(a, b).front().change);
}

TEST_F(Compare, StrictnessOfAProperty) {
    b.set("\\x", 1, -1, false);
    EXPECT_THAT(differences(), ElementsAre("~ \\x: loose"));
    EXPECT_THAT(differences({.strictness = false}), IsEmpty());
}

TEST_F(Compare, WhatOnlyOneSideHasWithAllThatIsInIt) {
    b.set("\\new\\deep\\p", 1);
    a.set("\\old", 2);
    EXPECT_THAT(differences(),
                ElementsAre("- \\old: long 2", "+ \\new\\", "+ \\new\\deep\\", "+ \\new\\deep\\p: long 1"));
}

TEST_F(Compare, EmptyNodeCounts) {
    make_node(a.object(), u"\\e");
    EXPECT_THAT(differences(), ElementsAre("- \\e\\"));
}

TEST_F(Compare, NodeAndPropertyOfOneNameAreTwoThings) {
    a.set("\\n", 1);
    EXPECT_THAT(differences(), ElementsAre("- \\n: long 1"));
}

TEST_F(Compare, OrderIsToldByWhatGoesToTheEnd) {
    a.erase("\\x");
    a.set("\\x", 1);
    const std::vector<Difference> found = compare(a, b);
    EXPECT_THAT(texts(found), ElementsAre("order of \\"));
    EXPECT_THAT(found.front().moved, ElementsAre("\\y"));
    EXPECT_THAT(differences({.order = false}), IsEmpty());
}

TEST_F(Compare, NodeThatWasAddedInFrontChangesTheOrder) {
    Tree c;
    c.set("\\first\\p", 1);
    copy(b.root(), c, "\\");
    const std::vector<Difference> found = compare(b, c);
    EXPECT_THAT(texts(found), ElementsAre("+ \\first\\", "+ \\first\\p: long 1", "order of \\"));
    EXPECT_THAT(found.back().moved, ElementsAre("\\n\\", "\\m\\"));
}

TEST_F(Compare, NegativeZeroAndNaNCountByTheirBits) {
    a.set("\\y", 0.0);
    b.set("\\y", -0.0);
    EXPECT_THAT(differences(), ElementsAre("~ \\y: double 0.0 -> double -0.0"));
    a.set("\\y", std::numeric_limits<double>::quiet_NaN());
    b.set("\\y", std::numeric_limits<double>::quiet_NaN());
    EXPECT_THAT(differences(), IsEmpty());
}

TEST_F(Compare, ToleranceIsOfDoublesOnly) {
    b.set("\\y", 0.51);
    b.set("\\x", 2);
    EXPECT_THAT(differences({.tolerance = 0.011}), ElementsAre("~ \\x: long 1 -> long 2"));
    EXPECT_THAT(differences({.tolerance = 0.009}),
                ElementsAre("~ \\x: long 1 -> long 2", "~ \\y: double 0.5 -> double 0.51"));
    b.set("\\y", std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(2U, differences({.tolerance = 100}).size());
}

TEST_F(Compare, ToleranceIsOfDoublesThatAreWhole) {
    put(b, "\\y", {PROP_DOUBLE, true, Bytes(4)});
    EXPECT_THAT(differences({.tolerance = 100}), ElementsAre("~ \\y: double 0.5 -> double bytes 00000000"));
    put(a, "\\y", {PROP_DOUBLE, true, Bytes(4, std::byte{1})});
    EXPECT_THAT(differences({.tolerance = 100}),
                ElementsAre("~ \\y: double bytes 01010101 -> double bytes 00000000"));
}

TEST_F(Compare, NoValueIsNotAnEmptyOne) {
    put(a, "\\r", {PROP_VOID, true, std::nullopt});
    put(b, "\\r", {PROP_VOID, true, Bytes()});
    EXPECT_THAT(differences(), ElementsAre("~ \\r: raw none -> raw"));
    put(b, "\\r", {PROP_VOID, true, std::nullopt});
    EXPECT_THAT(differences(), IsEmpty());
}

TEST_F(Compare, NarrowTextIsNotTheWideOneOfItsUnits) {
    a.object().SetProperty(u"\\z", u"ab");
    b.object().SetProperty(u"\\z", reinterpret_cast<const unsigned char*>("ab"));
    EXPECT_THAT(differences(), ElementsAre("~ \\z: string \"ab\" -> string bytes 616200"));
}

TEST_F(Compare, WhatIsExcludedCountsOnNeitherSide) {
    a.set("\\n\\old", 1);
    b.set("\\n\\new\\p", 1);
    b.set("\\x", 2);
    EXPECT_THAT(differences({.exclude = {"\\n\\**"}}), ElementsAre("~ \\x: long 1 -> long 2"));
    EXPECT_THAT(differences({.exclude = {"\\n\\", "x"}}), IsEmpty());
    EXPECT_THAT(differences({.exclude = {"\\n\\", "x\\"}}), ElementsAre("~ \\x: long 1 -> long 2"));
    EXPECT_EQ("a path can't hold a zero",
              error_of([&] { (void)differences({.exclude = {std::string("\0", 1)}}); }));
}

TEST_F(Compare, OneNodeAloneHasWholePaths) {
    a.set("\\n\\deep\\old", 1);
    b.set("\\n\\deep\\new", 2);
    b.set("\\x", 9);
    const auto at = [&](std::string_view path, const CompareOptions& options = {}) {
        return texts(compare_at(a, b, path, options).value());
    };
    EXPECT_THAT(at("\\n\\deep"), ElementsAre("- \\n\\deep\\old: long 1", "+ \\n\\deep\\new: long 2"));
    EXPECT_EQ(at("\\n\\deep"), at("\\n\\deep\\"));
    EXPECT_EQ(at("\\n"), at("\\n\\deep"));
    EXPECT_THAT(at("\\m"), IsEmpty());
    EXPECT_EQ(at("\\"), differences());
    EXPECT_THAT(at("\\n", {.exclude = {"\\n\\deep\\o*"}}), ElementsAre("+ \\n\\deep\\new: long 2"));
    EXPECT_THAT(at("\\n\\deep", {.exclude = {"old", "new"}}), at("\\n\\deep"));
    for (const char* const excluded : {"\\n", "\\n\\deep"}) {
        EXPECT_THAT(at("\\n\\deep", {.exclude = {excluded}}), IsEmpty());
    }
}

TEST_F(Compare, OneNodeAloneTellsItsOrderByWholePaths) {
    a.set("\\n\\p", 1);
    b.erase("\\n\\s");
    b.set("\\n\\p", 1);
    b.set("\\n\\s", "text");
    const std::vector<Difference> found = compare_at(a, b, "\\n").value();
    ASSERT_THAT(texts(found), ElementsAre("order of \\n\\"));
    EXPECT_THAT(found.front().moved, ElementsAre("\\n\\s"));
}

TEST_F(Compare, OneNodeThatOnlyOneSideHasIsAddedItself) {
    a.set("\\deep\\node\\p", 1);
    EXPECT_THAT(texts(compare_at(a, b, "\\deep\\node").value()),
                ElementsAre("- \\deep\\node\\", "- \\deep\\node\\p: long 1"));
    EXPECT_THAT(texts(compare_at(b, a, "\\deep\\node").value()),
                ElementsAre("+ \\deep\\node\\", "+ \\deep\\node\\p: long 1"));
}

TEST_F(Compare, OnePropertyAloneAndTheNodeOfItsPath) {
    b.set("\\x", 2);
    a.set("\\n\\old", 1);
    EXPECT_THAT(texts(compare_at(a, b, "\\x").value()), ElementsAre("~ \\x: long 1 -> long 2"));
    EXPECT_THAT(texts(compare_at(a, b, "\\n\\old").value()), ElementsAre("- \\n\\old: long 1"));
    EXPECT_THAT(compare_at(a, b, "\\n\\s").value(), IsEmpty());
    EXPECT_THAT(compare_at(a, b, "\\x", {.exclude = {"x"}}).value(), IsEmpty());
    EXPECT_FALSE(compare_at(a, b, "\\x\\"));
    EXPECT_FALSE(compare_at(a, b, "\\none"));
    EXPECT_FALSE(compare_at(a, b, "\\none\\x"));
    b.set("\\x\\p", 1);
    EXPECT_THAT(texts(compare_at(a, b, "\\x").value()),
                ElementsAre("~ \\x: long 1 -> long 2", "+ \\x\\", "+ \\x\\p: long 1"));
}

TEST_F(Compare, LineForTheEyeHasNoControlCharacters) {
    b.set("\\line\nend", "a\nb");
    EXPECT_THAT(differences(), ElementsAre("+ \\line\\x0Aend: string \"a\\nb\""));
}

TEST(CompareAtLength, TakesTimeInProportion) {
    Tree a;
    Tree b;
    const int count = 100000;
    for (int i = 0; i < count; ++i) {
        a.set("\\n\\p*", i, i);
        b.set("\\n\\p*", count - 1 - i, count - 1 - i);
    }
    const std::vector<Difference> found = compare(a, b);
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(static_cast<std::size_t>(count) - 1, found.front().moved.size());
}

TEST(Difference, IsToldByTheSideThatItHas) {
    const Stored strict = make_stored(Value(std::int32_t{1}));
    EXPECT_EQ("~ \\x: strict",
              difference_text({.change = Change::strictness, .path = "\\x", .after = strict}));
    EXPECT_EQ("~ \\x: loose", difference_text({.change = Change::strictness, .path = "\\x"}));
    EXPECT_EQ("~ \\x:  -> long 1",
              difference_text({.change = Change::value, .path = "\\x", .after = strict}));
}

TEST(Difference, EachChangeHasItsName) {
    EXPECT_EQ("added", change_name(Change::added));
    EXPECT_EQ("removed", change_name(Change::removed));
    EXPECT_EQ("type", change_name(Change::type));
    EXPECT_EQ("value", change_name(Change::value));
    EXPECT_EQ("strictness", change_name(Change::strictness));
    EXPECT_EQ("order", change_name(Change::order));
}

} // namespace
} // namespace pm::kit::test
