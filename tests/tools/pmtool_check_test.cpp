#include "tools/run_tool.h"

namespace pm::test {

namespace {

using PmToolCheck = ToolTest;

TEST_F(PmToolCheck, GoodFileHasNoBadLines) {
    const std::string file = sample_folder + "/plotter.pia";
    expect_output({"check", file}, file + ": no bad lines\n");
}

TEST_F(PmToolCheck, GoodCompressedFileHasNoBadLines) {
    const std::string file = sample_folder + "/plotter-compressed.pia";
    expect_output({"check", file}, file + ": no bad lines\n");
}

TEST_F(PmToolCheck, EveryBadLineIsListed) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\na=1\nb=1.x\nc=\n=3\nd=\\\\\ne=yes\nf=2\n");
    expect_no({"check", "bad.pia"}, "bad.pia:3: The line isn't valid (error 57): b=1.x\n"
                                    "bad.pia:4: The line isn't valid (error 57): c=\n"
                                    "bad.pia:5: The line isn't valid (error 57): =3\n"
                                    "bad.pia:6: The line isn't valid (error 57): d=\\\\\n"
                                    "bad.pia:7: The value is of no known type (error 88): e=yes\n");
}

TEST_F(PmToolCheck, LineNumbersCountBlankLinesAndIndentedOnes) {
    folder.write("bad.pia", "\n\nPIAFILEVERSION_2.0,\n\n\na=1\n\nx{\n\n   b=yes\n\n   c=1.x\n}\n");
    expect_no({"check", "bad.pia"}, "bad.pia:10: The value is of no known type (error 88): b=yes\n"
                                    "bad.pia:12: The line isn't valid (error 57): c=1.x\n");
}

TEST_F(PmToolCheck, EqualBadLinesAreFoundOneAfterTheOther) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\na=yes\nb=1\na=yes\n");
    expect_no({"check", "bad.pia"}, "bad.pia:2: The value is of no known type (error 88): a=yes\n"
                                    "bad.pia:4: The value is of no known type (error 88): a=yes\n");
}

TEST_F(PmToolCheck, LinesBehindOneThatEndsALoadAreFoundToo) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\na=yes\nfoo\nb=yes\nfoo\n}\nc=1\n}\nlast");
    expect_no({"check", "bad.pia"}, "bad.pia:2: The value is of no known type (error 88): a=yes\n"
                                    "bad.pia:3: The line isn't valid (error 57): foo\n"
                                    "bad.pia:4: The value is of no known type (error 88): b=yes\n"
                                    "bad.pia:5: The line isn't valid (error 57): foo\n"
                                    "bad.pia:6: The line isn't valid (error 57): }\n"
                                    "bad.pia:8: The line isn't valid (error 57): }\n"
                                    "bad.pia:9: The line isn't valid (error 57): last\n");
}

TEST_F(PmToolCheck, NodeOfABadNameKeepsItsBlockTogether) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\nbad name{\n a=1\n}\nb=yes\n");
    expect_no({"check", "bad.pia"}, "bad.pia:2: The line isn't valid (error 57): bad name\n"
                                    "bad.pia:5: The value is of no known type (error 88): b=yes\n");
}

TEST_F(PmToolCheck, LinesBehindANodeWithABlankInFrontOfItsBraceAreFoundToo) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\na {\n b=1\n}\nc=yes\na b {\n}\nd=yes\n");
    expect_no({"check", "bad.pia"}, "bad.pia:2: The line isn't valid (error 57): a\n"
                                    "bad.pia:5: The value is of no known type (error 88): c=yes\n"
                                    "bad.pia:6: The line isn't valid (error 57): a b\n"
                                    "bad.pia:8: The value is of no known type (error 88): d=yes\n");
}

TEST_F(PmToolCheck, LineThatEndsTheReadingOfACompressedBodyIsMarked) {
    const std::string body("a=yes\nfoo\nb=yes\n");
    folder.write("body", body);
    ASSERT_EQ(0, run({"codec", "zlib", "encode", "--crc", "body", "block"}).status);
    folder.write("bad.pia", "PIAFILEVERSION_2.0,compress\r\n" + folder.read("block"));
    expect_no({"check", "bad.pia"}, "bad.pia: The value is of no known type (error 88): a=yes\n"
                                    "bad.pia:3: The line isn't valid (error 57): foo; reading stops here\n");
}

TEST_F(PmToolCheck, NameSetTwiceWithDifferentTypesEndsTheReading) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\na=1\na=2.5\n");
    expect_no(
        {"check", "bad.pia"},
        "bad.pia: The type doesn't match: another one is required here (error 54); reading stops here\n");
}

TEST_F(PmToolCheck, LongLineIsCut) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\n\na=" + std::string(400, 'x') + "\nb=1.x" +
                                std::string(400, 'y') + "\n");
    expect_no({"check", "bad.pia"},
              "bad.pia:3: The value is of no known type (error 88): a=" + std::string(400, 'x') +
                  "\nbad.pia:4: The line isn't valid (error 57): b=1.x" + std::string(250, 'y') + "...\n");
}

TEST_F(PmToolCheck, ControlCharactersAreShownEscaped) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\r\na=y\x1B[31mes\r\n");
    expect_no({"check", "bad.pia"}, "bad.pia:2: The value is of no known type (error 88): a=y\\x1B[31mes\n");
}

TEST_F(PmToolCheck, LineOutsideAsciiIsFound) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\n\na=Gro\xDF\n");
    expect_no({"check", "bad.pia"}, "bad.pia:3: The value is of no known type (error 88): a=Gro\xC3\x9F\n");
}

TEST_F(PmToolCheck, DamagedBodyEndsTheReading) {
    std::string bytes =
        TempFolder::read_file(std::filesystem::path(sample_folder) / "plotter-compressed.pia");
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    folder.write("bad.pia", bytes);
    expect_no({"check", "bad.pia"},
              "bad.pia: Decompression failed: the data is damaged or larger than announced "
              "(error 97)\n"
              "bad.pia: The compressed content of the file is damaged (error 84): decompression "
              "of PIA data failed; reading stops here\n");
}

TEST_F(PmToolCheck, FileThatCannotBeReadIsTrouble) {
    expect_trouble({"check", "no.pia"}, "no.pia: The file doesn't exist (error 63)");
}

TEST_F(PmToolCheck, OtherCommandsStopAtTheFirstBadLine) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\n\na=1\nb=1.x\nc=yes\n");
    const std::string text =
        "bad.pia:4: The line isn't valid (error 57): b=1.x; all bad lines are listed by: pmtool check";
    expect_trouble({"tree", "bad.pia"}, text);
    expect_trouble({"get", "bad.pia", "a"}, text);
    expect_trouble({"convert", "bad.pia", "out.pia"}, text);
    EXPECT_EQ((std::vector<std::string>{"bad.pia"}), file_names());
}

TEST_F(PmToolCheck, ValueOfNoTypeIsToldWithItsLineByOtherCommands) {
    folder.write("bad.pia", "PIAFILEVERSION_2.0,\n\na=1\nc=yes\n");
    expect_trouble({"tree", "bad.pia"},
                   "bad.pia:4: The value is of no known type (error 88): c=yes; all bad lines are "
                   "listed by: pmtool check");
}

} // namespace

} // namespace pm::test
