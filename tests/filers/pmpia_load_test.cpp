#include "filers/pmpia.h"

#include "filers/pia_text.h"
#include "support/exceptions.h"
#include "support/expect_report.h"
#include "support/recording_handler.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <pm/error_number.h>

namespace {

using pm::test::expect_report;
using pm::test::expect_thrown;
using pm::test::Lines;
using pm::test::load_body;
using pm::test::load_bytes;
using pm::test::loaded;
using pm::test::loaded_with;
using pm::test::pia_header;
using pm::test::RecordingHandler;
using pm::test::ReportOutcome;
using pm::test::SourceRecordingHandler;
using pm::test::TempFolder;
using pm::test::tree_text;

constexpr const char16_t* load_place = u"PM_PIAFile::load()";
constexpr const char16_t* set_place = u"PM_Object::SetData()";

// A body whose one bad line is the content given is reported as told. What stands behind the line is read
// if the load goes on.
void expect_line_reported(ReportOutcome expected) {
    const std::string body = "before=1\n" + expected.content + "\nafter=2\n";
    expected.content.resize(std::min<std::size_t>(expected.content.size(), 60));
    expected.detail.resize(std::min<std::size_t>(expected.detail.size(), 259));
    expect_report(
        expected, [&](PM_Object& object) { load_body(object, body); },
        [](const PM_Object& object, bool whole) {
            EXPECT_EQ((whole ? Lines{"before long 1", "after long 2"} : Lines{"before long 1"}),
                      tree_text(object));
        });
}

std::u16string context(int line_number, const std::u16string& line) {
    return u"\n" + pm::to_wide(std::to_string(line_number)) + u", " + line + u", ";
}

// A line that is thrown whatever the handler says.
template<class E>
void expect_bad_line(const std::string& line, std::uint32_t number, const std::u16string& place,
                     const std::u16string& detail) {
    SCOPED_TRACE(line.substr(0, 60));
    const std::string body = "before=1\n" + line + "\nafter=2\n";
    PM_Object without;
    expect_thrown<E>([&] { load_body(without, body); }, number, place, detail);
    EXPECT_EQ(Lines{"before long 1"}, tree_text(without));

    RecordingHandler handler;
    PM_Object with(&handler);
    expect_thrown<E>([&] { load_body(with, body); }, number, place, detail);
    EXPECT_EQ(Lines{"before long 1"}, tree_text(with));
    EXPECT_TRUE(handler.reports.empty());
}

// Bodies without a bad line.

TEST(PiaLoad, FileOfOnlyAHeaderLoadsNothing) {
    EXPECT_EQ(Lines{}, loaded(""));
    EXPECT_EQ(Lines{}, loaded("\n \t\r\n"));
    EXPECT_EQ(Lines{}, loaded(std::string(1, '\0')));
}

TEST(PiaLoad, FormOfAValueTellsItsType) {
    EXPECT_EQ((Lines{"v void 01AB", "s string a text", "t bool 01", "f bool 00", "l long 42", "n long -7",
                     "d double 0000000000000440"}),
              loaded("v=\\01AB\\\ns=\"a text\nt=TRUE\nf=FALSE\nl=42\nn=-7\nd=2.5\n"));
}

TEST(PiaLoad, BlocksAreNodes) {
    EXPECT_EQ((Lines{"a long 1", "f long 5", "X\\b long 2", "X\\e long 4", "X\\Y\\c long 3"}),
              loaded("a=1\nX{\n b=2\n Y{\n  c=3\n }\n e=4\n}\nf=5\n"));
}

TEST(PiaLoad, BlocksOfOneNameAreOneNode) {
    EXPECT_EQ((Lines{"x\\a long 1", "x\\b long 2", "y\\c long 3"}),
              loaded("x{\na=1\n}\ny{\nc=3\n}\nx{\nb=2\n}\n"));
}

TEST(PiaLoad, NodeWithoutPropertiesIsLost) {
    PM_Object object;
    load_body(object, "empty{\n}\nx{\n y{\n  a=1\n }\n}\n");
    EXPECT_FALSE(object.pathExists(u"empty\\a"));
    EXPECT_EQ(Lines{"x\\y\\a long 1"}, tree_text(object));
}

TEST(PiaLoad, BlocksNeedNotBeClosed) {
    EXPECT_EQ(Lines{"x\\y\\a long 1"}, loaded("x{\ny{\na=1\n"));
}

TEST(PiaLoad, LeadingWhiteSpaceCountsForNothing) {
    EXPECT_EQ((Lines{"b long 2", "x\\a long 1"}), loaded("   x{\n\t \va=1\n\r\n\n\f}\n \n b=2\n"));
}

TEST(PiaLoad, LastLineNeedsNoLineFeed) {
    EXPECT_EQ((Lines{"a long 1", "b string text"}), loaded("a=1\nb=\"text"));
}

TEST(PiaLoad, SemicolonInTheFirstColumnIsAComment) {
    EXPECT_EQ((Lines{"b string ;text", "c;d long 2", "x\\a long 1"}),
              loaded(";first=1\nx{\n  ; indented=2\n;} a{\n a=1\n}\nb=\";text\nc;d=2\n;"));
}

TEST(PiaLoad, LineAfterAZeroByteIsIgnored) {
    EXPECT_EQ((Lines{"a long 1", "b string ab", "c long 3"}),
              loaded(std::string("a=1\n\0 bad line\nb=\"ab\0cd\nc=3\n\0", 29)));
}

TEST(PiaLoad, EqualsSignComesBeforeBraces) {
    EXPECT_EQ((Lines{"a{b string c", "d}e long 1", "f string {}"}), loaded("a{b=\"c\nd}e=1\nf=\"{}\n"));
}

TEST(PiaLoad, OpeningBraceComesBeforeAClosingOne) {
    EXPECT_EQ(Lines{"a}b\\c long 1"}, loaded("a}b{\nc=1\n}\n"));
    EXPECT_EQ(Lines{"a\\c long 1"}, loaded("a{}\nc=1\n}\n"));
}

TEST(PiaLoad, TextBehindAnOpeningBraceIsIgnored) {
    EXPECT_EQ(Lines{"x\\a long 1"}, loaded("x{ anything {\" at all\na=1\n"));
}

TEST(PiaLoad, TextAroundAClosingBraceIsIgnored) {
    EXPECT_EQ((Lines{"b long 2", "x\\a long 1"}), loaded("x{\na=1\nthe end } of x\nb=2\n"));
}

TEST(PiaLoad, NameEndsAtTheFirstBlankOrEqualsSign) {
    EXPECT_EQ((Lines{"a long 1", "b string = c", "d\te long 4"}), loaded("a = 1\nb==  =\"= c\nd\te=4\n"));
    EXPECT_EQ(Lines{"a string b"}, loaded("a    =    \"b\n"));
}

TEST(PiaLoad, WordsBetweenNameAndEqualsSignAreTheValue) {
    RecordingHandler handler;
    EXPECT_EQ(Lines{}, loaded_with(handler, "a b = 1\n"));
    EXPECT_EQ(std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VALUE}, handler.numbers());
}

