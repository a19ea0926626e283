#include "inspect/inspect_support.h"
#include "support/exceptions.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/tree.h>
#include <sstream>

namespace pm::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::u16string> names_of(const std::vector<DpiaSection>& sections) {
    std::vector<std::u16string> names;
    for (const DpiaSection& section : sections) {
        names.push_back(section.name);
    }
    return names;
}

std::vector<DpiaSection> sections_in(const std::string& content) {
    std::stringstream stream(content);
    return dpia_sections(stream);
}

// "number name" of each plotter.
std::vector<std::string> plotters_in(const std::string& content) {
    std::stringstream stream(content);
    std::vector<std::string> texts;
    for (const CfgPlotter& plotter : cfg_plotters(stream)) {
        texts.push_back(std::to_string(plotter.number) + ' ' + to_utf8(plotter.name));
    }
    return texts;
}

TEST(DpiaSections, SampleIsListedInItsOrder) {
    const std::vector<DpiaSection> sections = dpia_sections(sample_path("sections.dpia").u16string());
    ASSERT_EQ(3U, sections.size());
    EXPECT_THAT(names_of(sections), ElementsAre(u"Office", u"Workshop", u"Archive"));
    EXPECT_EQ(u"Drawing office, third floor", sections[0].info);
    EXPECT_EQ(u"Plotter beside the paint shop", sections[1].info);
    EXPECT_EQ(u"", sections[2].info);
}

TEST(DpiaSections, StreamMayThrowByItself) {
    std::stringstream stream(sample("sections.dpia"));
    stream.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
    EXPECT_THAT(names_of(dpia_sections(stream)), ElementsAre(u"Office", u"Workshop", u"Archive"));
}

TEST(DpiaSections, PlaceOfASectionCountsFromTheStartOfTheFile) {
    const std::string content = sample("sections.dpia");
    const std::vector<DpiaSection> sections = sections_in(content);
    ASSERT_EQ(3U, sections.size());
    for (const DpiaSection& section : sections) {
        EXPECT_EQ("PIAFILEVERSION_2.0,DPIA_SECTION_1.0,compress\r\n", content.substr(section.offset, 46));
    }
    EXPECT_EQ(0x85U, sections[0].offset);
    EXPECT_EQ(1364U, sections[0].size);
    EXPECT_EQ(content.size(), sections[2].offset + sections[2].size);
}

TEST(DpiaSections, NamesAreThoseThatALoadGives) {
    const std::u16string file = sample_path("sections.dpia").u16string();
    PM_Object object;
    object.load(file.c_str(), PM_Object::FILE_DPIA, u"\\");
    int index = 0;
    for (const DpiaSection& section : dpia_sections(file)) {
        char16_t name[64] = {};
        ASSERT_TRUE(object.GetProperty(u"DPIA_directory\\*\\descriptor", name, sizeof name, index++));
        EXPECT_EQ(section.name, name);
        PM_Object loaded;
        loaded.load_section(file.c_str(), PM_Object::FILE_DPIA, u"\\", section.name.c_str());
    }
    EXPECT_EQ(3, index);
}

TEST(DpiaSections, FileOfVersion1HasNoInfoTexts) {
    const std::vector<DpiaSection> sections =
        sections_in(word(0x00010000) + word(1) + word(1) + "A" + word(7) + word(9));
    ASSERT_EQ(1U, sections.size());
    EXPECT_EQ(u"A", sections[0].name);
    EXPECT_EQ(std::nullopt, sections[0].info);
    EXPECT_EQ(8U + 5 + 8 + 7, sections[0].offset);
    EXPECT_EQ(9U, sections[0].size);
}

TEST(DpiaSections, FileOfNoSectionsGivesNone) {
    EXPECT_THAT(sections_in(word(0x00020000) + word(0)), IsEmpty());
}

TEST(DpiaSections, NamesMayBeEqualOrOutsideAscii) {
    const std::string file =
        word(0x00020000) + word(3) + dpia_entry("A", "") + dpia_entry("A", "") + dpia_entry("\xC3\x84", "");
    EXPECT_THAT(names_of(sections_in(file)), ElementsAre(u"A", u"A", u"\u00C4"));
}

