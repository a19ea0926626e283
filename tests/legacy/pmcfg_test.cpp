#include "legacy/legacy_support.h"
#include "legacy/pmpc2.h"
#include "support/allocation_failures.h"
#include <pm/error_number.h>
#include <pm_test_paths.h>

namespace pm::test {
namespace {

constexpr const char16_t* load_place = u"PM_PC2File::load()";
constexpr const char16_t* section_place = u"PM_CFGFile::load_section()";

class Cfg : public testing::Test {
protected:
    void load(const std::string& content, int plotter, const char16_t* base = u"\\") {
        load_into(object, content, plotter, base);
    }

    static void load_into(PM_Object& target, const std::string& content, int plotter,
                          const char16_t* base = u"\\") {
        const TempFolder folder;
        target.load_cfg_section(folder.write("site.cfg", content).c_str(), PM_Object::FILE_CFG, base,
                                plotter);
    }
    std::vector<std::uint32_t> numbers() const { return handler.numbers(); }

    RecordingHandler handler;
    PM_Object object{&handler};
};

std::vector<std::string> default_tree() {
    PM_Object object;
    load_text(object, PM_Object::FILE_PC2, "PC2Version 2.0\n");
    return dumped_lines(object);
}

TEST_F(Cfg, AnEmptyFileGivesAllDefaults) {
    load("", 1);
    EXPECT_EQ(default_tree(), dumped_lines(object));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Cfg, OnlyTypeCfgIsAccepted) {
    for (const PM_Object::FileType type : {PM_Object::FILE_PIA, PM_Object::FILE_PCP, PM_Object::FILE_PC2,
                                           PM_Object::FILE_DOC, PM_Object::FILE_PDT, PM_Object::FILE_DPIA}) {
        expect_thrown<PM_Warning>([&] { object.load_cfg_section(u"a.cfg", type, u"\\", 1); },
                                  PM_ERR_TYPE_REFUSED, u"PM_Object::load()", u"");
    }
}

TEST_F(Cfg, AMissingFileIsSevere) {
    expect_thrown<PM_Severe>([&] { object.load_cfg_section(u"no/such.cfg", PM_Object::FILE_CFG, u"\\", 1); },
                             PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()", u"no/such.cfg");
}

TEST_F(Cfg, PlainSectionsApplyToEachPlotter) {
    load("[PlotDriver]\nType=2\n[Plotter/Port]\nLink=5\n", 7);
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_EQ(5, long_at(object, u"\\Plotter/Port\\Link"));
}

TEST_F(Cfg, ANumberedSectionAppliesToItsPlotter) {
    const std::string content = "[Plotter#3/Device]\nPens=8\n[PlotDriver#3]\nType=2\n";
    load(content, 3, u"\\three");
    load(content, 4, u"\\four");
    EXPECT_EQ(8, long_at(object, u"\\three\\Plotter/Device\\Pens"));
    EXPECT_EQ(2, long_at(object, u"\\three\\PlotDriver\\Type"));
    EXPECT_EQ(0, long_at(object, u"\\four\\Plotter/Device\\Pens"));
    EXPECT_EQ(0, long_at(object, u"\\four\\PlotDriver\\Type"));
    EXPECT_TRUE(handler.reports.empty());
}

// The section "Plotter" has no keys.
TEST_F(Cfg, ANumberWithoutATailLeavesTheHead) {
    load("[Plotter#3]\nPens=8\nType=2\n", 3);
    EXPECT_EQ(default_tree(), dumped_lines(object));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Cfg, ANumberThatStandsNowhereLeavesTheDefaults) {
    load("[Plotter#1/Device]\nPens=8\n[Plotter#2/Device]\nPens=x\n", 9);
    EXPECT_EQ(default_tree(), dumped_lines(object));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Cfg, TheNumberEndsAtTheFirstUnitThatIsNoDigit) {
    struct Case {
        const char* section;
        int plotter;
    };
    for (const Case& each :
         {Case{"Plotter#3x/Device", 3}, Case{"Plotter# 3/Device", 3}, Case{"Plotter#03/Device", 3},
          Case{"Plotter#-3/Device", -3}, Case{"Plotter#/Device", 0}, Case{"Plotter#x/Device", 0},
          Case{"Plotter#3#4/Device", 3}}) {
        PM_Object target;
        load_into(target, std::string("[") + each.section + "]\nPens=8\n", each.plotter);
        EXPECT_EQ(8, long_at(target, u"\\Plotter/Device\\Pens")) << each.section;
    }
}

// The tail begins at the first slash of the name, also when that stands in front of the number.
TEST_F(Cfg, TheTailBeginsAtTheFirstSlash) {
    load("[Plotter/Device#3/PenTable]\nPens=8\n[Plotter/Device#3]\nPens=9\n", 3);
    EXPECT_EQ(default_tree(), dumped_lines(object));
    load("[Plotter#3/Device/PenTable]\nPens=8\n", 3);
    EXPECT_EQ(8, long_at(object, u"\\Plotter/Device/PenTable\\Pens"));
}

TEST_F(Cfg, AKeyInFrontOfAllSectionsIsIgnored) {
    load("Type=2\nType=\n[PlotDriver]\nAlias=1\n", 1);
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Alias"));
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Cfg, ALineWithoutAnEqualsSignIsBadInAnySection) {
    load("[Plotter#2/Device]\nPens=x\nPens=\ntext\n", 1);
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
}

TEST_F(Cfg, AVersionLineIsABadLine) {
    load("PC2Version 2.0\n[PlotDriver]\nType=2\n", 1);
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Cfg, AnEmptySectionNameLeavesTheSectionBefore) {
    load("[PlotDriver]\n[]\nType=2\n", 1);
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Cfg, FieldsAreDecimalLikeAllNumbers) {
    load("[Plotter/DriverCustom]\ndmFields=10\n", 1);
    EXPECT_EQ(10, long_at(object, u"\\Plotter/DriverCustom\\dmFields"));
    load("[Plotter/DriverCustom]\ndmFields=0xff\n", 1);
    EXPECT_EQ(255, long_at(object, u"\\Plotter/DriverCustom\\dmFields"));
    load("[Plotter/DriverCustom]\ndmFields=ff\n", 1);
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
}

TEST_F(Cfg, EachKeyTakesAValueOfItsPlotter) {
    for (const Pc2Key& key : pc2_keys().first(139)) {
        const std::string full = to_narrow(key.key);
        SCOPED_TRACE(full);
        std::string section = full.substr(0, full.find('\\'));
        std::string name = full.substr(full.find('\\') + 1) + (key.indexed() ? "1" : "");
        std::u16string path = u"\\" + to_wide(full) + (key.indexed() ? u"1" : u"");
        if (key.type == PROP_STRING) std::replace(path.begin(), path.end(), u'-', u'_');
        section.insert(std::min(section.find('/'), section.size()), "#12");
        const bool raw = key.type == PROP_VOID;
        PM_Object target(&handler);
        std::string content = "[";
        content.append(section).append("]\n").append(name).append("=");
        load_into(target, content.append(raw ? "1%@M-#(P,  !  @ 0YX" : "17"), 12);
        if (key.type == PROP_LONG) {
            EXPECT_EQ(17, long_at(target, path.c_str()));
        } else if (key.type == PROP_DOUBLE) {
            EXPECT_EQ(17.0, double_at(target, path.c_str()));
        } else if (key.type == PROP_STRING) {
            EXPECT_EQ(u"17", string_at(target, path.c_str()));
        } else {
            EXPECT_EQ(12U, target.getPropertySize(path.c_str()));
        }
    }
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Cfg, LineEndsMayHaveACarriageReturnAndTheLastMayBeMissing) {
    load("[PlotDriver#1]\r\nType=2\r\nAlias=3", 1);
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_EQ(3, long_at(object, u"\\PlotDriver\\Alias"));
    EXPECT_TRUE(handler.reports.empty());
}

TEST_F(Cfg, ALineOf1024BytesIsABadLine) {
    load("[PlotDriver]\nMenuName=" + std::string(1024 - 9, 'x') + "\nType=1\n", 1);
    EXPECT_EQ((std::vector<std::uint32_t>{PM_ERR_BAD_LINE}), numbers());
    EXPECT_EQ(u"", string_at(object, u"\\PlotDriver\\MenuName"));
    EXPECT_EQ(1, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Cfg, AnEmptyOrNullBaseIsTheRoot) {
    load("[PlotDriver]\nType=2\n", 1, u"");
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
    load("[PlotDriver]\nType=3\n", 1, nullptr);
    EXPECT_EQ(3, long_at(object, u"\\PlotDriver\\Type"));
}

TEST_F(Cfg, ReportsKeepThePlaceOfTheOlderFormat) {
    const TempFolder folder;
    const auto expect = [&](const std::string& line) {
        const std::u16string path = folder.write("a.cfg", "[PlotDriver]\n" + line + "\n");
        expect_report(
            {line, 1, PM_ERR_BAD_LINE, load_place, u"\n2, " + to_wide(line) + u", " + path},
            [&](PM_Object& target) { target.load_cfg_section(path.c_str(), PM_Object::FILE_CFG, u"\\", 1); });
    };
    for (const char* line : {"[]", "text", "Type=", "Type=x"}) {
        expect(line);
    }
}

TEST(CfgMemory, EachFailingAllocationIsTold) {
    const TempFolder folder;
    const std::u16string name = folder.write("a.cfg", "[Plotter#1/User]\nPlotWidth=2.5\n");
    const int told = count_memory_exceptions([&] {
        PM_Object target;
        target.load_cfg_section(name.c_str(), PM_Object::FILE_CFG, u"\\", 1);
    });
    EXPECT_GT(told, 200); // each key takes some
}

// ---- The class itself: what PM_Object doesn't reach

TEST(CfgFile, AMissingStreamIsNoticedBehindTheDefaults) {
    PM_Object object;
    PM_CFGFile filer(nullptr);
    expect_thrown<PM_Severe>([&] { filer.load_section(&object, u"\\", 1); }, PM_ERR_NOT_OPENED, section_place,
                             u"");
    EXPECT_EQ(default_tree(), dumped_lines(object));
}

TEST(CfgFile, ReadsOnFromWhereItsStreamStands) {
    std::stringstream stream = binary_stream("[PlotDriver]\nType=1\n[PlotDriver]\nAlias=2\n");
    stream.seekg(20);
    PM_Object object;
    PM_CFGFile filer(nullptr);
    filer.attach(&stream);
    filer.load_section(&object, u"\\", 1);
    EXPECT_EQ(0, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Alias"));
}

TEST(CfgFile, StopsAtAStreamThatHasEnded) {
    std::stringstream stream = binary_stream("[]\n");
    stream.setstate(std::ios::eofbit);
    PM_Object object;
    PM_CFGFile filer(nullptr);
    filer.attach(&stream);
    filer.load_section(&object, u"\\", 1);
    EXPECT_EQ(default_tree(), dumped_lines(object));
}

TEST(CfgFile, AStreamFailureHasTheNumberOfItsCode) {
    struct Case {
        int code;
        std::uint32_t number;
    };
    for (const Case& each : {Case{ENOMEM, PM_ERR_NO_MEMORY_FOR_FILE}, Case{EACCES, PM_ERR_ACCESS_DENIED},
                             Case{EIO, PM_ERR_NOT_READ}, Case{0, PM_ERR_NOT_READ}}) {
        FailingBuffer buffer(filled_to_block("[PlotDriver]\nType=2\n"), each.code);
        std::iostream stream(&buffer);
        PM_Object object;
        PM_CFGFile filer(nullptr);
        filer.attach(&stream);
        expect_thrown<PM_Severe>([&] { filer.load_section(&object, u"\\", 1); }, each.number, section_place,
                                 u"");
        EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
    }
}

TEST(CfgFile, LoadsAndTellsTheVersionLikeTheOlderFormat) {
    std::stringstream stream = binary_stream("PC2Version 2.0\n[PlotDriver#1]\nType=1\n[PlotDriver]\nType=2\n"
                                             "[Plotter/DriverCustom]\ndmFields=ff\n");
    PM_Object object;
    PM_CFGFile filer(nullptr);
    filer.attach(&stream);
    std::array<char16_t, 32> version{};
    filer.getVersion(version.data(), version.size());
    EXPECT_EQ(std::u16string(u"PC2Version 2.0"), version.data());
    filer.load(&object, u"\\", PM_Object::FILE_CFG);
    EXPECT_EQ(2, long_at(object, u"\\PlotDriver\\Type"));
    EXPECT_EQ(255, long_at(object, u"\\Plotter/DriverCustom\\dmFields"));
}

// ---- The sample

std::vector<std::string> changed_from_defaults(const PM_Object& object) {
    const std::vector<std::string> defaults = default_tree();
    const std::vector<std::string> all = dumped_lines(object);
    EXPECT_EQ(defaults.size(), all.size());
    std::vector<std::string> changed;
    for (std::size_t index = 0; index < std::min(defaults.size(), all.size()); ++index) {
        if (all[index] != defaults[index]) changed.push_back(all[index]);
    }
    return changed;
}

TEST(CfgSample, GivesTheTreeOfEachPlotter) {
    for (const int plotter : {0, 1, 2, 3}) {
        RecordingHandler handler;
        PM_Object object(&handler);
        object.load_cfg_section(
            to_wide(std::string(PM_SAMPLES) + "/three-plotters.cfg", utf8_code_page).c_str(),
            PM_Object::FILE_CFG, u"\\", plotter);
        EXPECT_TRUE(handler.reports.empty());
        const std::string name = "three-plotters.cfg." + std::to_string(plotter);
        EXPECT_EQ(reference_lines(name), changed_from_defaults(object)) << plotter;
    }
}

TEST(CfgSample, BreaksOffAnywhere) {
    const std::string content = sample("three-plotters.cfg");
    for (std::size_t length = 0; length <= content.size(); ++length) {
        std::stringstream stream = binary_stream(content.substr(0, length));
        RecordingHandler handler;
        PM_Object object;
        PM_CFGFile filer(&handler);
        filer.attach(&stream);
        filer.load_section(&object, u"\\", 2);
        ASSERT_LE(handler.reports.size(), 1U) << length;
        for (const std::uint32_t number : handler.numbers()) {
            ASSERT_EQ(PM_ERR_BAD_LINE, number) << length;
        }
    }
}

} // namespace
} // namespace pm::test