TEST(PiaLoad, TrailingBlanksAreCut) {
    EXPECT_EQ((Lines{"a string abc", "b string ", "c long 1"}), loaded("a=\"abc   \nb=\"    \nc=1   \n"));
}

TEST(PiaLoad, TrailingTabsStay) {
    EXPECT_EQ((Lines{"a string abc \t", "b long 1"}), loaded("a=\"abc \t  \nb=1\t\n"));
}

TEST(PiaLoad, LineThatEndsInACarriageReturnKeepsItInAString) {
    EXPECT_EQ((Lines{"a string b\r", "c string \r", "d string e \r"}), loaded("a=\"b\r\nc=\"\r\nd=\"e \r\n"));
}

TEST(PiaLoad, CarriageReturnEndsABooleanAndRawDataWell) {
    EXPECT_EQ((Lines{"a bool 01", "b void AB", "x\\c bool 00"}),
              loaded("a=TRUE\r\nb=\\AB\\\r\nx{\r\nc=FALSE\r\n}\r\n"));
}

TEST(PiaLoad, CarriageReturnSpoilsANumber) {
    RecordingHandler handler;
    EXPECT_EQ(Lines{}, loaded_with(handler, "a=1\r\nb=2.5\r\n"));
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VALUE, PM_ERR_BAD_LINE}), handler.numbers());
}

TEST(PiaLoad, LaterLineOfTheSameFormOverwrites) {
    EXPECT_EQ((Lines{"a string longer", "b long 2"}), loaded("a=\"x\nb=2\na=\"longer\n"));
}

TEST(PiaLoad, PropertyAndNodeOfOneNameLiveSideBySide) {
    EXPECT_EQ((Lines{"a long 1", "a\\a long 2"}), loaded("a=1\na{\na=2\n}\n"));
}

// Values.

struct FormRow {
    std::u16string value;
    PropType form;
};

