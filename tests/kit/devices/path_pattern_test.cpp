#include "devices/path_pattern.h"
#include <gtest/gtest.h>

namespace {

using pm::kit::devices::PathPattern;
using pm::kit::devices::split_path;

std::string match(const char* pattern, const char* path, bool any_case = false) {
    return PathPattern(pattern, any_case).match(split_path(path)).value_or("no");
}

TEST(SplitPath, PassesOverEmptyComponents) {
    EXPECT_EQ(split_path("\\a\\\\b c\\"), (std::vector<std::string>{"a", "b c"}));
    EXPECT_EQ(split_path(""), std::vector<std::string>{});
}

TEST(PathPattern, WithoutAStarMatchesItself) {
    EXPECT_EQ(match("\\a\\b", "\\a\\b"), "");
    EXPECT_EQ(match("\\a\\b", "\\a\\c"), "no");
    EXPECT_EQ(match("\\a\\b", "\\a"), "no");
    EXPECT_EQ(match("\\a\\b", "\\a\\b\\c"), "no");
}

TEST(PathPattern, TellsWhatItsStarsStandFor) {
    EXPECT_EQ(match("\\a\\*\\b", "\\a\\x\\b"), "x");
    EXPECT_EQ(match("\\a\\Color*", "\\a\\Color12"), "12");
    EXPECT_EQ(match("\\a\\x*y", "\\a\\x1y"), "1");
    EXPECT_EQ(match("\\a\\x*x", "\\a\\x"), "no");
    EXPECT_EQ(match("\\*\\a\\*", "\\x\\a\\y"), "x\\y");
}

TEST(PathPattern, MatchesInAnyCaseIfAsked) {
    EXPECT_EQ(match("\\Ab\\C*", "\\aB\\cX"), "no");
    EXPECT_EQ(match("\\Ab\\C*", "\\aB\\cX", true), "X");
}

TEST(PathPattern, HoldsBothEndsOfAComponent) {
    EXPECT_EQ(match("\\x*y", "\\x1z"), "no");
    EXPECT_EQ(match("\\x*y", "\\z1y"), "no");
    EXPECT_EQ(match("\\x*Y", "\\X1y", true), "1");
}

} // namespace
