#include "tools/transcript.h"

#include <gtest/gtest.h>

namespace pm::test {

namespace {

TEST(Transcript, HasCommandsWithWhatTheyPrint) {
    const auto steps = transcript_of("text\n```console\n$ a b\none\ntwo\n$ c\n```\n```\n$ no\n```\n");
    ASSERT_EQ(2U, steps.size());
    EXPECT_EQ(3, steps[0].line);
    EXPECT_EQ("a b", steps[0].command);
    EXPECT_EQ("one\ntwo\n", steps[0].output);
    EXPECT_EQ("c", steps[1].command);
    EXPECT_EQ("", steps[1].output);
}

TEST(Transcript, CommandGoesOnBehindABackslash) {
    const auto steps = transcript_of("```console\n$ a \\\n  b\nout\n```\n");
    ASSERT_EQ(1U, steps.size());
    EXPECT_EQ("a \\\n  b", steps[0].command);
    EXPECT_EQ("out\n", steps[0].output);
}

TEST(Pages, ToolIsAsTold) {
    expect_page("pmtool");
}

TEST(Pages, GitUsesTheToolAsTold) {
    expect_page("git");
}

TEST(Pages, DevicesAreCheckedAsTold) {
    expect_page("compatibility");
}

} // namespace

} // namespace pm::test
