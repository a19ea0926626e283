#include "rule_example.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

// What each format's check says, a row for each branch that the rules' page needn't show.
namespace {

using pm::kit::test::run_example;

struct Row {
    std::string_view rule;
    std::string file;
    std::vector<std::string> said;
};

void expect_said(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(row.said, run_example(row.rule, row.file)) << row.rule << ": " << row.file;
    }
}

// --- compound files

// Where the worked example has its parts: the table at 200, the directory at 400 with "media" at 480,
// "Version" at 500, "roll" at 580 and "copies" at 600, the small table at 800, the small stream at A00.
TEST(CompoundRows, HeaderThatIsNone) {
    const std::vector<std::string> none{"56 The file has no header of a compound file."};
    const std::vector<std::string> other{
        "56 The header tells another byte order, mini sector or limit than compound files have."};
    const std::vector<std::string> table{"56 The allocation table lies outside of the file."};
    expect_said({
        {"damaged-file", "DOC `cut 1FF`", none},
        {"damaged-file", "DOC `20: 05`", other},
        {"damaged-file", "DOC `38: 01`", other},
        {"damaged-file", "DOC `1E: 0C` `cut 1000`", table},
        {"damaged-file", "DOC `1E: 0C`", table},
        {"damaged-file", "DOC `cut 200`", table},
        {"damaged-file", "DOC `2C: 00`", table},
        {"damaged-file", "DOC `4C: 50`", table},
    });
}

TEST(CompoundRows, DirectoryThatIsNone) {
    const std::vector<std::string> none{"56 The directory can't be read."};
    expect_said({
        {"damaged-file", "DOC `30: 00 10`", none},
        {"damaged-file", "DOC `30: FE FF FF FF`", none},
        {"damaged-file", "DOC `30: 20`", none},
        {"damaged-file", "DOC `208: 01 00 00 00`", none},
        {"damaged-file", "DOC `204: FE FF FF FF` `cut 440`", none},
    });
}

TEST(CompoundRows, SmallStreamThatIsNone) {
    const std::string shorter = "The stream is shorter than its size, or its chain is broken.";
    const std::vector<std::string> both{"66 \\media\\roll: " + shorter, "66 \\media\\copies: " + shorter};
    const std::vector<std::string> roll{"66 \\media\\roll: " + shorter};
    const std::vector<std::string> copies{"66 \\media\\copies: " + shorter};
    expect_said({
        {"bad-element", "DOC `474: 00 10`", both},
        {"bad-element", "DOC `478: 00 08`", both},
        {"bad-element", "DOC `478: 00 00 10`", both},
        {"bad-element", "DOC `3C: 00 10`", both},
        {"bad-element", "DOC `5F4: 00 10`", roll},
        {"bad-element", "DOC `478: 80`", copies},
        {"bad-element", "DOC `478: 88`", copies},
        {"bad-element",
         "DOC `5F8: 00`",
         {"66 \\media\\roll: The stream has 0 bytes, and a value has eight in front."}},
    });
}

TEST(CompoundRows, NameOfAnElementThatIsNone) {
    const std::string said = "The name of the element isn't one that compound files have.";
    expect_said({
        {"bad-element", "DOC `580: 00 00` `5C0: 02`", {"66 \\media\\: " + said}},
        {"bad-element", "DOC `5C0: 00`", {"66 \\media\\: " + said}},
        {"bad-element", "DOC `5C0: 42`", {"66 \\media\\: " + said}},
        {"bad-element", "DOC `5C0: 0B`", {"66 \\media\\: " + said}},
        {"bad-element", "DOC `5C0: 08`", {"66 \\media\\rol: " + said}},
    });
}