TEST(PiaValueForm, FollowsFromTheFirstCharacters) {
    const FormRow rows[] = {
        {u"\\AB\\", PROP_VOID},      {u"\\\\", PROP_VOID},
        {u"\\ABC", PROP_NONE},       {u"\\", PROP_NONE},
        {u"\\AB\\ more", PROP_VOID}, {u"\"", PROP_STRING},
        {u"\"text\"", PROP_STRING},  {u"true", PROP_BOOL},
        {u"TRUE", PROP_BOOL},        {u"tRuEst", PROP_BOOL},
        {u"FALSE", PROP_BOOL},       {u"falsehood", PROP_BOOL},
        {u"yes", PROP_NONE},         {u"tru", PROP_NONE},
        {u"T", PROP_NONE},           {u"e5", PROP_NONE},
        {u"0", PROP_LONG},           {u"12 34", PROP_LONG},
        {u"-", PROP_LONG},           {u"-5", PROP_LONG},
        {u"- 5\t", PROP_LONG},       {u"\t5", PROP_LONG},
        {u" ", PROP_LONG},           {u"--5", PROP_NONE},
        {u"5-", PROP_NONE},          {u"\t-5", PROP_NONE},
        {u"+5", PROP_NONE},          {u"0x10", PROP_NONE},
        {u"1.", PROP_DOUBLE},        {u".5", PROP_DOUBLE},
        {u"-.5", PROP_DOUBLE},       {u".", PROP_DOUBLE},
        {u"1 .5", PROP_DOUBLE},      {u"1.2.3", PROP_DOUBLE},
        {u"1.5e3", PROP_DOUBLE},     {u"1e5", PROP_NONE},
        {u"+1.5", PROP_NONE},        {u"1,5", PROP_NONE},
        {u"5\r", PROP_NONE},         {u"(1.5)", PROP_NONE},
        {u"\u0665", PROP_NONE},      {u"\u00E4", PROP_NONE},
        {u"'a'", PROP_NONE},         {u"", PROP_NONE},
    };
    for (const FormRow& row : rows) {
        EXPECT_EQ(row.form, PM_PIAFile::classify_value(row.value)) << pm::test::utf8(row.value);
    }
}

TEST(PiaValue, LongStopsAtTheFirstBadCharacter) {
    EXPECT_EQ((Lines{"a long 12", "b long 0", "c long 0", "d long 7", "e long 5"}),
              loaded("a=12 34\nb=-\nc=- 5\nd=007\ne=\t5\n"));
}

TEST(PiaValue, LongIsHeldAtTheEndsOfItsRange) {
    EXPECT_EQ((Lines{"a long 2147483647", "b long -2147483648", "c long 2147483647", "d long -2147483648"}),
              loaded("a=2147483647\nb=-2147483648\nc=99999999999999999999\nd=-2147483649\n"));
}

TEST(PiaValue, DoubleTakesEveryFormWithADot) {
    EXPECT_EQ((Lines{"a double 000000000000F03F", "b double 000000000000E03F", "c double 000000000000E0BF",
                     "d double 000000000070A740", "e double 000000000000F83F"}),
              loaded("a=1.\nb=.5\nc=-.5\nd=3.0e3\ne=1.50\n"));
}

TEST(PiaValue, DoubleKeepsItsExactBits) {
    EXPECT_EQ(Lines{"a double 555555555555D53F"}, loaded("a=0.33333333333 (55555555U3_#T@)\n"));
}

TEST(PiaValue, EditedNumberCountsMoreThanTheExactBits) {
    EXPECT_EQ(Lines{"a double 000000000000E03F"}, loaded("a=0.5 (55555555U3_#T@)\n"));
}

TEST(PiaValue, BooleanIsTrueForAnyWordThatBeginsSo) {
    EXPECT_EQ((Lines{"a bool 01", "b bool 01", "c bool 00", "d bool 00"}),
              loaded("a=true\nb=Trueish\nc=False\nd=FALSE alarm\n"));
}

TEST(PiaValue, StringTakesAnything) {
    EXPECT_EQ(Lines{"a string \"b\" = {c} ;\\d\\"}, loaded("a=\"\"b\" = {c} ;\\d\\\n"));
}

TEST(PiaValue, StringOf4096UnitsIsWhole) {
    PM_Object object;
    load_body(object, "a=\"" + std::string(4096, 'x') + "\n");
    EXPECT_EQ(8194U, object.getPropertySize(u"a"));
    EXPECT_EQ(Lines{"a string " + std::string(4096, 'x')}, tree_text(object));
}

TEST(PiaValue, LongerStringIsCutTo4097Units) {
    PM_Object object;
    load_body(object, "a=\"" + std::string(4098, 'x') + "\n");
    EXPECT_EQ(8194U, object.getPropertySize(u"a"));
    EXPECT_EQ(Lines{"a string " + std::string(4097, 'x')}, tree_text(object));
}

TEST(PiaValue, RawDataStandsBetweenBackslashes) {
    EXPECT_EQ((Lines{"a void ABCD", "b void 01", "c void 0102", "d void 00"}),
              loaded("a=\\ABCD\\\nb=\\ \\ 01\\\nc=\\\\0102\\03\\\nd=\\00\\ behind\n"));
}

TEST(PiaValue, DigitsOfRawDataAreNotChecked) {
    EXPECT_EQ((Lines{"a void A0", "b void 2A", "c void 09", "d void 00"}),
              loaded("a=\\a0\\\nb=\\0a\\\nc=\\0@\\\nd=\\! \\\n"));
}