TEST(DpiaSections, LargestOffsetDoesNotWrap) {
    const auto sections =
        sections_in(word(0x00010000) + word(1) + word(0) + word(0xFFFFFFFF) + word(0xFFFFFFFF));
    ASSERT_EQ(1U, sections.size());
    EXPECT_EQ(0xFFFFFFFFULL + 20, sections[0].offset);
}

TEST(DpiaSections, StreamIsReadFromItsStartAndStaysOpen) {
    std::stringstream stream(sample("sections.dpia"));
    stream.seekg(100);
    EXPECT_EQ(3U, dpia_sections(stream).size());
    EXPECT_TRUE(stream.good());
}

TEST(DpiaSections, EveryPrefixGivesTheWholeDirectoryOrNumber82) {
    const std::string content = sample("sections.dpia");
    for (std::size_t kept = 0; kept <= content.size(); ++kept) {
        std::stringstream stream(content.substr(0, kept));
        if (kept >= 0x85) {
            EXPECT_EQ(3U, dpia_sections(stream).size()) << kept;
            continue;
        }
        const std::optional<ZT_Exception> failure = thrown_by([&] { (void)dpia_sections(stream); });
        ASSERT_TRUE(failure.has_value()) << kept;
        EXPECT_EQ(PM_ERR_STREAM_FAILED, failure->m_number) << kept;
    }
}

TEST(DpiaSections, UnknownVersionIsToldAsByALoadWithoutAHandler) {
    const TempFolder folder;
    const std::u16string file = folder.write("a", word(0x00030000) + word(0));
    expect_thrown<ZT_Exception>([&] { (void)dpia_sections(file); }, PM_ERR_UNKNOWN_VERSION,
                                u"PM_DPIAFile::getVersion()", file);
}

TEST(DpiaSections, MissingFileIsToldAsByALoad) {
    const TempFolder folder;
    const std::u16string file = folder.wide("none");
    expect_thrown<PM_Severe>([&] { (void)dpia_sections(file); }, PM_ERR_NO_SUCH_FILE, u"PM_DPIAFile::load()",
                             file);
}

TEST(DpiaSections, NameThatHoldsAZeroIsRefused) {
    const std::u16string name = sample_path("sections.dpia").u16string();
    expect_thrown<PM_Warning>([&] { (void)dpia_sections(name + u'\0' + u"b"); }, PM_ERR_BAD_PATH,
                              u"pm::dpia_sections()", name);
}

TEST(CfgPlotters, NameThatHoldsAZeroIsRefused) {
    const std::u16string name = sample_path("three-plotters.cfg").u16string();
    expect_thrown<PM_Warning>([&] { (void)cfg_plotters(name + u'\0' + u"b"); }, PM_ERR_BAD_PATH,
                              u"pm::cfg_plotters()", name);
}

TEST(CfgPlotters, SampleIsListedWithItsNames) {
    EXPECT_THAT(plotters_in(sample("three-plotters.cfg")),
                ElementsAre("1 DX-4200, drawing office", "2 DX-4200, workshop", "3 DX-4200, reception"));
}

TEST(CfgPlotters, StreamMayThrowByItself) {
    std::stringstream stream("[PlotDriver#3]\nType=2\n");
    stream.exceptions(std::ios::eofbit | std::ios::failbit | std::ios::badbit);
    EXPECT_EQ(3, cfg_plotters(stream).at(0).number);
}

TEST(CfgPlotters, NamesAreThoseThatALoadGives) {
    const std::u16string file = sample_path("three-plotters.cfg").u16string();
    for (const CfgPlotter& plotter : cfg_plotters(file)) {
        PM_Object object;
        object.load_cfg_section(file.c_str(), PM_Object::FILE_CFG, u"\\", plotter.number);
        EXPECT_EQ(to_utf8(plotter.name),
                  find_property(object, "Plotter/Device\\MenuName")->as<std::string>());
    }
}

