#include "tools/run_tool.h"

namespace pm::test {

namespace {

class PmToolSections : public ToolTest {
protected:
    PmToolSections() {
        copy_sample("sections.dpia", "s.dpia");
        folder.write("a.pia", "PIAFILEVERSION_2.0,\na=1\n");
        folder.write("b.pia", "PIAFILEVERSION_2.0,\nx{\n b=2\n}\n");
    }
    void expect_told(const std::vector<std::string>& arguments, int status, const std::string& line) const {
        const ToolRun result = run(arguments);
        EXPECT_EQ(status, result.status);
        EXPECT_EQ("pmtool: " + line + "\n", result.err);
    }
};

TEST_F(PmToolSections, SectionsAreListedWithTheirInfo) {
    expect_output({"sections", "s.dpia"}, "Office\tDrawing office, third floor\n"
                                          "Workshop\tPlotter beside the paint shop\n"
                                          "Archive\n");
}

TEST_F(PmToolSections, PlottersOfACfgFileAreListedByNumberAndName) {
    expect_output({"sections", sample_folder + "/three-plotters.cfg"},
                  "1\tDX-4200, drawing office\n2\tDX-4200, workshop\n3\tDX-4200, reception\n");
}

TEST_F(PmToolSections, PlotterNumbersAreThoseOfTheReader) {
    folder.write("a.cfg", "[PlotDriver#x]\nType=3\n[PlotDriver# 2]\nType=4\n");
    expect_output({"sections", "a.cfg"}, "0\n2\n");
    expect_output({"get", "a.cfg", "--section", "0", "\\PlotDriver\\Type"}, "3\n");
    expect_output({"get", "a.cfg", "--section", "2", "\\PlotDriver\\Type"}, "4\n");
}

TEST_F(PmToolSections, TreeOfADpiaFileHasANodeForEachSection) {
    expect_output({"ls", "s.dpia"}, "Office\\\nWorkshop\\\nArchive\\\n");
    expect_output({"tree", "s.dpia", "Archive\\stamp"},
                  run({"tree", "s.dpia", "stamp", "--section", "Archive"}).out);
}

TEST_F(PmToolSections, SectionIsReadAsUtf8) {
    expect_output({"tree", "s.dpia", "\\stamp", "--section", "Archive"},
                  "text: string = \"Archivkopie \xE2\x80\x93 nicht ma\xC3\x9Fst\xC3\xA4"
                  "blich\"\n"
                  "x: double = 10.0\n"
                  "y: double = 10.0\n"
                  "bits: raw = 3C428181423C\n");
}

TEST_F(PmToolSections, UnknownSectionIsTrouble) {
    expect_trouble({"tree", "s.dpia", "--section", "archive"},
                   "s.dpia: there is no section archive; there are: Office, Workshop, Archive");
}

TEST_F(PmToolSections, JsonFileHasNone) {
    expect_output({"dump", "s.dpia", "-o", "s.json"}, "");
    const std::string message = "s.json: a json file has no sections";
    expect_trouble({"extract", "s.json", "Office", "-o", "o.pia", "--from", "json"}, message);
    expect_trouble({"tree", "s.json", "--from", "json", "--section", "Office"}, message);
    expect_trouble({"diff", "s.json", "s.json", "--from", "json", "--section", "Nope"}, message);
    EXPECT_FALSE(std::filesystem::exists(folder / "o.pia"));
}

TEST_F(PmToolSections, EmptyNameIsThatOfNoSection) {
    copy_sample("three-plotters.cfg", "t.cfg");
    for (const std::string file : {"s.dpia", "t.cfg"}) {
        expect_trouble({"extract", file, "", "-o", "o.pia"},
                       "NAME: this can't be empty; see pmtool extract --help");
        expect_trouble({"tree", file, "--section", ""},
                       "--section: this can't be empty; see pmtool tree --help");
        expect_trouble({"diff", file, file, "--section", ""},
                       "--section: this can't be empty; see pmtool diff --help");
        expect_trouble({"check", file, "--section", ""},
                       "--section: this can't be empty; see pmtool check --help");
        expect_trouble({"report", file, "--section", ""},
                       "--section: this can't be empty; see pmtool report --help");
    }
    expect_trouble({"bundle", "-o", "o.dpia", "A=a.pia#"},
                   "a.pia#: the name of a section is missing behind the #; see pmtool bundle --help");
    EXPECT_FALSE(std::filesystem::exists(folder / "o.pia"));
}

TEST_F(PmToolSections, ExtractWritesOneSection) {
    expect_output({"extract", "s.dpia", "Archive", "-o", "x.pia"}, "");
    EXPECT_TRUE(folder.read("x.pia").starts_with("PIAFILEVERSION_2.0,\r\nname=\"Reprints\n"));
    expect_output({"extract", "s.dpia", "Archive", "-o", "y.pia", "--compress", "--tag", "t"}, "");
    EXPECT_TRUE(folder.read("y.pia").starts_with("PIAFILEVERSION_2.0,t,compress\r\n"));
    expect_output({"compare", "x.pia", "y.pia"}, "x.pia and y.pia hold equal trees.\n");
}

TEST_F(PmToolSections, InfoTextThatAFormatHasNoPlaceForIsANote) {
    const std::string office = "the info text of section Office isn't kept";
    expect_told({"convert", "s.dpia", "x.pia", "--section", "Office"}, 0, "x.pia: note: " + office);
    expect_told({"extract", "s.dpia", "Office", "-o", "x.pia"}, 0, "x.pia: note: " + office);
    expect_told({"convert", "s.dpia", "x.json"}, 0,
                "x.json: note: " + office + "; the info text of section Workshop isn't kept");
}

TEST_F(PmToolSections, MovedSectionKeepsItsInfoText) {
    const std::string shown = run({"mv", "s.dpia", "\\Office\\", "\\Bureau\\", "--dry-run"}).out;
    EXPECT_TRUE(shown.ends_with("~ \\Bureau\\: info text \"\" -> \"Drawing office, third floor\"\n"))
        << shown;
    expect_output({"mv", "s.dpia", "\\Office\\", "\\Bureau\\"}, "");
    expect_output({"sections", "s.dpia"}, "Workshop\tPlotter beside the paint shop\n"
                                          "Archive\n"
                                          "Bureau\tDrawing office, third floor\n");
}

TEST_F(PmToolSections, SectionThatGoesWhereAnotherComesLosesItsInfoTextAloud) {
    const std::string lost = "s.dpia: \\Office\\: lost: the section's info text isn't kept: string \"Drawing "
                             "office, third floor\" -> nothing\n"
                             "pmtool: s.dpia: not written: 1 loss; --lossy writes nevertheless";
    folder.write("script", "rm \\Office\\\nset \\Bureau\\p long 1\n");
    expect_told({"apply", "s.dpia", "script"}, 2, lost);
    expect_told({"mv", "s.dpia", "\\Office\\", "\\Archive\\Office\\"}, 2, lost);
    folder.write("removal", "mv \\Archive\\stamp\\ \\Archive\\seal\\\nrm \\Office\\\n");
    expect_output({"apply", "s.dpia", "removal"}, "");
    expect_output({"sections", "s.dpia"}, "Workshop\tPlotter beside the paint shop\nArchive\n");
    expect_output({"rm", "s.dpia", "\\Workshop\\"}, "");
    expect_output({"sections", "s.dpia"}, "Archive\n");
}

TEST_F(PmToolSections, InfoTextsAreMergedThreeWays) {
    const auto bundle = [&](const std::string& file, const std::string& info) {
        expect_output({"bundle", "-o", file, "A=a.pia", "--info", "A=" + info}, "");
    };
    bundle("base.dpia", "one");
    bundle("two.dpia", "two");
    bundle("three.dpia", "three");
    expect_output({"merge", "base.dpia", "base.dpia", "two.dpia", "-o", "m.dpia"}, "");
    expect_output({"sections", "m.dpia"}, "A\ttwo\n");
    expect_output({"merge", "base.dpia", "two.dpia", "base.dpia", "-o", "m.dpia"}, "");
    expect_output({"sections", "m.dpia"}, "A\ttwo\n");
    expect_no({"merge", "base.dpia", "three.dpia", "two.dpia", "-o", "m.dpia"},
              "conflict: \\A\\: info text \"one\" -> \"three\" | \"two\"\n");
    expect_output({"sections", "m.dpia"}, "A\tthree\n");
}

TEST_F(PmToolSections, InfoTextOfASectionThatTheOtherSideRemovedIsAConflict) {
    expect_output({"bundle", "-o", "base.dpia", "A=a.pia", "B=a.pia", "--info", "A=one"}, "");
    expect_output({"bundle", "-o", "told.dpia", "A=a.pia", "B=a.pia", "--info", "A=two"}, "");
    expect_output({"bundle", "-o", "gone.dpia", "B=a.pia"}, "");
    expect_no({"merge", "base.dpia", "gone.dpia", "told.dpia", "-o", "m.dpia"},
              "conflict: \\A\\: info text \"one\" -> - | \"two\"\n");
    expect_output({"sections", "m.dpia"}, "B\n");
    expect_no({"merge", "base.dpia", "told.dpia", "gone.dpia", "-o", "m.dpia"},
              "conflict: \\A\\: info text \"one\" -> \"two\" | -\n");
    expect_output({"sections", "m.dpia"}, "B\nA\ttwo\n");
    expect_output({"diff", "m.dpia", "told.dpia", "--no-order"}, "m.dpia and told.dpia hold equal trees.\n");
    expect_output({"merge", "base.dpia", "base.dpia", "gone.dpia", "-o", "m.dpia"}, "");
    expect_output({"sections", "m.dpia"}, "B\n");
}

TEST_F(PmToolSections, RootOfASectionStays) {
    expect_trouble({"rm", "s.dpia", "\\", "--section", "Office"}, "s.dpia: \\: the root stays");
    expect_trouble({"mv", "s.dpia", "\\", "\\x\\", "--section", "Office"},
                   "s.dpia: \\: the root stays what and where it is");
    folder.write("script", "set \\p long 1\nrm \\\n");
    expect_trouble({"apply", "s.dpia", "script", "--section", "Office"},
                   "s.dpia: line 2 of the script: \\: the root stays");
}

TEST_F(PmToolSections, DryRunShowsAChangedInfoText) {
    expect_output({"bundle", "-o", "t.dpia", "A=a.pia", "--info", "A=old"}, "");
    expect_output({"bundle", "t.dpia", "--replace", "A=a.pia", "--info", "A=new", "--dry-run"},
                  "~ \\A\\: info text \"old\" -> \"new\"\n");
}

TEST_F(PmToolSections, ConvertNeedsASectionToBeChosen) {
    expect_trouble(
        {"convert", "s.dpia", "x.pia"},
        "s.dpia: a dpia file holds several trees; choose one with --section (Office, Workshop, Archive)");
    EXPECT_EQ(0, run({"convert", "s.dpia", "x.pia", "--section", "Office"}).status);
    expect_output({"get", "x.pia", "name"}, run({"get", "s.dpia", "name", "--section", "Office"}).out);
}

TEST_F(PmToolSections, DpiaFileIsConvertedByteForByte) {
    expect_output({"convert", "s.dpia", "t.dpia"}, "");
    EXPECT_EQ(folder.read("s.dpia"), folder.read("t.dpia"));
}

TEST_F(PmToolSections, ConvertMakesOneSectionOfAnotherFile) {
    expect_output({"convert", "a.pia", "t.dpia"}, "");
    expect_output({"sections", "t.dpia"}, "a\n");
    expect_output({"tree", "t.dpia", "--section", "a"}, "a: long = 1\n");
}

TEST_F(PmToolSections, BundleWritesNamedSectionsInOrder) {
    expect_output(
        {"bundle", "-o", "t.dpia", "B=b.pia", "A=a.pia", "--info", "A=of a=b", "--info", "B=second one"}, "");
    expect_output({"sections", "t.dpia"}, "B\tsecond one\nA\tof a=b\n");
    expect_output({"tree", "t.dpia", "--section", "B"}, "x\\\n  b: long = 2\n");
    expect_output({"tree", "t.dpia", "--section", "A"}, "a: long = 1\n");
}

TEST_F(PmToolSections, FileWithoutPropertiesIsAnEmptySection) {
    folder.write("e.pia", "PIAFILEVERSION_2.0,\n");
    expect_output({"bundle", "-o", "t.dpia", "E=e.pia"}, "");
    expect_output({"sections", "t.dpia"}, "E\n");
    expect_output({"tree", "t.dpia", "--section", "E"}, "");
}

TEST_F(PmToolSections, BundleThatCannotBeWrittenLeavesNothing) {
    expect_trouble({"bundle", "-o", "t.dpia", "A=a.pia", "A=b.pia"}, "section \"A\" is named twice");
    expect_trouble({"bundle", "-o", "t.dpia", "A\\B=a.pia"},
                   "\"A\\\\B\": this can't be the name of a section");
    expect_trouble({"bundle", "-o", "t.dpia", "*=a.pia"}, "\"*\": this can't be the name of a section");
    expect_trouble({"bundle", "-o", "t.dpia", "=a.pia"}, "\"\": this can't be the name of a section");
    expect_trouble({"bundle", "-o", "t.dpia", "\xC3\x84=a.pia"},
                   "section \"\xC3\x84\": its name and info must be ASCII in a dpia file");
    expect_trouble({"bundle", "-o", "t.dpia", "A=a.pia", "--info", "A=\xC3\x84"},
                   "section \"A\": its name and info must be ASCII in a dpia file");
    expect_trouble({"bundle", "-o", "t.dpia", "A"},
                   "A: this must have the form NAME=FILE; see pmtool bundle --help");
    expect_trouble({"bundle", "-o", "t.dpia", "A=a.pia", "--info", "A"},
                   "A: this must have the form NAME=TEXT; see pmtool bundle --help");
    expect_trouble({"bundle", "-o", "t.dpia", "A=a.pia", "--info", "B=x"},
                   "B: no section of this name is being written");
    expect_trouble({"bundle", "-o", "t.dpia", "A=no.pia"}, "no.pia: The file doesn't exist (error 63)");
    expect_trouble(
        {"bundle", "-o", "t.dpia", "A=s.dpia"},
        "s.dpia: a dpia file holds several trees; choose one with FILE#SECTION (Office, Workshop, Archive)");
    EXPECT_EQ((std::vector<std::string>{"a.pia", "b.pia", "s.dpia"}), file_names());
}

TEST_F(PmToolSections, SectionToEditThatIsNotThereIsTrouble) {
    expect_trouble({"set", "s.dpia", "name", "x", "--section", "archive"},
                   "s.dpia: there is no section archive; there are: Office, Workshop, Archive");
}

TEST_F(PmToolSections, CompareLooksIntoEverySection) {
    expect_output({"bundle", "-o", "t.dpia", "A=a.pia", "B=b.pia"}, "");
    expect_output({"bundle", "-o", "u.dpia", "A=a.pia", "B=a.pia"}, "");
    expect_no({"compare", "t.dpia", "u.dpia"}, "+ \\B\\a: long 1\n- \\B\\x\\\n- \\B\\x\\b: long 2\n");
}

TEST_F(PmToolSections, CheckGoesThroughAllSections) {
    expect_output({"check", "s.dpia"}, "s.dpia: no bad lines\n");
    expect_output({"check", "s.dpia", "--section", "Office"}, "s.dpia: no bad lines\n");
}

TEST_F(PmToolSections, BadLineIsToldWithItsSection) {
    const std::string section = "PIAFILEVERSION_2.0,\na=1\nb=1.x\nc=yes\n";
    folder.write("bad.dpia", std::string("\0\0\1\0\1\0\0\0\1\0\0\0A\0\0\0\0", 17) +
                                 std::string{static_cast<char>(section.size()), '\0', '\0', '\0'} + section);
    expect_no({"check", "bad.dpia"},
              "bad.dpia[A]:3:3: error: \"1.x\" is no number. [bad-line] (error 57)\n"
              "bad.dpia[A]:4:3: error: \"yes\" has the form of no type. [unknown-type] (error 88)\n");
}

TEST_F(PmToolSections, SectionThatTheFileCutsOffIsTold) {
    const std::string whole = TempFolder::read_file(std::filesystem::path(sample_folder) / "sections.dpia");
    folder.write("cut.dpia", whole.substr(0, whole.size() - 20));
    expect_output({"tree", "cut.dpia", "--section", "Office", "name"},
                  "name: string = \"DX-4200 in the drawing office\"\n");
    expect_trouble(
        {"tree", "cut.dpia", "--section", "Archive"},
        "cut.dpia[Archive]: Reading or writing failed, or the file ends too early (error 82): Archive");
}

} // namespace

} // namespace pm::test