TEST(PiaValue, RawDataOfAnySizeIsRead) {
    std::string digits;
    for (int i = 0; i < 20'000; ++i) {
        digits += "5A";
    }
    EXPECT_EQ((Lines{"a void " + digits, "b long 1"}), loaded("a=\\" + digits + "\\\nb=1\n"));
}

TEST(PiaValue, RawDataWhoseBytesAreOddInNumberIsThrown) {
    // Two units that are three bytes.
    const pm::test::ScopedCodePage utf8(65001);
    expect_bad_line<PM_Error>("a=\\\xC3\xA4"
                              "1\\",
                              PM_ERR_BAD_RAW_DATA, u".\\pmpia", u"bad raw data value");
}

TEST(PiaValue, ADigitBeyondAsciiIsReadByItsByte) {
    EXPECT_EQ((Lines{"a void B9", "b void 49", "c long 1"}), loaded("a=\\0\xE9\\\nb=\\\xE9\xE9\\\nc=1\n"));
}

// Long lines, names and paths.

TEST(PiaLoad, LinesOfAnyLengthAreRead) {
    for (const std::size_t length : {126U, 127U, 128U, 254U, 255U, 65535U, 65536U, 65537U, 500'000U}) {
        SCOPED_TRACE(length);
        EXPECT_EQ((Lines{"a long 1", "b long 2"}), loaded(";" + std::string(length - 1, '=') + "\na=1\nb=2" +
                                                          std::string(length, ' ') + "\n"));
    }
}

TEST(PiaLoad, LongValuesAreWhole) {
    std::string digits;
    std::string bytes;
    for (int byte = 0; byte < 200'000; ++byte) {
        constexpr std::string_view hex = "0123456789ABCDEF";
        const auto value = static_cast<unsigned char>(byte * 7 / 3);
        digits += {hex[value >> 4], hex[value & 0xF]};
        bytes += static_cast<char>(value);
    }
    PM_Object object;
    load_body(object, "a=\\" + digits + "\\\nb=\"" + std::string(200'000, '\xE4') + "\nc=1\n");
    std::string read(bytes.size(), '\0');
    ASSERT_TRUE(object.getVoidProperty(u"a", read.data(), static_cast<unsigned>(read.size())));
    EXPECT_EQ(bytes, read);
    EXPECT_EQ(2 * 4097U, object.getPropertySize(u"b"));
    int c = 0;
    EXPECT_TRUE(object.GetProperty(u"c", c));
}

TEST(PiaLoad, IndentationOfAnyLengthIsSkipped) {
    EXPECT_EQ((Lines{"a long 1", "b long 2"}),
              loaded(std::string(140'000, ' ') + "a=1" + std::string(140'000, '\n') + "b=2\n"));
}

TEST(PiaLoad, NameOf511UnitsIsTaken) {
    const std::string name(511, 'n');
    EXPECT_EQ((Lines{name + " long 1", name + "\\a long 2"}), loaded(name + "=1\n" + name + "{\na=2\n}\n"));
}

TEST(PiaLoad, PropertyNameOf512UnitsIsReported) {
    const std::string name(512, 'n');
    expect_line_reported({name + "=1", 1, PM_ERR_BAD_LINE, load_place, context(3, pm::to_wide(name + "=1"))});
}

TEST(PiaLoad, BlockWithANameOf512UnitsIsReportedAndPassedOver) {
    const std::string name(512, 'n');
    RecordingHandler handler;
    EXPECT_EQ((Lines{"a long 1", "b long 2"}),
              loaded_with(handler, "a=1\n" + name + "{\nc=3\nx{\nd=4\n}\n" + name + "{\n}\n}\nb=2\n"));
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(2, handler.reports[0].kind);
    EXPECT_EQ(PM_ERR_BAD_LINE, handler.reports[0].number);
    EXPECT_EQ(load_place, handler.reports[0].place);
    EXPECT_EQ(context(3, pm::to_wide(name)).substr(0, 259), handler.reports[0].detail);
}

TEST(PiaLoad, PathOf1023UnitsIsTaken) {
    const std::string node(500, 'n');
    const std::string name(1023 - 3 - 2 * 500, 'p');
    EXPECT_EQ(Lines{node + "\\" + node + "\\" + name + " long 1"},
              loaded(node + "{\n" + node + "{\n" + name + "=1\n"));
}

TEST(PiaLoad, PathOf1024UnitsIsReported) {
    const std::string node(500, 'n');
    const std::string name(1024 - 3 - 2 * 500, 'p');
    RecordingHandler handler;
    EXPECT_EQ((Lines{"b long 2", node + "\\" + node + "\\a long 1"}),
              loaded_with(handler, node + "{\n" + node + "{\n" + name + "=1\na=1\n" + name +
                                       "{\nc=1\n}\n}\n}\nb=2\n"));
    ASSERT_EQ(2U, handler.reports.size());
    EXPECT_EQ(1, handler.reports[0].kind);
    EXPECT_EQ(PM_ERR_BAD_LINE, handler.reports[0].number);
    EXPECT_EQ(context(4, pm::to_wide(name + "=1")), handler.reports[0].detail);
    EXPECT_EQ(2, handler.reports[1].kind);
    EXPECT_EQ(PM_ERR_BAD_LINE, handler.reports[1].number);
    EXPECT_EQ(context(6, pm::to_wide(name)), handler.reports[1].detail);
}

TEST(PiaLoad, DepthOf256ComponentsIsTaken) {
    std::string body;
    for (int level = 0; level < 255; ++level) {
        body += "n{\n";
    }
    EXPECT_EQ(1U, loaded(body + "a=1\n").size());
}

TEST(PiaLoad, DepthOf257ComponentsIs51) {
    std::string body;
    std::u16string path;
    for (int level = 0; level < 256; ++level) {
        body += "n{\n";
        path += u"\\n";
    }
    RecordingHandler handler;
    PM_Object object(&handler);
    expect_thrown<PM_Warning>([&] { load_body(object, "b=1\n" + body + "a=1\n"); }, PM_ERR_BAD_PATH,
                              u"PM_Path::PM_Path()", (path + u"\\a").substr(0, 259));
    EXPECT_TRUE(handler.reports.empty());
    EXPECT_EQ(Lines{"b long 1"}, tree_text(object));
}

TEST(PiaLoad, NameOfBackslashesAloneIs51) {
    expect_bad_line<PM_Warning>("\\=1", PM_ERR_BAD_PATH, set_place, u"\\\\");
}

TEST(PiaLoad, BackslashInANameShiftsThePlaceOfWhatFollows) {
    EXPECT_EQ((Lines{"a\\b long 1", "a\\c long 2"}), loaded("a\\b=1\nc=2\n"));
}

// The base.

TEST(PiaLoad, NamesLandUnderTheBase) {
    for (const char16_t* base : {u"q", u"\\q", u"q\\", u"\\q\\"}) {
        PM_Object object;
        load_body(object, "a=1\nx{\nb=2\n}\nc=3\n", base);
        EXPECT_EQ((Lines{"q\\a long 1", "q\\c long 3", "q\\x\\b long 2"}), tree_text(object));
    }
}

TEST(PiaLoad, EmptyAndNullBaseAreTheRoot) {
    for (const char16_t* base : {u"", static_cast<const char16_t*>(nullptr)}) {
        PM_Object object;
        load_body(object, "x{\nb=2\n}\n", base);
        EXPECT_EQ(Lines{"x\\b long 2"}, tree_text(object));
    }
}

TEST(PiaLoad, BaseThatIsTooLongIs51) {
    const std::u16string base(1024, u'b');
    PM_Object object;
    expect_thrown<PM_Warning>([&] { load_body(object, "a=1\n", base.c_str()); }, PM_ERR_BAD_PATH, load_place,
                              base.substr(0, 259));
    EXPECT_TRUE(tree_text(object).empty());
}

TEST(PiaLoad, BaseWithoutRoomForANameReportsEachLine) {
    const std::u16string base(1023, u'b');
    RecordingHandler handler;
    PM_Object object(&handler);
    load_body(object, "a=1\nx{\n}\nb=2\n", base.c_str());
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE, PM_ERR_BAD_LINE, PM_ERR_BAD_LINE}),
              handler.numbers());
    EXPECT_TRUE(tree_text(object).empty());
}

