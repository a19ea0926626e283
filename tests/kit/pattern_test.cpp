#include "kit/errors.h"
#include "kit/random_tree.h"
#include <gmock/gmock.h>
#include <pm/inspect.h>
#include <pm/kit/pattern.h>

namespace pm::kit::test {
namespace {

using ::testing::ElementsAre;

bool matches(const char* pattern, const char* path) {
    return Pattern(pattern).matches(path);
}

std::vector<std::string> found(const Tree& tree, const char* pattern) {
    std::vector<std::string> paths;
    for (const Match& match : find_all(tree, Pattern(pattern))) {
        paths.push_back(match.path);
    }
    return paths;
}

Tree media() {
    Tree tree;
    tree.set("\\copies", 1);
    tree.set("\\media\\copies", 2);
    tree.set("\\media\\size\\0\\name", "A0");
    tree.set("\\media\\size\\1\\name", "A1");
    tree.set("\\media\\size", 2);
    make_node(tree.object(), u"\\media\\empty");
    return tree;
}

TEST(Pattern, WithoutAsterisksIsOnePath) {
    EXPECT_TRUE(matches("\\media\\copies", "\\media\\copies"));
    EXPECT_TRUE(matches("media\\\\copies", "\\media\\copies"));
    EXPECT_TRUE(matches("\\media\\copies", "\\media\\copies\\"));
    EXPECT_FALSE(matches("\\media\\Copies", "\\media\\copies"));
    EXPECT_FALSE(matches("\\media", "\\media\\copies"));
    EXPECT_EQ("\\a*b\\c", Pattern("a[*]b\\c").path());
    EXPECT_TRUE(Pattern("a[*]b\\c").is_literal());
    EXPECT_FALSE(Pattern("a*b\\c").is_literal());
}

TEST(Pattern, ThatEndsInABackslashIsOfNodesOnly) {
    EXPECT_TRUE(matches("\\media\\", "\\media\\"));
    EXPECT_FALSE(matches("\\media\\", "\\media"));
    EXPECT_FALSE(matches("\\*\\", "\\media"));
    EXPECT_TRUE(matches("\\", "\\"));
    EXPECT_FALSE(matches("\\", "\\a"));
}

TEST(Pattern, AsteriskStaysWithinAName) {
    EXPECT_TRUE(matches("\\m*a\\c*", "\\media\\copies"));
    EXPECT_TRUE(matches("\\*", "\\x"));
    EXPECT_TRUE(matches("\\a*", "\\a"));
    EXPECT_FALSE(matches("\\*", "\\a\\b"));
    EXPECT_FALSE(matches("\\ab*ba", "\\aba"));
    EXPECT_TRUE(matches("\\*b*b*", "\\abxb"));
    EXPECT_FALSE(matches("\\*b*b*", "\\axb"));
}

TEST(Pattern, TwoAsterisksAreAnyNumberOfNames) {
    EXPECT_TRUE(matches("\\**\\name", "\\name"));
    EXPECT_TRUE(matches("\\**\\name", "\\a\\b\\c\\name"));
    EXPECT_TRUE(matches("\\a\\**\\b\\**\\c", "\\a\\b\\x\\b\\c"));
    EXPECT_FALSE(matches("\\a\\**\\b\\**\\c", "\\a\\x\\c"));
    EXPECT_TRUE(matches("\\**", "\\a\\b"));
}

TEST(Pattern, TwoAsterisksAtTheEndAreOneNameAtLeast) {
    EXPECT_FALSE(matches("\\a\\**", "\\a\\"));
    EXPECT_TRUE(matches("\\a\\**", "\\a\\b"));
    EXPECT_FALSE(matches("\\**", "\\"));
}

TEST(Pattern, TwoAsterisksInARowAreAsOneOfThem) {
    EXPECT_TRUE(matches("\\**\\**\\name", "\\name"));
    EXPECT_TRUE(matches("\\a\\**\\**\\**", "\\a\\b"));
    EXPECT_FALSE(matches("\\a\\**\\**\\**", "\\a\\"));
    EXPECT_FALSE(matches("\\**\\**", "\\"));
}

// Patterns of so many names, which end only if each name of a path goes through each of the pattern once.
TEST(Pattern, OfManyTwoAsterisksTakesNoLongerThanItsLength) {
    constexpr int count = 20000;
    std::string path;
    for (int i = 0; i < 200; ++i) {
        path += "\\a";
    }
    std::string in_a_row;
    std::string apart;
    for (int i = 0; i < count; ++i) {
        in_a_row += "\\**";
        apart += "\\**\\*";
    }
    EXPECT_TRUE(matches((in_a_row + "\\a").c_str(), path.c_str()));
    EXPECT_FALSE(matches((in_a_row + "\\b").c_str(), path.c_str()));
    EXPECT_FALSE(matches(apart.c_str(), path.c_str()));
    EXPECT_TRUE(matches(apart.substr(0, 200 * 5).c_str(), path.c_str()));
    EXPECT_FALSE(matches(apart.substr(0, 201 * 5).c_str(), path.c_str()));
}

TEST(Pattern, BracketsAroundAnAsteriskMakeItOrdinary) {
    EXPECT_TRUE(matches("\\[*]", "\\*"));
    EXPECT_FALSE(matches("\\[*]", "\\x"));
    EXPECT_TRUE(matches("\\[[]*]", "\\[x]"));
    EXPECT_TRUE(matches("\\[x]", "\\[x]"));
}

TEST(Pattern, ZeroIsRefused) {
    EXPECT_EQ("a path can't hold a zero", error_of([] { Pattern(std::string_view("a\0b", 3)); }));
}

TEST(Escaped, PathMatchesItselfAndNothingElse) {
    RandomTree random(5);
    const Tree tree = random.make(300);
    for (const Match& match : find_all(tree, Pattern("**"))) {
        const Pattern pattern(escaped(match.path));
        EXPECT_TRUE(pattern.is_literal());
        EXPECT_EQ(match.path, pattern.path());
        EXPECT_TRUE(pattern.matches(match.path));
    }
    EXPECT_FALSE(Pattern(escaped("\\a*")).matches("\\ab"));
}

TEST(FindAll, GivesNodesAndPropertiesInTheOrderOfTheTree) {
    EXPECT_THAT(found(media(), "**"),
                ElementsAre("\\copies", "\\media\\", "\\media\\copies", "\\media\\size", "\\media\\size\\",
                            "\\media\\size\\0\\", "\\media\\size\\0\\name", "\\media\\size\\1\\",
                            "\\media\\size\\1\\name", "\\media\\empty\\"));
    EXPECT_THAT(found(media(), "\\**\\copies"), ElementsAre("\\copies", "\\media\\copies"));
    EXPECT_THAT(found(media(), "\\media\\size"), ElementsAre("\\media\\size", "\\media\\size\\"));
    EXPECT_THAT(found(media(), "\\media\\*\\"), ElementsAre("\\media\\size\\", "\\media\\empty\\"));
    EXPECT_THAT(found(media(), "\\"), ElementsAre("\\"));
    EXPECT_TRUE(found(media(), "\\nothing\\**").empty());
}

TEST(FindAll, FindsWhatMatchesOneByOne) {
    RandomTree random(6);
    for (int i = 0; i < 30; ++i) {
        const Tree tree = random.make(80);
        for (const char* text : {"**", "\\a\\**\\b", "\\*\\*", "**\\*a*\\**", "\\**\\"}) {
            const Pattern pattern(text);
            std::vector<std::string> expected;
            for (const Match& match : find_all(tree, Pattern("**"))) {
                if (pattern.matches(match.path)) expected.push_back(match.path);
            }
            EXPECT_EQ(expected, found(tree, text)) << text;
        }
    }
}

// So that a script of a line for each place of a long list takes no square of its length.
TEST(FindAll, LooksUpNamesWithoutAsterisks) {
    constexpr int count = 30000;
    Tree tree;
    for (int i = 0; i < count; ++i) {
        tree.set("\\n*\\p", i, i);
    }
    for (int i = 0; i < count; ++i) {
        const std::string name = "\\n" + std::to_string(i);
        const std::vector<Match> matches = find_all(tree, Pattern(name + "\\*"));
        ASSERT_EQ(1U, matches.size());
        ASSERT_EQ(name + "\\p", matches.front().path);
        ASSERT_EQ(i, matches.front().property->as<int>());
    }
}

TEST(FullPath, HasOneBackslashInFrontOfEachName) {
    EXPECT_EQ("\\a\\b", full_path("a\\\\b"));
    EXPECT_EQ("\\a\\b\\", full_path("\\a\\b\\"));
    EXPECT_EQ("\\", full_path(""));
}

} // namespace
} // namespace pm::kit::test
