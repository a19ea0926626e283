#include "c/c_support.h"

#include "pm_test_paths.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <gmock/gmock.h>

namespace {

using namespace pm::test;
using testing::ElementsAre;

pm9_load_options loading(std::int32_t type) {
    pm9_load_options options{};
    options.size = sizeof options;
    options.type = type;
    return options;
}

pm9_save_options saving(std::int32_t type) {
    pm9_save_options options{};
    options.size = sizeof options;
    options.type = type;
    return options;
}

std::string sample(const std::string& name) {
    return std::string(PM_SAMPLES) + '/' + name;
}

std::string saved(const pm9_tree* tree, const pm9_save_options* options) {
    char* data = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(pm9_tree_save_memory(tree, options, &data, &length, nullptr), PM9_OK);
    return taken(data, length);
}

const std::string two_bad_values = "PIAFILEVERSION_2.0\na=x\nb=y\nc=1\n";

pm9_status load(pm9_tree* tree, const std::string& name) {
    return pm9_tree_load(tree, name.data(), name.size(), nullptr, nullptr);
}

pm9_status read(pm9_tree* tree, const std::string& name) {
    return pm9_tree_read(tree, name.data(), name.size(), nullptr, nullptr);
}

std::size_t report_count(const pm9_tree* tree) {
    pm9_report* reports = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(pm9_tree_reports(tree, sizeof *reports, &reports, &count, nullptr), PM9_OK);
    pm9_free(reports);
    return count;
}

std::int32_t source_type(const pm9_tree* tree) {
    pm9_source source{};
    source.size = sizeof source;
    EXPECT_EQ(pm9_tree_source(tree, &source, nullptr), PM9_OK);
    pm9_free(source.tag);
    return source.type;
}

TEST(CFile, IsSavedInMemoryAndLoadedAgain) {
    const CTree tree = small_tree();
    const std::string plain = saved(tree.get(), nullptr);
    EXPECT_EQ(plain, std::string_view("PIAFILEVERSION_2.0,\r\nmedia{\n copies=2\n}\n\0", 41));
    const CTree again = c_tree();
    ASSERT_EQ(pm9_tree_load_memory(again.get(), plain.data(), plain.size(), nullptr, nullptr), PM9_OK);
    EXPECT_EQ(listed(again.get()), listed(tree.get()));
}

TEST(CFile, IsSavedAsItsOptionsTell) {
    const CTree tree = small_tree();
    ASSERT_EQ(pm9_tree_set_string(tree.get(), "\\media\\n", PM9_Z, "\xD0\x96", PM9_Z, nullptr), PM9_OK);
    pm9_save_options options = saving(PM9_FILE_PIA);
    const std::string header = "PIAFILEVERSION_2.0,TAG_1.0\r\n";
    options.tag = "TAG_1.0 not this";
    options.tag_length = 7;
    options.subtree = "\\media";
    options.subtree_length = PM9_Z;
    EXPECT_EQ(saved(tree.get(), &options), header + "copies=2\nn=\"?\n" + '\0');
    options.utf8 = 1;
    EXPECT_EQ(saved(tree.get(), &options), header + "copies=2\nn=\"\xD0\x96\n" + '\0');
}

TEST(CFile, IsLoadedIntoANode) {
    const CTree tree = c_tree();
    const std::string file = "PIAFILEVERSION_2.0\na=1\n";
    pm9_load_options options = loading(PM9_FILE_PIA);
    options.base = "\\here and more";
    options.base_length = 5;
    ASSERT_EQ(pm9_tree_load_memory(tree.get(), file.data(), file.size(), &options, nullptr), PM9_OK);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " here", "  a=1"));
}

TEST(CFile, OfASectionHoldsThatAlone) {
    const CTree tree = c_tree();
    pm9_load_options options = loading(PM9_FILE_ANY);
    options.section = "Archive";
    options.section_length = PM9_Z;
    ASSERT_EQ(pm9_tree_load(tree.get(), sample("sections.dpia").c_str(), PM9_Z, &options, nullptr), PM9_OK);
    EXPECT_GT(listed(tree.get()).size(), 1U);
    options.section = "No";
    EXPECT_EQ(pm9_tree_load(tree.get(), sample("sections.dpia").c_str(), PM9_Z, &options, nullptr),
              PM9_ERR_NO_SUCH_SECTION);
}