TEST(CfgPlotters, NumbersRiseAndStandOnceEach) {
    EXPECT_THAT(plotters_in("[A#7]\n[B#-1]\n[C#7/x]\n[D#3]\n"), ElementsAre("-1 ", "3 ", "7 "));
}

TEST(CfgPlotters, NumberIsWhatTheReaderTakesItFor) {
    EXPECT_THAT(plotters_in("[A#x]\n"), ElementsAre("0 "));
    EXPECT_THAT(plotters_in("[A# +5x]\n"), ElementsAre("5 "));
    EXPECT_THAT(plotters_in("[A#99999999999]\n"), ElementsAre("2147483647 "));
    EXPECT_THAT(plotters_in("[A#1#2]\n"), ElementsAre("1 "));
    PM_Object object;
    const TempFolder folder;
    const std::u16string file = folder.write("a", "[PlotDriver#x]\nType=4\n");
    object.load_cfg_section(file.c_str(), PM_Object::FILE_CFG, u"\\", 0);
    EXPECT_EQ(4, find_property(object, "PlotDriver\\Type")->as<int>());
}

TEST(CfgPlotters, LineWithAnEqualsSignIsNoSection) {
    EXPECT_THAT(plotters_in("[A#1]=2\n; [A#2]\nx#3\n"), IsEmpty());
}

TEST(CfgPlotters, SectionLineMayBeIndentedOrLackItsEnd) {
    EXPECT_THAT(plotters_in(" \t[A#4\r\n"), ElementsAre("4 "));
}

TEST(CfgPlotters, NameIsTheLastOfItsOwnSection) {
    EXPECT_THAT(plotters_in("[Plotter/Device]\nMenuName=\"all\"\n"
                            "[Plotter#1/Device]\nMenuName=\"a\"\nmenuname==b c\nMenuName=\n"
                            "[Plotter#2/Port]\nMenuName=\"d\"\n"
                            "[PLOTTER#3/DEVICE]\nMENUNAME=\"e\"f\"\n"),
                ElementsAre("1 b c", "2 ", "3 e\"f"));
}

TEST(CfgPlotters, SectionWithoutANameChangesNothing) {
    EXPECT_THAT(plotters_in("[Plotter#1/Device]\n[]\nMenuName=a\n"), ElementsAre("1 a"));
}

TEST(CfgPlotters, BadAndLongLinesArePassedOver) {
    EXPECT_THAT(plotters_in("nothing\n[A#1]\n[B#2" + std::string(1100, ' ') + "]\n[C#3]\n"),
                ElementsAre("1 ", "3 "));
}

TEST(CfgPlotters, NameIsInTheSystemsCodePage) {
    EXPECT_THAT(plotters_in("[Plotter#1/Device]\nMenuName=Gro\xDF\n"), ElementsAre("1 Gro\xC3\x9F"));
}

TEST(CfgPlotters, EveryPrefixListsTheNumbersThatItHolds) {
    const std::string content = sample("three-plotters.cfg");
    std::size_t before = 0;
    for (std::size_t kept = 0; kept <= content.size(); ++kept) {
        const std::size_t count = plotters_in(content.substr(0, kept)).size();
        // A number counts as soon as its "#" is there, so that one may change while it is read.
        EXPECT_GE(count, before) << kept;
        EXPECT_LE(count, before + 1) << kept;
        before = content.substr(0, kept).ends_with('#') ? count - 1 : count;
    }
    EXPECT_EQ(3U, before);
}

TEST(CfgPlotters, StreamIsReadFromItsStart) {
    std::stringstream stream("[A#1]\n[A#2]\n");
    stream.seekg(6);
    EXPECT_EQ(2U, cfg_plotters(stream).size());
}

TEST(CfgPlotters, MissingFileIsToldAsByALoad) {
    const TempFolder folder;
    const std::u16string file = folder.wide("none");
    expect_thrown<PM_Severe>([&] { (void)cfg_plotters(file); }, PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()",
                             file);
}

} // namespace
} // namespace pm::test
