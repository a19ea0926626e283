#include "run_tool.h"
#include <gmock/gmock.h>

namespace {

using pm::test::sample_folder;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

using ReportTool = pm::test::ToolTest;

TEST_F(ReportTool, WritesThePageOfADescription) {
    const auto page = run({"report", sample_folder + "/dx4200"});
    EXPECT_EQ(page.status, 0);
    EXPECT_EQ(page.err, "");
    EXPECT_THAT(page.out, StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(page.out, HasSubstr("<h1>Draftex DX-4200</h1>"));
    EXPECT_THAT(page.out, Not(HasSubstr("Does it fit?")));
}

TEST_F(ReportTool, HoldsConfigurationsAgainstTheDescription) {
    const auto page = run({"report", sample_folder + "/dx4200", "--config", sample_folder + "/plotter.pia",
                           "--config", sample_folder + "/office.pc2"});
    EXPECT_EQ(page.status, 0);
    EXPECT_THAT(page.out, HasSubstr("Does it fit?"));
    EXPECT_THAT(page.out, HasSubstr("Configurations side by side"));
    EXPECT_THAT(page.out, HasSubstr("rule <code>folding</code>"));
}

TEST_F(ReportTool, ShowsAConfigurationAlone) {
    const auto page = run({"report", sample_folder + "/plotter.pia"});
    EXPECT_EQ(page.status, 0);
    EXPECT_THAT(page.out, HasSubstr("Settings of "));
    EXPECT_THAT(page.out, Not(HasSubstr("Does it fit?")));
}

TEST_F(ReportTool, ShowsOneSectionOfAConfiguration) {
    const auto page = run({"report", sample_folder + "/sections.dpia", "--section", "Workshop"});
    EXPECT_EQ(page.status, 0);
    EXPECT_THAT(page.out, HasSubstr("sections.dpia[Workshop]</h2>"));
}

TEST_F(ReportTool, RefusesAFileThatDescribesSeveralDevices) {
    ASSERT_EQ(run({"convert", sample_folder + "/dx4200", "device.pia", "--utf8"}).status, 0);
    ASSERT_EQ(run({"bundle", "-o", "two.dpia", "A=device.pia", "B=device.pia"}).status, 0);
    expect_trouble({"report", "two.dpia"},
                   "two.dpia: the file describes several devices; write one to a file of its own with pmtool "
                   "extract (A, B)");
}

TEST_F(ReportTool, WritesToAFile) {
    const auto done = run({"report", sample_folder + "/plotter.pia", "-o", "page.html"});
    EXPECT_EQ(done.status, 0);
    EXPECT_EQ(done.out, "");
    EXPECT_THAT(file_names(), testing::ElementsAre("page.html"));
}

TEST_F(ReportTool, NeedsSomethingToShow) {
    expect_trouble({"report"}, "DESCRIPTION or --config is required; see pmtool report --help");
}

} // namespace