TEST(CFile, OfSeveralPlottersIsLoadedByNumber) {
    std::vector<std::vector<std::string>> trees;
    for (int plotter = 1; plotter <= 2; ++plotter) {
        const CTree tree = c_tree();
        pm9_load_options options = loading(PM9_FILE_CFG);
        options.plotter = plotter;
        EXPECT_EQ(pm9_tree_load(tree.get(), sample("three-plotters.cfg").c_str(), PM9_Z, &options, nullptr),
                  PM9_OK);
        trees.push_back(listed(tree.get()));
    }
    EXPECT_NE(trees[0], trees[1]);
}

TEST(CFile, OfADeviceDescriptionIsAFolderOrItsStringFile) {
    const CTree by_folder = c_tree();
    const CTree by_file = c_tree();
    const CTree by_type = c_tree();
    const pm9_load_options pdt = loading(PM9_FILE_PDT);
    ASSERT_EQ(pm9_tree_load(by_folder.get(), sample("dx4200").c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    ASSERT_EQ(pm9_tree_load(by_file.get(), sample("dx4200/strings.pdt").c_str(), PM9_Z, nullptr, nullptr),
              PM9_OK);
    ASSERT_EQ(pm9_tree_load(by_type.get(), sample("dx4200").c_str(), PM9_Z, &pdt, nullptr), PM9_OK);
    EXPECT_EQ(listed(by_folder.get()), listed(by_file.get()));
    EXPECT_EQ(listed(by_type.get()), listed(by_file.get()));
}

TEST(CFile, IsRefusedWhereItsTypeIs) {
    const CTree tree = small_tree();
    pm9_error error = c_error();
    const pm9_save_options pc2 = saving(PM9_FILE_PC2);
    const pm9_save_options doc = saving(PM9_FILE_DOC);
    char* data = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(pm9_tree_save(tree.get(), "a", PM9_Z, &pc2, &error), PM9_ERR_TYPE_REFUSED);
    EXPECT_EQ(pm9_tree_save_memory(tree.get(), &doc, &data, &length, &error), PM9_ERR_TYPE_REFUSED);
    pm9_load_options options = loading(PM9_FILE_PDT);
    EXPECT_EQ(pm9_tree_load_memory(tree.get(), "", 0, &options, &error), PM9_ERR_TYPE_REFUSED);
    options = loading(PM9_FILE_CFG);
    options.plotter = 1;
    EXPECT_EQ(pm9_tree_load_memory(tree.get(), "", 0, &options, &error), PM9_ERR_TYPE_REFUSED);
    options = loading(PM9_FILE_DPIA);
    options.section = "A";
    EXPECT_EQ(pm9_tree_load_memory(tree.get(), "", 0, &options, &error), PM9_ERR_TYPE_REFUSED);
}

TEST(CFile, OfNoKnownKindIsNotOpened) {
    const TempFolder folder;
    folder.write("a", "nothing of any format");
    const std::string name = (folder / "a").string();
    const CTree tree = c_tree();
    pm9_error error = c_error();
    EXPECT_EQ(pm9_tree_load(tree.get(), name.c_str(), PM9_Z, nullptr, &error), PM9_ERR_NOT_OPENED);
    EXPECT_EQ(std::string(error.detail), name);
    EXPECT_EQ(pm9_tree_load_memory(tree.get(), "x", 1, nullptr, &error), PM9_ERR_NOT_OPENED);
    EXPECT_EQ(pm9_tree_load(tree.get(), (name + "b").c_str(), PM9_Z, nullptr, &error), PM9_ERR_NO_SUCH_FILE);
    pm9_identity identity{};
    identity.size = sizeof identity;
    ASSERT_EQ(pm9_identify(name.c_str(), PM9_Z, &identity, nullptr), PM9_OK);
    EXPECT_EQ(identity.type, PM9_FILE_ANY);
}

TEST(CFile, NameIsOfAnyScript) {
    const TempFolder folder;
    const std::u8string bytes = (folder.path() / u8"\u00E4 \u4E00\u0416\U0001F600.pia").u8string();
    const std::string name(bytes.begin(), bytes.end());
    const CTree tree = small_tree();
    ASSERT_EQ(pm9_tree_save(tree.get(), name.data(), name.size(), nullptr, nullptr), PM9_OK);
    EXPECT_TRUE(std::filesystem::exists(folder.path() / bytes));
    const CTree again = c_tree();
    ASSERT_EQ(pm9_tree_load(again.get(), name.data(), name.size(), nullptr, nullptr), PM9_OK);
    EXPECT_EQ(listed(again.get()), listed(tree.get()));
}

TEST(CFile, TellsWhatItIs) {
    pm9_identity identity{};
    identity.size = sizeof identity;
    ASSERT_EQ(pm9_identify(sample("sections.dpia").c_str(), PM9_Z, &identity, nullptr), PM9_OK);
    EXPECT_EQ(identity.type, PM9_FILE_DPIA);
    EXPECT_EQ(identity.version, 2);
    EXPECT_EQ(identity.section_count, 3U);
    ASSERT_EQ(pm9_identify(sample("three-plotters.cfg").c_str(), PM9_Z, &identity, nullptr), PM9_OK);
    EXPECT_EQ(identity.type, PM9_FILE_CFG);
    EXPECT_EQ(identity.plotter_count, 3U);
    ASSERT_EQ(pm9_identify_memory("PC2Version 2.0", 14, &identity, nullptr), PM9_OK);
    EXPECT_EQ(identity.type, PM9_FILE_PC2);
}

TEST(CFile, TellsItsSections) {
    pm9_section* sections = nullptr;
    std::size_t count = 0;
    ASSERT_EQ(
        pm9_sections(sample("sections.dpia").c_str(), PM9_Z, sizeof *sections, &sections, &count, nullptr),
        PM9_OK);
    ASSERT_EQ(count, 3U);
    EXPECT_STREQ(sections[0].name, "Office");
    EXPECT_STREQ(sections[0].info, "Drawing office, third floor");
    EXPECT_STREQ(sections[2].name, "Archive");
    EXPECT_GT(sections[1].offset, sections[0].offset);
    pm9_free(sections);
}

TEST(CFile, TellsItsPlotters) {
    pm9_plotter* plotters = nullptr;
    std::size_t count = 0;
    ASSERT_EQ(pm9_plotters(sample("three-plotters.cfg").c_str(), PM9_Z, sizeof *plotters, &plotters, &count,
                           nullptr),
              PM9_OK);
    ASSERT_EQ(count, 3U);
    EXPECT_EQ(plotters[2].number, 3);
    EXPECT_EQ(std::string_view(plotters[0].name).size(), plotters[0].name_length);
    pm9_free(plotters);
}

TEST(CFile, KeepsTheReportsOfALoadThatFailed) {
    const CTree tree = c_tree();
    const std::string file = "PIAFILEVERSION_2.0\na=\nb=1\nc\nd=1\n";
    EXPECT_EQ(pm9_tree_load_memory(tree.get(), file.data(), file.size(), nullptr, nullptr), PM9_ERR_BAD_LINE);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " b=1"));
    pm9_report* reports = nullptr;
    std::size_t count = 0;
    ASSERT_EQ(pm9_tree_reports(tree.get(), sizeof *reports, &reports, &count, nullptr), PM9_OK);
    ASSERT_EQ(count, 1U);
    EXPECT_EQ(reports[0].number, PM9_ERR_BAD_LINE);
    EXPECT_EQ(reports[0].kind, 2);
    EXPECT_STREQ(reports[0].place, "PM_PIAFile::load()");
    EXPECT_NE(std::string(reports[0].detail, reports[0].detail_length).find("a="), std::string::npos);
    pm9_free(reports);
}

