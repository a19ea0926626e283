#include "tools/run_tool.h"

#include <cstdlib>
#include <gmock/gmock.h>

namespace pm::test {

namespace {

class PmToolShell : public ToolTest {
protected:
    PmToolShell() {
        folder.write("a.pia", "PIAFILEVERSION_2.0,\r\nn=1\nx{\n a=1\n b=\"t\n y{\n  c=2.5\n }\n}\n");
    }
};

TEST_F(PmToolShell, BashTakesItsCompletion) {
    folder.write(
        "try", "source completion\nCOMP_WORDS=(pmtool set --ex) COMP_CWORD=2\n_pmtool\n"
               "echo \"${COMPREPLY[@]}\"\nCOMP_WORDS=(pmtool ident) COMP_CWORD=1\n_pmtool\n"
               "echo \"${COMPREPLY[@]}\"\nCOMP_WORDS=(pmtool convert --to '') COMP_CWORD=3\n_pmtool\n"
               "echo \"${COMPREPLY[@]}\"\nCOMP_WORDS=(pmtool --code-page 1252 ident) COMP_CWORD=3\n_pmtool\n"
               "echo \"${COMPREPLY[@]}\"\n"
               "COMP_WORDS=(pmtool --code-page 1252 tree --color '') COMP_CWORD=5\n_pmtool\n"
               "echo \"${COMPREPLY[@]}\"\n");
    folder.write("completion", run({"completion", "bash"}).out);
    const std::string command = "cd '" + folder.path().string() + "' && bash try > out 2>&1";
    EXPECT_EQ(0, std::system(command.c_str()));
    EXPECT_EQ("--existing\nidentify\ndoc dpia pia json\nidentify\nalways never auto\n", folder.read("out"));
}

TEST_F(PmToolShell, ColoursGoToATerminalAlone) {
    const std::string program = "'" + std::string(PMTOOL) + "'";
    const auto on_terminal = [&](const std::string& words) {
        const std::string line = "cd '" + folder.path().string() + "' && script -qec \"stty cols 20; " +
                                 words + " " + program + " tree a.pia x\" /dev/null > out 2>&1 < /dev/null";
        EXPECT_EQ(0, std::system(line.c_str()));
        return folder.read("out");
    };
    EXPECT_NE(std::string::npos, on_terminal("TERM=xterm").find('\x1B'));
    EXPECT_EQ("a: long = 1\r\nb: string = \"t\"\r\ny\\\r\n  c: double = 2.5\r\n", on_terminal("NO_COLOR=1"));
    folder.write("a.pia", "PIAFILEVERSION_2.0,\r\nx{\n b=\"" + std::string(40, 't') + "\n}\n");
    EXPECT_EQ("b: string = \"tttttt\xE2\x80\xA6\r\n", on_terminal("NO_COLOR=1"));
}

TEST_F(PmToolShell, ValueThatATerminalWouldObeyIsShownThere) {
    folder.write("a.pia", "PIAFILEVERSION_2.0,\r\nb=\"x\x1B]0;y\x07z\n");
    const std::string line = "cd '" + folder.path().string() +
                             "' && script -qec \"'" PMTOOL "' get a.pia b\" /dev/null > out 2>&1 < /dev/null";
    EXPECT_EQ(0, std::system(line.c_str()));
    EXPECT_EQ("x\\x1B]0;y\\x07z\r\n", folder.read("out"));
    expect_output({"get", "a.pia", "b"}, "x\x1B]0;y\x07z\n");
}

TEST_F(PmToolShell, FileNameIsPartOfALineWhateverItHolds) {
    const std::string name = "a\x1B[2J\nb.pia";
    const std::string shown = "a\\x1B[2J\\x0Ab.pia";
    folder.write(name, "PIAFILEVERSION_2.0,\r\nb\n");
    expect_no({"check", name}, shown +
                                   ":2:1: error: \"b\" is no property, no node and no comment. [bad-line] "
                                   "(error 57)\n");
    expect_trouble({"tree", name}, shown +
                                       ":2: The line isn't valid (error 57): b; all bad lines are listed by: "
                                       "pmtool check");
    folder.write(name, "PIAFILEVERSION_2.0,\r\nb=1\n");
    expect_output({"check", name}, shown + ": no bad lines\n");
    expect_output({"diff", name, name}, shown + " and " + shown + " hold equal trees.\n");
    EXPECT_TRUE(run({"identify", name}).out.starts_with(shown + ": pia (")) << run({"identify", name}).out;
    folder.write("c1.pia", "PIAFILEVERSION_2.0,\r\nb=\"y\xC2\x9Bz\n");
    EXPECT_EQ(std::string::npos, run({"check", "c1.pia"}).out.find("\xC2\x9B"));
    EXPECT_NE(std::string::npos, run({"check", "c1.pia"}).out.find("\"\\x9B\" reads as"));
    expect_trouble({"tree", "none\n"}, "none\\x0A: The file doesn't exist (error 63)");
}

TEST_F(PmToolShell, NameOfAFileInAFolderIsShownForTheEye) {
    std::filesystem::create_directory(folder / "d");
    folder.write("d/s\x1B[31m\u202E.pdt", "DRFX_A \"a\"\n");
    const std::string out = run({"identify", "d"}).out;
    EXPECT_TRUE(out.starts_with("d: pdt (folder of driver tables): folder with s\\x1B[31m\\u202E.pdt\n"))
        << out;
}

TEST_F(PmToolShell, JsonHoldsNothingThatATerminalWouldObey) {
    folder.write("b.pia", "PIAFILEVERSION_2.0,\r\nx\x7F\u0085\u009B\u202E\u2028\x1B\u00FC\U0001F600=1\n");
    folder.write("c.pia", "PIAFILEVERSION_2.0,\r\n");
    const std::string path = "\\\\x\\u007f\\u0085\\u009b\\u202e\\u2028\\u001b\u00FC\U0001F600";
    const std::string out = run({"diff", "c.pia", "b.pia", "--json"}).out;
    EXPECT_EQ("[\n  {\n    \"change\": \"added\",\n    \"path\": \"" + path +
                  "\",\n    \"before\": null,\n    \"after\": \"long 1\"\n  }\n]\n",
              out);
}

TEST_F(PmToolShell, LongWorkIsShownOnATerminal) {
    const auto on_terminal = [&](const std::string& seconds, const std::string& words) {
        const std::string command = "cd '" + folder.path().string() +
                                    "' && rm -f pipe && mkfifo pipe && { (sleep " + seconds +
                                    "; cat a.pia) > pipe & } && script -qec \"'" PMTOOL "' " + words +
                                    "\" /dev/null > out 2>&1 < /dev/null";
        EXPECT_EQ(0, std::system(command.c_str()));
        return folder.read("out");
    };
    // A machine that has much to do may take a second more.
    EXPECT_THAT(on_terminal("2.5", "get pipe n"),
                testing::MatchesRegex("\rreading pipe ... 2 s(\rreading pipe ... [0-9]+ s)*\r\x1B.K1\r\n"));
    EXPECT_THAT(on_terminal("2.5", "check pipe"),
                testing::MatchesRegex("\rchecking pipe ... 2 s(\rchecking pipe ... [0-9]+ s)*\r\x1B.K"
                                      "pipe: no bad lines\r\n"));
    EXPECT_EQ("1\r\n", on_terminal("0.1", "get pipe n"));
    std::filesystem::create_symlink("pipe", folder / "e\x1B[2J");
    EXPECT_THAT(
        on_terminal("2.5", "get e* n"),
        testing::MatchesRegex("\rreading e.x1B.2J ... 2 s(\rreading e.x1B.2J ... [0-9]+ s)*\r\x1B.K1\r\n"));
}

} // namespace

} // namespace pm::test
