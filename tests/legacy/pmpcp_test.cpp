#include "legacy/pmpcp.h"

#include "legacy/legacy_support.h"
#include "support/allocation_failures.h"
#include <pm/error_number.h>
#include <pm_test_paths.h>

namespace pm::test {
namespace {

const std::string marker = ";Created by Draftex\n";
constexpr const char16_t* load_place = u"PM_PCPFile::load()";
constexpr const char16_t* keys_place = u"PM_PCPFile::pcpkeys()";
constexpr const char16_t* version_place = u"PM_PCPFile::getVersion()";
constexpr const char16_t* source = u"$Workfile: pmpcp $ $Revision: #1 $";

void load_pcp(PM_Object& object, const std::string& content, const char16_t* base = u"\\") {
    load_text(object, PM_Object::FILE_PCP, content, base);
}

// An end outside a block does no harm to an object that is thrown away.
void leave_default_block() {
    PM_Object object;
    load_pcp(object, marker + "END_COLOR\n");
}

class Pcp : public testing::Test {
protected:
    void SetUp() override { leave_default_block(); }
    void TearDown() override { leave_default_block(); }

    void load(const std::string& lines, const char16_t* base = u"\\") {
        load_pcp(object, marker + lines, base);
    }
    std::vector<std::uint32_t> numbers() const { return handler.numbers(); }
    std::vector<std::string> tree() const { return dumped_lines(object); }

    // Expects one report, a warning of number 57, about the line.
    void expect_bad_line(const char16_t* place, int number, const std::string& line) {
        ASSERT_EQ(1U, handler.reports.size()) << line;
        EXPECT_EQ(1, handler.reports[0].kind) << line;
        EXPECT_EQ(PM_ERR_BAD_LINE, handler.reports[0].number) << line;
        EXPECT_EQ(place, handler.reports[0].place) << line;
        EXPECT_EQ(to_wide("\n" + std::to_string(number) + ", " + line + ", "), handler.reports[0].detail);
        EXPECT_EQ(source, handler.sources.back());
    }

