#include "tools/run_tool.h"

namespace pm::test {

namespace {

class PmToolCheck : public ToolTest {
protected:
    PmToolCheck() { folder.write("bad.pia", "PIAFILEVERSION_2.0,\na=1\nb=1.x\nc=yes\nd=2\nd=3\nx{\n"); }
    const std::string bad_line = "bad.pia:3:3: error: \"1.x\" is no number. [bad-line] (error 57)\n";
    const std::string no_type =
        "bad.pia:4:3: error: \"yes\" has the form of no type. [unknown-type] (error 88)\n";
    const std::string repeated =
        "bad.pia:6:1: warning: \"d\" is set on line 5 already, and that value is lost. [repeated-name]\n";
    const std::string unclosed = "bad.pia:7:1: warning: The node \"x\" isn't closed. [unclosed-node]\n";
};

TEST_F(PmToolCheck, SamplesHaveNoBadLines) {
    for (const std::string name : {"plotter.pia", "plotter-compressed.pia", "sections.dpia", "office.pc2",
                                   "three-plotters.cfg", "pens.pcp", "dx4200"}) {
        const std::string file = sample_folder + "/" + name;
        expect_output({"check", file}, file + ": no bad lines\n");
    }
}

TEST_F(PmToolCheck, EverythingThatIsWrongIsListedWithItsPlaceAndRule) {
    expect_no({"check", "bad.pia"}, bad_line + no_type + repeated + unclosed);
}

TEST_F(PmToolCheck, RulesAreChosenOrLeftOut) {
    expect_no({"check", "bad.pia", "--rule", "unclosed-node", "--rule", "bad-line"}, bad_line + unclosed);
    expect_no({"check", "bad.pia", "--without", "unclosed-node", "--without", "bad-line"},
              no_type + repeated);
    expect_output({"check", "bad.pia", "--rule", "cut-text"}, "bad.pia: no bad lines\n");
    expect_trouble({"check", "bad.pia", "--rule", "no-such"},
                   "no-such: there is no such rule; see pmtool check --rules");
    EXPECT_NE(std::string::npos, run({"check", "--rules"}).out.find("unclosed-node        warning  "));
}

TEST_F(PmToolCheck, JsonIsAnArrayOfDiagnostics) {
    expect_no({"check", "bad.pia", "--json", "--rule", "unknown-type"}, R"([
  {
    "rule": "unknown-type",
    "severity": "error",
    "place": {
      "file": "bad.pia",
      "line": 4,
      "column": 3
    },
    "message": "\"yes\" has the form of no type.",
    "path": "\\c",
    "number": 88
  }
]
)");
    expect_output({"check", sample_folder + "/plotter.pia", "--json"}, "[]\n");
}

TEST_F(PmToolCheck, FoldersAreWalked) {
    std::filesystem::create_directory(folder / "more");
    folder.write("more/open.pia", "PIAFILEVERSION_2.0,\ny{\n");
    expect_no({"check", ".", "--rule", "unclosed-node"},
              as_found("./") + unclosed + as_found("./more/open.pia") +
                  ":2:1: warning: The node \"y\" isn't closed. [unclosed-node]\n");
}

TEST_F(PmToolCheck, NotesCountWhenStrict) {
    folder.write("stale.pia", "PIAFILEVERSION_2.0,\na=0.5 (55555555U3_#T@)\n");
    const ToolRun loose = run({"check", "stale.pia"});
    EXPECT_EQ(0, loose.status) << loose.out;
    EXPECT_NE(std::string::npos, loose.out.find(": note: ")) << loose.out;
    EXPECT_EQ(1, run({"check", "stale.pia", "--strict"}).status);
}

TEST_F(PmToolCheck, StandardInputIsChecked) {
    const ToolRun result = run_with_input({"check", "-", "--rule", "bad-line"}, folder.read("bad.pia"));
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("standard input:3:3: error: \"1.x\" is no number. [bad-line] (error 57)\n", result.out);
}

TEST_F(PmToolCheck, RoundTripOfASampleGivesItBack) {
    const std::string file = sample_folder + "/plotter.pia";
    expect_output({"check", file, "--roundtrip"}, file + ": no bad lines\n");
}

TEST_F(PmToolCheck, RoundTripIsLookedForWhenItsRuleIsNamed) {
    folder.write("zero.pia", "PIAFILEVERSION_2.0,\na=-0.0\n");
    const std::string lost = "zero.pia: warning: -0 comes back as 0. [round-trip]\n";
    expect_no({"check", "zero.pia", "--rule", "round-trip"}, lost);
    expect_no({"check", "zero.pia", "--roundtrip"}, lost);
    expect_output({"check", "zero.pia"}, "zero.pia: no bad lines\n");
}

TEST_F(PmToolCheck, OneSectionIsCheckedAlone) {
    const std::string section = "PIAFILEVERSION_2.0,\na=1\nb=1.x\n";
    folder.write("bad.dpia", std::string("\0\0\1\0\1\0\0\0\1\0\0\0A\0\0\0\0", 17) +
                                 std::string{static_cast<char>(section.size()), '\0', '\0', '\0'} + section);
    expect_no({"check", "bad.dpia", "--rule", "bad-line"},
              "bad.dpia[A]:3:3: error: \"1.x\" is no number. [bad-line] (error 57)\n");
    EXPECT_EQ(1, run({"check", "bad.dpia", "--section", "A"}).status);
}

TEST_F(PmToolCheck, FileThatCannotBeReadIsTrouble) {
    expect_trouble({"check", "no.pia"}, "no.pia: The file doesn't exist (error 63)");
    expect_trouble({"check"}, "FILE is required; see pmtool check --help");
}

TEST_F(PmToolCheck, FileThatCannotBeReadIsTroubleWhateverRuleIsAskedFor) {
    expect_trouble({"check", "no.pia", "--rule", "bad-line"}, "no.pia: The file doesn't exist (error 63)");
    folder.write("no.txt", "text");
    expect_trouble({"check", "no.txt", "--rule", "bad-line"}, "no.txt: The content is of no known kind");
}

TEST_F(PmToolCheck, SectionThatIsNotThereIsTrouble) {
    const std::string pia = sample_folder + "/plotter.pia";
    expect_trouble({"check", pia, "--section", "9"}, pia + ": A pia file has no sections (error 83)");
    const std::string dpia = sample_folder + "/sections.dpia";
    expect_trouble({"check", dpia, "--section", "9", "--rule", "bad-line"},
                   dpia + "[9]: There is no section \"9\"; there are: Office, Workshop, Archive (error 83)");
}

TEST_F(PmToolCheck, OtherVerbsStopAtTheFirstBadLine) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\n\na=1\nb=1.x\nc=yes\n");
    const std::string text =
        "bad.pia:4: The line isn't valid (error 57): b=1.x; all bad lines are listed by: pmtool check";
    expect_trouble({"tree", "bad.pia"}, text);
    expect_trouble({"get", "bad.pia", "a"}, text);
    expect_trouble({"convert", "bad.pia", "out.pia"}, text);
    EXPECT_EQ((std::vector<std::string>{"bad.pia"}), file_names());
}

TEST_F(PmToolCheck, OtherVerbsReadOnWhenTold) {
    const ToolRun result = run({"get", "bad.pia", "a", "--keep-going"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("1\n", result.out);
    EXPECT_EQ("pmtool: dropped: bad.pia:3: The line isn't valid (error 57): b=1.x\n"
              "pmtool: dropped: bad.pia:4: The value is of no known type (error 88): c=yes\n",
              result.err);
}

TEST_F(PmToolCheck, ValueOfNoTypeIsToldWithItsLineByOtherVerbs) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\n\na=1\nc=yes\n");
    expect_trouble({"tree", "bad.pia"},
                   "bad.pia:4: The value is of no known type (error 88): c=yes; all bad lines are "
                   "listed by: pmtool check");
}

TEST_F(PmToolCheck, NameSetTwiceWithDifferentTypesEndsTheReading) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\na=1\na=2.5\n");
    expect_trouble({"tree", "bad.pia"},
                   "bad.pia: The type doesn't match: another one is required here (error 54)");
}

} // namespace

} // namespace pm::test
