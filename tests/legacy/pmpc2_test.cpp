#include "legacy/pmpc2.h"

#include "legacy/legacy_support.h"
#include "support/allocation_failures.h"
#include <pm/error_number.h>
#include <pm_test_paths.h>

namespace pm::test {
namespace {

constexpr const char* version = "PC2Version 2.0\n";
constexpr const char16_t* load_place = u"PM_PC2File::load()";
constexpr const char16_t* version_place = u"PM_PC2File::getVersion()";

void load_pc2(PM_Object& object, const std::string& content, const char16_t* base = u"\\") {
    load_text(object, PM_Object::FILE_PC2, content, base);
}

std::string section_of(const Pc2Key& key) {
    const std::string full = to_narrow(key.key);
    return full.substr(0, full.find('\\'));
}

// The name that stands for the key in a file: an indexed one with its first number.
std::string name_of(const Pc2Key& key) {
    const std::string full = to_narrow(key.key);
    return full.substr(full.find('\\') + 1) + (key.indexed() ? std::to_string(key.first) : "");
}

std::string file_with(const Pc2Key& key, const std::string& value) {
    return version + ("[" + section_of(key) + "]\n") + name_of(key) + "=" + value + "\n";
}

// Where the key's value is stored below the root.
std::u16string path_of(const Pc2Key& key) {
    std::u16string path = to_wide("\\" + section_of(key) + "\\" + name_of(key));
    if (key.type == PROP_STRING) std::replace(path.begin(), path.end(), u'-', u'_');
    return path;
}

std::span<const Pc2Key> keys_with_values() {
    return pc2_keys().first(139);
}

class Pc2 : public testing::Test {
protected:
    void load(const std::string& lines, const char16_t* base = u"\\") {
        load_pc2(object, version + lines, base);
    }
    std::vector<std::uint32_t> numbers() const { return handler.numbers(); }