TEST(CompoundRows, ElementsOfOddKindsAndPlaces) {
    expect_said({
        {"leftover-stream", "DOC `542: 01`", {"\\Version: An element called \"Version\" isn't read."}},
        {"bad-element", "DOC `542: 01`", {"66 There is no stream \"Version\" in the root."}},
        {"bad-element",
         "DOC `44C: 40 00 00 00`",
         {"66 1 links of the storage lead nowhere, or to an element met before.",
          "66 There is no stream \"Version\" in the root."}},
        {"bad-element", "DOC `1A: 04`", {}},
    });
}

// --- property text

TEST(PiaRows, ValuesThatAreNone) {
    expect_said({
        {"bad-line",
         "PIA `a=.` `b=\\\\\\\\`",
         {"2:3 57 \\a: \".\" is no number.", "3:3 57 \\b: The raw data has no digits."}},
        {"bad-line",
         "PIA in 65001 `a=\\\\\\xC3\\xA90\\\\`",
         {"2:4 53 \\a: The raw data has characters that are of an odd number of bytes."}},
        {"lossy-value",
         "PIA `a=0." + std::string(801, '1') + "`",
         {"2:3 \\a: \"0.11111111111111111111111111111111111111...\" has more digits than a number holds and "
          "reads as "
          "0.1111111111111111."}},
        {"lossy-value",
         "PIA `a=1" + std::string(400, '0') + ".0`",
         {"2:3 \\a: \"1000000000000000000000000000000000000000...\" is beyond all numbers and reads as "
          "infinite."}},
        {"lossy-value",
         "PIA `a=-1.0e400`",
         {"2:3 \\a: \"-1.0e400\" is beyond all numbers and reads as infinite."}},
    });
}

TEST(PiaRows, LinesThatAreNone) {
    const std::string long_name(512, 'x');
    expect_said({
        {"bad-line", "PIA `{` `a=1` `}`", {"2:1 57 The node has no name."}},
        {"bad-line", "PIA `\\\\=1` `a=1`", {"2:1 51 The property has no name."}},
        {"bad-line",
         "PIA `" + long_name + "{` `n m{` `" + long_name + "{` `a=1` `}` `}` `}` `b=.`",
         {"2:1 57 The name or path of the node is too long, and all in it isn't read.",
          "3:2 57 The name of a node can't hold \" \".", "9:3 57 \\b: \".\" is no number."}},
        {"unclosed-node", "PIA `n m{` `a{`", {"3:1 The node \"a\" isn't closed."}},
        {"ignored-text", "PIA `n{` `x }`", {"3:1 \"x\" beside the \"}\" isn't read."}},
        {"repeated-name", "PIA `n{` `}` `n\\\\m{` `}` `}` `n\\\\m{` `}`", {}},
    });
}

TEST(PiaRows, PathsThatAreTooLongOrHoldAnIndex) {
    const std::string long_name(511, 'x');
    expect_said({
        {"bad-line",
         "PIA `" + long_name + "{` `" + long_name + "{` `a=1` `}` `}` `b=.`",
         {"3:1 57 The name or path of the node is too long, and all in it isn't read.",
          "7:3 57 \\b: \".\" is no number."}},
        {"repeated-name",
         "PIA `b*\\\\c=1` `d=2` `d=3`",
         {"4:1 \\b*\\d: \"d\" is set on line 3 already, and that value is lost."}},
    });
}

TEST(PiaRows, NameOfSeparatorsIsThePropertyBesideTheNode) {
    expect_said({
        {"retyped-name",
         "PIA `a=\"x` `a\\\\b=1` `\\\\=1`",
         {"4:1 54 \\a: \"\\\" is a whole number here and a text on line 2."}},
        {"repeated-name",
         "PIA `n{` `\\\\=2` `n=3` `}` `n=4`",
         {"6:1 \\n: \"n\" is set on line 3 already, and that value is lost."}},
        {"odd-name", "PIA `n{` `\\\\=2` `}`", {"3:1 \\n: The \"\\\" in \"\\\" separates nodes."}},
    });
}