TEST(CFile, ThatIsntLoadedHasNoReportsOfTheLoadBefore) {
    const TempFolder folder;
    folder.write("bad.pia", two_bad_values);
    folder.write("none", "nothing of any format");
    const CTree tree = c_tree();
    const auto load_bad = [&] {
        EXPECT_EQ(
            pm9_tree_load_memory(tree.get(), two_bad_values.data(), two_bad_values.size(), nullptr, nullptr),
            PM9_OK);
        EXPECT_EQ(report_count(tree.get()), 2U);
    };
    load_bad();
    EXPECT_EQ(load(tree.get(), (folder / "missing").string()), PM9_ERR_NO_SUCH_FILE);
    EXPECT_EQ(report_count(tree.get()), 0U);
    load_bad();
    EXPECT_EQ(load(tree.get(), (folder / "none").string()), PM9_ERR_NOT_OPENED);
    EXPECT_EQ(report_count(tree.get()), 0U);
    load_bad();
    EXPECT_EQ(pm9_tree_load_memory(tree.get(), "x", 1, nullptr, nullptr), PM9_ERR_NOT_OPENED);
    EXPECT_EQ(report_count(tree.get()), 0U);
    load_bad();
    EXPECT_EQ(read(tree.get(), (folder / "missing").string()), PM9_ERR_NO_SUCH_FILE);
    EXPECT_EQ(report_count(tree.get()), 0U);
}

