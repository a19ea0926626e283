#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <gmock/gmock.h>
#include <pm/error_number.h>
#include <pm/tree.h>
#include <pm_test_paths.h>
#include <sstream>
#include <stdexcept>
#include <string>

namespace {

using namespace std::string_literals;
using pm::test::expect_thrown;
using pm::test::TempFolder;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

constexpr const char* bad_lines = "PIAFILEVERSION_2.0,T_1.0\r\n"
                                  "width=0.25\n"
                                  "height=\n"
                                  "color=blue\n"
                                  "depth=0.5\n";

TEST(TreeLoad, GivesTheTreeAndNoReportsForAGoodFile) {
    const TempFolder folder;
    pm::Tree tree;
    tree.set("media\\copies", 2);
    pm::save(tree, (folder / "t.pia").string());
    const auto [loaded, reports] = pm::load((folder / "t.pia").string());
    EXPECT_EQ(2, loaded.get<int>("media\\copies"));
    EXPECT_THAT(reports, IsEmpty());
}

TEST(TreeLoad, GoesOnAndGivesEachReport) {
    std::stringstream stream(bad_lines);
    const auto [tree, reports] = pm::load(stream);
    ASSERT_EQ(2U, reports.size());
    EXPECT_EQ(PM_ERR_BAD_LINE, reports[0].number);
    EXPECT_EQ("PM_PIAFile::load()", reports[0].place);
    EXPECT_EQ("\n3, height=, ", reports[0].detail);
    EXPECT_EQ(PM_ERR_UNKNOWN_VALUE, reports[1].number);
    EXPECT_EQ(1, reports[1].kind);
    EXPECT_EQ(0.25, tree.get<double>("width"));
    EXPECT_EQ(0.5, tree.get<double>("depth"));
    EXPECT_EQ(reports.size(), tree.reports().size());
}

TEST(TreeLoad, AsksAtEachReport) {
    std::stringstream stream(bad_lines);
    std::vector<std::uint32_t> asked;
    const pm::OnReport ask = [&](const pm::Report& report) {
        asked.push_back(report.number);
        return pm::Answer::go_on;
    };
    const auto [tree, reports] = pm::load(stream, {.on_report = ask});
    EXPECT_THAT(asked, ElementsAre(PM_ERR_BAD_LINE, PM_ERR_UNKNOWN_VALUE));
}

TEST(TreeLoad, AnswerToStopCancelsAndKeepsWhatWasReadAndReported) {
    std::stringstream stream(bad_lines);
    pm::Tree tree;
    const auto stop = [](const pm::Report&) { return pm::Answer::stop; };
    expect_thrown<ZT_Canceled_Error>([&] { tree.load(stream, {.on_report = stop}); }, PM_ERR_BAD_LINE,
                                     u"PM_PIAFile::load()", u"\n3, height=, ");
    EXPECT_THAT(tree.reports(), ElementsAre(Field(&pm::Report::number, PM_ERR_BAD_LINE)));
    EXPECT_EQ(0.25, tree.get<double>("width"));
    EXPECT_FALSE(tree.contains("depth"));
}

TEST(TreeLoad, ExceptionOfTheFunctionAskedComesOutAndTheTreeStaysUsable) {
    std::stringstream stream(bad_lines);
    pm::Tree tree;
    const auto fail = [](const pm::Report&) -> pm::Answer { throw std::runtime_error("own"); };
    EXPECT_THROW(tree.load(stream, {.on_report = fail}), std::runtime_error);
    tree.set("width", 1.0);
    EXPECT_EQ(1.0, tree.get<double>("width"));
    std::stringstream again(bad_lines);
    EXPECT_EQ(2U, tree.load(again).size());
}

TEST(TreeLoad, EachLoadHasItsOwnReports) {
    pm::Tree tree;
    std::stringstream bad(bad_lines);
    std::stringstream good("PIAFILEVERSION_2.0,T_1.0\r\nx=1\n");
    EXPECT_EQ(2U, tree.load(bad).size());
    EXPECT_THAT(tree.load(good), IsEmpty());
    EXPECT_THAT(tree.reports(), IsEmpty());
}

TEST(TreeLoad, ReportsFollowATreeThatMoved) {
    pm::Tree tree;
    pm::Tree moved = std::move(tree);
    std::stringstream stream(bad_lines);
    EXPECT_EQ(2U, moved.load(stream).size());
}

TEST(TreeLoad, LoadsOfTheObjectGoOnAndAddTheirReports) {
    pm::Tree tree;
    std::stringstream stream(bad_lines);
    tree.object().load(stream, PM_Object::FILE_PIA, u"\\");
    EXPECT_EQ(2U, tree.reports().size());
    EXPECT_EQ(0.5, tree.get<double>("depth"));
}

TEST(TreeLoad, ReadsIntoTheBaseThatIsAsked) {
    std::stringstream stream("PIAFILEVERSION_2.0,T_1.0\r\nx=1\n");
    const auto [tree, reports] = pm::load(stream, {.base = "\\a\\\xC3\xA4"});
    EXPECT_EQ(1, tree.get<int>(u"a\\\u00E4\\x"));
}

TEST(TreeLoad, ReadsTheSectionThatIsAsked) {
    const auto [tree, reports] =
        pm::load(PM_SAMPLES "/sections.dpia", {.type = PM_Object::FILE_DPIA, .section = "Archive"});
    EXPECT_EQ("Reprints", tree.get<std::string>("name"));
}

TEST(TreeLoad, MissingSectionIsNumber83) {
    const auto action = [] {
        static_cast<void>(
            pm::load(PM_SAMPLES "/sections.dpia", {.type = PM_Object::FILE_DPIA, .section = "None"}));
    };
    const auto e = pm::test::thrown_by(action);
    ASSERT_TRUE(e.has_value());
    EXPECT_EQ(PM_ERR_NO_SUCH_SECTION, e->m_number);
}

TEST(TreeLoad, ReadsThePlotterThatIsAsked) {
    const std::string file = PM_SAMPLES "/three-plotters.cfg";
    const auto first = pm::load(file, {.type = PM_Object::FILE_CFG, .plotter = 1});
    const auto second = pm::load(file, {.type = PM_Object::FILE_CFG, .plotter = 2});
    EXPECT_EQ("DX4200-1", first.tree.get<std::string>("PlotDriver\\PlotterId"));
    EXPECT_EQ("DX4200-2", second.tree.get<std::string>("PlotDriver\\PlotterId"));
}

TEST(TreeLoad, PlotterOfAFileOfAnotherTypeIsRefused) {
    const auto e =
        pm::test::thrown_by([] { static_cast<void>(pm::load(PM_SAMPLES "/plotter.pia", {.plotter = 2})); });
    ASSERT_TRUE(e.has_value());
    EXPECT_EQ(PM_ERR_TYPE_REFUSED, e->m_number);
}

TEST(TreeLoad, MissingFileIsNumber63WithItsName) {
    expect_thrown<PM_Severe>([] { static_cast<void>(pm::load("/never/th\xC3\xA9re.pia")); },
                             PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()", u"/never/th\u00E9re.pia");
}

TEST(TreeLoad, FileNameThatHoldsAZeroIsNumber51) {
    expect_thrown<PM_Warning>([] { static_cast<void>(pm::load("a\0b"s)); }, PM_ERR_BAD_PATH, u"pm::Tree",
                              u"a");
}

TEST(TreeSave, FileNameBesideAsciiIsUtf8) {
    const TempFolder folder;
    pm::Tree tree;
    tree.set("x", 1);
    tree.save((folder / "\xC3\xA4\xE2\x82\xAC.pia").string());
    EXPECT_TRUE(std::filesystem::exists(folder / "\xC3\xA4\xE2\x82\xAC.pia"));
    EXPECT_EQ(1, pm::load((folder / "\xC3\xA4\xE2\x82\xAC.pia").u16string()).tree.get<int>("x"));
}

TEST(TreeSave, WritesTheTagAndTheSubtreeThatAreAsked) {
    pm::Tree tree;
    tree.set("a\\x", 1);
    tree.set("b\\y", 2);
    std::stringstream stream;
    pm::save(tree, stream, {.tag = "TAG_1.0", .subtree = "\\b"});
    EXPECT_EQ("PIAFILEVERSION_2.0,TAG_1.0\r\ny=2\n\0"s, stream.str());
}

TEST(TreeSave, WritesUtf8WhereAsked) {
    pm::Tree tree;
    tree.set("x", "\xE2\x82\xAC");
    std::stringstream utf8;
    std::stringstream narrow;
    tree.save(utf8, {.tag = "T", .utf8 = true});
    tree.save(narrow, {.tag = "T"});
    EXPECT_EQ("PIAFILEVERSION_2.0,T\r\nx=\"\xE2\x82\xAC\n\0"s, utf8.str());
    EXPECT_EQ("PIAFILEVERSION_2.0,T\r\nx=\"\x80\n\0"s, narrow.str());
}

TEST(TreeSave, PiaFileHoldsEveryTypeOfValue) {
    pm::Tree tree;
    tree.set("a\\n", 1);
    tree.set("a\\d", 1.0 / 3);
    tree.set("a\\t", "text");
    tree.set("a\\b", true);
    tree.set("a\\v", pm::Bytes{std::byte{1}, std::byte{255}});
    for (const char* tag : {"T_1.0", "T_1.0,compress"}) {
        std::stringstream stream;
        pm::save(tree, stream, {.tag = tag});
        const auto [loaded, reports] = pm::load(stream);
        EXPECT_THAT(reports, IsEmpty());
        for (const auto& [name, value] : tree.node("a")->properties()) {
            EXPECT_EQ(value, loaded.get<pm::Value>("a\\" + name)) << tag << name;
        }
    }
}

TEST(TreeSave, CompoundFileIsWrittenAndRead) {
    const TempFolder folder;
    pm::Tree tree;
    tree.set("a\\t", "\xE2\x82\xAC");
    pm::save(tree, (folder / "t.doc").string(), {.type = PM_Object::FILE_DOC, .tag = "T_1.0"});
    const auto [loaded, reports] = pm::load((folder / "t.doc").string(), {.type = PM_Object::FILE_DOC});
    EXPECT_EQ("\xE2\x82\xAC", loaded.get<std::string>("a\\t"));
}

TEST(TreeSave, TypeThatIsNotWrittenIsNumber67) {
    const pm::Tree tree;
    std::stringstream stream;
    expect_thrown<PM_Warning>([&] { tree.save(stream, {.type = PM_Object::FILE_PCP}); }, PM_ERR_TYPE_REFUSED,
                              u"PM_Object::save()", u"");
}

TEST(ErrorText, IsTheTextOfTheNumber) {
    EXPECT_EQ("The line isn't valid", pm::error_text(PM_ERR_BAD_LINE));
    EXPECT_EQ("", pm::error_text(49));
}

} // namespace