TEST(PiaRows, CompressedBodyOfNothing) {
    expect_said({
        {"damaged-compression",
         "PIA file `PIAFILEVERSION_1.0,compress` `pmzlibcodec\\0\\0\\0\\0\\0\\0\\0\\0`",
         {"2:0 84 The compressed body doesn't decode."}},
    });
}

TEST(PiaRows, HeaderBehindAByteOrderMarkTellsTheKind) {
    expect_said({
        {"bad-header",
         "any `\\xEF\\xBB\\xBFPIAFILEVERSION_2.0` `a=1`",
         {"1:0 89 A byte order mark stands in front of the header."}},
        {"bad-header", "any `\\xEF\\xBB\\xBFx`", {}},
        {"unknown-kind", "any `\\xEF\\xBB\\xBFx`", {"The content is of no known kind."}},
    });
}

TEST(PiaRows, BytesBehindTheStreamWithinItsBlock) {
    expect_said({
        {"trailing-data",
         "PIA file `PIAFILEVERSION_1.0,compress` "
         "`pmzlibcodec\\x03\\0\\0\\0\\x0E\\0\\0\\0x\\xDAK\\xB45\\x04\\0\\x01\\xD1\\0\\xD0xyz`",
         {"2:0 Bytes behind the end of the stream, within the compressed body, aren't read."}},
    });
}

TEST(PiaRows, ColumnsOfDoubleBytesAreCharacters) {
    expect_said({
        {"unknown-type",
         "PIA in 932 `a\\x83\\x5C=x`",
         {"2:4 88 \\a\xE3\x82\xBD: \"x\" has the form of no type."}},
    });
}

// --- encodings

TEST(EncodingRows, FourBytesAreShownAtMost) {
    expect_said({
        {"undecodable-byte",
         "PIA in 65001 `a=\"\\xFC\\xFD`",
         {"2:4 Bytes FC FD are no text in code page 65001 and read as U+FFFD."}},
        {"undecodable-byte",
         "PIA in 65001 `a=\"\\xFC\\xFD\\xFE\\xFF\\xFC`",
         {"2:4 Bytes FC FD FE FF ... are no text in code page 65001 and read as U+FFFD."}},
        {"undecodable-byte",
         "PIA `a=\"\\x81\\x8D`",
         {"2:4 note Bytes 81 8D have no character in code page 1252."}},
    });
}

// --- directories of sections

TEST(DpiaRows, LongNameOfFewCharactersIsWhole) {
    std::string name;
    for (int at = 0; at < 2049; ++at) {
        name += "\\xC3\\xA9";
    }
    expect_said({{"cut-text", "DPIA `" + name + ": a=1`", {}}});
}

TEST(DpiaRows, SectionOfNoBytesIsNoNeighbour) {
    expect_said({
        {"trailing-data",
         "DPIA `longer 4294967273` `A: a=1`",
         {"23 bytes behind the last section aren't read."}},
        {"directory-gap", "DPIA `longer 4294967273` `A: a=1`", {}},
    });
}

TEST(DpiaRows, WhatIsLeftOfACutSectionIsNoTail) {
    const std::string cut = "DPIA `A: a=1` `gap 5` `longer 9` `B: b=2`";
    expect_said({
        {"trailing-data", cut, {}},
        {"directory-gap", cut, {"[B] 5 bytes in front of the section belong to none."}},
    });
}

TEST(DpiaRows, SectionsThatAreCutShareWhatIsLeftOfThem) {
    expect_said({
        {"directory-overlap",
         "DPIA `longer 100` `A: a=1` `back 23` `B: a=1`",
         {"[B] The section shares 46 bytes with \"A\"."}},
    });
}

TEST(DpiaRows, SectionThatBeginsBehindTheFileIsNoNeighbour) {
    const std::string behind = "DPIA `A: a=1` `back 4294967273` `B: b=2`";
    expect_said({
        {"trailing-data", behind, {"23 bytes behind the last section aren't read."}},
        {"directory-gap", behind, {}},
    });
}