    SourceRecordingHandler handler;
    PM_Object object{&handler};
};

// ---- Defaults

TEST_F(Pc2, AVersionLineAloneGivesAllDefaults) {
    load("");
    for (const Pc2Key& key : keys_with_values()) {
        const std::u16string path = path_of(key);
        SCOPED_TRACE(to_narrow(path));
        switch (key.type) {
        case PROP_LONG:
            EXPECT_EQ(key.initial, long_at(object, path.c_str()));
            break;
        case PROP_DOUBLE:
            EXPECT_EQ(0.0, double_at(object, path.c_str()));
            break;
        case PROP_STRING:
            EXPECT_EQ(u"", string_at(object, path.c_str()));
            EXPECT_EQ(2U, object.getPropertySize(path.c_str()));
            break;
        default:
            EXPECT_EQ(std::string(1, '\0'), raw_at(object, path.c_str()));
        }
    }
    EXPECT_EQ(-1, long_at(object, u"\\Plotter/Port\\Link"));
    EXPECT_EQ(1, long_at(object, u"\\Plotter/DriverCustom\\fDither"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, IndexedKeysHaveADefaultForEachIndex) {
    load("");
    struct Range {
        const char16_t* path;
        int last;
    };
    for (const Range& each :
         {Range{u"\\Plotter/Device/PenTable\\Color", 255}, Range{u"\\Plotter/Device/SpeedTable\\Color", 255},
          Range{u"\\Plotter/Device/LineTypeTable\\Color", 255},
          Range{u"\\Plotter/User\\DeviceDriverCell", 2}}) {
        for (int index = 1; index <= each.last; ++index) {
            EXPECT_EQ(0, long_at(object, (each.path + to_wide(std::to_string(index))).c_str()));
        }
        EXPECT_EQ(std::nullopt, long_at(object, (each.path + std::u16string(u"0")).c_str()));
        EXPECT_EQ(std::nullopt,
                  long_at(object, (each.path + to_wide(std::to_string(each.last + 1))).c_str()));
    }
    for (const Range& each :
         {Range{u"\\Plotter/Device/WidthTable\\Color", 255}, Range{u"\\Plotter/User\\UserWidth", 5},
          Range{u"\\Plotter/User\\UserHeight", 5}}) {
        for (int index = 1; index <= each.last; ++index) {
            EXPECT_EQ(0.0, double_at(object, (each.path + to_wide(std::to_string(index))).c_str()));
        }
        EXPECT_EQ(std::nullopt, double_at(object, (each.path + std::u16string(u"0")).c_str()));
        EXPECT_EQ(std::nullopt,
                  double_at(object, (each.path + to_wide(std::to_string(each.last + 1))).c_str()));
    }
    for (int index = 1; index <= 255; ++index) {
        const std::u16string path = u"\\Plotter/DriverCustom\\PEN#" + to_wide(std::to_string(index));
        EXPECT_EQ(u"", string_at(object, path.c_str()));
    }
    EXPECT_EQ(std::nullopt, string_at(object, u"\\Plotter/DriverCustom\\PEN#0"));
    EXPECT_EQ(std::nullopt, string_at(object, u"\\Plotter/DriverCustom\\PEN#256"));
}

// Four tables of 255 colours, as many pens, 2 cells and 5 sizes of two kinds beside the 131 others.
TEST_F(Pc2, DefaultsAreInTheOrderOfTheKeys) {
    load("");
    std::vector<std::string> expected;
    for (const Pc2Key& key : keys_with_values()) {
        std::string name = "\\" + to_narrow(key.key);
        if (!key.indexed()) {
            std::replace(name.begin(), name.end(), '-', '_');
            expected.push_back(name);
        }
        for (int index = key.first; key.indexed() && index <= key.last; ++index) {
            expected.push_back(name + std::to_string(index));
        }
    }
    std::vector<std::string> paths;
    for (const DumpedProperty& property : dump(object)) {
        paths.push_back(property.path);
    }
    EXPECT_EQ(expected, paths);
    EXPECT_EQ(131U + 5 * 255 + 2 + 5 + 5, paths.size());
}

TEST_F(Pc2, ASlashIsAnOrdinaryCharacterOfANodeName) {
    load("");
    EXPECT_TRUE(object.pathExists(u"\\Plotter/Port\\Link"));
    EXPECT_EQ(std::nullopt, long_at(object, u"\\Plotter\\Port\\Link"));
}

TEST_F(Pc2, DefaultsReplaceEarlierValues) {
    object.SetProperty(u"\\PlotDriver\\Type", 5);
    load("");
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, AKeyThatIsThereUnderAnotherTypeEndsTheLoad) {
    object.SetProperty(u"\\PlotDriver\\Type", true);
    expect_thrown<PM_Warning>([&] { load(""); }, PM_ERR_WRONG_TYPE, u"PM_Object::SetData()", u"");
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Configured"));
    EXPECT_EQ(std::nullopt, long_at(object, u"\\PlotDriver\\External"));
}

// ---- Base

TEST_F(Pc2, ABaseMayEndInASeparatorOrNot) {
    load("[PlotDriver]\nType=1\n", u"\\a");
    load("[PlotDriver]\nType=2\n", u"b\\");
    EXPECT_EQ(1, long_at(object, u"\\a\\PlotDriver\\Type"));
    EXPECT_EQ(2, long_at(object, u"\\b\\PlotDriver\\Type"));
}

TEST_F(Pc2, AnEmptyOrNullBaseIsTheRoot) {
    load("[PlotDriver]\nType=1\n", u"");
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
    load("[PlotDriver]\nType=2\n", nullptr);
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, ABaseThatIsTooLongIsABadPath) {
    const std::u16string base(1023, u'a');
    const std::u16string first = base + u"\\PlotDriver\\Configured";
    expect_thrown<PM_Warning>([&] { load("", base.c_str()); }, PM_ERR_BAD_PATH, u"PM_Object::SetData()",
                              first.substr(0, 259));
}

// A path of 1023 units has room for the longest default, and for nothing more.
TEST_F(Pc2, AKeyWhosePathIsTooLongIsABadLine) {
    const std::u16string longest = u"Plotter/DriverCustom\\dmDisplayFrequency";
    const std::u16string base(1023 - longest.size() - 1, u'a');
    load("[Plotter/Device/LineTypeTable]\nColor99999=1\nColor100000=2\nTypes=3\n", base.c_str());
    EXPECT_EQ(1, long_at(object, (base + u"\\Plotter/Device/LineTypeTable\\Color99999").c_str()));
    EXPECT_EQ(3, long_at(object, (base + u"\\Plotter/Device/LineTypeTable\\Types").c_str()));
    ASSERT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(u"\n3, Color100000=2, ", handler.reports[0].detail);
}

// ---- The version line

TEST_F(Pc2, TheVersionIsTheFirstLineThatIsNoComment) {
    std::stringstream stream = binary_stream("\r\n  \n; PC2Version 1\n \tPC2Version 2.0, draft  \r\nx\n");
    PM_PC2File filer(nullptr);
    filer.attach(&stream);
    std::array<char16_t, 64> buffer{};
    filer.getVersion(buffer.data(), buffer.size());
    EXPECT_EQ(std::u16string(u"PC2Version 2.0, draft"), buffer.data());
}

TEST_F(Pc2, TheVersionIsReadFromTheStartOfTheStream) {
    std::stringstream stream = binary_stream("PC2Version 2.0\nabc\n");
    stream.seekg(15);
    PM_PC2File filer(nullptr);
    filer.attach(&stream);
    std::array<char16_t, 64> buffer{};
    filer.getVersion(buffer.data(), buffer.size());
    EXPECT_EQ(std::u16string(u"PC2Version 2.0"), buffer.data());
}

TEST_F(Pc2, TheVersionIsCutToItsBuffer) {
    std::stringstream stream = binary_stream("PC2Version 2.0");
    PM_PC2File filer(nullptr);
    filer.attach(&stream);
    std::array<char16_t, 64> buffer{};
    filer.getVersion(buffer.data(), 5);
    EXPECT_EQ(std::u16string(u"PC2V"), buffer.data());
    filer.getVersion(buffer.data(), PM_File::unchecked);
    EXPECT_EQ(std::u16string(u"PC2Version 2.0"), buffer.data());
}

TEST_F(Pc2, TheVersionStartIsEnoughAndItsCaseCounts) {
    load_pc2(object, "PC2VersionX\n");
    EXPECT_TRUE(handler.reports.empty());
    load_pc2(object, "PC2version 2.0\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VERSION}), numbers());
}

TEST_F(Pc2, TypeCfgIsNotLoadedThisWay) {
    expect_thrown<PM_Warning>([&] { load_text(object, PM_Object::FILE_CFG, version); }, PM_ERR_TYPE_REFUSED,
                              u"PM_Object::load()", u"");
}

TEST_F(Pc2, TheBufferStaysWhenTheHandlerPassesOverAMissingVersion) {
    for (const char* content : {"[PlotDriver]\n", "", "; comment\n", "; comment"}) {
        std::stringstream stream = binary_stream(content);
        PM_PC2File filer(&handler);
        filer.attach(&stream);
        std::array<char16_t, 8> buffer = {u'o', u'l', u'd', u'\0'};
        filer.getVersion(buffer.data(), buffer.size());
        EXPECT_EQ(std::u16string(u"old"), buffer.data());
    }
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VERSION, PM_ERR_BAD_LINE, PM_ERR_BAD_LINE,
                                          PM_ERR_BAD_LINE}),
              numbers());
}

TEST_F(Pc2, AfterAMissingVersionTheNextLineIsRead) {
    load_pc2(object, "[Plotter/User]\n[PlotDriver]\nType=2\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_UNKNOWN_VERSION}), numbers());
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, AFileWithoutALineStillGivesDefaults) {
    load_pc2(object, "");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(-1, long_at(object, u"\\Plotter/Port\\Link"));
}

// ---- Lines

TEST_F(Pc2, LineEndsMayHaveACarriageReturn) {
    load_pc2(object, "PC2Version 2.0\r\n[PlotDriver]\r\nType=1\r\nMenuName=\"a \"\r\nAlias=3\n");
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_EQ(u"a ", string_at(object, u"\\PlotDriver\\MenuName"));
    EXPECT_EQ(3, long_at(object, u"\\PlotDriver\\Alias"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, OneCarriageReturnIsDropped) {
    load("[PlotDriver]\nMenuName=a\r\r\n");
    EXPECT_EQ(u"a\r", string_at(object, u"\\PlotDriver\\MenuName"));
}

TEST_F(Pc2, ALastLineNeedsNoEnd) {
    load("[PlotDriver]\nType=1");
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
    load_pc2(object, "PC2Version 2.0");
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, BlanksAndTabsInFrontAndBlanksBehindDoNotCount) {
    load(" \t[PlotDriver]  \n\t Type=1  \n");
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, ATabBehindBelongsToTheLine) {
    load("[PlotDriver]\nMenuName=a\t\n");
    EXPECT_EQ(u"a\t", string_at(object, u"\\PlotDriver\\MenuName"));
}

TEST_F(Pc2, EmptyLinesAndCommentsAreSkipped) {
    load("\n   \n;x\n  ; Type\n[PlotDriver]\n;Type=3\nAlias=1\n");
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Alias"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, ALineIsReadUpToAZeroByte) {
    load(std::string("[PlotDriver]\nMenuName=ab\0cd\n", 28));
    EXPECT_EQ(u"ab", string_at(object, u"\\PlotDriver\\MenuName"));
}

TEST_F(Pc2, TextIsInTheSystemCodePage) {
    load("[PlotDriver]\nMenuName=\x80\xE4\n");
    EXPECT_EQ(u"\u20AC\u00E4", string_at(object, u"\\PlotDriver\\MenuName"));
}

TEST_F(Pc2, ALineOf1023BytesIsWhole) {
    const std::string value(1023 - 9, 'x');
    load("[PlotDriver]\nMenuName=" + value + "\n");
    EXPECT_EQ(to_wide(value), string_at(object, u"\\PlotDriver\\MenuName"));
    load("[PlotDriver]\nMenuName=" + value);
    EXPECT_EQ(to_wide(value), string_at(object, u"\\PlotDriver\\MenuName"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, ALongerLineIsABadLineAndNoOther) {
    for (const std::size_t length : {std::size_t{1024}, std::size_t{1025}, std::size_t{5000}}) {
        handler.reports.clear();
        const std::string line = "MenuName=" + std::string(length - 9, 'x');
        load("[PlotDriver]\n" + line + "\nType=1\n");
        ASSERT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
        EXPECT_EQ(load_place, handler.reports[0].place);
        EXPECT_EQ(to_wide("\n2, " + line).substr(0, 259), handler.reports[0].detail);
        EXPECT_EQ(u"", string_at(object, u"\\PlotDriver\\MenuName"));
        EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
    }
}

TEST_F(Pc2, ALongLineMayEndTheFile) {
    load("[PlotDriver]\nMenuName=" + std::string(5000, 'x'));
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
}

TEST_F(Pc2, AVersionLineThatIsTooLongIsABadLine) {
    const std::string line = "PC2Version " + std::string(2000, 'x');
    load_pc2(object, line + "\n[PlotDriver]\nType=1\n");
    ASSERT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(version_place, handler.reports[0].place);
    EXPECT_EQ(2, handler.reports[0].kind);
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, LinesAreCountedBehindTheVersionLine) {
    load_pc2(object, "; one\n\nPC2Version 2.0\n\n; two\nabc\n");
    ASSERT_EQ(1U, handler.reports.size());
    EXPECT_EQ(u"\n3, abc, ", handler.reports[0].detail);
}

// ---- Sections

TEST_F(Pc2, ASectionNameBeginsBehindTheFirstCharacterOfItsLine) {
    load("x[]\nType=1\n[PlotDriver\nType=2\n");
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, ASectionNameEndsAtTheFirstBracket) {
    load("[PlotDriver]]x\nType=1\n");
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, SectionsInAnyCaseAreStoredAsWritten) {
    load("[plotdriver]\nTYPE=1\n");
    EXPECT_EQ(1, long_at(object, u"\\plotdriver\\TYPE"));
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, AnEmptySectionNameLeavesTheSectionBefore) {
    load("[PlotDriver]\n[]\nType=1\n[\nAlias=2\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE, PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Alias"));
}

TEST_F(Pc2, ASectionNameOf513UnitsIsABadLine) {
    load("[PlotDriver]\n[" + std::string(513, 'x') + "]\nType=1\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, ASectionNameOf512UnitsIsASection) {
    load("[PlotDriver]\n[" + std::string(512, 'x') + "]\nType=1\n");
    EXPECT_TRUE(handler.reports.empty());
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, ALineWithABracketAndAnEqualsSignIsAKeyLine) {
    load("[PlotDriver]\n[Plotter/User]=1\nType=2\n");
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_TRUE(handler.reports.empty());
}

// ---- Keys

TEST_F(Pc2, UnknownKeysAreIgnoredWithoutAWord) {
    load("Type=1\n[PlotDriver]\nNoSuchKey=abc\nNoSuchKey=\n=5\nType =1\n[Unknown]\nType=x\n");
    EXPECT_TRUE(handler.reports.empty());
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_FALSE(object.pathExists(u"\\PlotDriver\\NoSuchKey"));
}

TEST_F(Pc2, EachKeyTakesAGoodValue) {
    for (const Pc2Key& key : keys_with_values()) {
        PM_Object each(&handler);
        const std::u16string path = path_of(key);
        SCOPED_TRACE(to_narrow(path));
        switch (key.type) {
        case PROP_LONG:
            load_pc2(each, file_with(key, "17"));
            EXPECT_EQ(key.hexadecimal ? 0x17 : 17, long_at(each, path.c_str()));
            break;
        case PROP_DOUBLE:
            load_pc2(each, file_with(key, "2.5"));
            EXPECT_EQ(2.5, double_at(each, path.c_str()));
            break;
        case PROP_STRING:
            load_pc2(each, file_with(key, "\"a text\""));
            EXPECT_EQ(u"a text", string_at(each, path.c_str()));
            break;
        default:
            load_pc2(each, file_with(key, "\"1%@M-#(P,  !  @ 0YX\""));
            EXPECT_EQ(std::string("DX-4200\0\1\0\b\0", 12), raw_at(each, path.c_str()));
        }
    }
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, EachKeyRefusesABadValue) {
    for (const Pc2Key& key : keys_with_values()) {
        SCOPED_TRACE(to_narrow(key.key));
        handler.reports.clear();
        PM_Object each(&handler);
        const std::string value = key.type == PROP_STRING ? "" : "xyz";
        load_pc2(each, file_with(key, value));
        ASSERT_EQ(1U, handler.reports.size());
        EXPECT_EQ(1, handler.reports[0].kind);
        EXPECT_EQ(key.hexadecimal ? PM_ERR_NOT_HEXADECIMAL : PM_ERR_BAD_LINE, handler.reports[0].number);
        EXPECT_EQ(load_place, handler.reports[0].place);
        EXPECT_EQ(to_wide("\n2, " + name_of(key) + "=" + value + ", "), handler.reports[0].detail);
        EXPECT_EQ(u"$Workfile: pmpc2 $ $Revision: #1 $", handler.sources.back());
        PM_Object defaults;
        load_pc2(defaults, version);
        EXPECT_EQ(dumped_lines(defaults), dumped_lines(each));
    }
}

TEST_F(Pc2, IndexesOutsideTheDefaultsAreStored) {
    const std::string digits(300, '7');
    load("[Plotter/Device/PenTable]\nColor0=1\nColor256=2\nColor017=3\nColor" + digits +
         "=4\nColor=5\n"
         "Colorful=6\nCOLOR17=7\n");
    const std::u16string table = u"\\Plotter/Device/PenTable\\";
    EXPECT_EQ(1, long_at(object, (table + u"Color0").c_str()));
    EXPECT_EQ(2, long_at(object, (table + u"Color256").c_str()));
    EXPECT_EQ(3, long_at(object, (table + u"Color017").c_str()));
    EXPECT_EQ(4, long_at(object, (table + u"Color" + to_wide(digits)).c_str()));
    EXPECT_EQ(5, long_at(object, (table + u"Color").c_str()));
    EXPECT_EQ(6, long_at(object, (table + u"Colorful").c_str()));
    EXPECT_EQ(7, long_at(object, (table + u"COLOR17").c_str()));
    EXPECT_EQ(0, long_at(object, (table + u"Color17").c_str()));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, TheLastValueOfAKeyCounts) {
    load("[PlotDriver]\nType=1\nType=2\n");
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Pc2, BlanksAndEqualsSignsInFrontOfAValueDoNotCount) {
    load("[PlotDriver]\nType= == 1\nMenuName==  a=b\n");
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_EQ(u"a=b", string_at(object, u"\\PlotDriver\\MenuName"));
}

TEST_F(Pc2, AValueOfBlanksAndEqualsSignsIsEmpty) {
    load("[PlotDriver]\nType== =\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
}

// ---- Values

TEST_F(Pc2, IntegersAreDecimalOctalOrHexadecimal) {
    struct Case {
        const char* text;
        int value;
    };
    for (const Case& each :
         {Case{"12", 12}, Case{"-12", -12}, Case{"+3", 3}, Case{"0x30", 48}, Case{"0X1f", 31}, Case{"010", 8},
          Case{"09", 0}, Case{"12abc", 12}, Case{"12 34", 12}, Case{"\t5", 5}, Case{"2147483647", 2147483647},
          Case{"-2147483648", -2147483647 - 1}}) {
        load(std::string("[PlotDriver]\nType=") + each.text + "\n");
        EXPECT_EQ(each.value, long_at(object, u"\\PlotDriver\\Type")) << each.text;
    }
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Pc2, FieldsAreHexadecimalAndOtherNumbersAreNot) {
    struct Case {
        const char* text;
        int value;
    };
    for (const Case& each :
         {Case{"ff", 255}, Case{"FF", 255}, Case{"0xff", 255}, Case{"10", 16}, Case{"1a7fg", 0x1a7f},
          Case{"ffffffff", -1}, Case{"80000001", -2147483647}, Case{"-1", -1}, Case{"123456789", -1}}) {
        load(std::string("[Plotter/DriverCustom]\ndmFields=") + each.text + "\n");
        EXPECT_EQ(each.value, long_at(object, u"\\Plotter/DriverCustom\\dmFields")) << each.text;
    }
    EXPECT_TRUE(handler.reports.empty());
    load("[Plotter/DriverCustom]\ndmPaperSize=ff\nDMFIELDS=g\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE, PM_ERR_NOT_HEXADECIMAL}), numbers());
}

TEST_F(Pc2, DoublesTakeAllTextFormsOfANumber) {
    struct Case {
        const char* text;
        double value;
    };
    for (const Case& each : {Case{"1", 1}, Case{"0.13", 0.13}, Case{"-2.5", -2.5}, Case{"1e3", 1000},
                             Case{"1.50", 1.5}, Case{"0.33333333333 (55555555U3_#T@)", 1.0 / 3}}) {
        load(std::string("[Plotter/User]\nPlotScale=") + each.text + "\n");
        EXPECT_EQ(each.value, double_at(object, u"\\Plotter/User\\PlotScale")) << each.text;
    }
    EXPECT_TRUE(handler.reports.empty());
    load("[Plotter/User]\nPlotScale=1.0 mm\nLineWidth=\"1.0\"\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE, PM_ERR_BAD_LINE}), numbers());
}

TEST_F(Pc2, DoublesAreDecimal) {
    load("[Plotter/User]\nPlotScale=inf\nPlotScale=nan\nPlotScale=0x10\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE, PM_ERR_BAD_LINE, PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(0.0, double_at(object, u"\\Plotter/User\\PlotScale"));
}

TEST_F(Pc2, StringsLoseTheQuotesThatTheyBeginAndEndWith) {
    struct Case {
        const char* text;
        const char16_t* value;
    };
    for (const Case& each : {Case{"\"a b\"", u"a b"}, Case{"a b", u"a b"}, Case{"\"a", u"\"a"},
                             Case{"a\"", u"a\""}, Case{"\"\"", u""}, Case{"\"", u"\""},
                             Case{"\"a\"b\"", u"a\"b"}, Case{"\"a\" ", u"a"}, Case{"\" a \"", u" a "}}) {
        load(std::string("[PlotDriver]\nMenuName=") + each.text + "\n");
        EXPECT_EQ(each.value, string_at(object, u"\\PlotDriver\\MenuName")) << each.text;
        EXPECT_EQ(2 * (std::u16string(each.value).size() + 1),
                  object.getPropertySize(u"\\PlotDriver\\MenuName"));
    }
}

TEST_F(Pc2, RawDataNeedsNoQuotes) {
    load("[Plotter/Device]\nDriverData=1%@M-#(P,  !  @ 0YX\n");
    EXPECT_EQ(std::string("DX-4200\0\1\0\b\0", 12), raw_at(object, u"\\Plotter/Device\\DriverData"));
}

TEST_F(Pc2, RawDataWithAWrongCheckValueIsABadLine) {
    load("[Plotter/Device]\nDriverData=\"1%@M-#(P,  !  @ 0ZX\"\n");
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(std::string(1, '\0'), raw_at(object, u"\\Plotter/Device\\DriverData"));
}

TEST_F(Pc2, ADashInAStringKeyIsStoredAsAnUnderscore) {
    load("[Plotter/DriverCustom]\nOpaque-A=\"one\"\nOPAQUE-B=two\nPEN#-1-2=three\n");
    EXPECT_EQ(u"one", string_at(object, u"\\Plotter/DriverCustom\\Opaque_A"));
    EXPECT_EQ(u"two", string_at(object, u"\\Plotter/DriverCustom\\OPAQUE_B"));
    EXPECT_EQ(u"three", string_at(object, u"\\Plotter/DriverCustom\\PEN#_1-2"));
    EXPECT_EQ(u"", string_at(object, u"\\Plotter/DriverCustom\\Opaque_B"));
    EXPECT_EQ(std::nullopt, string_at(object, u"\\Plotter/DriverCustom\\Opaque-A"));
}

// Only the first dash of the whole path goes, and the defaults of the pens keep theirs.
TEST_F(Pc2, ADashInTheBaseIsReplacedInStringKeys) {
    load("[Plotter/DriverCustom]\nOpaque-A=one\nPEN#1=two\nfDither=5\n", u"\\a-b");
    EXPECT_EQ(u"one", string_at(object, u"\\a_b\\Plotter/DriverCustom\\Opaque-A"));
    EXPECT_EQ(u"two", string_at(object, u"\\a_b\\Plotter/DriverCustom\\PEN#1"));
    EXPECT_EQ(u"", string_at(object, u"\\a-b\\Plotter/DriverCustom\\PEN#1"));
    EXPECT_EQ(u"", string_at(object, u"\\a_b\\PlotDriver\\MenuName"));
    EXPECT_EQ(5, long_at(object, u"\\a-b\\Plotter/DriverCustom\\fDither"));
}

TEST_F(Pc2, ADashInANumberKeyStays) {
    load("[Plotter/Device/PenTable]\nColor-1=3\n");
    EXPECT_EQ(3, long_at(object, u"\\Plotter/Device/PenTable\\Color-1"));
}

// The path of a value is resolved as any other, so that a star stands for the index, which is -1.
TEST_F(Pc2, AStarBehindAnIndexedKeyIsAnIndex) {
    load("[Plotter/Device/PenTable]\nColor*=3\n");
    EXPECT_EQ(3, long_at(object, u"\\Plotter/Device/PenTable\\Color-1"));
}

TEST_F(Pc2, ASeparatorBehindAnIndexedKeyMakesANode) {
    load("[Plotter/Device/PenTable]\nColor\\a\\b=3\n");
    EXPECT_EQ(3, long_at(object, u"\\Plotter/Device/PenTable\\Color\\a\\b"));
}

// ---- Reports

TEST(Pc2Reports, GoToTheHandlerWhichDecides) {
    const std::string start = std::string(version) + "[PlotDriver]\n";
    const ReportOutcome rows[] = {
        {start + "[]\nType=2\n", 1, PM_ERR_BAD_LINE, load_place, u"\n2, [], "},
        {start + "text\nType=2\n", 1, PM_ERR_BAD_LINE, load_place, u"\n2, text, "},
        {start + "Alias=\nType=2\n", 1, PM_ERR_BAD_LINE, load_place, u"\n2, Alias=, "},
        {start + "Alias=x\nType=2\n", 1, PM_ERR_BAD_LINE, load_place, u"\n2, Alias=x, "},
        {start + "[Plotter/User]\nPlotWidth=x\n[PlotDriver]\nType=2\n", 1, PM_ERR_BAD_LINE, load_place,
         u"\n3, PlotWidth=x, "},
        {start + "[Plotter/Port]\nDCB=x\n[PlotDriver]\nType=2\n", 1, PM_ERR_BAD_LINE, load_place,
         u"\n3, DCB=x, "},
        {start + "[Plotter/DriverCustom]\ndmFields=x\n[PlotDriver]\nType=2\n", 1, PM_ERR_NOT_HEXADECIMAL,
         load_place, u"\n3, dmFields=x, "},
        {"text\n[PlotDriver]\nType=2\n", 2, PM_ERR_UNKNOWN_VERSION, version_place, u""},
    };
    for (const ReportOutcome& row : rows) {
        expect_report(row, [&](PM_Object& object) {
            load_pc2(object, row.content);
            EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
        });
    }
    expect_report({"", 2, PM_ERR_BAD_LINE, version_place, u"\n"},
                  [](PM_Object& object) { load_pc2(object, ""); });
}

TEST(Pc2Reports, NameTheFile) {
    const TempFolder folder;
    const std::u16string name = folder.write("bad.pc2", std::string(version) + "text\n");
    const std::u16string other = folder.write("other.pc2", "text\n");
    const std::u16string empty = folder.write("empty.pc2", "");
    const auto load = [](const std::u16string& path) {
        return [&path](PM_Object& object) { object.load(path.c_str(), PM_Object::FILE_PC2, u"\\"); };
    };
    expect_report({"bad", 1, PM_ERR_BAD_LINE, load_place, u"\n1, text, " + name}, load(name));
    expect_report({"other", 2, PM_ERR_UNKNOWN_VERSION, version_place, other}, load(other));
    expect_report({"empty", 2, PM_ERR_BAD_LINE, version_place, u"\n" + empty}, load(empty));
}

// ---- Streams

TEST(Pc2Memory, EachFailingAllocationIsTold) {
    const int told = count_memory_exceptions([] {
        PM_Object target;
        load_pc2(target, version + std::string("[Plotter/User]\nPlotWidth=2.5\n[PlotDriver]\nType=2\n"));
    });
    EXPECT_GT(told, 200); // each key takes some
}

TEST(Pc2Streams, AMissingStreamIsSevere) {
    PM_Object object;
    PM_PC2File filer(nullptr);
    std::array<char16_t, 8> buffer{};
    expect_thrown<PM_Severe>([&] { filer.load(&object, u"\\", PM_Object::FILE_PC2); }, PM_ERR_NOT_OPENED,
                             version_place, u"");
    expect_thrown<PM_Severe>([&] { filer.getVersion(buffer.data(), buffer.size()); }, PM_ERR_NOT_OPENED,
                             version_place, u"");
    EXPECT_TRUE(dump(object).empty());
}

TEST(Pc2Streams, AFailureHasTheNumberOfItsCode) {
    struct Case {
        int code;
        std::uint32_t number;
    };
    for (const Case& each : {Case{ENOMEM, PM_ERR_NO_MEMORY_FOR_FILE}, Case{EACCES, PM_ERR_ACCESS_DENIED},
                             Case{EIO, PM_ERR_NOT_READ}, Case{0, PM_ERR_NOT_READ}}) {
        FailingBuffer at_start("", each.code);
        std::iostream first(&at_start);
        PM_Object object;
        expect_thrown<PM_Severe>([&] { object.load(first, PM_Object::FILE_PC2, u"\\"); }, each.number,
                                 version_place, u"");
        FailingBuffer later(filled_to_block(std::string(version) + "[PlotDriver]\nType=2\n"), each.code);
        std::iostream second(&later);
        expect_thrown<PM_Severe>([&] { object.load(second, PM_Object::FILE_PC2, u"\\"); }, each.number,
                                 load_place, u"");
        EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
    }
}

TEST(Pc2Streams, AMissingFileIsSevere) {
    PM_Object object;
    expect_thrown<PM_Severe>([&] { object.load(u"no/such/file.pc2", PM_Object::FILE_PC2, u"\\"); },
                             PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()", u"no/such/file.pc2");
}

TEST(Pc2Streams, AreNotWritten) {
    PM_Object object;
    std::stringstream stream = binary_stream("");
    expect_thrown<PM_Warning>([&] { object.save(stream, PM_Object::FILE_PC2, u"", u"\\"); },
                              PM_ERR_TYPE_REFUSED, u"PM_Object::save()", u"");
}

// ---- The sample

TEST(Pc2Sample, GivesItsTree) {
    RecordingHandler handler;
    PM_Object object(&handler);
    object.load(to_wide(std::string(PM_SAMPLES) + "/office.pc2", utf8_code_page).c_str(), PM_Object::FILE_PC2,
                u"\\office");
    EXPECT_TRUE(handler.reports.empty());
    EXPECT_EQ(reference_lines("office.pc2.tree"), dumped_lines(object));
}

TEST(Pc2Sample, GivesTheSameTreeFromAStreamAndWithOtherLineEnds) {
    std::string content = sample("office.pc2");
    content.erase(std::remove(content.begin(), content.end(), '\r'), content.end());
    PM_Object object;
    load_pc2(object, content, u"\\office\\");
    EXPECT_EQ(reference_lines("office.pc2.tree"), dumped_lines(object));
}

// A file that breaks off has at most one bad line, its last.
TEST(Pc2Sample, BreaksOffAnywhere) {
    const std::string content = sample("office.pc2");
    for (std::size_t length = 0; length <= content.size(); ++length) {
        RecordingHandler handler;
        PM_Object object(&handler);
        load_pc2(object, content.substr(0, length));
        ASSERT_LE(handler.reports.size(), 1U) << length;
        for (const std::uint32_t number : handler.numbers()) {
            ASSERT_TRUE(number == PM_ERR_BAD_LINE || number == PM_ERR_UNKNOWN_VERSION) << length;
        }
    }
}

} // namespace
} // namespace pm::test