TEST(CFile, WhoseReadingIsEndedHasTheReportsOfThat) {
    const TempFolder folder;
    folder.write("bad.pia", two_bad_values);
    const CTree tree = small_tree();
    pm9_read_options options{};
    options.size = sizeof options;
    options.type = PM9_FILE_ANY;
    options.on_report = [](void*, const pm9_report*) { return std::int32_t{0}; };
    pm9_error error = c_error();
    EXPECT_EQ(pm9_tree_read(tree.get(), (folder / "bad.pia").string().c_str(), PM9_Z, &options, &error),
              PM9_ERR_UNKNOWN_VALUE);
    EXPECT_EQ(error.kind, 6);
    EXPECT_EQ(report_count(tree.get()), 1U);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " media", "  copies=2"));
}

TEST(CFile, ThatIsRefusedLeavesSourceAndReports) {
    const TempFolder folder;
    folder.write("bad.pia", two_bad_values);
    const std::string name = (folder / "bad.pia").string();
    const CTree tree = c_tree();
    ASSERT_EQ(read(tree.get(), name), PM9_OK);
    const pm9_load_options no_type = loading(99);
    EXPECT_EQ(pm9_tree_load(tree.get(), name.c_str(), PM9_Z, &no_type, nullptr), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(pm9_tree_load_memory(tree.get(), "", 0, &no_type, nullptr), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(load(tree.get(), name + '\0'), PM9_ERR_BAD_PATH);
    pm9_load_options no_base = loading(PM9_FILE_PIA);
    no_base.base = "a\0b";
    no_base.base_length = 3;
    EXPECT_EQ(pm9_tree_load(tree.get(), name.c_str(), PM9_Z, &no_base, nullptr), PM9_ERR_BAD_PATH);
    EXPECT_EQ(report_count(tree.get()), 2U);
    EXPECT_EQ(source_type(tree.get()), PM9_FILE_PIA);
    EXPECT_EQ(load(tree.get(), (folder / "missing").string()), PM9_ERR_NO_SUCH_FILE);
    EXPECT_EQ(source_type(tree.get()), PM9_FILE_PIA);
    ASSERT_EQ(load(tree.get(), name), PM9_OK);
    EXPECT_EQ(source_type(tree.get()), PM9_FILE_ANY);
}

TEST(CFile, IsRefusedWhereItsNameHoldsAZero) {
    const TempFolder folder;
    folder.write("a.pia", two_bad_values);
    const std::string name = (folder / "a.pia").string() + std::string("\0junk", 5);
    const std::string shown = "51 at \"pm9c\" with \"" + (folder / "a.pia").string() + '"';
    const CTree tree = c_tree();
    pm9_error error = c_error();
    EXPECT_EQ(pm9_tree_read(tree.get(), name.data(), name.size(), nullptr, &error), PM9_ERR_BAD_PATH);
    EXPECT_EQ(told(error), shown);
    pm9_loss* losses = nullptr;
    pm9_diagnostic* diagnostics = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(pm9_unreported(name.data(), name.size(), nullptr, sizeof *losses, &losses, &count, nullptr),
              PM9_ERR_BAD_PATH);
    EXPECT_EQ(
        pm9_check(name.data(), name.size(), nullptr, sizeof *diagnostics, &diagnostics, &count, nullptr),
        PM9_ERR_BAD_PATH);
}

TEST(CFile, IsReadInTheCodePage) {
    const ScopedCodePage before(1252);
    EXPECT_EQ(pm9_code_page(), 1252U);
    ASSERT_EQ(pm9_set_code_page(1251, nullptr), PM9_OK);
    const std::string file = "PIAFILEVERSION_2.0\na=\"\xC6\n";
    const CTree tree = c_tree();
    ASSERT_EQ(pm9_tree_load_memory(tree.get(), file.data(), file.size(), nullptr, nullptr), PM9_OK);
    char* text = nullptr;
    std::size_t length = 0;
    ASSERT_EQ(pm9_tree_get_string(tree.get(), "\\a", PM9_Z, &text, &length, nullptr), PM9_OK);
    EXPECT_EQ(taken(text, length), "\xD0\x96");
    EXPECT_EQ(pm9_set_code_page(1, nullptr), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(pm9_code_page(), 1251U);
}

} // namespace