TEST(DpiaRows, SectionInsideAnotherSharesItsBytes) {
    expect_said({
        {"directory-overlap",
         "DPIA `A: a=1\\nb=2\\nc=3` `back 30` `B: a=1`",
         {"[B] The section shares 23 bytes with \"A\"."}},
    });
}

// --- PC2 and CFG files

TEST(Pc2Rows, VersionLine) {
    const std::string comment = ";" + std::string(1023, 'x');
    expect_said({
        {"bad-header", "PC2 file `PC2Version " + std::string(1020, '2') + "`", {}},
        {"bad-header", "PC2 file `" + comment + "` `PC2Version 2.0`", {}},
        {"bad-line",
         "PC2 file `" + comment + "` `[Plotter/Port]`",
         {"1:0 57 The line has 1024 bytes, and 1023 are read at most."}},
    });
}

TEST(Pc2Rows, NumbersAndTheirBits) {
    expect_said({
        {"stale-bits", "PC2 `[Plotter/User]` `LineWidth=0.33333333333 (55555555U3_#T@)`", {}},
        {"stale-bits",
         "PC2 `[Plotter/User]` `LineWidth=0.5 (55555555U3_#T@)`",
         {"3:15 \\Plotter/User\\LineWidth: The bits aren't those of 0.5, which counts."}},
        {"lossy-value",
         "PC2 `[Plotter/User]` `LineWidth=+1e400`",
         {"3:11 \\Plotter/User\\LineWidth: \"+1e400\" is beyond all numbers and reads as infinite."}},
        {"partial-number",
         "PC2 `[Plotter/Port]` `Link=+5x`",
         {"3:6 \\Plotter/Port\\Link: \"+5x\" reads as 5."}},
    });
}

TEST(Pc2Rows, ValueThatIsNotReadLosesNone) {
    expect_said({
        {"repeated-name", "PC2 `[Plotter/User]` `PlotWidth=1.5` `PlotWidth=x`", {}},
        {"repeated-name", "PC2 `[Plotter/User]` `PlotWidth=x` `PlotWidth=1.5`", {}},
        {"repeated-name", "PC2 `[Plotter/Port]` `Link=x` `Link=1` `DCB=x` `DCB=1`", {}},
        {"repeated-name",
         "PC2 `[Plotter/User]` `PlotWidth=1.5` `PlotWidth=x` `PlotWidth=2.5` `View=a` `View=`  `View=b`",
         {"5:1 \\Plotter/User\\PlotWidth: \"PlotWidth\" is set on line 3 already, and that value is lost.",
          "8:1 \\Plotter/User\\View: \"View\" is set on line 6 already, and that value is lost."}},
        {"repeated-name",
         "PC2 `[Plotter/User]` `PlotWidth=0.5 (55555555U3_#T@)` `PlotWidth=2.5`",
         {"4:1 \\Plotter/User\\PlotWidth: \"PlotWidth\" is set on line 3 already, and that value is lost."}},
    });
}

TEST(CfgRows, SectionWithoutANameInFrontOfItsNumber) {
    expect_said({
        {"unknown-section",
         "CFG `[#2]` `Link=1`",
         {"[2] 1:2 \"#2\" is no section, and its keys aren't read."}},
    });
}

// --- PCP files

TEST(PcpRows, SizesAndScalesThatStandBesideEachOther) {
    expect_said({
        {"repeated-name", "PCP `SIZE=A1: 841.0,594.0` `SIZE=A2: 594.0,420.0`", {}},
        {"repeated-name", "PCP `SIZE=A1` `SIZE=A1: 1,2` `SIZE=: 1,2`", {}},
        {"repeated-name", "PCP `SCALE=_F` `SCALE=1=2`", {}},
        {"repeated-name",
         "PCP `SIZE=A1: 1,2` `SIZE=A1` `SIZE =\\tA1: 3,4` `SIZE=A2`",
         {"4:1 \\SIZE\\A1: \"SIZE\" is set on line 2 already, and that value is lost.",
          "5:1 \\SIZE: \"SIZE\" is set on line 3 already, and that value is lost."}},
        {"repeated-name",
         "PCP `SCALE=F` `SCALE=1=2` `SCALE=f` `SCALE=3=4`",
         {"4:1 \\SCALE: \"SCALE\" is set on line 2 already, and that value is lost.",
          "5:1 \\SCALE: \"SCALE\" is set on line 3 already, and that value is lost."}},
        {"repeated-name",
         "PCP `ORIGIN=1.0,2.0` `ORIGIN=3.0,4.0`",
         {"3:1 \\ORIGIN: \"ORIGIN\" is set on line 2 already, and that value is lost."}},
    });
}

