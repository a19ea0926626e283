#include "system.h"
#include "tools/replacing_editor.h"
#include "tools/run_tool.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

namespace pm::test {

namespace {

using namespace std::string_literals;

// What is never lost, changed or invented without a word.
class PmToolNeverLoses : public ToolTest {
protected:
    PmToolNeverLoses() { copy_sample("plotter.pia", "p.pia"); }

    void write(const std::string& name, const std::string& body) const {
        folder.write(name, "PIAFILEVERSION_2.0,\r\n" + body);
    }

    // Expect that a verb refuses to write, says so with these words, and leaves the file as it was.
    void expect_kept(const std::vector<std::string>& arguments, const std::string& file,
                     const std::vector<std::string>& words) const {
        const std::string before = folder.read(file);
        const std::vector<std::string> names = file_names();
        const ToolRun result = run(arguments);
        EXPECT_EQ(2, result.status);
        for (const std::string& word : words) {
            EXPECT_NE(std::string::npos, result.err.find(word)) << word << "\n" << result.err;
        }
        EXPECT_NE(std::string::npos, result.err.find("not written: ")) << result.err;
        EXPECT_EQ(before, folder.read(file));
        EXPECT_EQ(names, file_names());
    }

    // The same for `set`, which is then told to write nevertheless.
    void expect_loss(const std::string& file, const std::string& path, const std::string& value,
                     const std::vector<std::string>& words) const {
        expect_kept({"set", file, path, value}, file, words);
        EXPECT_EQ(0, run({"set", file, path, value, "--lossy"}).status);
    }
};

TEST_F(PmToolNeverLoses, TextThatWouldBeTakenForUtf8IsALoss) {
    write("s.pia", "a=1\n");
    expect_kept({"set", "s.pia", "name", "\u00C3\u00BC"}, "s.pia",
                {"\\name: re-encoded: all that isn't ASCII could be UTF-8, and is read as that: string "
                 "\"\u00C3\u00BC\" -> string \"\u00FC\"",
                 "; --utf8 keeps all characters"});
    expect_kept({"set", "s.pia", "\u00C3\u00BC", "1"}, "s.pia",
                {"\\\u00C3\u00BC: renamed: ", "; --utf8 keeps all characters"});
    expect_output({"--code-page", "1252", "set", "s.pia", "other", "\u00C3\u00BC", "-o", "told.pia"}, "");
    expect_output({"set", "s.pia", "name", "\u00C3\u00BC", "--utf8"}, "");
    expect_output({"get", "s.pia", "name"}, "\u00C3\u00BC\n");
}

TEST_F(PmToolNeverLoses, PlotterInAFileOfADashedNameStaysOneSection) {
    copy_sample("office.pc2", "my-office.pc2");
    EXPECT_EQ(0, run({"convert", "my-office.pc2", "x.dpia"}).status);
    expect_output({"sections", "x.dpia"}, "my-office\n");
    expect_output({"get", "x.dpia", "\\PlotDriver\\PlotterId", "--section", "my-office"}, "DX4200-OFFICE\n");
    EXPECT_EQ(0, run({"extract", "x.dpia", "my-office", "-o", "back.pia"}).status);
    EXPECT_EQ(0, run({"diff", "my-office.pc2", "back.pia"}).status);
}

TEST_F(PmToolNeverLoses, BundledPlotterOfADashedNameStaysOneSection) {
    copy_sample("office.pc2", "a.pc2");
    EXPECT_EQ(0, run({"bundle", "-o", "x.dpia", "my-office=a.pc2"}).status);
    expect_output({"sections", "x.dpia"}, "my-office\n");
}

TEST_F(PmToolNeverLoses, PlotterOfACfgFileStaysOneSection) {
    copy_sample("three-plotters.cfg", "three-plotters.cfg");
    EXPECT_EQ(0, run({"convert", "three-plotters.cfg", "y.dpia", "--section", "2"}).status);
    expect_output({"sections", "y.dpia"}, "three-plotters\n");
    expect_output({"get", "y.dpia", "\\PlotDriver\\PlotterId", "--section", "three-plotters"}, "DX4200-2\n");
}

TEST_F(PmToolNeverLoses, AllPlottersOfACfgFileBecomeSections) {
    copy_sample("three-plotters.cfg", "a.cfg");
    EXPECT_EQ(0, run({"convert", "a.cfg", "y.dpia"}).status);
    const std::string sections = run({"sections", "y.dpia"}).out;
    EXPECT_TRUE(sections.starts_with("1")) << sections;
    expect_output({"get", "y.dpia", "\\3\\PlotDriver\\PlotterId"}, "DX4200-3\n");
}

TEST_F(PmToolNeverLoses, PlotterThatIsNotThereIsNotInvented) {
    const std::string file = sample_folder + "/three-plotters.cfg";
    const ToolRun result = run({"tree", file, "--section", "9"});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_NE(std::string::npos, result.err.find("1, 2, 3")) << result.err;
}

TEST_F(PmToolNeverLoses, BadLinesOfTheInputAreLosses) {
    write("a.pia", "a=1\nb=1.x\nfoo=yes\n");
    expect_kept({"set", "a.pia", "a", "2"}, "a.pia",
                {"a.pia:3: The line isn't valid (error 57): b=1.x", "foo=yes", "pmtool check", "--lossy"});
}

TEST_F(PmToolNeverLoses, RepeatedLinesOfTheInputAreLosses) {
    write("a.pia", "a=1\na=2\n");
    expect_kept({"set", "a.pia", "b", "2"}, "a.pia", {"\"a\" is set on line 2 already", "pmtool check"});
    expect_kept({"convert", "a.pia", "p.pia"}, "p.pia", {"\"a\" is set on line 2 already"});
}

TEST_F(PmToolNeverLoses, TextsThatReadingCutsAreLosses) {
    write("a.pia", "a=1\nt=\"" + std::string(5000, 'x') + "\n");
    expect_kept({"set", "a.pia", "a", "2"}, "a.pia", {"\\t"});
}

TEST_F(PmToolNeverLoses, ValuesThatReadAsSomethingElseAreLosses) {
    write("a.pia", "a=12 34\nb=truely\nc=1\n");
    expect_kept({"set", "a.pia", "c", "2"}, "a.pia", {"\"12 34\" reads as 12", "truely"});
}

TEST_F(PmToolNeverLoses, ValueIsOfItsTypeAsAWhole) {
    write("a.pia", "a=1\nb=TRUE\n");
    expect_trouble({"set", "a.pia", "a", "12 34"},
                   "\"12 34\" isn't a whole number of 32 bits, which type long asks for");
    expect_trouble({"set", "a.pia", "b", "truely"},
                   "\"truely\" isn't true or false, which type bool asks for");
}

TEST_F(PmToolNeverLoses, CharacterThatTheCodePageLacksIsALoss) {
    write("a.pia", "name=\"old\n");
    expect_kept({"set", "a.pia", "name", "\xD0\x96"}, "a.pia", {"\\name: re-encoded", "--utf8", "--lossy"});
    EXPECT_EQ(0, run({"set", "a.pia", "name", "\xD0\x96", "--utf8"}).status);
    expect_output({"get", "a.pia", "name"}, "\xD0\x96\n");
}

TEST_F(PmToolNeverLoses, NamesThatAPiaFileCannotHoldAreLosses) {
    write("a.pia", "a=1\n");
    expect_loss("a.pia", ";x", "5", {"\\;x: lost"});
    expect_kept({"set", "a.pia", "x{y\\z", "1"}, "a.pia", {"\\x{y\\z"});
}

TEST_F(PmToolNeverLoses, LineEndsInAValueMakeNoNodes) {
    write("a.pia", "a=\"1\n");
    expect_kept({"set", "a.pia", "a", "x\nnode{\nb=1\n}"}, "a.pia", {"\\a: "});
}

TEST_F(PmToolNeverLoses, NamesThatDifferInCaseAloneAreALossInADocFile) {
    EXPECT_EQ(0, run({"convert", "p.pia", "p.doc", "--lossy"}).status);
    expect_kept({"set", "p.doc", "media\\COPIES", "5"}, "p.doc", {"\\media\\"});
    expect_output({"get", "p.doc", "media\\copies"}, "1\n");
}

TEST_F(PmToolNeverLoses, NegativeZeroIsNotMadeZero) {
    write("a.pia", "a=1.5\n");
    expect_kept({"set", "a.pia", "a", "--", "-0.0"}, "a.pia", {"\\a: changed", "double -0.0 -> double 0.0"});
    EXPECT_EQ(0, run({"convert", "a.pia", "a.json"}).status);
    EXPECT_EQ(0, run({"set", "a.json", "a", "--from", "json", "--", "-0.0"}).status);
    expect_output({"get", "a.json", "a", "--from", "json"}, "-0.0\n");
}

TEST_F(PmToolNeverLoses, TruthValuesThatADocFileRetypesAreLosses) {
    const ToolRun result = run({"convert", sample_folder + "/dx4200", "dx.doc"});
    EXPECT_EQ(2, result.status);
    std::size_t retyped = 0;
    for (std::size_t at = 0; (at = result.err.find(": retyped: ", at)) != std::string::npos; ++at) {
        ++retyped;
    }
    EXPECT_EQ(117U, retyped);
    EXPECT_EQ((std::vector<std::string>{"p.pia"}), file_names());
}

TEST_F(PmToolNeverLoses, Utf8WithoutAMarkIsReadAndWrittenAsUtf8) {
    write("u.pia", "a=\"B\xC3\xBCro\nb=1\n");
    expect_output({"get", "u.pia", "a"}, "B\xC3\xBCro\n");
    EXPECT_EQ(0, run({"set", "u.pia", "c", "\xD0\x96"}).status);
    EXPECT_NE(std::string::npos, folder.read("u.pia").find("a=\"B\xC3\xBCro\n"));
    EXPECT_NE(std::string::npos, folder.read("u.pia").find("c=\"\xD0\x96\n"));
}

TEST_F(PmToolNeverLoses, MixedEncodingsAreToldByCheck) {
    write("m.pia", "a=\"B\xC3\xBCro\nb=\"B\xFCro\n");
    const ToolRun result = run({"check", "m.pia"});
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.out.find("mixed-encoding")) << result.out;
}

TEST_F(PmToolNeverLoses, CutNodesAreMarked) {
    write("t.pia", "a{\n b{\n  c=1\n }\n}\ne{\n f=1\n}\n");
    expect_output({"tree", "t.pia", "--depth", "1"}, "a\\\n  \xE2\x80\xA6\ne\\\n  f: long = 1\n");
    expect_output({"tree", "t.pia", "--depth", "1", "--flat"}, "\\a\\\xE2\x80\xA6\n\\e\\f: long 1\n");
    expect_output({"tree", "t.pia", "a", "--depth", "1", "--flat"}, "\\a\\b\\c: long 1\n");
}

TEST_F(PmToolNeverLoses, PropertyIsJsonToo) {
    expect_output({"tree", "p.pia", "media\\copies", "--json"},
                  run({"get", "p.pia", "media\\copies", "--json"}).out);
    EXPECT_NE(std::string::npos, run({"tree", "p.pia", "media\\copies", "--json"}).out.find("\"value\""));
}

TEST_F(PmToolNeverLoses, FlatLinesHaveTheFullPathOfAllSections) {
    const std::string out = run({"tree", sample_folder + "/sections.dpia", "--flat"}).out;
    EXPECT_NE(std::string::npos, out.find("\\Office\\media\\copies: long 1\n")) << out;
    EXPECT_NE(std::string::npos, out.find("\\Archive\\stamp\\bits: raw 3C428181423C\n")) << out;
}

TEST_F(PmToolNeverLoses, StandardStreamsAreFiles) {
    const ToolRun tree = run_with_input({"tree", "-", "media\\finishing"}, folder.read("p.pia"));
    EXPECT_EQ(0, tree.status);
    expect_output({"tree", "p.pia", "media\\finishing"}, tree.out);
    const ToolRun converted =
        run_with_input({"convert", "-", "-", "--to", "doc", "--lossy"}, folder.read("p.pia"));
    EXPECT_EQ(0, converted.status);
    EXPECT_TRUE(converted.out.starts_with("\xD0\xCF\x11\xE0"));
    const ToolRun back = run_with_input({"get", "-", "media\\copies"}, converted.out);
    EXPECT_EQ("1\n", back.out) << back.err;
}

TEST_F(PmToolNeverLoses, FolderForTemporaryFilesThatIsMissingIsSaidInWords) {
    const ToolRun result = run({"convert", "p.pia", "p.doc", "--lossy"},
                               {.environment = {temp_folder_variable + "=/none/such"s}});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("pmtool: p.doc: there is no folder for temporary files that can be written\n", result.err);
}

TEST_F(PmToolNeverLoses, StandardOutputThatIsClosedIsTrouble) {
    EXPECT_EQ(2, run({"tree", "p.pia"}, {.output = "closed"}).status);
    // Nothing that is opened takes its place.
    EXPECT_EQ(2, run({"set", "p.pia", "x", "1", "--dry-run"}, {.output = "closed"}).status);
    EXPECT_EQ(0, run({"set", "p.pia", "x", "1"}, {.output = "closed"}).status);
    expect_output({"get", "p.pia", "x"}, "1\n");
}

TEST_F(PmToolNeverLoses, LocaleMakesNoDifference) {
    write("u.pia", "a=\"B\xFCro\nd=1.5\n");
    const ToolRun result = run({"tree", "u.pia"}, {.environment = {"LANG=C", "LC_ALL=C"}});
    EXPECT_EQ("a: string = \"B\xC3\xBCro\"\nd: double = 1.5\n", result.out);
}

TEST_F(PmToolNeverLoses, TwentyEditsAtOnceAllSurvive) {
    constexpr int edits = 20;
    std::vector<std::thread> editors;
    std::atomic<int> failed = 0;
    for (int i = 0; i < edits; ++i) {
        editors.emplace_back([&, number = std::to_string(i)] {
            if (run({"set", "p.pia", "\\edits\\n" + number, number}).status != 0) ++failed;
        });
    }
    std::ranges::for_each(editors, &std::thread::join);
    EXPECT_EQ(0, failed);
    for (int i = 0; i < edits; ++i) {
        expect_output({"get", "p.pia", "\\edits\\n" + std::to_string(i)}, std::to_string(i) + "\n");
    }
    EXPECT_EQ((std::vector<std::string>{"p.pia"}), file_names());
}

TEST_F(PmToolNeverLoses, VerbThatReplacesOneOfItsSourcesReadsItWhenItsTurnComes) {
    write("base.pia", "a=1\n");
    write("mine.pia", "a=1\nb=2\n");
    copy_sample("sections.dpia", "s.dpia");
    const std::vector<std::vector<std::string>> verbs = {
        {"convert", "p.pia", "p.pia", "--tag", "T"},
        {"merge", "base.pia", "mine.pia", "p.pia", "-o", "p.pia", "--lossy"},
        {"merge", "base.pia", "p.pia", "mine.pia", "-o", "p.pia", "--lossy"},
        {"bundle", "-o", "s.dpia", "A=s.dpia#Office", "B=p.pia"}};
    for (const std::vector<std::string>& words : verbs) {
        const std::string target = words.front() == "bundle" ? "s.dpia" : "p.pia";
        const std::string path = words.front() == "bundle" ? "\\A\\edited" : "\\edited";
        copy_sample("plotter.pia", "fresh.pia");
        std::filesystem::rename(folder / "fresh.pia", folder / "p.pia");
        ToolRun result;
        std::optional<pmtool::FileLock> lock(std::in_place, (folder / target).string());
        std::thread other([&] { result = run(words); });
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        copy_sample(target == "p.pia" ? "plotter.pia" : "sections.dpia", "edited");
        EXPECT_EQ(0, run({"set", "edited", target == "p.pia" ? "edited" : "\\Office\\edited", "1"}).status);
        std::filesystem::rename(folder / "edited", folder / target);
        lock.reset();
        other.join();
        EXPECT_NE(2, result.status) << words.front() << result.err;
        expect_output({"get", target, path}, "1\n");
    }
}

TEST_F(PmToolNeverLoses, LinesBehindTheOneThatEndsTheReadingAreTold) {
    write("a.pia", "b=1\nbad line\na=1\n\nc=2\n");
    const std::string bad = "a.pia:3: The line isn't valid (error 57): bad line\n";
    const std::string rest = "a.pia: reading ended at line 3; the 2 lines behind it aren't read\n";
    const std::string dropped = "pmtool: dropped: " + bad + "pmtool: dropped: " + rest;
    EXPECT_EQ(dropped, run({"convert", "a.pia", "o.pia", "--keep-going"}).err);
    EXPECT_EQ(dropped, run({"tree", "a.pia", "--keep-going"}).err);
    EXPECT_EQ("pmtool: o.pia: warning: not read: " + bad + "pmtool: o.pia: warning: not read: " + rest,
              run({"convert", "a.pia", "o.pia", "--lossy"}).err);
    write("a.pia", "b=1\nbad line\na=1\n");
    EXPECT_EQ("pmtool: dropped: " + bad +
                  "pmtool: dropped: a.pia: reading ended at line 3; the line behind it isn't read\n",
              run({"tree", "a.pia", "--keep-going"}).err);
    write("a.pia", "b=1\nbad line\n\n");
    EXPECT_EQ("pmtool: dropped: " + bad, run({"tree", "a.pia", "--keep-going"}).err);
}

TEST_F(PmToolNeverLoses, LinesBehindTheOneThatEndsASectionAreTold) {
    const std::string text = "PIAFILEVERSION_2.0,\r\nb=1\nbad line\na=1\n";
    const std::string size(1, static_cast<char>(text.size()));
    folder.write("o.dpia", "\0\0\2\0\1\0\0\0\1\0\0\0A\0\0\0\0\0\0\0\0"s + size + "\0\0\0"s + text);
    EXPECT_EQ("pmtool: dropped: o.dpia[A]:3: The line isn't valid (error 57): bad line\n"
              "pmtool: dropped: o.dpia[A]: reading ended there; what stands behind that line isn't read\n",
              run({"tree", "o.dpia", "--keep-going"}).err);
}

TEST_F(PmToolNeverLoses, EveryVerbThatWritesRefusesWhatReadingLost) {
    const std::vector<std::vector<std::string>> verbs = {{"set", "a.pia", "b", "2"},
                                                         {"rm", "a.pia", "a"},
                                                         {"mv", "a.pia", "a", "c"},
                                                         {"cp", "a.pia", "a", "c"},
                                                         {"apply", "a.pia", "script"},
                                                         {"edit", "a.pia"},
                                                         {"convert", "a.pia", "p.pia"},
                                                         {"merge", "a.pia", "a.pia", "p.pia", "-o", "p.pia"},
                                                         {"merge", "p.pia", "p.pia", "a.pia", "-o", "p.pia"},
                                                         {"bundle", "-o", "all.dpia", "A=a.pia"}};
    folder.write("script", "set \\b long 2\n");
    std::filesystem::create_directory(folder / "tmp");
    const ToolSetting setting{.environment = {"VISUAL=" + replacing_editor + " 3 4",
                                              temp_folder_variable + "="s + (folder / "tmp").string()}};
    for (std::vector<std::string> words : verbs) {
        write("a.pia", "a=1\na=3\n");
        const std::string before = folder.read("a.pia") + folder.read("p.pia");
        const ToolRun refused = run(words, setting);
        EXPECT_EQ(2, refused.status) << words.front();
        EXPECT_NE(std::string::npos, refused.err.find("\"a\" is set on line 2 already")) << refused.err;
        EXPECT_NE(std::string::npos, refused.err.find("not written: 1 loss; pmtool check")) << refused.err;
        EXPECT_EQ(before, folder.read("a.pia") + folder.read("p.pia")) << words.front();
        EXPECT_FALSE(std::filesystem::exists(folder / "all.dpia"));
        words.emplace_back("--lossy");
        const ToolRun written = run(words, setting);
        EXPECT_EQ(0, written.status) << words.front() << written.err;
        EXPECT_NE(std::string::npos, written.err.find(": warning: ")) << written.err;
        copy_sample("plotter.pia", "fresh.pia");
        std::filesystem::rename(folder / "fresh.pia", folder / "p.pia");
    }
}

TEST_F(PmToolNeverLoses, LossyReadsOnBehindBadLines) {
    copy_sample("sections.dpia", "s.dpia");
    const std::vector<std::pair<std::string, std::vector<std::string>>> verbs = {
        {"o.pia", {"convert", "a.pia", "o.pia"}},
        {"o.dpia", {"convert", "a.pia", "o.dpia"}},
        {"o.pia", {"merge", "a.pia", "a.pia", "a.pia", "-o", "o.pia"}},
        {"o.pia", {"merge", "p.pia", "a.pia", "p.pia", "-o", "o.pia"}},
        {"o.pia", {"merge", "a.pia", "b.pia", "b.pia", "-o", "o.pia"}},
        {"o.dpia", {"bundle", "-o", "o.dpia", "A=a.pia"}},
        {"o.dpia", {"bundle", "s.dpia", "--replace", "Office=a.pia", "-o", "o.dpia"}}};
    write("a.pia", "a=1\nb=1.x\nfoo=yes\nd=4\n");
    write("b.pia", "a=1\nd=4\n");
    for (auto [target, words] : verbs) {
        const std::string line = "a.pia:3: The line isn't valid (error 57): b=1.x";
        const std::string other = "a.pia:4: The value is of no known type (error 88): foo=yes";
        expect_trouble(words, line + "; all bad lines are listed by: pmtool check");
        EXPECT_FALSE(std::filesystem::exists(folder / target));
        words.emplace_back("--lossy");
        const ToolRun written = run(words);
        EXPECT_EQ(0, written.status) << words.front() << written.err;
        const std::string warning = "pmtool: " + target + ": warning: not read: ";
        EXPECT_EQ(warning + line + '\n' + warning + other + '\n', written.err) << words.front();
        const std::string flat = run({"tree", target, "--flat"}).out;
        EXPECT_NE(std::string::npos, flat.find("\\d: long 4\n")) << flat;
        std::filesystem::remove(folder / target);
    }
}

TEST_F(PmToolNeverLoses, LossyReadsOnBehindABadLineOfASection) {
    folder.write("t.cfg", "[PlotDriver#2]\nType=x\nfoo\n\n[PlotDriver#1]\nType=7\n");
    EXPECT_EQ(2, run({"extract", "t.cfg", "1", "-o", "o.pia"}).status);
    const ToolRun written = run({"extract", "t.cfg", "1", "-o", "o.pia", "--lossy"});
    EXPECT_EQ(0, written.status) << written.err;
    EXPECT_EQ(0U, written.err.find("pmtool: o.pia: warning: not read: t.cfg:3: ")) << written.err;
    expect_output({"get", "o.pia", "PlotDriver\\Type"}, "7\n");
}

TEST_F(PmToolNeverLoses, KeepGoingIsForVerbsThatListWhatTheyDrop) {
    write("a.pia", "a=1\nb=1.x\n");
    folder.write("script", "set \\a long 2\n");
    const std::vector<std::vector<std::string>> edits = {
        {"set", "a.pia", "a", "2"}, {"rm", "a.pia", "a"},         {"mv", "a.pia", "a", "c"},
        {"cp", "a.pia", "a", "c"},  {"apply", "a.pia", "script"}, {"edit", "a.pia"}};
    for (std::vector<std::string> words : edits) {
        EXPECT_EQ(std::string::npos, run({words.front(), "--help"}).out.find("--keep-going"))
            << words.front();
    }
    for (const std::string verb : {"tree", "ls", "get", "dump", "diff", "convert", "extract"}) {
        EXPECT_NE(std::string::npos, run({verb, "--help"}).out.find("--keep-going")) << verb;
    }
    const ToolRun result = run({"convert", "a.pia", "o.pia", "--keep-going"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("pmtool: dropped: a.pia:3: The line isn't valid (error 57): b=1.x\n", result.err);
}

TEST_F(PmToolNeverLoses, EveryVerbThatWritesRefusesWhatTheFormatLoses) {
    write("a.pia", "a=1\n");
    write("w.pia", "t=\"B\xC3\xBCro \xD0\x96\n"); // UTF-8
    folder.write("script", "set \\a string \"x\\ny\"\n");
    const std::vector<std::vector<std::string>> verbs = {
        {"set", "a.pia", "--type", "string", "a", "x\ny"},
        {"mv", "a.pia", "a", ";a"},
        {"cp", "a.pia", "a", "n\\;a"},
        {"apply", "a.pia", "script"},
        {"convert", "w.pia", "a.pia", "--out-code-page", "1252"}};
    const std::string before = folder.read("a.pia");
    for (const std::vector<std::string>& words : verbs) {
        const ToolRun refused = run(words);
        EXPECT_EQ(2, refused.status) << words.front() << refused.err;
        EXPECT_NE(std::string::npos, refused.err.find("not written: ")) << refused.err;
        EXPECT_EQ(before, folder.read("a.pia")) << words.front();
    }
}

TEST_F(PmToolNeverLoses, ChangeOfFormAloneIsToldInOneLine) {
    folder.write("one.pia", "PIAFILEVERSION_1.0,\r\na=1\n");
    const ToolRun result = run({"set", "one.pia", "a", "2"});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(result.err.starts_with("pmtool: one.pia: note: version 1.0 becomes 2.0")) << result.err;
    EXPECT_EQ(1, std::ranges::count(result.err, '\n'));
}

TEST_F(PmToolNeverLoses, DryRunShowsTheDifferenceAndWritesNothing) {
    const std::string before = folder.read("p.pia");
    const ToolRun result = run({"set", "p.pia", "media\\copies", "2", "--dry-run"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("~ \\media\\copies: long 1 -> long 2\n", result.out);
    EXPECT_EQ(before, folder.read("p.pia"));
}

TEST_F(PmToolNeverLoses, BackupKeepsTheOldFile) {
    const std::string before = folder.read("p.pia");
    EXPECT_EQ(0, run({"set", "p.pia", "media\\copies", "2", "--backup"}).status);
    EXPECT_EQ(before, folder.read("p.pia~"));
    EXPECT_EQ(0, run({"set", "p.pia", "media\\copies", "3", "--backup=.old"}).status);
    EXPECT_EQ((std::vector<std::string>{"p.pia", "p.pia.old", "p.pia~"}), file_names());
}

TEST_F(PmToolNeverLoses, NameOfAnotherFormatIsRefused) {
    expect_trouble({"set", "p.pia", "media\\copies", "2", "-o", "q.doc"},
                   "q.doc: the name is that of a doc file, but a pia file would be written; give it another "
                   "name");
    expect_trouble({"bundle", "-o", "q.pia", "A=p.pia"},
                   "q.pia: the name is that of a pia file, but a dpia file would be written; give it another "
                   "name");
    expect_trouble({"merge", "p.pia", "p.pia", "p.pia", "-o", "q.doc"},
                   "q.doc: the name is that of a doc file, but a pia file would be written; give it another "
                   "name, or say what is meant with --to");
    for (const std::string extension : {"pia", "dpia", "doc", "pc2", "cfg", "pcp", "pdt"}) {
        const std::string file = "q." + extension;
        const std::string words = file + ": the name is that of a " + extension + " file, but ";
        expect_trouble({"dump", "p.pia", "-o", file},
                       words + "a json file would be written; give it another name");
        expect_trouble({"report", "p.pia", "-o", file},
                       words + "an html file would be written; give it another name");
    }
    expect_trouble(
        {"dump", "p.pia", "-o", "q.html"},
        "q.html: the name is that of an html file, but a json file would be written; give it another "
        "name");
    expect_trouble(
        {"report", "p.pia", "-o", "q.JSON"},
        "q.JSON: the name is that of a json file, but an html file would be written; give it another "
        "name");
    EXPECT_EQ((std::vector<std::string>{"p.pia"}), file_names());
}

TEST_F(PmToolNeverLoses, SectionIsEditedInPlaceAndTheOthersStay) {
    copy_sample("sections.dpia", "s.dpia");
    const std::string archive = run({"tree", "s.dpia", "--section", "Archive"}).out;
    EXPECT_EQ(0, run({"set", "s.dpia", "media\\copies", "7", "--section", "Office"}).status);
    expect_output({"get", "s.dpia", "media\\copies", "--section", "Office"}, "7\n");
    expect_output({"tree", "s.dpia", "--section", "Archive"}, archive);
    expect_output({"sections", "s.dpia"}, "Office\tDrawing office, third floor\n"
                                          "Workshop\tPlotter beside the paint shop\n"
                                          "Archive\n");
}

} // namespace

} // namespace pm::test