TEST(PiaLoad, ClosingLineCutsTheBaseToo) {
    PM_Object object;
    load_body(object, "a=1\n}\nb=2\n", u"\\q\\r");
    EXPECT_EQ((Lines{"q\\b long 2", "q\\r\\a long 1"}), tree_text(object));
}

TEST(PiaLoad, FirstClosingLineTooManyCutsTheRootsPathToNothing) {
    EXPECT_EQ(Lines{"a long 1"}, loaded("}\na=1\n"));
}

TEST(PiaLoad, SecondClosingLineTooManyIs57) {
    PM_Object object;
    expect_thrown<PM_Error>([&] { load_body(object, "}\n a} b\n"); }, PM_ERR_BAD_LINE, load_place,
                            context(3, u"a} b"));
}

TEST(PiaLoad, ClosingLineAfterAPropertyOfTheRootIs57) {
    expect_bad_line<PM_Error>("}", PM_ERR_BAD_LINE, load_place, context(3, u"}"));
}

TEST(PiaLoad, ClosingLineInABaseWithoutBackslashIs57) {
    PM_Object object;
    expect_thrown<PM_Error>([&] { load_body(object, "a=1\n}\nb=2\n", u"q"); }, PM_ERR_BAD_LINE, load_place,
                            context(3, u"}"));
    EXPECT_EQ(Lines{"q\\a long 1"}, tree_text(object));
}

