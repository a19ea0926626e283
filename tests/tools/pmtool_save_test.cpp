#include "tools/run_tool.h"

namespace pm::test {

namespace {

class PmToolSave : public ToolTest {
protected:
    PmToolSave() { folder.write("a.pia", "PIAFILEVERSION_2.0,tag\r\na=1\nx{\n b=2.5\n t=\"text\n}\n"); }

    void expect_content(const std::string& name, const std::string& text) const {
        EXPECT_EQ(text + '\0', folder.read(name));
    }
};

TEST_F(PmToolSave, ConvertKeepsTheTagAndLeavesOneFile) {
    expect_output({"convert", "a.pia", "b.pia"}, "");
    expect_content("b.pia", "PIAFILEVERSION_2.0,tag\r\na=1\nx{\n b=2.5\n t=\"text\n}\n");
    EXPECT_EQ((std::vector<std::string>{"a.pia", "b.pia"}), file_names());
}

TEST_F(PmToolSave, TagIsReplaced) {
    expect_output({"convert", "a.pia", "b.pia", "--tag", "other,one"}, "");
    EXPECT_TRUE(folder.read("b.pia").starts_with("PIAFILEVERSION_2.0,other,one\r\na=1\n"));
}

TEST_F(PmToolSave, CompressedFileHoldsTheSameTree) {
    expect_output({"convert", "a.pia", "b.pia", "--compress"}, "");
    EXPECT_TRUE(folder.read("b.pia").starts_with("PIAFILEVERSION_2.0,tag,compress\r\npmzlibcodec"));
    expect_output({"compare", "a.pia", "b.pia"}, "a.pia and b.pia hold equal trees.\n");
}

TEST_F(PmToolSave, CompressionNeedsNoTag) {
    expect_output({"convert", "a.pia", "b.pia", "--compress", "--tag", ""}, "");
    EXPECT_TRUE(folder.read("b.pia").starts_with("PIAFILEVERSION_2.0,compress\r\n"));
}

TEST_F(PmToolSave, EditKeepsTheTagAsItIs) {
    for (const std::string tag : {"T compress", "decompressed,K", "compress,T", "T,compress"}) {
        expect_output({"convert", "a.pia", "t.pia", "--tag", tag}, "");
        expect_output({"set", "t.pia", "a", "2"}, "");
        EXPECT_TRUE(folder.read("t.pia").starts_with("PIAFILEVERSION_2.0," + tag + "\r\n")) << tag;
        expect_output({"get", "t.pia", "a"}, "2\n");
    }
}

TEST_F(PmToolSave, ConvertTellsWhatItDropsOfTheTag) {
    expect_output({"convert", "a.pia", "t.pia", "--tag", "decompressed,K"}, "");
    const ToolRun result = run({"convert", "t.pia", "b.pia"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("pmtool: b.pia: note: \"decompressed\" of the header's tag isn't kept\n", result.err);
    EXPECT_TRUE(folder.read("b.pia").starts_with("PIAFILEVERSION_2.0,K\r\n"));
    expect_output({"convert", "t.pia", "b.pia", "--tag", "decompressed,K"}, "");
}

TEST_F(PmToolSave, DryRunShowsWhatIsWritten) {
    expect_output({"dump", "a.pia", "-o", "a.json"}, "");
    folder.write("script", "set \\a loose long 1\n");
    expect_output({"apply", "a.json", "script", "--from", "json", "--dry-run"}, "~ \\a: loose\n");
    EXPECT_EQ("", run({"apply", "a.pia", "script", "--dry-run"}).out);
    const ToolRun result = run({"set", "a.pia", "b", "\u0416", "--lossy", "--dry-run"});
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("+ \\b: string \"?\"\n", result.out);
}

TEST_F(PmToolSave, BaseThatIsTooDeepIsToldWithTheFile) {
    expect_output({"dump", "a.pia", "-o", "a.json"}, "");
    std::string base;
    for (int i = 0; i < 256; ++i) {
        base += "\\n";
    }
    const ToolRun result = run({"convert", "--from", "json", "a.json", "b.json", "--base", base});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ(
        "pmtool: a.json: The path is empty, has too many levels or holds an unknown name (error 51): x\n",
        result.err);
}

TEST_F(PmToolSave, CompressedSampleIsMadePlain) {
    expect_output({"convert", sample_folder + "/plotter-compressed.pia", "b.pia"}, "");
    EXPECT_TRUE(folder.read("b.pia").starts_with("PIAFILEVERSION_2.0,DX4200CFG_1.0\r\nname="));
    EXPECT_EQ(0, run({"compare", sample_folder + "/plotter.pia", "b.pia"}).status);
}

TEST_F(PmToolSave, Utf8IsWrittenWhenAskedFor) {
    folder.write("u.pia", "PIAFILEVERSION_2.0,\nt=\"Gro\xDF\n");
    expect_output({"convert", "u.pia", "b.pia", "--utf8"}, "");
    expect_content("b.pia", "PIAFILEVERSION_2.0,\r\nt=\"Gro\xC3\x9F\n");
}

TEST_F(PmToolSave, FormatOfTheOutputCanBeTold) {
    expect_output({"convert", "a.pia", "b.txt", "--to", "PIA"}, "");
    EXPECT_TRUE(folder.read("b.txt").starts_with("PIAFILEVERSION_2.0,tag\r\n"));
}

TEST_F(PmToolSave, OutputOfNoWrittenFormatIsTrouble) {
    expect_trouble({"convert", "a.pia", "b.txt"},
                   "b.txt: the name doesn't tell a format to write; say it with --to (doc, dpia, pia, json)");
    expect_trouble({"convert", "a.pia", "b.pc2"},
                   "b.pc2: the name doesn't tell a format to write; say it with --to (doc, dpia, pia, json)");
    expect_trouble({"convert", "a.pia", "b", "--to", "pcp"},
                   "b: pcp files are read only; there are doc, dpia, pia, json to write");
}

TEST_F(PmToolSave, OptionsOfPiaFilesAreForThemOnly) {
    for (const std::string option : {"--compress", "--utf8", "--tag=x"}) {
        expect_trouble(
            {"convert", "a.pia", "b.doc", option},
            "b.doc: --compress, --utf8 and --tag are for pia files only; see pmtool convert --help");
    }
}

TEST_F(PmToolSave, SetChangesOneValueAndKeepsAllElse) {
    expect_output({"set", "a.pia", "\\x\\b", "0.1"}, "");
    expect_content("a.pia", "PIAFILEVERSION_2.0,tag\r\na=1\nx{\n b=0.1\n t=\"text\n}\n");
}

TEST_F(PmToolSave, SetTakesTheTypeOfTheOldValue) {
    expect_output({"set", "a.pia", "\\x\\t", "12"}, "");
    expect_output({"set", "a.pia", "\\x\\b", "3"}, "");
    expect_content("a.pia", "PIAFILEVERSION_2.0,tag\r\na=1\nx{\n b=3.0\n t=\"12\n}\n");
}

TEST_F(PmToolSave, SetTakesTheTypeOfANewValueFromItsForm) {
    folder.write("n.pia", "PIAFILEVERSION_2.0,\r\n");
    for (const auto& [name, value] : std::vector<std::pair<std::string, std::string>>{{"long", "12"},
                                                                                      {"negative", "-12"},
                                                                                      {"double", "-1.5"},
                                                                                      {"exponent", "1e3"},
                                                                                      {"large", "2147483648"},
                                                                                      {"bool", "True"},
                                                                                      {"raw", "\\00ff\\"},
                                                                                      {"string", "12 pens"},
                                                                                      {"point", "."},
                                                                                      {"empty", ""},
                                                                                      {"slash", "\\x\\"}}) {
        expect_output({"set", "n.pia", name, value}, "");
    }
    expect_content(
        "n.pia", "PIAFILEVERSION_2.0,\r\n"
                 "long=12\nnegative=-12\ndouble=-1.5\nexponent=1000.0\nlarge=2147483648.0 (        X$%@A )\n"
                 "bool=TRUE\nraw=\\00FF\\\nstring=\"12 pens\npoint=\".\nempty=\"\nslash=\"\\x\\\n");
}

TEST_F(PmToolSave, TypeOptionReplacesTheType) {
    expect_output({"set", "a.pia", "a", "1", "--type", "string"}, "");
    expect_content("a.pia", "PIAFILEVERSION_2.0,tag\r\na=\"1\nx{\n b=2.5\n t=\"text\n}\n");
}

TEST_F(PmToolSave, ValueThatDoesNotFitItsTypeIsTrouble) {
    const std::string before = folder.read("a.pia");
    expect_trouble({"set", "a.pia", "a", "2147483648"},
                   "\"2147483648\" isn't a whole number of 32 bits, which type long asks for");
    expect_trouble({"set", "a.pia", "a", "1.5"},
                   "\"1.5\" isn't a whole number of 32 bits, which type long asks for");
    expect_trouble({"set", "a.pia", "\\x\\b", "x"}, "\"x\" isn't a number, which type double asks for");
    expect_trouble({"set", "a.pia", "n", "x", "--type", "bool"},
                   "\"x\" isn't true or false, which type bool asks for");
    expect_trouble({"set", "a.pia", "n", "abc", "--type", "raw"},
                   "\"abc\" isn't an even number of hexadecimal digits, which type raw asks for");
    expect_trouble({"set", "a.pia", "n", "abc", "--type", "text"},
                   "text: no such type; there are long, double, string, bool, raw; see pmtool set --help");
    expect_trouble({"set", "a.pia", "n", std::string(4097, 'x')}, "a string holds at most 4096 characters");
    EXPECT_EQ(before, folder.read("a.pia"));
}

TEST_F(PmToolSave, PathsThatCannotBeSetAreTrouble) {
    expect_trouble({"set", "a.pia", "\\", "1"}, "the path names no property");
    expect_not_found({"set", "a.pia", "\\Pen*", "1"}, "a.pia: \\Pen*: there is no such property or node");
}

TEST_F(PmToolSave, FileOfAReadOnlyFormatCannotBeSet) {
    copy_sample("pens.pcp", "pens.pcp");
    expect_trouble({"set", "pens.pcp", "VERSION", "2.0"},
                   "pens.pcp: pcp files can't be changed; convert it first");
}

TEST_F(PmToolSave, SetKeepsCompression) {
    copy_sample("plotter-compressed.pia", "c.pia");
    expect_output({"set", "c.pia", "\\media\\copies", "2"}, "");
    EXPECT_TRUE(folder.read("c.pia").starts_with("PIAFILEVERSION_2.0,DX4200CFG_1.0,compress\r\npmzlibcodec"));
    expect_no({"compare", sample_folder + "/plotter-compressed.pia", "c.pia"},
              "~ \\media\\copies: long 1 -> long 2\n");
}

TEST_F(PmToolSave, SetWritesToAnotherFileWhenAskedTo) {
    const std::string before = folder.read("a.pia");
    expect_output({"set", "a.pia", "a", "2", "-o", "b.pia"}, "");
    EXPECT_EQ(before, folder.read("a.pia"));
    expect_output({"get", "b.pia", "a"}, "2\n");
}

TEST_F(PmToolSave, ValueThatTheFileCannotHoldIsWarnedOfWhenLossy) {
    const ToolRun result = run({"set", "a.pia", "\\x\\t", "\xCE\xA9 trailing  ", "--lossy"});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(result.err.starts_with("pmtool: a.pia: warning: \\x\\t: changed: ")) << result.err;
    expect_output({"get", "a.pia", "\\x\\t"}, "? trailing\n");
}

TEST_F(PmToolSave, OutputMayLieInAnotherFolder) {
    std::filesystem::create_directory(folder / "sub");
    expect_output({"convert", "a.pia", "sub/b.pia"}, "");
    expect_output({"compare", "a.pia", "sub/b.pia"}, "a.pia and sub/b.pia hold equal trees.\n");
}

TEST_F(PmToolSave, OutputInAMissingFolderIsTrouble) {
    expect_trouble({"convert", "a.pia", "no/b.pia"},
                   "no/b.pia: the folder no doesn't exist (error 63); make it first");
}

TEST_F(PmToolSave, SuffixOfABackupThatLeadsElsewhereIsTrouble) {
    expect_trouble({"set", "a.pia", "a", "2", "--backup=/old"},
                   "/old: a suffix stays in the folder of its file; see pmtool set --help");
    expect_output({"get", "a.pia", "a"}, "1\n");
}

TEST_F(PmToolSave, CodePageOfTheOutputThatTheMachineLacksIsTrouble) {
    expect_trouble({"convert", "a.pia", "b.pia", "--out-code-page", "12345"},
                   "12345: this machine has no such code page");
}

TEST_F(PmToolSave, OutputThatIsAFolderIsTrouble) {
    std::filesystem::create_directory(folder / "sub.pia");
    expect_trouble({"convert", "a.pia", "sub.pia"},
                   "sub.pia: A file is expected here, but this is a folder (error 68)");
}

TEST_F(PmToolSave, TargetThatMayNotBeWrittenStays) {
    folder.write("b.pia", "old");
    std::filesystem::permissions(folder / "b.pia", std::filesystem::perms(0444));
    const ToolRun result = run_unprivileged({"convert", "a.pia", "b.pia"});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("pmtool: b.pia: Access to the file is denied (error 61)\n", result.err);
    EXPECT_EQ("old", folder.read("b.pia"));
}

} // namespace

} // namespace pm::test
