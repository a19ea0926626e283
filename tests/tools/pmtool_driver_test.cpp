#include "tools/run_tool.h"

namespace pm::test {

namespace {

class PmToolDoc : public ToolTest {
protected:
    PmToolDoc() { copy_sample("plotter.pia", "a.pia"); }

    void make(const std::string& name) const {
        EXPECT_EQ(0, run({"convert", "a.pia", name, "--to", "doc", "--lossy"}).status);
    }
};

class PmToolPdt : public ToolTest {
protected:
    PmToolPdt() { std::filesystem::copy(std::filesystem::path(sample_folder) / "dx4200", folder / "dx"); }
};

TEST_F(PmToolDoc, TruthValuesComeBackAsNumbersIfThatIsAskedFor) {
    EXPECT_EQ(2, run({"convert", "a.pia", "a.doc"}).status);
    make("a.doc");
    expect_output({"get", "a.doc", "\\meta\\show_custom_first"}, "1\n");
    expect_output({"get", "a.doc", "\\meta\\notes"}, "Gro\xC3\x9F"
                                                     "format, 3. Etage\n");
}

TEST_F(PmToolDoc, IsToldByItsSignature) {
    make("a");
    expect_output({"identify", "a"}, "a: doc (compound file): compound file signature\n");
}

TEST_F(PmToolDoc, ValueIsSet) {
    make("a.doc");
    expect_output({"set", "a.doc", "\\media\\copies", "4"}, "");
    expect_output({"get", "a.doc", "\\media\\copies"}, "4\n");
}

TEST_F(PmToolDoc, NodeThatIsNeverReadBackIsALoss) {
    folder.write("v.pia", "PIAFILEVERSION_2.0,\na=1\nx{\n version=2\n b=3\n}\n");
    const ToolRun result = run({"convert", "v.pia", "v.doc"});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ(
        "pmtool: v.doc: \\x\\version: lost: a compound file gives nothing back that is named \"Version\": "
        "long 2 -> nothing\npmtool: v.doc: not written: 1 loss; --lossy writes nevertheless\n",
        result.err);
}

TEST_F(PmToolDoc, NameThatACompoundFileCannotHoldLeavesTheTarget) {
    folder.write("n.pia", "PIAFILEVERSION_2.0,\na_name_of_more_than_thirty_one_characters=1\n");
    folder.write("n.doc", "old");
    expect_trouble(
        {"convert", "n.pia", "n.doc"},
        "n.doc: \\a_name_of_more_than_thirty_one_characters: lost: it can't be written to a doc file: "
        "The compound file can't be written (60): long 1 -> nothing\n"
        "pmtool: n.doc: not written: 1 loss; --lossy writes nevertheless");
    EXPECT_EQ("old", folder.read("n.doc"));
}

TEST_F(PmToolDoc, CutFileIsTrouble) {
    make("a.doc");
    folder.write("cut.doc", folder.read("a.doc").substr(0, 600));
    expect_trouble({"tree", "cut.doc"},
                   "cut.doc: The file can't be opened, or it isn't a file of the expected kind (error 56)");
}

TEST_F(PmToolPdt, FolderAndStringFileGiveTheSameTree) {
    const ToolRun of_folder = run({"tree", "dx"});
    EXPECT_EQ(0, of_folder.status);
    EXPECT_NE("", of_folder.out);
    expect_output({"tree", "dx/strings.pdt"}, of_folder.out);
}

TEST_F(PmToolPdt, PartOfTheDescriptionIsShown) {
    expect_output({"tree", "dx", "\\meta"},
                  "canonical_family_name: string = \"Draftex Series\"\n"
                  "driver_version: string = \"4.2.1\"\n"
                  "canonical_model_name: string = \"DX-4200\"\n"
                  "model_abilities: string = \"000000000000\"\n"
                  "localized_model_name: string = \"Draftex DX-4200\"\n"
                  "localized_family_name: string = \"Draftex Series large format plotters\"\n"
                  "driver_tag_line: string = \"Fine lines, up to 42 inches wide\"\n"
                  "toolkit_version: double = 0.0\n");
}

TEST_F(PmToolPdt, DescriptionIsConvertedWhole) {
    expect_output({"convert", "dx", "dx.pia"}, "");
    expect_output({"compare", "dx", "dx.pia"}, "dx and dx.pia hold equal trees.\n");
}

TEST_F(PmToolPdt, GoodFolderHasNoBadLines) {
    expect_output({"check", "dx"}, "dx: no bad lines\n");
}

TEST_F(PmToolPdt, MissingSectionFileIsNamed) {
    std::filesystem::remove(folder / "dx" / "IO Method.pdt");
    const std::string text = "dx: The file doesn't exist (error 63): dx/IO Method.pdt";
    expect_trouble({"tree", "dx"}, text);
    expect_no({"check", "dx"},
              as_found("dx/IO Method.pdt") +
                  ": error: The table isn't there, or can't be read. [missing-table] (error 63)\n");
}

TEST_F(PmToolPdt, StringFileOfAnyNameIsFound) {
    std::filesystem::rename(folder / "dx" / "strings.pdt", folder / "dx" / "Deutsch.pdt");
    expect_output({"identify", "dx"}, "dx: pdt (folder of driver tables): folder with Deutsch.pdt\n");
    EXPECT_EQ(0, run({"tree", "dx"}).status);
}

TEST_F(PmToolPdt, FolderWithoutAStringFileIsTrouble) {
    std::filesystem::remove(folder / "dx" / "strings.pdt");
    expect_trouble({"tree", "dx"}, "dx: A file is expected here, but this is a folder (error 68)");
    expect_trouble({"tree", "dx", "--from", "pdt"},
                   "dx: the folder holds no string file such as strings.pdt");
}

} // namespace

} // namespace pm::test