TEST(PcpRows, ValuesThatLandBesideTheDefaultBlock) {
    expect_said({
        {"repeated-name",
         "PCP `ROTATE=1` `PEN_SPEED=1` `BEGIN_COLOR=DEFAULT` `ROTATE=2` `PEN_SPEED=2` `END_COLOR`",
         {"5:1 \\ROTATE: \"ROTATE\" is set on line 2 already, and that value is lost."}},
    });
}

TEST(PcpRows, NumbersThatLose) {
    expect_said({
        {"lossy-value",
         "PCP `PEN_WIDTH=0.12345678901234567890`",
         {"2:11 \\PEN_WIDTH: \"0.12345678901234567890\" has more digits than a number holds and reads as "
          "0.12345678901234568."}},
    });
}

// --- device descriptions

TEST(PdtRows, NumbersThatLose) {
    expect_said({
        {"lossy-value",
         "PDT `Memory Area: A→→99999999999`",
         {"Memory Area.pdt 3:4 \"99999999999\" is beyond 32 bits and reads as 2147483647."}},
        {"lossy-value",
         "PDT `Media Type: Bond→→1e400`",
         {"Media Type.pdt 3:7 \"1e400\" is beyond all numbers and reads as infinite."}},
        {"lossy-value",
         "PDT `Custom Capability: A→→→0x0→→→PT_Raw` `Custom Capability: B→→→0X0A→→→PT_Raw`",
         {"Custom Capability.pdt 3:5 \"0x0\" isn't \"0x\" and pairs of capital hexadecimal digits, and reads "
          "as other "
          "bytes.",
          "Custom Capability.pdt 4:5 \"0X0A\" isn't \"0x\" and pairs of capital hexadecimal digits, and "
          "reads as "
          "other bytes."}},
    });
}

TEST(PdtRows, CellsOfOddKeywordsAndReferences) {
    expect_said({
        {"unknown-keyword",
         "PDT `Custom Capability: A→→→→→→PT_Sx`",
         {"Custom Capability.pdt 3:8 \"PT_Sx\" is no type; its fourth character tells one."}},
        {"unknown-reference", "PDT `Resolution: 300 dpi→→→→→→→→→\"\"`", {}},
        {"unknown-value",
         "PDT `Custom Capability: A→→→x→→→PT_Bool`",
         {"Custom Capability.pdt 3:5 \"x\" begins with neither \"Y\" nor \"N\", and reads as no."}},
        {"lossy-value", "PDT `Custom Capability: A→→→x→→→PT_String`", {}},
    });
}

TEST(PdtRows, TextsOfRowsWithoutANameAndOfFormsWithoutAValue) {
    expect_said({
        {"missing-translation",
         "PDT `strings: DRFX_MEDIA_SOURCE_B4 \"Roll\"` `Media Source: →→→x` `Media Source: Roll→Roll`",
         {}},
        {"missing-translation", "PDT `Misc Localizable Information: Model→`", {}},
    });
}

TEST(PdtRows, TablesWithoutContent) {
    expect_said({
        {"short-row", "table Media Cutting `Cut` `name` `A\\n`", {}},
        {"unknown-reference", "PDT `blank Memory Area` `Resolution: 300 dpi→→→→→→→→→Full`", {}},
    });
}

} // namespace
