#include "failure.h"
#include "tools/run_tool.h"

#include <cstdlib>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

namespace pm::test {

namespace {

class PmToolLosesNothingHere : public ToolTest {
protected:
    PmToolLosesNothingHere() { copy_sample("plotter.pia", "p.pia"); }

    // The exit code of a command of the shell, with the program as $pmtool, in the folder of the files.
    int shell(const std::string& command) const {
        const std::string line =
            fmt::format("cd '{}' && pmtool='{}' && {}", folder.path().string(), PMTOOL, command);
        const int status = std::system(line.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
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
    for (const std::vector<std::string>& words : std::vector<std::vector<std::string>>{
             {"completion", "zsh"}, {"check", "--rules"}, {"help", "--man"}}) {
        const ToolRun result = run(words, {.output = "/dev/full"});
        EXPECT_EQ(2, result.status) << words.front();
        EXPECT_EQ("pmtool: standard output: There is no space left on the disk (error 65)\n", result.err);
    }
}

TEST_F(PmToolLosesNothingHere, StandardErrorThatCannotBeWrittenChangesNoAnswer) {
    for (const std::string error : {" 2>&-", " 2>/dev/full"}) {
        EXPECT_EQ(1, shell("$pmtool get p.pia nosuch" + error)) << error;
        EXPECT_EQ(2, shell("$pmtool tree nosuch" + error)) << error;
        EXPECT_EQ(2, shell("$pmtool nosuch" + error)) << error;
        EXPECT_EQ(2, shell("$pmtool" + error)) << error;
        EXPECT_EQ(0, shell("EDITOR=true VISUAL= $pmtool edit p.pia" + error)) << error;
    }
}

TEST_F(PmToolLosesNothingHere, WarningThatCannotBeWrittenStopsNoWork) {
    folder.write("a.pia", "PIAFILEVERSION_1.0,\na=1\n");
    EXPECT_EQ(0, shell("$pmtool set a.pia a 2 2>/dev/full"));
    expect_output({"get", "a.pia", "a"}, "2\n");
    EXPECT_EQ(0, shell("$pmtool set a.pia b 'x ' --lossy 2>/dev/full"));
    expect_output({"get", "a.pia", "b"}, "x\n");
    folder.write("c.pia", "PIAFILEVERSION_2.0,\na=3\n");
    folder.write("d.pia", "PIAFILEVERSION_2.0,\na=4\n");
    EXPECT_EQ(1, shell("$pmtool merge a.pia c.pia d.pia -o - 2>/dev/full >/dev/null"));
}

TEST_F(PmToolLosesNothingHere, LimitOfAFilesSizeIsTroubleAndLeavesNothingBehind) {
    const std::string before = folder.read("p.pia");
    EXPECT_EQ(2, shell("(ulimit -f 1; $pmtool set p.pia zz 1 2>err)"));
    EXPECT_EQ("pmtool: p.pia: " + pmtool::number_text(PM_ERR_STREAM_FAILED) + "\n", folder.read("err"));
    EXPECT_EQ(before, folder.read("p.pia"));
    EXPECT_EQ((std::vector<std::string>{"err", "p.pia"}), file_names());
}

TEST_F(PmToolLosesNothingHere, EditorMeetsALimitOfAFilesSizeAsWithoutTheTool) {
    folder.write("a.pia", "PIAFILEVERSION_2.0,\na=1\n");
    EXPECT_EQ(2, shell("(ulimit -f 1; EDITOR='cat p.pia > big #' VISUAL= $pmtool edit a.pia 2>err)"));
    EXPECT_NE(std::string::npos, folder.read("err").find("ended with 153")) << folder.read("err");
}

TEST_F(PmToolLosesNothingHere, PathsAndValuesAreUtf8OrRefused) {
    const std::string bad = "a\xFF"
                            "b";
    const std::string before = folder.read("p.pia");
    expect_output({"dump", "p.pia", "-o", "p.json"}, "");
    const std::vector<std::pair<std::string, std::vector<std::string>>> verbs = {
        {"PATH", {"set", "p.pia", bad, "1"}},
        {"VALUE", {"set", "p.pia", "x", bad, "--utf8"}},
        {"VALUE", {"set", "p.json", "x", bad, "--from", "json"}},
        {"PATH", {"get", "p.pia", bad}},
        {"PATH", {"tree", "p.pia", bad}},
        {"PATH", {"ls", "p.pia", bad}},
        {"PATH", {"rm", "p.pia", "media", bad}},
        {"PATH", {"dump", "p.pia", bad}},
        {"PATH", {"diff", "p.pia", "p.pia", bad}},
        {"--exclude", {"diff", "p.pia", "p.pia", "--exclude", bad}},
        {"FROM", {"mv", "p.pia", bad, "x"}},
        {"TO", {"cp", "p.pia", "name", bad}},
        {"--subtree", {"convert", "p.pia", "q.pia", "--subtree", bad}},
        {"--base", {"convert", "p.pia", "q.pia", "--base", bad}},
        {"--tag", {"convert", "p.pia", "q.pia", "--tag", bad}}};
    for (const auto& [name, words] : verbs) {
        expect_trouble(words, name + ": this isn't UTF-8: a\\xFFb; see pmtool " + words.front() + " --help");
    }
    EXPECT_EQ(before, folder.read("p.pia"));
    EXPECT_EQ((std::vector<std::string>{"p.json", "p.pia"}), file_names());
    // What no valid text is made of, a tree may hold: an unpaired surrogate.
    expect_output({"set", "p.json", "x", "\xED\xA0\x80", "--from", "json"}, "");
    EXPECT_NE(std::string::npos, run({"dump", "p.json", "x", "--from", "json"}).out.find("00D80000"));
}

// What was edited, in a file that the last line on standard error names.
class PmToolKeepsEdits : public PmToolLosesNothingHere {
protected:
    PmToolKeepsEdits() {
        folder.write("a.pia", "PIAFILEVERSION_2.0,\na=1\n");
        std::filesystem::create_directory(folder / "tmp");
    }

    int edit(const std::string& editor, const std::string& words) const {
        return shell(fmt::format("TMPDIR={} VISUAL= EDITOR=\"{}\" $pmtool edit a.pia {} 2>err",
                                 (folder / "tmp").string(), editor, words));
    }

    void expect_kept(const std::string& reason) const {
        std::vector<std::string> kept;
        for (const auto& entry : std::filesystem::directory_iterator(folder / "tmp")) {
            kept.push_back("tmp/" + entry.path().filename().string());
        }
        ASSERT_EQ(1U, kept.size());
        EXPECT_EQ(fmt::format("pmtool: {}; what was edited stays in {}\n", reason,
                              (folder / kept.front()).string()),
                  folder.read("err"));
        EXPECT_NE(std::string::npos, folder.read(kept.front()).find("\"value\": 7"));
        EXPECT_EQ("PIAFILEVERSION_2.0,\na=1\n", folder.read("a.pia"));
    }

    const std::string sets_seven = "sed -i 's/: 1}/: 7}/'";
};

TEST_F(PmToolKeepsEdits, WhereTheTargetTakesNothing) {
    EXPECT_EQ(2, edit(sets_seven, "-o /dev/full"));
    expect_kept("/dev/full: There is no space left on the disk (error 65)");
}

TEST_F(PmToolKeepsEdits, WhereTheDifferenceCannotBeShown) {
    EXPECT_EQ(2, edit(sets_seven, ">/dev/full"));
    expect_kept("standard output: There is no space left on the disk (error 65)");
}

TEST_F(PmToolKeepsEdits, WhereTheEditorFailsLater) {
    EXPECT_EQ(2, edit("f() { sed -i 's/: 1}/: 7}/' \\$1; return 1; }; f", ""));
    expect_kept("the editor \"f() { sed -i 's/: 1}/: 7}/' $1; return 1; }; f\" ended with 1");
}

TEST_F(PmToolKeepsEdits, NothingIsEditedForATargetThatCannotBe) {
    EXPECT_EQ(2, edit("touch started;", "-o x.json"));
    EXPECT_EQ(2, edit("touch started;", "-o nodir/x.pia"));
    EXPECT_EQ("pmtool: nodir/x.pia: the folder nodir doesn't exist (error 63); make it first\n",
              folder.read("err"));
    EXPECT_FALSE(std::filesystem::exists(folder / "started"));
    EXPECT_TRUE(std::filesystem::is_empty(folder / "tmp"));
}

} // namespace

} // namespace pm::test