    SourceRecordingHandler handler;
    PM_Object object{&handler};
};

using Lines = std::vector<std::string>;
using Numbers = std::vector<std::uint32_t>;

// ---- Value classes

TEST(PcpValueClass, FollowsFromTheText) {
    struct Case {
        const char16_t* text;
        int type;
    };
    for (const Case& each :
         {Case{u"", 1},       Case{u"-", 1},    Case{u"0", 1},     Case{u"123", 1},   Case{u"-12", 1},
          Case{u"1.0", 2},    Case{u".5", 2},   Case{u"5.", 2},    Case{u"-1.5", 2},  Case{u".", 2},
          Case{u"-.", 2},     Case{u"abc", 3},  Case{u"*", 3},     Case{u"*5", 3},    Case{u"a=1", 3},
          Case{u"e1.0", 3},   Case{u"true", 4}, Case{u"TRUE", 4},  Case{u"False", 4}, Case{u"truely", 3},
          Case{u"tru", 3},    Case{u"1e5", 0},  Case{u"1.2.3", 0}, Case{u"--1", 0},   Case{u"+1", 0},
          Case{u"1 ", 0},     Case{u" 1", 0},   Case{u"1a", 0},    Case{u"_a", 0},    Case{u"\"a\"", 0},
          Case{u"\u00C4", 0}, Case{u"1,5", 0}}) {
        EXPECT_EQ(each.type, PM_PCPFile::classify_pcp_value(each.text)) << to_narrow(each.text);
    }
}

// ---- Keywords

TEST_F(Pcp, EachKeywordTakesAGoodValue) {
    struct Case {
        const char* line;
        Lines tree;
    };
    const Case cases[] = {
        {"VERSION=2.0", {"\\VERSION double 2.0"}},
        {"PEN_NUMBER=3", {"\\PEN_NUMBER long 3"}},
        {"HW_LINETYPE=4", {"\\HW_LINETYPE long 4"}},
        {"PEN_SPEED=-5", {"\\PEN_SPEED long -5"}},
        {"PEN_WEIGHT=.5", {"\\PEN_WEIGHT double 0.5"}},
        {"UNITS=I", {"\\UNITS string \"I\""}},
        {"UNITS=m", {"\\UNITS string \"m\""}},
        {"ORIGIN=12.5,-10.0", {"\\ORIGIN\\X double 12.5", "\\ORIGIN\\Y double -10.0"}},
        {"SIZE=MAX", {"\\SIZE string \"MAX\""}},
        {"SIZE=A1: 841.0,594", {"\\SIZE\\A1\\X double 841.0", "\\SIZE\\A1\\Y double 594.0"}},
        {"ROTATE=90", {"\\ROTATE long 90"}},
        {"HIDE=Y", {"\\HIDE string \"Y\""}},
        {"HIDE=n", {"\\HIDE string \"n\""}},
        {"PEN_WIDTH=1.0", {"\\PEN_WIDTH double 1.0"}},
        {"SCALE=F", {"\\SCALE string \"F\""}},
        {"SCALE=f", {"\\SCALE string \"f\""}},
        {"SCALE=1=2", {"\\SCALE\\MUNITS double 1.0", "\\SCALE\\DUNITS double 2.0"}},
        {"PLOT_FILE=site plan 7.plt", {"\\PLOT_FILE string \"site plan 7.plt\""}},
        {"FILL_ADJUST=N", {"\\FILL_ADJUST string \"N\""}},
        {"FILL_ADJUST=y", {"\\FILL_ADJUST string \"y\""}},
        {"OPTIMIZE_LEVEL=3", {"\\OPTIMIZE_LEVEL long 3"}},
        {"BEGIN_COLOR=5\nEND_COLOR", {}},
        {"BEGIN_COLOR=DEFAULT\nEND_COLOR", {}},
    };
    for (const Case& each : cases) {
        PM_Object target(&handler);
        load_pcp(target, marker + each.line + "\n");
        EXPECT_EQ(each.tree, dumped_lines(target)) << each.line;
    }
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, EachKeywordRefusesABadValue) {
    struct Case {
        const char* line;
        const char16_t* place;
    };
    const Case cases[] = {
        {"VERSION=2", load_place},
        {"VERSION=abc", load_place},
        {"BEGIN_COLOR=red", keys_place},
        {"BEGIN_COLOR=1.5", keys_place},
        {"BEGIN_COLOR=", keys_place},
        {"BEGIN_COLOR", keys_place},
        {"PEN_NUMBER=1.0", load_place},
        {"PEN_NUMBER=*", load_place},
        {"PEN_NUMBER=MOD16", load_place},
        {"HW_LINETYPE=1.0", load_place},
        {"PEN_SPEED=fast", load_place},
        {"PEN_WEIGHT=1", load_place},
        {"UNITS=X", keys_place},
        {"UNITS=IM", keys_place},
        {"UNITS=", keys_place},
        {"UNITS", keys_place},
        {"ORIGIN=", keys_place},
        {"ORIGIN=,1.0", keys_place},
        {"ORIGIN=1,2.0", keys_place},
        {"ORIGIN=1.0 ,2.0", keys_place},
        {"SIZE=", load_place},
        {"SIZE=4", load_place},
        {"SIZE=A:", keys_place},
        {"SIZE=A:,1", keys_place},
        {"SIZE=A: x,1", keys_place},
        {"SIZE :=1", keys_place},
        {"ROTATE=90.0", load_place},
        {"HIDE=X", keys_place},
        {"HIDE=I", keys_place},
        {"PEN_WIDTH=1", load_place},
        {"SCALE=", keys_place},
        {"SCALE", keys_place},
        {"SCALE=x", keys_place},
        {"SCALE=FIT", keys_place},
        {"SCALE=1 =2", keys_place},
        {"PLOT_FILE=7.plt", load_place},
        {"PLOT_FILE=true", load_place},
        {"PLOT_FILE=", load_place},
        {"FILL_ADJUST=true", keys_place},
        {"OPTIMIZE_LEVEL=high", load_place},
        {"NO_SUCH_KEY=1", keys_place},
        {"VERSION 2.0", keys_place},
        {"ROTATE\t=5", keys_place},
        {"=5", load_place},
    };
    for (const Case& each : cases) {
        handler.reports.clear();
        PM_Object target(&handler);
        load_pcp(target, marker + each.line + "\n");
        expect_bad_line(each.place, 2, each.line);
        EXPECT_EQ(Lines{}, dumped_lines(target)) << each.line;
    }
}

// What is stored when the second of two numbers turns out bad stays.
TEST_F(Pcp, ABadSecondNumberLeavesTheFirst) {
    struct Case {
        const char* line;
        const char* first;
    };
    const Case cases[] = {
        {"ORIGIN=1.0", "\\ORIGIN\\X double 1.0"},      {"ORIGIN=1.0,", "\\ORIGIN\\X double 1.0"},
        {"ORIGIN=1.0,2", "\\ORIGIN\\X double 1.0"},    {"ORIGIN=1.0,2.0,3.0", "\\ORIGIN\\X double 1.0"},
        {"SIZE=A:1,2", "\\SIZE\\A\\X double 1.0"},     {"SIZE=A:1", "\\SIZE\\A\\X double 1.0"},
        {"SIZE=A: 1", "\\SIZE\\A\\X double 1.0"},      {"SIZE=A: 1,", "\\SIZE\\A\\X double 1.0"},
        {"SIZE=A: 1,x", "\\SIZE\\A\\X double 1.0"},    {"SIZE=:1,2", "\\SIZE\\X double 1.0"},
        {"SCALE=1", "\\SCALE\\MUNITS double 1.0"},     {"SCALE=1=", "\\SCALE\\MUNITS double 1.0"},
        {"SCALE=1=x", "\\SCALE\\MUNITS double 1.0"},   {"SCALE=1=\t2", "\\SCALE\\MUNITS double 1.0"},
        {"SCALE=1=2=3", "\\SCALE\\MUNITS double 1.0"},
    };
    for (const Case& each : cases) {
        handler.reports.clear();
        PM_Object target(&handler);
        load_pcp(target, marker + each.line + "\n" + "ROTATE=1\n");
        expect_bad_line(keys_place, 2, each.line);
        EXPECT_EQ((Lines{"\\ROTATE long 1", each.first}), dumped_lines(target)) << each.line;
    }
}

TEST_F(Pcp, BlanksAndTabsMayStandInFrontOfTheNumbersOfAnOrigin) {
    load("ORIGIN= \t=1.0,\t 2.0\n");
    EXPECT_EQ((Lines{"\\ORIGIN\\X double 1.0", "\\ORIGIN\\Y double 2.0"}), tree());
    EXPECT_TRUE(handler.reports.empty());
}

// With one blank in front of the first number the second stands right behind the comma; each blank more
// skips a place.
TEST_F(Pcp, TheSecondNumberOfASizeIsLookedForByTheBlanksOfTheFirst) {
    load("SIZE=A: 1,2\nSIZE=B:  1,23\nSIZE=C: \t 1,  .5\nSIZE=D: 1, 2.5\n");
    EXPECT_EQ((Lines{"\\SIZE\\A\\X double 1.0", "\\SIZE\\A\\Y double 2.0", "\\SIZE\\B\\X double 1.0",
                     "\\SIZE\\B\\Y double 3.0", "\\SIZE\\C\\X double 1.0", "\\SIZE\\C\\Y double 0.5",
                     "\\SIZE\\D\\X double 1.0", "\\SIZE\\D\\Y double 2.5"}),
              tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, ASizeMayHaveAnEmptyNameAndANameWithSeparators) {
    load("SIZE=: 1,2\nSIZE=a\\b\\: 3,4\n");
    EXPECT_EQ((Lines{"\\SIZE\\X double 1.0", "\\SIZE\\Y double 2.0", "\\SIZE\\a\\b\\X double 3.0",
                     "\\SIZE\\a\\b\\Y double 4.0"}),
              tree());
}

TEST_F(Pcp, AScaleMayHaveBlanksBehindItsEqualsSigns) {
    load("SCALE= _\t1= 100.5\n");
    EXPECT_EQ((Lines{"\\SCALE\\MUNITS double 1.0", "\\SCALE\\DUNITS double 100.5"}), tree());
}

TEST_F(Pcp, ALoneMinusIsTheNumberZero) {
    load("ROTATE=-\nSCALE=-=-\n");
    EXPECT_EQ((Lines{"\\ROTATE long 0", "\\SCALE\\MUNITS double 0.0", "\\SCALE\\DUNITS double 0.0"}), tree());
}

TEST_F(Pcp, LongNumbersAreHeldAtTheEndsOfTheirRange) {
    load("ROTATE=99999999999\nOPTIMIZE_LEVEL=-99999999999\n");
    EXPECT_EQ((Lines{"\\ROTATE long 2147483647", "\\OPTIMIZE_LEVEL long -2147483648"}), tree());
}

TEST_F(Pcp, KeywordsInAnyCaseAreStoredAsWritten) {
    load("Rotate=1\nORIgin=1.0,2.0\nsize=max\n");
    EXPECT_EQ((Lines{"\\Rotate long 1", "\\size string \"max\"", "\\ORIgin\\X double 1.0",
                     "\\ORIgin\\Y double 2.0"}),
              tree());
}

TEST_F(Pcp, BlanksEqualsSignsAndUnderscoresInFrontOfAValueDoNotCount) {
    load("ROTATE = == 5\nPLOT_FILE=_ _a_b\nUNITS=__M\nPEN_WIDTH 1.5=_2.5\n");
    EXPECT_EQ((Lines{"\\ROTATE long 5", "\\PLOT_FILE string \"a_b\"", "\\UNITS string \"M\""}), tree());
    expect_bad_line(load_place, 5, "PEN_WIDTH 1.5=_2.5");
}

// The letter is found behind a tab, and its class isn't.
TEST_F(Pcp, ATabInFrontOfALetterMakesABadLine) {
    load("UNITS=\tM\n");
    expect_bad_line(load_place, 2, "UNITS=\tM");
    EXPECT_EQ(Lines{}, tree());
}

// A line without "=" has its value where the last line with one had it.
TEST_F(Pcp, ALineWithoutAnEqualsSignHasItsValueAtTheLastKeyLength) {
    load("PLOT_FILE\nVERSION=1.0\n");
    EXPECT_EQ((Lines{"\\PLOT_FILE string \"PLOT_FILE\"", "\\VERSION double 1.0"}), tree());
    load("VERSION=1.0\nPLOT_FILE\n");
    EXPECT_EQ((Lines{"\\PLOT_FILE string \"LE\"", "\\VERSION double 1.0"}), tree());
    EXPECT_TRUE(handler.reports.empty());
    load("OPTIMIZE_LEVEL=1\nPLOT_FILE\n");
    expect_bad_line(load_place, 3, "PLOT_FILE");
}

// ---- Colours

TEST_F(Pcp, KeysOfABlockLandBelowItsColor) {
    load("BEGIN_COLOR=5\nPEN_NUMBER=3\nPEN_WEIGHT=0.5\nEND_COLOR\nBEGIN_COLOR=250\nPEN_SPEED=4\nEND_COLOR\n"
         "ROTATE=1\n",
         u"\\pens");
    EXPECT_EQ((Lines{"\\pens\\ROTATE long 1", "\\pens\\5\\PEN_NUMBER long 3",
                     "\\pens\\5\\PEN_WEIGHT double 0.5", "\\pens\\250\\PEN_SPEED long 4"}),
              tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, BlocksMayLieInOneAnother) {
    load("BEGIN_COLOR=1\nBEGIN_COLOR=2\nROTATE=3\nEND_COLOR\nROTATE=4\nEND_COLOR\nROTATE=5\n");
    EXPECT_EQ((Lines{"\\ROTATE long 5", "\\1\\ROTATE long 4", "\\1\\2\\ROTATE long 3"}), tree());
}

TEST_F(Pcp, AColorNumberIsTakenAsWritten) {
    load("BEGIN_COLOR= \t=-007\nROTATE=3\n");
    EXPECT_EQ((Lines{"\\-007\\ROTATE long 3"}), tree());
}

TEST_F(Pcp, AllKeysOfABlockLandBelowItsColor) {
    load("BEGIN_COLOR=5\nORIGIN=1.0,2.0\n;For the device: x\nEND_COLOR\n");
    EXPECT_EQ((Lines{"\\5\\MODEL string \"x\"", "\\5\\ORIGIN\\X double 1.0", "\\5\\ORIGIN\\Y double 2.0"}),
              tree());
}

// Nothing is left to cut a key from, so that each later one is told of and stands behind the one before.
TEST_F(Pcp, AnEndThatClosesNothingCutsTheBase) {
    load("END_COLOR\nROTATE=1\nHIDE=Y\n");
    EXPECT_EQ((Lines{"\\ROTATE long 1", "\\ROTATEHIDE string \"Y\""}), tree());
    ASSERT_EQ((Numbers{PM_ERR_BAD_LINE, PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(load_place, handler.reports[0].place);
    EXPECT_EQ(u"\n3, ROTATE=1, ", handler.reports[0].detail);
    EXPECT_EQ(u"\n4, HIDE=Y, ", handler.reports[1].detail);
}

TEST_F(Pcp, AnEndThatClosesNothingGoesUpFromTheBase) {
    load("END_COLOR\nROTATE=1\n", u"\\a\\b");
    EXPECT_EQ((Lines{"\\a\\ROTATE long 1"}), tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, WithNothingToCutFromTheNumbersOfColorsGoOnWithTheLastName) {
    load("END_COLOR\nROTATE=1\nBEGIN_COLOR=DEFAULT\nPEN_SPEED=5\nEND_COLOR\n");
    Lines expected = {"\\ROTATE long 1"};
    for (int color = 1; color <= 255; ++color) {
        expected.push_back("\\ROTATE" + std::to_string(color) + "\\PEN_SPEED long 5");
    }
    EXPECT_EQ(expected, tree());
    EXPECT_EQ(Numbers{PM_ERR_BAD_LINE}, numbers());
}

std::string color_line(int color, const std::string& rest) {
    return "\\" + std::to_string(color) + "\\" + rest;
}

TEST_F(Pcp, TheDefaultBlockSetsEachColor) {
    load("BEGIN_COLOR=Default\npen_number=7\nHW_LINETYPE=1\nPEN_SPEED= 500\nPEN_WEIGHT=0.25\nEND_COLOR\n");
    Lines expected;
    for (int color = 1; color <= 255; ++color) {
        expected.push_back(color_line(color, "pen_number long 7"));
        expected.push_back(color_line(color, "HW_LINETYPE long 1"));
        expected.push_back(color_line(color, "PEN_SPEED long 500"));
        expected.push_back(color_line(color, "PEN_WEIGHT double 0.25"));
    }
    EXPECT_EQ(expected, tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, AStarGivesEachColorItsOwnPen) {
    load("BEGIN_COLOR=DEFAULT\nPEN_NUMBER=*\nEND_COLOR\n");
    Lines expected;
    for (int color = 1; color <= 255; ++color) {
        expected.push_back(color_line(color, "PEN_NUMBER long " + std::to_string(color)));
    }
    EXPECT_EQ(expected, tree());
}

TEST_F(Pcp, Mod16GivesSixteenPensInTurn) {
    load("BEGIN_COLOR=DEFAULT\nPEN_NUMBER=MOD16\nEND_COLOR\n");
    EXPECT_EQ(1, long_at(object, u"\\1\\PEN_NUMBER"));
    EXPECT_EQ(15, long_at(object, u"\\15\\PEN_NUMBER"));
    EXPECT_EQ(16, long_at(object, u"\\16\\PEN_NUMBER"));
    EXPECT_EQ(1, long_at(object, u"\\17\\PEN_NUMBER"));
    EXPECT_EQ(16, long_at(object, u"\\32\\PEN_NUMBER"));
    EXPECT_EQ(15, long_at(object, u"\\255\\PEN_NUMBER"));
    EXPECT_EQ(255U, tree().size());
}

// The values of the default block have no class: what isn't a number is 0.
TEST_F(Pcp, TheDefaultBlockScansItsValues) {
    load(
        "BEGIN_COLOR=DEFAULT\nPEN_NUMBER=mod16\nPEN_SPEED=12abc\nPEN_WEIGHT=1\nHW_LINETYPE=2.9\nEND_COLOR\n");
    EXPECT_EQ(0, long_at(object, u"\\32\\PEN_NUMBER"));
    EXPECT_EQ(12, long_at(object, u"\\32\\PEN_SPEED"));
    EXPECT_EQ(1.0, double_at(object, u"\\32\\PEN_WEIGHT"));
    EXPECT_EQ(2, long_at(object, u"\\32\\HW_LINETYPE"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, AWeightOfTheDefaultBlockIsDecimal) {
    struct Case {
        const char* text;
        double value;
    };
    for (const Case& each :
         {Case{"inf", 0}, Case{"Informal", 0}, Case{"nan", 0}, Case{"0x10", 0}, Case{"1.5x", 1.5}}) {
        load(std::string("BEGIN_COLOR=DEFAULT\nPEN_WEIGHT=") + each.text + "\nEND_COLOR\n");
        EXPECT_EQ(each.value, double_at(object, u"\\32\\PEN_WEIGHT")) << each.text;
    }
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, AnEmptyValueInTheDefaultBlockIsABadLine) {
    for (const char* line : {"PEN_NUMBER=", "HW_LINETYPE= =", "PEN_SPEED", "PEN_WEIGHT="}) {
        handler.reports.clear();
        PM_Object target(&handler);
        load_pcp(target, marker + "BEGIN_COLOR=DEFAULT\n" + line + "\nEND_COLOR\n");
        expect_bad_line(keys_place, 3, line);
        EXPECT_EQ(Lines{}, dumped_lines(target));
    }
}

TEST_F(Pcp, OtherKeysOfTheDefaultBlockLandAtTheBase) {
    load("BEGIN_COLOR=DEFAULT\nROTATE=1\nEND_COLOR\nROTATE=2\n");
    EXPECT_EQ((Lines{"\\ROTATE long 2"}), tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, AColorInsideTheDefaultBlockOpensNothing) {
    load("BEGIN_COLOR=DEFAULT\nBEGIN_COLOR=5\nROTATE=1\nEND_COLOR\nROTATE=2\n");
    EXPECT_EQ((Lines{"\\ROTATE long 2"}), tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, ADefaultBlockThatIsNotClosedGoesOnInTheNextLoad) {
    load("BEGIN_COLOR=DEFAULT\n");
    PM_Object next;
    load_pcp(next, marker + "PEN_NUMBER=1\nEND_COLOR\nPEN_NUMBER=2\n");
    EXPECT_EQ(1, long_at(next, u"\\255\\PEN_NUMBER"));
    EXPECT_EQ(2, long_at(next, u"\\PEN_NUMBER"));
}

TEST_F(Pcp, ADefaultBlockOfACancelledLoadGoesOnInTheNextLoad) {
    RecordingHandler stops(0);
    PM_Object stopped(&stops);
    expect_thrown<ZT_Canceled_Error>(
        [&] { load_pcp(stopped, marker + "BEGIN_COLOR=DEFAULT\nx\nEND_COLOR\n"); }, PM_ERR_BAD_LINE,
        keys_place, u"\n3, x, ");
    load("PEN_SPEED=1\nEND_COLOR\nPEN_SPEED=2\n");
    EXPECT_EQ(1, long_at(object, u"\\255\\PEN_SPEED"));
    EXPECT_EQ(2, long_at(object, u"\\PEN_SPEED"));
}

TEST_F(Pcp, ADefaultBlockInsideAColorSetsEachColorBelowIt) {
    load("BEGIN_COLOR=5\nBEGIN_COLOR=DEFAULT\nPEN_SPEED=1\nEND_COLOR\nPEN_SPEED=2\nEND_COLOR\n");
    EXPECT_EQ(1, long_at(object, u"\\5\\255\\PEN_SPEED"));
    EXPECT_EQ(2, long_at(object, u"\\5\\PEN_SPEED"));
    EXPECT_EQ(256U, tree().size());
}

// ---- Comments

TEST_F(Pcp, CommentsTellTheDriverAndTheDevice) {
    load_pcp(object, ";for THE driver:   Draftex  Series \n; For the device: no\n;For the device:DX-4200\n");
    EXPECT_EQ((Lines{"\\FAMILY string \"Draftex  Series\"", "\\MODEL string \"DX-4200\""}), tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, ADriverMayBeEmpty) {
    load(";For the driver:\n;For the device:  \n");
    EXPECT_EQ((Lines{"\\FAMILY string \"\"", "\\MODEL string \"\""}), tree());
}

TEST_F(Pcp, OnlyBlanksInFrontOfADriverAreSkipped) {
    load(";For the driver: \ta\n");
    EXPECT_EQ((Lines{"\\FAMILY string \"\ta\""}), tree());
}

TEST_F(Pcp, TheMarkerMayBeInAnyCaseAndHaveTextBehind) {
    load_pcp(object, "  ;created by draftex 7\r\nROTATE=1\r\n");
    EXPECT_EQ((Lines{"\\ROTATE long 1"}), tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, OtherCommentsAreIgnored) {
    load(";\n;x=1\n; Created by Draftex\n;For the\n");
    EXPECT_EQ(Lines{}, tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, LinesInFrontOfTheMarkerAreReportedEachAndDropped) {
    load_pcp(object, "ROTATE=1\n\n;comment\nbad\n;Created by Draftex\nROTATE=2\n");
    EXPECT_EQ((Numbers{PM_ERR_UNKNOWN_VERSION, PM_ERR_UNKNOWN_VERSION}), numbers());
    EXPECT_EQ(2, handler.reports[0].kind);
    EXPECT_EQ(load_place, handler.reports[0].place);
    EXPECT_EQ(u"", handler.reports[0].detail);
    EXPECT_EQ((Lines{"\\ROTATE long 2"}), tree());
}

TEST_F(Pcp, AnUnmarkedFileWithoutAHandlerEndsAtItsFirstLine) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pcp", ";For the driver: a\n\nROTATE=1\n");
    PM_Object target;
    expect_thrown<ZT_Exception>([&] { target.load(name.c_str(), PM_Object::FILE_PCP, u"\\"); },
                                PM_ERR_UNKNOWN_VERSION, load_place, name);
    EXPECT_EQ((Lines{"\\FAMILY string \"a\""}), dumped_lines(target));
}

// ---- Lines

TEST_F(Pcp, LineEndsMayHaveACarriageReturnAndTheLastMayBeMissing) {
    load_pcp(object, ";Created by Draftex\r\nROTATE=1\r\nPLOT_FILE=a \r\n \tHIDE=Y  \nUNITS=M");
    EXPECT_EQ(
        (Lines{"\\ROTATE long 1", "\\PLOT_FILE string \"a\"", "\\HIDE string \"Y\"", "\\UNITS string \"M\""}),
        tree());
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, TextIsInTheSystemCodePage) {
    load("PLOT_FILE=a\x80\xE4\n");
    EXPECT_EQ(u"a\u20AC\u00E4", string_at(object, u"\\PLOT_FILE"));
}

TEST_F(Pcp, ALineOf1023BytesIsWhole) {
    const std::string value(1023 - 10, 'x');
    load("PLOT_FILE=" + value + "\n");
    EXPECT_EQ(to_wide(value), string_at(object, u"\\PLOT_FILE"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pcp, ALongerLineIsABadLineAndNoOther) {
    for (const std::size_t length : {std::size_t{1024}, std::size_t{1025}, std::size_t{5000}}) {
        handler.reports.clear();
        PM_Object target(&handler);
        const std::string line = "PLOT_FILE=" + std::string(length - 10, 'x');
        load_pcp(target, marker + line + "\nROTATE=1\n");
        ASSERT_EQ((Numbers{PM_ERR_BAD_LINE}), numbers());
        EXPECT_EQ(load_place, handler.reports[0].place);
        EXPECT_EQ(to_wide("\n2, " + line).substr(0, 259), handler.reports[0].detail);
        EXPECT_EQ((Lines{"\\ROTATE long 1"}), dumped_lines(target));
    }
}

TEST_F(Pcp, AKeyOf512UnitsIsABadLine) {
    load(std::string(511, 'x') + "=1\n");
    ASSERT_EQ((Numbers{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(keys_place, handler.reports[0].place);
    handler.reports.clear();
    load(std::string(512, 'x') + "=1\n");
    ASSERT_EQ((Numbers{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(load_place, handler.reports[0].place);
}

TEST_F(Pcp, ALineWithoutAValueIsAKeyOfAnyLength) {
    load(std::string(600, 'x') + "\n");
    ASSERT_EQ((Numbers{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(keys_place, handler.reports[0].place);
}

// ---- Base

TEST_F(Pcp, ABaseMayEndInASeparatorOrNotAndEmptyIsTheRoot) {
    load("ROTATE=1\n", u"a");
    load("ROTATE=2\n", u"\\b\\");
    load("ROTATE=3\n", u"");
    load("UNITS=M\n", nullptr);
    EXPECT_EQ((Lines{"\\ROTATE long 3", "\\UNITS string \"M\"", "\\a\\ROTATE long 1", "\\b\\ROTATE long 2"}),
              tree());
}

TEST_F(Pcp, ABaseOf1023UnitsIsABadPath) {
    const std::u16string base(1023, u'a');
    expect_thrown<PM_Warning>([&] { load("ROTATE=1\n", base.c_str()); }, PM_ERR_BAD_PATH, load_place,
                              base.substr(0, 259));
}

TEST_F(Pcp, ABaseOf1023UnitsThatEndsInASeparatorHasRoomForNoKey) {
    const std::u16string base = std::u16string(1022, u'a') + u"\\";
    load("", base.c_str());
    EXPECT_TRUE(handler.reports.empty());
    load("ROTATE=1\n", base.c_str());
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(PM_ERR_BAD_LINE, handler.reports[0].number);
}

TEST_F(Pcp, AKeyWithoutRoomBehindTheBaseIsABadLine) {
    const std::u16string base = std::u16string(1022 - 4, u'a');
    const std::u16string cut = base + u"\\HIDE";
    load("HIDE=Y\n", base.c_str());
    EXPECT_EQ(u"Y", string_at(object, cut.c_str()));
    EXPECT_TRUE(handler.reports.empty());

    struct Case {
        const char* line;
        const char16_t* place;
    };
    for (const Case& each : {Case{"UNITS=M", load_place}, Case{";For the driver: a", load_place},
                             Case{"ORIGIN=1.0,2.0", keys_place}, Case{"SIZE=A: 1,2", keys_place},
                             Case{"SCALE=1=2", keys_place}, Case{"BEGIN_COLOR=1234", keys_place}}) {
        handler.reports.clear();
        PM_Object target(&handler);
        load_pcp(target, marker + each.line + "\nHIDE=N\n", base.c_str());
        expect_bad_line(each.place, 2, each.line);
        EXPECT_EQ(u"N", string_at(target, cut.c_str()));
        EXPECT_EQ(1U, dumped_lines(target).size());
    }
}

TEST_F(Pcp, ADefaultBlockWithoutRoomForAllColorsSetsNone) {
    const std::string key = "PEN_SPEED";
    for (const std::size_t missing : {std::size_t{0}, std::size_t{1}}) {
        PM_Object target(&handler);
        const std::u16string base(1023 - 1 - 4 - key.size() + missing, u'a');
        load_pcp(target, marker + "BEGIN_COLOR=DEFAULT\nPEN_SPEED=1\nEND_COLOR\n", base.c_str());
        EXPECT_EQ(missing == 0 ? 255U : 0U, dump(target).size());
    }
    expect_bad_line(keys_place, 3, "PEN_SPEED=1");
}

TEST_F(Pcp, AKeyOfAnotherTypeEndsTheLoad) {
    object.SetProperty(u"\\ROTATE", true);
    expect_thrown<PM_Warning>([&] { load("ROTATE=1\nUNITS=M\n"); }, PM_ERR_WRONG_TYPE,
                              u"PM_Object::SetData()", u"");
    EXPECT_EQ((Lines{"\\ROTATE bool true"}), tree());
}

// ---- Reports

TEST_F(Pcp, ReportsGoToTheHandlerWhichDecides) {
    const ReportOutcome rows[] = {
        {"bad\n" + marker + "ROTATE=2\n", 2, PM_ERR_UNKNOWN_VERSION, load_place, u""},
        {marker + "=1\nROTATE=2\n", 1, PM_ERR_BAD_LINE, load_place, u"\n2, =1, "},
        {marker + "VERSION=\nROTATE=2\n", 1, PM_ERR_BAD_LINE, load_place, u"\n2, VERSION=, "},
        {marker + "VERSION=1\nROTATE=2\n", 1, PM_ERR_BAD_LINE, load_place, u"\n2, VERSION=1, "},
        {marker + "NONE=1\nROTATE=2\n", 1, PM_ERR_BAD_LINE, keys_place, u"\n2, NONE=1, "},
        {marker + "UNITS=x\nROTATE=2\n", 1, PM_ERR_BAD_LINE, keys_place, u"\n2, UNITS=x, "},
        {marker + "END_COLOR\nROTATE=2\n", 1, PM_ERR_BAD_LINE, load_place, u"\n3, ROTATE=2, "},
    };
    for (const ReportOutcome& row : rows) {
        expect_report(row, [&](PM_Object& target) {
            load_pcp(target, row.content);
            EXPECT_EQ(2, long_at(target, u"\\ROTATE"));
        });
    }
}

TEST_F(Pcp, ReportsNameTheFile) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pcp", marker + "bad\n");
    expect_report({"bad", 1, PM_ERR_BAD_LINE, keys_place, u"\n2, bad, " + name},
                  [&](PM_Object& target) { target.load(name.c_str(), PM_Object::FILE_PCP, u"\\"); });
}

TEST_F(Pcp, EachFailingAllocationIsTold) {
    const int told = count_memory_exceptions([] {
        PM_Object target;
        load_pcp(target, marker + "BEGIN_COLOR=5\nPEN_NUMBER=3\nEND_COLOR\nSIZE=A: 1,2\n");
    });
    EXPECT_GT(told, 20);
}

// ---- Version

std::u16string version_of(const std::string& content, ZT_Error_Handler* handler = nullptr,
                          std::size_t size = PM_File::unchecked) {
    std::stringstream stream = binary_stream(content);
    PM_PCPFile filer(handler);
    filer.attach(&stream);
    std::array<char16_t, 1200> buffer = {u'o', u'l', u'd', u'\0'};
    filer.getVersion(buffer.data(), size);
    return buffer.data();
}

TEST(PcpVersion, IsTheValueOfTheLastVersionLine) {
    EXPECT_EQ(u"2.0", version_of("VERSION=1.0\r\nversion = =2.0 \r\n;VERSION=3.0\nROTATE=1\n"));
    EXPECT_EQ(u"x y", version_of("VERSION=x y"));
    EXPECT_EQ(u"\tx", version_of("VERSION=\tx"));
}

TEST(PcpVersion, LeavesTheBufferWithoutAVersionLine) {
    EXPECT_EQ(u"old", version_of(""));
    EXPECT_EQ(u"old", version_of("VERSION 1.0\nVERSION\nVERSIONS=1.0\n\n;VERSION=1.0\n"));
}

TEST(PcpVersion, IsCutToItsBuffer) {
    EXPECT_EQ(u"12", version_of("VERSION=1234.5\n", nullptr, 3));
}

TEST(PcpVersion, IsReadFromTheStartOfTheStream) {
    std::stringstream stream = binary_stream("VERSION=1.0\n");
    stream.seekg(5);
    PM_PCPFile filer(nullptr);
    filer.attach(&stream);
    std::array<char16_t, 8> buffer{};
    filer.getVersion(buffer.data(), buffer.size());
    EXPECT_EQ(std::u16string(u"1.0"), buffer.data());
}

TEST(PcpVersion, AVersionWithoutAValueIsAnError) {
    RecordingHandler goes_on(1);
    EXPECT_EQ(u"1.0", version_of("VERSION=1.0\nVERSION= =\n", &goes_on));
    ASSERT_EQ(1U, goes_on.reports.size());
    EXPECT_EQ(2, goes_on.reports[0].kind);
    EXPECT_EQ(PM_ERR_BAD_LINE, goes_on.reports[0].number);
    EXPECT_EQ(version_place, goes_on.reports[0].place);
    EXPECT_EQ(u"\n0, VERSION= =, ", goes_on.reports[0].detail);
    RecordingHandler stops(0);
    expect_thrown<ZT_Canceled_Error>([&] { version_of("VERSION=\n", &stops); }, PM_ERR_BAD_LINE,
                                     version_place, u"\n0, VERSION=, ");
    expect_thrown<ZT_Exception>([] { version_of("VERSION=\n"); }, PM_ERR_BAD_LINE, version_place,
                                u"\n0, VERSION=, ");
}

TEST(PcpVersion, ALineThatIsTooLongIsAnError) {
    RecordingHandler goes_on(1);
    EXPECT_EQ(u"1.0", version_of("VERSION=1.0\nVERSION=" + std::string(1020, '2') + "\n", &goes_on));
    EXPECT_EQ((Numbers{PM_ERR_BAD_LINE}), goes_on.numbers());
    EXPECT_EQ(2, goes_on.reports[0].kind);
}

TEST(PcpVersion, TheDispatchAsksForThatOfAPiaFile) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.pcp", ";Created by Draftex\nVERSION=1.0\n");
    PM_Object object;
    std::array<char16_t, 64> buffer{};
    expect_thrown<ZT_Exception>(
        [&] { object.getFileVersion(name.c_str(), buffer.data(), buffer.size(), PM_Object::FILE_PCP); },
        PM_ERR_NOT_A_HEADER, u"PM_PIAFile::getVersion()", name);
}

// ---- Streams

TEST(PcpStreams, AMissingStreamIsSevere) {
    PM_Object object;
    PM_PCPFile filer(nullptr);
    std::array<char16_t, 8> buffer{};
    expect_thrown<PM_Severe>([&] { filer.load(&object, u"\\", PM_Object::FILE_PCP); }, PM_ERR_NOT_OPENED,
                             load_place, u"");
    expect_thrown<PM_Severe>([&] { filer.getVersion(buffer.data(), buffer.size()); }, PM_ERR_NOT_OPENED,
                             version_place, u"");
}

TEST(PcpStreams, AFailureHasTheNumberOfItsCode) {
    struct Case {
        int code;
        std::uint32_t number;
    };
    for (const Case& each : {Case{ENOMEM, PM_ERR_NO_MEMORY_FOR_FILE}, Case{EACCES, PM_ERR_ACCESS_DENIED},
                             Case{EIO, PM_ERR_NOT_READ}, Case{0, PM_ERR_NOT_READ}}) {
        const std::string content = filled_to_block(marker + "ROTATE=2\n");
        FailingBuffer buffer(content, each.code);
        std::iostream stream(&buffer);
        PM_Object object;
        expect_thrown<PM_Severe>([&] { object.load(stream, PM_Object::FILE_PCP, u"\\"); }, each.number,
                                 load_place, u"");
        EXPECT_EQ(2, long_at(object, u"\\ROTATE"));

        FailingBuffer again(content, each.code);
        std::iostream second(&again);
        PM_PCPFile filer(nullptr);
        filer.attach(&second);
        std::array<char16_t, 8> version{};
        errno = 0;
        expect_thrown<PM_Severe>([&] { filer.getVersion(version.data(), version.size()); }, each.number,
                                 version_place, u"");
    }
}

TEST(PcpStreams, AreReadFromWhereTheyStand) {
    std::stringstream stream = binary_stream("garbage\n" + marker + "ROTATE=1\n");
    stream.seekg(8);
    PM_Object object;
    object.load(stream, PM_Object::FILE_PCP, u"\\");
    EXPECT_EQ(1, long_at(object, u"\\ROTATE"));
}

TEST(PcpStreams, AreNotWritten) {
    PM_Object object;
    std::stringstream stream = binary_stream("");
    expect_thrown<PM_Warning>([&] { object.save(stream, PM_Object::FILE_PCP, u"", u"\\"); },
                              PM_ERR_TYPE_REFUSED, u"PM_Object::save()", u"");
}

// ---- The sample

TEST_F(Pcp, TheSampleGivesItsTree) {
    object.load(to_wide(std::string(PM_SAMPLES) + "/pens.pcp", utf8_code_page).c_str(), PM_Object::FILE_PCP,
                u"\\pens");
    EXPECT_TRUE(handler.reports.empty());
    EXPECT_EQ(reference_lines("pens.pcp.tree"), tree());
}

// A file that breaks off has at most one bad line, its last.
TEST_F(Pcp, TheSampleBreaksOffAnywhere) {
    const std::string content = sample("pens.pcp");
    for (std::size_t length = 0; length <= content.size(); ++length) {
        leave_default_block();
        RecordingHandler each;
        PM_Object target(&each);
        load_pcp(target, content.substr(0, length));
        ASSERT_LE(each.reports.size(), 1U) << length;
        for (const std::uint32_t number : each.numbers()) {
            ASSERT_EQ(PM_ERR_BAD_LINE, number) << length;
        }
    }
}

} // namespace
} // namespace pm::test