// Bad lines that are reported.

TEST(PiaBadLine, EmptyNameIsReported) {
    expect_line_reported({"=1", 1, PM_ERR_BAD_LINE, load_place, context(3, u"=1")});
    expect_line_reported({"  = \"text", 1, PM_ERR_BAD_LINE, load_place, context(3, u"= \"text")});
}

TEST(PiaBadLine, EmptyValueIsReported) {
    expect_line_reported({"a=", 2, PM_ERR_BAD_LINE, load_place, context(3, u"a=")});
    expect_line_reported({"a = == ", 2, PM_ERR_BAD_LINE, load_place, context(3, u"a = ==")});
}

TEST(PiaBadLine, BadDoubleIsReported) {
    for (const char* line :
         {"a=1.2.3", "a=.", "a=-.", "a=1 .5", "a=1.5 mm", "a=1.5\t", "a=1.5 (12345678901234)x"}) {
        expect_line_reported({line, 1, PM_ERR_BAD_LINE, load_place, context(3, pm::to_wide(line))});
    }
}

TEST(PiaBadLine, EmptyOrOddRawDataIsReported) {
    for (const char* line : {"a=\\\\", "a=\\  \\", "a=\\ABC\\", "a=\\A\\", "a=\\AB \\"}) {
        expect_line_reported({line, 1, PM_ERR_BAD_LINE, load_place, context(3, pm::to_wide(line))});
    }
}

TEST(PiaBadLine, ValueOfNoFormIsReportedWithTheLineAsItsPlace) {
    for (const char* line :
         {"a=yes", "a=\\ABC", "a=1e5", "a=+1", "a=+1.5", "a=0x10", "a='b'", "a=1;2", "a b=c"}) {
        expect_line_reported({line, 1, PM_ERR_UNKNOWN_VALUE, pm::to_wide(line), u""});
    }
}

TEST(PiaBadLine, ReportOfAValueOfNoFormHasNoSource) {
    SourceRecordingHandler handler;
    loaded_with(handler, "a=yes\n");
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(u"", handler.sources[0]);
}

TEST(PiaBadLine, PlaceOfAValueOfNoFormOutlivesTheLoad) {
    const std::string line = "a=" + std::string(5000, 'z');
    PM_Object object;
    const auto e = pm::test::thrown_by([&] { load_body(object, line + "\n"); });
    ASSERT_TRUE(e);
    EXPECT_EQ(pm::to_wide(line), e->m_place);
    EXPECT_EQ(line, e->m_place_narrow);
}

TEST(PiaBadLine, NothingIsMadeOfAReportedLine) {
    RecordingHandler handler;
    PM_Object object(&handler);
    load_body(object, "x{\nn1=yes\nn2=1.2.3\nn3=\\A\\\nn4=\n}\n");
    for (const char16_t* path : {u"n1", u"n2", u"n3", u"n4"}) {
        expect_thrown<PM_Warning>([&] { object.getPropertySize(path); }, PM_ERR_BAD_PATH,
                                  u"PM_Object::getPropertySize()", path);
    }
    EXPECT_EQ(
        (std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VALUE, PM_ERR_BAD_LINE, PM_ERR_BAD_LINE, PM_ERR_BAD_LINE}),
        handler.numbers());
}

TEST(PiaBadLine, OldValueStaysWhenALineIsReported) {
    RecordingHandler handler;
    EXPECT_EQ(Lines{"a double 0000000000000440"}, loaded_with(handler, "a=2.5\na=1.2.3\na=\n"));
}

// Bad lines that are thrown.

TEST(PiaBadLine, LineOfNoFormIsThrown) {
    expect_bad_line<PM_Error>("nothing", PM_ERR_BAD_LINE, load_place, context(3, u"nothing"));
    expect_bad_line<PM_Error>(" two words  ", PM_ERR_BAD_LINE, load_place, context(3, u"two words"));
}

TEST(PiaBadLine, NodeWithoutNameIsThrown) {
    expect_bad_line<PM_Error>("{", PM_ERR_BAD_LINE, load_place, context(3, u""));
    expect_bad_line<PM_Error>(" { x", PM_ERR_BAD_LINE, load_place, context(3, u""));
}

TEST(PiaBadLine, ForbiddenCharacterInANodesNameIsThrown) {
    for (const char c : {' ', '*', '"', '\'', '\t', '\r', '\v', '\b', '\f', '\a'}) {
        for (const std::string& name : {std::string("a") + c, std::string("a") + c + "b"}) {
            expect_bad_line<PM_Error>(name + "{ rest", PM_ERR_BAD_LINE, load_place,
                                      context(3, pm::to_wide(name)));
        }
    }
    expect_bad_line<PM_Error>("*x{", PM_ERR_BAD_LINE, load_place, context(3, u"*x"));
}

