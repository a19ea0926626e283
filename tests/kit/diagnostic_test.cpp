#include <gtest/gtest.h>
#include <pm/kit/diagnostic.h>

namespace {

using pm::kit::Severity;
using pm::kit::severity_name;

TEST(SeverityName, IsAWordOfSmallLetters) {
    EXPECT_EQ(severity_name(Severity::note), "note");
    EXPECT_EQ(severity_name(Severity::warning), "warning");
    EXPECT_EQ(severity_name(Severity::error), "error");
}

} // namespace
