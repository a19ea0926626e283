#include "docs/page.h"

#include <gmock/gmock.h>

namespace {

using namespace pm::test;
using testing::ElementsAre;
using testing::SizeIs;

std::string table(const std::string& row) {
    return "| body | outcome |\n|---|---|\n" + row + '\n';
}

std::string trouble_of(const std::string& text) {
    const Page page = parse_page("p", text);
    return page.rows.size() == 1 ? page.rows.front().trouble : "rows: " + std::to_string(page.rows.size());
}

TEST(PageRows, HaveKindLineInputAndOutcome) {
    const Page page = parse_page("p", "# Title\n\n" + table("| `a=1` | `a: long = 1`, reports 57 |"));
    ASSERT_THAT(page.rows, SizeIs(1));
    EXPECT_EQ(page.rows[0].trouble, "");
    EXPECT_EQ(page.rows[0].page, "p");
    EXPECT_EQ(page.rows[0].line, 5);
    EXPECT_EQ(page.rows[0].kind, "body");
    EXPECT_EQ(page.rows[0].input, "a=1");
    EXPECT_EQ(page.rows[0].outcome, "`a: long = 1`, reports 57");
    EXPECT_EQ(row_test_name(page.rows[0]), "line_5");
}

TEST(PageRows, HaveTheirEscapesResolved) {
    const Page page = parse_page("p", table(R"(| `\n\r\t\0\\\x7Cn` | nothing |)"));
    ASSERT_THAT(page.rows, SizeIs(1));
    EXPECT_EQ(page.rows[0].input, std::string("\n\r\t\0\\|n", 7));
}

TEST(PageRows, JoinCodeSpansAsLines) {
    const Page page = parse_page("p", table("| `a{` `\\n` `}` | nothing |"));
    ASSERT_THAT(page.rows, SizeIs(1));
    EXPECT_EQ(page.rows[0].input, "a{\n\n\n}");
}

TEST(PageRows, MayHaveNoInput) {
    const Page page = parse_page("p", table("| (empty) | nothing |"));
    ASSERT_THAT(page.rows, SizeIs(1));
    EXPECT_EQ(page.rows[0].trouble, "");
    EXPECT_EQ(page.rows[0].input, "");
}

TEST(PageRows, MayHaveOtherColumns) {
    const Page page = parse_page("p", "| body | why | outcome |\n|---|---|---|\n| `a` | so | nothing |\n");
    ASSERT_THAT(page.rows, SizeIs(1));
    EXPECT_EQ(page.rows[0].outcome, "nothing");
}

TEST(PageRows, StandInTablesWithAnOutcomeOnly) {
    const std::string other = "| a | b |\n|---|---|\n| c | d |\n";
    EXPECT_THAT(parse_page("p", other + '\n' + table("| `a` | nothing |")).rows, SizeIs(1));
    EXPECT_THAT(parse_page("p", table("| `a` | nothing |") + "\n" + other).rows, SizeIs(1));
}

TEST(PageRows, ArentReadInFencedBlocks) {
    EXPECT_EQ(trouble_of("```\n" + table("| `a` | nothing |") + "```\n"), "the page has no rows to run");
}

TEST(PageRows, ThatCantBeReadAreTroubles) {
    EXPECT_EQ(trouble_of(table(R"(| `\q` | nothing |)")), R"(unknown escape: \q)");
    EXPECT_EQ(trouble_of(table(R"(| `\` | nothing |)")), R"(unknown escape: \)");
    EXPECT_EQ(trouble_of(table(R"(| `\x0g` | nothing |)")), "no hexadecimal number: 0g");
    EXPECT_EQ(trouble_of(table("| a=1 | nothing |")), "an input that isn't a code span");
    EXPECT_EQ(trouble_of(table("| `a` b | nothing |")), "an input that isn't a code span");
    EXPECT_EQ(trouble_of(table("| `a | nothing |")), "an input that isn't a code span");
    EXPECT_EQ(trouble_of(table("| | nothing |")), "an input that isn't a code span");
    EXPECT_EQ(trouble_of(table("| `a` | |")), "a row without an outcome");
    EXPECT_EQ(trouble_of(table("| `a` |")), "a row of another number of cells than its table");
}

TEST(PageRows, AreMissedWhereThereAreNone) {
    EXPECT_EQ(trouble_of(""), "the page has no rows to run");
    EXPECT_EQ(trouble_of("| body | outcome |\n|---|---|\n"), "the page has no rows to run");
}

TEST(PageBlocks, HoldBytes) {
    const Page page = parse_page("p", "```hex a\n00000000  50 49  a tag\n00000002  0d\n```\n");
    EXPECT_EQ(page.bytes.at("a"), "PI\r");
}

TEST(PageBlocks, MayLeaveZeroBytesOut) {
    const Page page = parse_page("p", "```hex a\n0000  50  a tag\n...\n0004  49\n```\n");
    EXPECT_EQ(page.bytes.at("a"), std::string("P\0\0\0I", 5));
}

TEST(PageBlocks, HoldTrees) {
    const Page page = parse_page("p", "```tree a\nx: long = 1\ny: bool = true\n```\n");
    EXPECT_THAT(page.trees.at("a"), ElementsAre("x: long = 1", "y: bool = true"));
}

TEST(PageBlocks, ThatCantBeReadAreTroubles) {
    const auto trouble = [](const std::string& line) {
        return parse_page("p", "```hex a\n" + line + "\n```\n").rows.front().trouble;
    };
    EXPECT_EQ(trouble("0001  50"), "an offset that isn't that of the bytes");
    EXPECT_EQ(trouble("0000  5"), "no bytes");
    EXPECT_EQ(trouble("0000  5049"), "no bytes");
    EXPECT_EQ(trouble("0000  5g"), "no hexadecimal number: 5g");
    EXPECT_EQ(trouble("text"), "no hexadecimal number: text");
    EXPECT_EQ(trouble(""), "no hexadecimal number: ");
}

TEST(PageBlocks, NeedANameOfTheirOwnAndAnEnd) {
    const auto trouble = [](const std::string& text) { return parse_page("p", text).rows.front().trouble; };
    EXPECT_EQ(trouble("```hex\n```\n"), "a block without a name");
    EXPECT_EQ(trouble("```hex a\n```\n```hex a\n```\n"), "two blocks of one name");
    EXPECT_EQ(trouble("```hex a\n"), "a fenced block has no end");
}

} // namespace
