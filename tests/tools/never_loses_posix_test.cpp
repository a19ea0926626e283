#include "tools/run_tool.h"

#include <sys/stat.h>
#include <thread>

namespace pm::test {

namespace {

class PmToolLosesNothingHere : public ToolTest {
protected:
    PmToolLosesNothingHere() { copy_sample("plotter.pia", "p.pia"); }
};

TEST_F(PmToolLosesNothingHere, PipeIsReadOnce) {
    ASSERT_EQ(0, mkfifo((folder / "pipe").c_str(), 0600));
    const std::string content = folder.read("p.pia");
    std::thread writer([&] { folder.write("pipe", content); });
    const ToolRun result = run({"get", "pipe", "media\\copies"});
    writer.join();
    EXPECT_EQ("1\n", result.out) << result.err;
}

TEST_F(PmToolLosesNothingHere, FileNamesNeedNotBeUtf8) {
    const std::string name = "pl\xFCtter.pia";
    copy_sample("plotter.pia", name);
    expect_output({"get", name, "media\\copies"}, "1\n");
    EXPECT_EQ(0, run({"set", name, "media\\copies", "2"}).status);
    expect_output({"get", name, "media\\copies"}, "2\n");
}

TEST_F(PmToolLosesNothingHere, FullDiskIsSaidForADocFileToo) {
    for (const std::string format : {"pia", "doc"}) {
        const ToolRun result = run({"convert", "p.pia", "/dev/full", "--to", format, "--lossy"});
        EXPECT_EQ(2, result.status);
        EXPECT_NE(std::string::npos,
                  result.err.find("/dev/full: There is no space left on the disk (error 65)\n"))
            << result.err;
    }
}

TEST_F(PmToolLosesNothingHere, StandardOutputThatIsFullIsTrouble) {
    const ToolRun full = run({"tree", "p.pia"}, {.output = "/dev/full"});
    EXPECT_EQ(2, full.status);
    EXPECT_EQ("pmtool: standard output: There is no space left on the disk (error 65)\n", full.err);
}

} // namespace

} // namespace pm::test