TEST(PiaBadLine, OtherCharactersInANodesNameAreTaken) {
    EXPECT_EQ(Lines{"a;b/c.d-e}f\\g long 1"}, loaded("a;b/c.d-e}f{\ng=1\n"));
}

TEST(PiaBadLine, PropertyThatChangesItsFormIs54) {
    RecordingHandler handler;
    PM_Object object(&handler);
    expect_thrown<PM_Warning>([&] { load_body(object, "a=1\nx{\nb=2\n}\na=2.5\nc=3\n"); }, PM_ERR_WRONG_TYPE,
                              set_place, u"");
    EXPECT_EQ((Lines{"a long 1", "x\\b long 2"}), tree_text(object));
    EXPECT_TRUE(handler.reports.empty());
}

TEST(PiaBadLine, PropertyOfAnotherTypeInTheTreeIs54) {
    PM_Object object;
    object.SetProperty(u"a", true);
    expect_thrown<PM_Warning>([&] { load_body(object, "a=1\n"); }, PM_ERR_WRONG_TYPE, set_place, u"");
    EXPECT_EQ(Lines{"a bool 01"}, tree_text(object));
}

TEST(PiaBadLine, PropertyOfAnotherTypeThatIsNotStrictIsTakenOver) {
    PM_Object object;
    object.SetProperty(u"a", true, -1, false);
    load_body(object, "a=1\n");
    EXPECT_EQ(Lines{"a long 1"}, tree_text(object));
    expect_thrown<PM_Warning>([&] { object.SetProperty(u"a", true); }, PM_ERR_WRONG_TYPE, set_place, u"");
}

// Line numbers.

TEST(PiaLineNumber, CountsTheHeaderAndItsEmptyLines) {
    RecordingHandler handler;
    PM_Object object(&handler);
    load_bytes(object, "\n\nPIAFILEVERSION_2.0,t\r\na=1\nb=\n");
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(context(5, u"b="), handler.reports[0].detail);
}

TEST(PiaLineNumber, DoesNotCountLinesOfWhiteSpace) {
    RecordingHandler handler;
    loaded_with(handler, "a=1\n\n  \n\t\r\n\nb=\nc=\n");
    ASSERT_EQ(2U, handler.reports.size());
    EXPECT_EQ(context(3, u"b="), handler.reports[0].detail);
    EXPECT_EQ(context(4, u"c="), handler.reports[1].detail);
}

TEST(PiaLineNumber, CountsCommentsBracesAndZeroBytes) {
    RecordingHandler handler;
    loaded_with(handler, std::string("; one\nx{\n\0\n}\nb=\n", 16));
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(context(6, u"b="), handler.reports[0].detail);
}

TEST(PiaLineNumber, StandsWithTheLineAndTheFile) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pia", pia_header + "a=1\n  bad  \n");
    PM_Object object;
    expect_thrown<PM_Error>([&] { object.load(name.c_str(), PM_Object::FILE_PIA, u"\\"); }, PM_ERR_BAD_LINE,
                            load_place, u"\n3, bad, " + name);
}

TEST(PiaLineNumber, LongLineIsCutWithTheFile) {
    PM_Object object;
    const std::string line(300, 'x');
    expect_thrown<PM_Error>([&] { load_body(object, line + "\n"); }, PM_ERR_BAD_LINE, load_place,
                            context(2, pm::to_wide(line)).substr(0, 259));
}

// Text.

TEST(PiaText, IsReadWithTheSystemsCodePage) {
    EXPECT_EQ(Lines{"\u00E4 string \u20AC\u0081"}, loaded("\xE4=\"\x80\x81\n"));
    const pm::test::ScopedCodePage cyrillic(1251);
    EXPECT_EQ(Lines{"\u0434 string \u0402"}, loaded("\xE4=\"\x80\n"));
}

TEST(PiaText, Utf8IsReadWithTheSystemsCodePageToo) {
    EXPECT_EQ(Lines{"a string \u00C3\u00A4"}, loaded("a=\"\xC3\xA4\n"));
    const pm::test::ScopedCodePage utf8(65001);
    EXPECT_EQ(Lines{"a string \u00E4\U0001F600"}, loaded("a=\"\xC3\xA4\xF0\x9F\x98\x80\n"));
}

TEST(PiaText, ReaderOfUtf8ReadsUtf8) {
    PM_Object object;
    PM_PIAFile filer(nullptr);
    std::stringstream stream = pm::test::byte_stream(pia_header + "\xC3\xA4=\"\xE4\xB8\xAD\n");
    filer.set_utf8(true);
    filer.attach(&stream);
    filer.load(&object, u"\\", PM_Object::FILE_PIA);
    EXPECT_EQ(Lines{"\u00E4 string \u4E2D"}, tree_text(object));
}

