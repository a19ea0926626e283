#include "text.h"
#include "tools/replacing_editor.h"
#include "tools/run_tool.h"
#include <sstream>

namespace pm::test {

namespace {

class PmToolVerbs : public ToolTest {
protected:
    PmToolVerbs() {
        folder.write("a.pia",
                     "PIAFILEVERSION_2.0,\r\nn=1\nx{\n a=1\n b=\"t\n y{\n  c=2.5\n }\n}\nz{\n a=3\n}\n");
        for (const std::string name : {"plotter.pia", "plotter-compressed.pia", "sections.dpia", "office.pc2",
                                       "three-plotters.cfg", "pens.pcp"}) {
            samples.push_back(sample_folder + "/" + name);
        }
        samples.push_back(sample_folder + "/dx4200");
    }

    std::string flat(const std::string& file) const { return run({"tree", file, "--flat"}).out; }

    std::vector<std::string> samples;
    const std::string editor = "VISUAL=" + replacing_editor;
};

TEST_F(PmToolVerbs, DiffAsJsonShowsAnUnpairedSurrogateAsOneCharacter) {
    const std::string odd = R"({"name_units":[55296],"type":"long","value":1})";
    const std::string plain = R"({"name":"b","type":"long","value":1})";
    folder.write("1.json", R"({"pm9":1,"properties":[)" + odd + "," + plain + "]}");
    folder.write("2.json", R"({"pm9":1,"properties":[)" + plain + "," + odd + "]}");
    const ToolRun result = run({"diff", "1.json", "2.json", "--from", "json", "--json"});
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.out.find("\"\\\\\uFFFD\"")) << result.out;
}

TEST_F(PmToolVerbs, LsListsANode) {
    expect_output({"ls", "a.pia"}, "n\nx\\\nz\\\n");
    expect_output({"ls", "a.pia", "x"}, "a\nb\ny\\\n");
    expect_output({"ls", "a.pia", "x", "-l"}, "a: long 1\nb: string \"t\"\ny\\\n");
}

TEST_F(PmToolVerbs, LsListsWhatMatches) {
    expect_output({"ls", "a.pia", "**\\a"}, "\\x\\a\n\\z\\a\n");
    expect_output({"ls", "a.pia", "*\\"}, "\\x\\\n\\z\\\n");
}

TEST_F(PmToolVerbs, NothingOfThePathIsANegativeAnswer) {
    expect_not_found({"ls", "a.pia", "none"}, "a.pia: \\none: there is no such property or node");
    expect_not_found({"get", "a.pia", "x\\none"}, "a.pia: \\x\\none: there is no such property or node");
    expect_not_found({"tree", "a.pia", "none"}, "a.pia: \\none: there is no such property or node");
    expect_not_found({"rm", "a.pia", "none"}, "a.pia: none: there is no such property or node");
    expect_not_found({"mv", "a.pia", "none", "more"}, "a.pia: none: there is no such property or node");
    expect_not_found({"cp", "a.pia", "none", "more"}, "a.pia: none: there is no such property or node");
    expect_not_found({"set", "a.pia", "none", "1", "--existing"},
                     "a.pia: \\none: there is no such property or node");
    expect_not_found({"set", "a.pia", "*\\none", "1"}, "a.pia: \\*\\none: there is no such property or node");
}

TEST_F(PmToolVerbs, GetPrintsAllThatMatches) {
    expect_output({"get", "a.pia", "**\\a", "n"}, "1\n3\n1\n");
}

TEST_F(PmToolVerbs, SetChangesAllThatMatches) {
    EXPECT_EQ(0, run({"set", "a.pia", "*\\a", "9"}).status);
    expect_output({"get", "a.pia", "*\\a"}, "9\n9\n");
    expect_output({"get", "a.pia", "n"}, "1\n");
}

TEST_F(PmToolVerbs, RmMvAndCpChangeTheTree) {
    EXPECT_EQ(0, run({"rm", "a.pia", "x\\b"}).status);
    EXPECT_EQ(0, run({"mv", "a.pia", "x\\a", "x\\first"}).status);
    EXPECT_EQ(0, run({"cp", "a.pia", "x\\y\\", "z\\y\\"}).status);
    EXPECT_EQ(
        "\\n: long 1\n\\x\\first: long 1\n\\x\\y\\c: double 2.5\n\\z\\a: long 3\n\\z\\y\\c: double 2.5\n",
        flat("a.pia"));
}

TEST_F(PmToolVerbs, RmTakesPathsThatMatchTheSame) {
    expect_output({"rm", "a.pia", "n", "\\n"}, "");
    expect_output({"rm", "a.pia", "x\\b", "x\\*", "x\\y\\c", "x\\"}, "");
    EXPECT_EQ("\\z\\a: long 3\n", flat("a.pia"));
}

TEST_F(PmToolVerbs, RmTakesTheNodeOfAPropertysNameOnlyWhereNoPropertyHasIt) {
    folder.write("b.pia", "PIAFILEVERSION_2.0,\nx=1\ny=2\nx{\n a=1\n}\nz{\n b=1\n c=2\n}\n");
    expect_output({"rm", "b.pia", "x", "x", "y"}, "");
    EXPECT_EQ("\\x\\a: long 1\n\\z\\b: long 1\n\\z\\c: long 2\n", flat("b.pia"));
    expect_output({"rm", "b.pia", "x", "z\\c", "--dry-run"}, "- \\x\\\n- \\x\\a: long 1\n- \\z\\c: long 2\n");
    expect_output({"rm", "b.pia", "x\\a", "**\\", "--dry-run"},
                  run({"rm", "b.pia", "**\\", "--dry-run"}).out);
    EXPECT_EQ(2, run({"rm", "b.pia", "z", "\\"}).status);
    EXPECT_EQ(1, run({"rm", "b.pia", "z", "none"}).status);
    EXPECT_EQ("\\x\\a: long 1\n\\z\\b: long 1\n\\z\\c: long 2\n", flat("b.pia"));
}

TEST_F(PmToolVerbs, ScriptWhosePathsNothingHasIsANegativeAnswer) {
    for (const std::string line : {"rm \\none", "mv \\none \\m", "cp \\none\\ \\m\\", "set \\no*e long 1",
                                   "set \\new long 1\nrm \\new\nrm \\new"}) {
        EXPECT_EQ(1, run_with_input({"apply", "a.pia", "-"}, line + '\n').status) << line;
    }
    for (const std::string line :
         {"mv \\n \\x\\a", "rm \\", "mv \\x\\ \\x\\y\\x\\", "rm \"\\\\a\\u0000\"", "set \\x\\ long 1"}) {
        EXPECT_EQ(2, run_with_input({"apply", "a.pia", "-"}, line + '\n').status) << line;
    }
}

TEST_F(PmToolVerbs, TargetThatIsTakenIsTrouble) {
    const std::string before = folder.read("a.pia");
    EXPECT_EQ(2, run({"mv", "a.pia", "x\\a", "x\\b"}).status);
    EXPECT_EQ(2, run({"cp", "a.pia", "x\\a", "x\\b"}).status);
    EXPECT_EQ(before, folder.read("a.pia"));
}

TEST_F(PmToolVerbs, ScriptIsAppliedAsAWholeOrNotAtAll) {
    EXPECT_EQ(0, run_with_input({"apply", "a.pia", "-"}, "# two\nset \\n long 5\nrm \\x\\\n").status);
    EXPECT_EQ("\\n: long 5\n\\z\\a: long 3\n", flat("a.pia"));
    const std::string before = folder.read("a.pia");
    EXPECT_EQ(1, run_with_input({"apply", "a.pia", "-"}, "set \\n long 6\nrm \\none\n").status);
    EXPECT_EQ(2, run_with_input({"apply", "a.pia", "-"}, "set \\n long 6\nfoo\n").status);
    EXPECT_EQ(before, folder.read("a.pia"));
}

TEST_F(PmToolVerbs, MessageOfALongWordLeavesItsMiddleOut) {
    folder.write("script", "set \\a long " + std::string(1 << 20, '\1') + "\n");
    const ToolRun result = run({"apply", "a.pia", "script"});
    EXPECT_EQ(2, result.status);
    EXPECT_GT(std::size_t{1} << 16, result.err.size());
    EXPECT_TRUE(result.err.starts_with("pmtool: script:1:13: \"")) << result.err.substr(0, 80);
    EXPECT_TRUE(result.err.ends_with("which long asks for\n")) << result.err.substr(result.err.size() - 80);
    EXPECT_NE(std::string::npos, result.err.find(" ... "));
}

TEST_F(PmToolVerbs, ScriptOfADifferenceTurnsOneTreeIntoTheOther) {
    for (std::size_t i = 1; i + 1 < samples.size(); ++i) {
        ASSERT_EQ(0, run({"dump", samples[i], "-o", "first.json"}).status) << samples[i];
        ASSERT_EQ(0, run({"dump", samples[i + 1], "-o", "second.json"}).status);
        const ToolRun script = run({"diff", "first.json", "second.json", "--script", "--from", "json"});
        EXPECT_EQ(1, script.status);
        const ToolRun applied = run_with_input({"apply", "first.json", "-", "--from", "json"}, script.out);
        EXPECT_EQ(0, applied.status) << applied.err;
        EXPECT_EQ(0, run({"diff", "first.json", "second.json", "--from", "json"}).status) << samples[i];
    }
}

TEST_F(PmToolVerbs, DumpAndConvertGiveBackTheTree) {
    for (const std::string& sample : samples) {
        ASSERT_EQ(0, run({"dump", sample, "-o", "a.json"}).status) << sample;
        EXPECT_EQ(0, run({"convert", "a.json", "b.json", "--from", "json"}).status) << sample;
        EXPECT_EQ(folder.read("a.json"), folder.read("b.json")) << sample;
    }
}

TEST_F(PmToolVerbs, EverySampleIsReadByEveryVerbThatReads) {
    for (const std::string& sample : samples) {
        for (const std::vector<std::string>& verb : {std::vector<std::string>{"tree"},
                                                     {"tree", "--flat"},
                                                     {"tree", "--json"},
                                                     {"ls"},
                                                     {"dump"},
                                                     {"dump", "--plain"},
                                                     {"identify"},
                                                     {"identify", "--json"}}) {
            std::vector<std::string> words = verb;
            words.push_back(sample);
            const ToolRun result = run(words);
            EXPECT_EQ(0, result.status) << sample << result.err;
            EXPECT_NE("", result.out) << sample;
            EXPECT_EQ("", result.err) << sample;
        }
        EXPECT_EQ(0, run({"diff", sample, sample, "-q"}).status) << sample;
    }
}

TEST_F(PmToolVerbs, DiffListsWhatTurnsAIntoB) {
    folder.write("b.pia",
                 "PIAFILEVERSION_2.0,\r\nn=1.0\nx{\n a=2\n y{\n  c=2.5\n }\n}\nq{\n}\nz{\n a=3\n}\n");
    expect_no({"diff", "a.pia", "b.pia", "x"}, "- \\x\\b: string \"t\"\n~ \\x\\a: long 1 -> long 2\n");
    EXPECT_EQ(1, run({"diff", "a.pia", "b.pia", "-q"}).status);
    EXPECT_EQ("", run({"diff", "a.pia", "b.pia", "-q"}).out);
    EXPECT_EQ(0, run({"diff", "a.pia", "b.pia", "z"}).status);
    EXPECT_EQ(2, run({"diff", "a.pia", "none.pia"}).status);
}

TEST_F(PmToolVerbs, ScriptOfOneNodeTurnsItIntoThatOfB) {
    folder.write("b.pia",
                 "PIAFILEVERSION_2.0,\r\nn=1.0\nx{\n a=2\n y{\n  c=2.5\n }\n}\nq{\n}\nz{\n a=3\n}\n");
    const ToolRun script = run({"diff", "a.pia", "b.pia", "x", "--script"});
    EXPECT_EQ("rm \\x\\b\nset \\x\\a long 2\n", script.out);
    EXPECT_EQ(0, run_with_input({"apply", "a.pia", "-"}, script.out).status);
    EXPECT_EQ(0, run({"diff", "a.pia", "b.pia", "x"}).status);
    expect_output({"diff", "a.pia", "b.pia", "x\\a"}, "a.pia and b.pia hold equal trees.\n");
}

TEST_F(PmToolVerbs, DiffPassesOverWhatIsExcludedOrWithinTheTolerance) {
    folder.write("b.pia",
                 "PIAFILEVERSION_2.0,\r\nn=1\nx{\n a=2\n b=\"t\n y{\n  c=2.5000001\n }\n}\nz{\n a=3\n}\n");
    for (const std::string text : {"", "-1", "nan", "1x"}) {
        expect_trouble({"diff", "a.pia", "b.pia", "--tolerance", text},
                       "--tolerance: \"" + text + "\" is no number from 0 on; see pmtool diff --help");
    }
    EXPECT_EQ(1, run({"diff", "a.pia", "b.pia", "--tolerance", "0.001"}).status);
    EXPECT_EQ(0, run({"diff", "a.pia", "b.pia", "--tolerance", "0.001", "--exclude", "x\\a"}).status);
}

TEST_F(PmToolVerbs, MergeTakesWhatBothChanged) {
    EXPECT_EQ(0, run({"set", "a.pia", "n", "2", "-o", "b.pia"}).status);
    EXPECT_EQ(0, run({"set", "a.pia", "z\\a", "4", "-o", "c.pia"}).status);
    expect_output({"merge", "a.pia", "b.pia", "c.pia", "-o", "m.pia"}, "");
    expect_output({"get", "m.pia", "n", "z\\a"}, "2\n4\n");
}

TEST_F(PmToolVerbs, MergeListsConflicts) {
    EXPECT_EQ(0, run({"set", "a.pia", "n", "2", "-o", "b.pia"}).status);
    EXPECT_EQ(0, run({"set", "a.pia", "n", "3", "-o", "c.pia"}).status);
    expect_no({"merge", "a.pia", "b.pia", "c.pia", "-o", "m.pia"},
              "conflict: \\n: long 1 -> long 2 | long 3\n");
    expect_output({"get", "m.pia", "n"}, "2\n");
}

TEST_F(PmToolVerbs, EditorChangesTheTree) {
    const ToolSetting setting{.environment = {editor + " 2.5 3.5"}};
    const ToolRun result = run({"edit", "a.pia"}, setting);
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ("~ \\x\\y\\c: double 2.5 -> double 3.5\n", result.out);
    expect_output({"get", "a.pia", "x\\y\\c"}, "3.5\n");
}

TEST_F(PmToolVerbs, MistakeInTheEditorChangesNothingAndKeepsTheText) {
    const std::string before = folder.read("a.pia");
    const ToolRun result =
        run({"edit", "a.pia"},
            {.input = "",
             .environment = {editor + " { [", temp_folder_variable + ("=" + folder.path().string())}});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ(before, folder.read("a.pia"));
    EXPECT_NE(std::string::npos, result.err.find("what was edited stays in ")) << result.err;
    EXPECT_EQ(2U, file_names().size());
}

TEST_F(PmToolVerbs, EditorThatFailsChangesNothing) {
    const std::string before = folder.read("a.pia");
    const ToolRun result = run({"edit", "a.pia"}, {.environment = {editor}});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("pmtool: the editor " + pmtool::in_quotes(replacing_editor) + " ended with 1\n", result.err);
    EXPECT_EQ(before, folder.read("a.pia"));
}

TEST_F(PmToolVerbs, BundleChangesSectionsInPlace) {
    copy_sample("sections.dpia", "s.dpia");
    EXPECT_EQ(
        0,
        run({"bundle", "s.dpia", "--add", "New=a.pia", "--remove", "Workshop", "--info", "New=of a"}).status);
    expect_output({"sections", "s.dpia"}, "Office\tDrawing office, third floor\nArchive\nNew\tof a\n");
    expect_output({"get", "s.dpia", "n", "--section", "New"}, "1\n");
    EXPECT_EQ(0, run({"bundle", "s.dpia", "--replace", "Office=s.dpia#New"}).status);
    expect_output({"get", "s.dpia", "n", "--section", "Office"}, "1\n");
    EXPECT_EQ(1, run({"bundle", "s.dpia", "--remove", "Nothing"}).status);
}

TEST_F(PmToolVerbs, SectionsOfACfgFileAreItsPlottersByName) {
    const std::string out = run({"sections", sample_folder + "/three-plotters.cfg"}).out;
    EXPECT_TRUE(out.starts_with("1\t")) << out;
}

TEST_F(PmToolVerbs, HelpFitsEightyColumns) {
    std::vector<std::vector<std::string>> lines = {{"--help"}};
    for (const std::string verb :
         {"identify", "tree",    "ls",     "get",   "set",        "rm",      "mv",   "cp",
          "apply",    "edit",    "diff",   "merge", "check",      "convert", "dump", "codec",
          "sections", "extract", "bundle", "help",  "completion", "report"}) {
        lines.push_back({"help", verb});
    }
    for (const std::vector<std::string>& words : lines) {
        const ToolRun result = run(words);
        EXPECT_EQ(0, result.status) << words.back();
        std::istringstream stream(result.out);
        for (std::string line; std::getline(stream, line);) {
            EXPECT_LE(line.size(), 80U) << line;
        }
        EXPECT_EQ(result.out, words.size() == 1 ? result.out : run({words[1], "--help"}).out);
    }
}

TEST_F(PmToolVerbs, MistakesPointAtTheHelpOfTheirVerb) {
    expect_trouble({"tree"}, "FILE is required; see pmtool tree --help");
    expect_trouble(
        {"set", "a.pia", "x\\b", "-t"},
        "VALUE is required; a value that begins with \"-\" stands behind \"--\": pmtool set ... -- VALUE; "
        "see pmtool set --help");
    EXPECT_EQ(0, run({"set", "a.pia", "x\\b", "--", "-t"}).status);
    expect_output({"get", "a.pia", "x\\b"}, "-t\n");
}

TEST_F(PmToolVerbs, PathMayBeCalledLikeAVerb) {
    EXPECT_EQ(0, run({"set", "a.pia", "tree", "help"}).status);
    expect_output({"get", "a.pia", "tree"}, "help\n");
}

TEST_F(PmToolVerbs, ManualPagesAreMadeOfTheHelp) {
    const std::string page = run({"help", "--man"}).out;
    EXPECT_TRUE(page.starts_with(".TH PMTOOL 1 "));
    EXPECT_NE(std::string::npos, page.find("\n.B tree\nshow the tree of a file\n"));
    const std::string group = run({"help", "--man", "change"}).out;
    EXPECT_NE(std::string::npos, group.find("\n.B \\-\\-existing\nOnly if the property is there\n"));
    EXPECT_EQ(2, run({"help", "--man", "none"}).status);
}

TEST_F(PmToolVerbs, ShellsCompleteVerbsAndOptions) {
    for (const std::string shell : {"bash", "zsh", "fish"}) {
        const std::string script = run({"completion", shell}).out;
        for (const std::string word : {"identify", "compare", "existing", "dry-run"}) {
            EXPECT_NE(std::string::npos, script.find(word)) << shell << ' ' << word;
        }
    }
    EXPECT_EQ(2, run({"completion", "csh"}).status);
}

TEST_F(PmToolVerbs, ShellsFindTheVerbBehindAnOptionWithItsValue) {
    for (const std::string shell : {"bash", "zsh"}) {
        const std::string script = run({"completion", shell}).out;
        EXPECT_NE(std::string::npos, script.find("        --code-page) ((++i));;\n        -*) ;;\n"))
            << shell;
    }
}

TEST_F(PmToolVerbs, ColoursAreForTerminalsOrWhoAsks) {
    EXPECT_EQ(std::string::npos, run({"tree", "a.pia"}).out.find('\x1B'));
    EXPECT_NE(std::string::npos, run({"tree", "a.pia", "--color", "always"}).out.find('\x1B'));
}

} // namespace

} // namespace pm::test