TEST(PiaText, SecondByteOfACharacterIsNoSeparator) {
    const pm::test::ScopedCodePage japanese(932);
    EXPECT_EQ((Lines{"a string \u30BD", "\u30BD\u30FC\\b long 1"}),
              loaded("a=\"\x83\x5C\n\x83\x5C\x81\x5B{\nb=1\n}\n"));
}

// Streams.

TEST(PiaStream, FileOfAnotherTypeThanItsFirstLineSaysIsReadOnItsMerits) {
    PM_Object object;
    load_bytes(object, "piafileversion_1.0\na=1\n");
    EXPECT_EQ(Lines{"a long 1"}, tree_text(object));
}

TEST(PiaStream, LoadLeavesTheStreamAtItsEnd) {
    std::stringstream stream = pm::test::byte_stream(pia_header + "a=1\n");
    PM_Object object;
    object.load(stream, PM_Object::FILE_PIA, u"\\");
    EXPECT_EQ(std::ios::eofbit, stream.rdstate());
}

TEST(PiaStream, OpenFileIsNotOpenedAgain) {
    const TempFolder folder;
    const std::u16string first = folder.write("first.pia", pia_header + "a=1\n");
    const std::u16string second = folder.write("second.pia", pia_header + "b=1\n");
    PM_Object object;
    PM_PIAFile filer(nullptr);
    filer.open(first.c_str(), false);
    filer.open(second.c_str(), false);
    filer.load(&object, u"\\", PM_Object::FILE_PIA);
    filer.close();
    EXPECT_EQ(Lines{"a long 1"}, tree_text(object));
}

// Serves a few bytes and then breaks, as a device does.
class BreakingBuffer : public std::stringbuf {
public:
    BreakingBuffer(const std::string& bytes, std::streamsize good) : std::stringbuf(bytes), m_left(good) {}

protected:
    std::streamsize xsgetn(char* out, std::streamsize count) override {
        const std::streamsize given = std::stringbuf::xsgetn(out, std::min(count, m_left));
        m_left -= given;
        if (given < count) {
            errno = EBADF;
            throw std::runtime_error("broken");
        }
        return given;
    }

private:
    std::streamsize m_left;
};

// What no handler is asked about passes it by.
TEST(PiaLoad, ThrownFailuresPassTheHandler) {
    for (const char* body : {"nothing\n", "}\n}\n", "{\n", "a b{\n"}) {
        RecordingHandler handler(1);
        PM_Object object(&handler);
        const std::type_info* type = nullptr;
        const auto e = pm::test::thrown_by([&] { load_body(object, body); }, &type);
        ASSERT_TRUE(e) << body;
        EXPECT_EQ(PM_ERR_BAD_LINE, e->m_number) << body;
        EXPECT_EQ(typeid(PM_Error), *type) << body;
        EXPECT_TRUE(handler.reports.empty()) << body;
    }
    RecordingHandler handler(1);
    PM_Object object(&handler);
    expect_thrown<PM_Warning>([&] { load_body(object, "a=1\na=TRUE\n"); }, PM_ERR_WRONG_TYPE,
                              u"PM_Object::SetData()", u"");
    expect_thrown<PM_Severe>([&] { object.load(u"no/such.pia", PM_Object::FILE_PIA, u"\\"); },
                             PM_ERR_NO_SUCH_FILE, load_place, u"no/such.pia");
    EXPECT_TRUE(handler.reports.empty());
}

TEST(PiaStream, StreamThatBreaksInTheBodyIsToldByItsErrorCode) {
    const std::string bytes = pia_header + "a=1\n" + std::string(400'000, ' ') + "\nb=2\n";
    BreakingBuffer buffer(bytes, 200'000);
    std::iostream stream(&buffer);
    PM_Object object;
    expect_thrown<PM_Severe>([&] { object.load(stream, PM_Object::FILE_PIA, u"\\"); }, PM_ERR_FILE_NOT_OPEN,
                             load_place, u"");
    EXPECT_EQ(Lines{"a long 1"}, tree_text(object));
}

// Reads a stream as if it were a file of that name.
class NamedReader : public PM_PIAFile {
public:
    using PM_PIAFile::PM_PIAFile;
    void take(std::iostream& stream, const char16_t* name) {
        attach(&stream);
        m_filename = name;
    }
};

TEST(PiaStream, FileThatBreaksInTheBodyIsToldWithItsName) {
    BreakingBuffer buffer(pia_header + std::string(400'000, ' '), 200'000);
    std::iostream stream(&buffer);
    NamedReader reader(nullptr);
    reader.take(stream, u"a file");
    PM_Object object;
    expect_thrown<PM_Severe>([&] { reader.load(&object, u"\\", PM_Object::FILE_PIA); }, PM_ERR_FILE_NOT_OPEN,
                             load_place, u"a file");
}

} // namespace
