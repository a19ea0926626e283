#include "c/c_support.h"

#include "pm_test_paths.h"
#include "support/temp_folder.h"
#include <cstddef>
#include <gmock/gmock.h>

namespace {

using namespace pm::test;
using testing::ElementsAre;

std::string json_of(const pm9_tree* tree, const pm9_json_options* options = nullptr,
                    const char* path = "\\") {
    char* text = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(pm9_tree_to_json(tree, path, PM9_Z, options, &text, &length, nullptr), PM9_OK);
    return taken(text, length);
}

TEST(CJson, IsReadBack) {
    const CTree tree = small_tree();
    const pm9_json_options one_line{sizeof one_line, 1, 0, 0, 0};
    const std::string json = json_of(tree.get(), &one_line);
    EXPECT_EQ(json.find('\n'), json.size() - 1);
    EXPECT_NE(json.find("\"copies\""), std::string::npos);
    const CTree again = c_tree();
    ASSERT_EQ(pm9_tree_from_json(again.get(), json.data(), json.size(), nullptr), PM9_OK);
    EXPECT_EQ(listed(again.get()), listed(tree.get()));
}

TEST(CJson, OfANodeMayBePlain) {
    const CTree tree = small_tree();
    const pm9_json_options plain{sizeof plain, 1, 0, 1, 0};
    std::string json = json_of(tree.get(), &plain, "\\media");
    std::erase(json, ' ');
    EXPECT_EQ(json, "{\"copies\":2}\n");
    char* text = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(pm9_tree_to_json(tree.get(), "\\no", PM9_Z, nullptr, &text, &length, nullptr),
              PM9_ERR_NO_SUCH_NODE);
}

TEST(CJson, WithAMistakeTellsItsLineAndLeavesTheTree) {
    const CTree tree = small_tree();
    pm9_error error = c_error();
    EXPECT_EQ(pm9_tree_from_json(tree.get(), "{\"pm9\": 1,\n\"nodes\": 5}", PM9_Z, &error), PM9_BAD_INPUT);
    EXPECT_EQ(error.number, PM9_BAD_INPUT);
    EXPECT_EQ(error.line, 2U);
    EXPECT_EQ(std::string(error.place), "pm9kit");
    EXPECT_NE(error.detail_length, 0U);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " media", "  copies=2"));
}

// Kind, path, before and after of each difference.
std::vector<std::string> differences(const pm9_tree* first, const pm9_tree* second,
                                     const pm9_compare_options* options = nullptr) {
    pm9_difference* found = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(pm9_compare(first, second, options, sizeof *found, &found, &count, nullptr), PM9_OK);
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < count; ++at) {
        const pm9_difference& each = found[at];
        std::string line = std::to_string(each.kind) + ' ' + each.path;
        for (const char* const value : {each.before, each.after}) {
            if (value != nullptr) line += std::string(" | ") + value;
        }
        lines.push_back(line);
    }
    pm9_free(found);
    return lines;
}

class CComparison : public testing::Test {
protected:
    CComparison() {
        pm9_tree_set_long(second.get(), "\\media\\copies", PM9_Z, 3, nullptr);
        pm9_tree_set_string(second.get(), "\\media\\name", PM9_Z, "A0", PM9_Z, nullptr);
    }
    CTree first = small_tree();
    CTree second = small_tree();
};

TEST_F(CComparison, TellsWhatDiffers) {
    EXPECT_THAT(differences(first.get(), second.get()),
                ElementsAre("3 \\media\\copies | long 2 | long 3", "0 \\media\\name | string \"A0\""));
    EXPECT_THAT(differences(second.get(), second.get()), ElementsAre());
}

TEST_F(CComparison, LeavesOutWhatIsExcluded) {
    const pm9_compare_options options{sizeof options, 0, "\\no\n\\media\\c*", PM9_Z, 0, 0};
    EXPECT_THAT(differences(first.get(), second.get(), &options),
                ElementsAre("0 \\media\\name | string \"A0\""));
}

TEST_F(CComparison, TellsStrictnessAndOrderUnlessTheyDoNotCount) {
    const CTree loose = small_tree();
    const std::string script = "set \\media\\name string \"A0\"\nset \\media\\copies loose long 3\n";
    ASSERT_EQ(pm9_tree_apply(loose.get(), script.data(), script.size(), nullptr), PM9_OK);
    EXPECT_THAT(differences(second.get(), loose.get()), ElementsAre("4 \\media\\copies | long 3 | long 3"));
    const pm9_compare_options any_strictness{sizeof any_strictness, 0, nullptr, 0, 0, 1};
    EXPECT_THAT(differences(second.get(), loose.get(), &any_strictness), ElementsAre());
    const CTree turned = c_tree();
    const CTree straight = c_tree();
    for (const char* const path : {"\\a", "\\b"}) {
        pm9_tree_set_long(straight.get(), path, PM9_Z, 1, nullptr);
    }
    for (const char* const path : {"\\b", "\\a"}) {
        pm9_tree_set_long(turned.get(), path, PM9_Z, 1, nullptr);
    }
    EXPECT_THAT(differences(straight.get(), turned.get()), ElementsAre("5 \\"));
    const pm9_compare_options any_order{sizeof any_order, 0, nullptr, 0, 1, 0};
    EXPECT_THAT(differences(straight.get(), turned.get(), &any_order), ElementsAre());
}

TEST_F(CComparison, BecomesAScriptThatIsApplied) {
    char* text = nullptr;
    std::size_t length = 0;
    ASSERT_EQ(pm9_script(first.get(), second.get(), nullptr, &text, &length, nullptr), PM9_OK);
    const std::string script = taken(text, length);
    ASSERT_EQ(pm9_tree_apply(first.get(), script.data(), script.size(), nullptr), PM9_OK);
    EXPECT_THAT(differences(first.get(), second.get()), ElementsAre());
}

TEST_F(CComparison, RefusesAScriptWholly) {
    pm9_error error = c_error();
    EXPECT_EQ(pm9_tree_apply(first.get(), "set \\new long 1\nrm \\never\n", PM9_Z, &error), PM9_BAD_INPUT);
    EXPECT_EQ(error.line, 2U);
    EXPECT_THAT(listed(first.get()), ElementsAre("Root", " media", "  copies=2"));
}

TEST(CMerge, TakesBothSidesAndTellsConflicts) {
    const CTree base = small_tree();
    const CTree first = small_tree();
    const CTree second = small_tree();
    pm9_tree_set_long(first.get(), "\\media\\copies", PM9_Z, 3, nullptr);
    pm9_tree_set_long(second.get(), "\\media\\copies", PM9_Z, 4, nullptr);
    pm9_tree_set_long(second.get(), "\\media\\added", PM9_Z, 5, nullptr);
    pm9_conflict* conflicts = nullptr;
    std::size_t count = 0;
    const auto merge = [&](pm9_tree* merged, int prefer_second) {
        return pm9_merge(merged, base.get(), first.get(), second.get(), prefer_second, sizeof *conflicts,
                         &conflicts, &count, nullptr);
    };
    const CTree merged = c_tree();
    ASSERT_EQ(merge(merged.get(), 0), PM9_OK);
    ASSERT_EQ(count, 1U);
    EXPECT_STREQ(conflicts[0].path, "\\media\\copies");
    EXPECT_STREQ(conflicts[0].base, "long 2");
    EXPECT_STREQ(conflicts[0].first, "long 3");
    EXPECT_STREQ(conflicts[0].second, "long 4");
    pm9_free(conflicts);
    EXPECT_THAT(listed(merged.get()), ElementsAre("Root", " media", "  copies=3", "  added=5"));
    ASSERT_EQ(merge(first.get(), 1), PM9_OK);
    pm9_free(conflicts);
    EXPECT_THAT(listed(first.get()), ElementsAre("Root", " media", "  copies=4", "  added=5"));
}

TEST(CRead, PutsSectionsBesideEachOther) {
    const CTree tree = small_tree();
    const std::string file = std::string(PM_SAMPLES) + "/sections.dpia";
    const pm9_list_options nodes{sizeof nodes, 1, PM9_PROPERTY};
    ASSERT_EQ(pm9_tree_read(tree.get(), file.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    EXPECT_THAT(listed(tree.get(), &nodes), ElementsAre("Root", " Office", " Workshop", " Archive"));
}

TEST(CRead, KeepsItsReportsUntilTheNextLoad) {
    const TempFolder folder;
    folder.write("a.pia", "PIAFILEVERSION_2.0\na=\nb=1\n");
    const std::string file = (folder / "a.pia").string();
    const CTree tree = c_tree();
    const auto count = [&] {
        pm9_report* reports = nullptr;
        std::size_t found = 0;
        EXPECT_EQ(pm9_tree_reports(tree.get(), sizeof *reports, &reports, &found, nullptr), PM9_OK);
        pm9_free(reports);
        return found;
    };
    ASSERT_EQ(pm9_tree_read(tree.get(), file.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    EXPECT_EQ(count(), 1U);
    ASSERT_EQ(pm9_tree_load_memory(tree.get(), "PIAFILEVERSION_2.0\nb=1\n", 23, nullptr, nullptr), PM9_OK);
    EXPECT_EQ(count(), 0U);
    EXPECT_EQ(pm9_tree_read(tree.get(), (file + "no").c_str(), PM9_Z, nullptr, nullptr),
              PM9_ERR_NO_SUCH_FILE);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " b=1"));
}

pm9_source source_of(const pm9_tree* tree) {
    pm9_source source{};
    source.size = sizeof source;
    EXPECT_EQ(pm9_tree_source(tree, &source, nullptr), PM9_OK);
    return source;
}

TEST(CRead, TellsTheFormOfItsFile) {
    const CTree tree = c_tree();
    const std::string file = std::string(PM_SAMPLES) + "/plotter-compressed.pia";
    ASSERT_EQ(pm9_tree_read(tree.get(), file.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    pm9_source source = source_of(tree.get());
    EXPECT_EQ(source.type, PM9_FILE_PIA);
    EXPECT_EQ(source.by_section, 0);
    EXPECT_EQ(source.version, 2);
    EXPECT_EQ(source.compressed, 1);
    EXPECT_EQ(taken(source.tag, source.tag_length), "DX4200CFG_1.0,compress");
    const std::string sections = std::string(PM_SAMPLES) + "/sections.dpia";
    ASSERT_EQ(pm9_tree_read(tree.get(), sections.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    source = source_of(tree.get());
    EXPECT_EQ(source.type, PM9_FILE_DPIA);
    EXPECT_EQ(source.by_section, 1);
    EXPECT_EQ(source.tag, nullptr);
}

TEST(CRead, KnowsNoFileOnceTheTreeIsAnother) {
    const CTree tree = c_tree();
    EXPECT_EQ(source_of(tree.get()).type, PM9_FILE_ANY);
    const std::string file = std::string(PM_SAMPLES) + "/plotter.pia";
    ASSERT_EQ(pm9_tree_read(tree.get(), file.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    ASSERT_EQ(pm9_tree_load_memory(tree.get(), "PIAFILEVERSION_2.0\nb=1\n", 23, nullptr, nullptr), PM9_OK);
    EXPECT_EQ(source_of(tree.get()).type, PM9_FILE_ANY);
}

TEST(CRead, TellsWhatTextsAreIn) {
    const CTree tree = small_tree();
    std::int32_t encoding = -1;
    ASSERT_EQ(pm9_tree_encoding(tree.get(), &encoding, nullptr), PM9_OK);
    EXPECT_EQ(encoding, PM9_TEXT_ASCII);
    const std::string file = "PIAFILEVERSION_2.0\na=\"\xC3\xA4\n";
    ASSERT_EQ(pm9_tree_load_memory(tree.get(), file.data(), file.size(), nullptr, nullptr), PM9_OK);
    ASSERT_EQ(pm9_tree_encoding(tree.get(), &encoding, nullptr), PM9_OK);
    EXPECT_EQ(encoding, PM9_TEXT_UTF8);
}

// Kind and reason of what a file doesn't give and doesn't report.
std::vector<std::string> unreported(const TempFolder& folder, std::string_view content) {
    folder.write("a.pia", content);
    pm9_loss* losses = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(pm9_unreported((folder / "a.pia").string().c_str(), PM9_Z, nullptr, sizeof *losses, &losses,
                             &count, nullptr),
              PM9_OK);
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < count; ++at) {
        lines.push_back(std::string(losses[at].kind) + ": " + losses[at].reason);
    }
    pm9_free(losses);
    return lines;
}

TEST(CRead, LeavesToAskForWhatItDoesntReport) {
    const TempFolder folder;
    EXPECT_THAT(unreported(folder, "PIAFILEVERSION_2.0,\na=1\n"), ElementsAre());
    EXPECT_THAT(unreported(folder, "PIAFILEVERSION_2.0,\na=12 34\na=5\n"),
                ElementsAre(testing::HasSubstr("line 2"), testing::HasSubstr("line 3")));
    // With a bad line that is reported, the report tells it.
    EXPECT_THAT(unreported(folder, "PIAFILEVERSION_2.0,\na=1\na=5\nb=\n"),
                ElementsAre(testing::StartsWith("source: line 3")));
}

TEST(CCheck, TellsRulePlaceAndWords) {
    const TempFolder folder;
    folder.write("a.pia", "PIAFILEVERSION_2.0,\na=\nb=1\n");
    const std::string file = (folder / "a.pia").string();
    pm9_diagnostic* found = nullptr;
    std::size_t count = 0;
    ASSERT_EQ(pm9_check(file.c_str(), PM9_Z, nullptr, sizeof *found, &found, &count, nullptr), PM9_OK);
    ASSERT_GE(count, 1U);
    EXPECT_STREQ(found[0].rule, "bad-line");
    EXPECT_STREQ(found[0].file, file.c_str());
    EXPECT_EQ(found[0].line, 2U);
    EXPECT_EQ(found[0].severity, PM9_ERROR);
    EXPECT_EQ(found[0].number, PM9_ERR_BAD_LINE);
    EXPECT_GT(found[0].message_length, 0U);
    pm9_free(found);
    pm9_check_options without{};
    without.size = sizeof without;
    without.type = PM9_FILE_PIA;
    without.rules = "cut-file\ncut-text";
    without.rules_length = PM9_Z;
    ASSERT_EQ(pm9_check(file.c_str(), PM9_Z, &without, sizeof *found, &found, &count, nullptr), PM9_OK);
    EXPECT_EQ(count, 0U);
    pm9_free(found);
    without.rules = "bad-line\nbad-lin";
    EXPECT_EQ(pm9_check(file.c_str(), PM9_Z, &without, sizeof *found, &found, &count, nullptr),
              PM9_BAD_INPUT);
}

// The bytes of a file and its losses as kind, path and reason.
struct PreparedFile {
    std::string bytes;
    std::vector<std::string> losses;
};

PreparedFile prepared(const pm9_tree* tree, const pm9_write_options* options) {
    char* data = nullptr;
    std::size_t length = 0;
    pm9_loss* losses = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(pm9_prepare(tree, options, &data, &length, sizeof *losses, &losses, &count, nullptr), PM9_OK);
    PreparedFile result{taken(data, length), {}};
    for (std::size_t at = 0; at < count; ++at) {
        result.losses.push_back(std::string(losses[at].kind) + ' ' + losses[at].path);
        EXPECT_GT(losses[at].reason_length, 0U);
    }
    pm9_free(losses);
    return result;
}

TEST(CPrepare, MakesAFileOfAnyFormatThatIsWritten) {
    const CTree tree = small_tree();
    for (const std::int32_t type : {PM9_FILE_PIA, PM9_FILE_DOC}) {
        pm9_write_options options{};
        options.size = sizeof options;
        options.type = type;
        const PreparedFile file = prepared(tree.get(), &options);
        EXPECT_THAT(file.losses, ElementsAre());
        pm9_identity identity{};
        identity.size = sizeof identity;
        ASSERT_EQ(pm9_identify_memory(file.bytes.data(), file.bytes.size(), &identity, nullptr), PM9_OK);
        EXPECT_EQ(identity.type, type);
    }
}

TEST(CPrepare, TellsWhatTheFileDoesntHold) {
    const CTree tree = small_tree();
    pm9_tree_set_string(tree.get(), "\\media\\name", PM9_Z, "\xD0\x96", PM9_Z, nullptr);
    pm9_tree_make_node(tree.get(), "\\empty", PM9_Z, nullptr);
    EXPECT_THAT(prepared(tree.get(), nullptr).losses,
                ElementsAre("re-encoded \\media\\name", "lost \\empty\\"));
}

TEST(CPrepare, KeepsTheSectionsOfAFileThatWasReadWhole) {
    const CTree tree = c_tree();
    const std::string file = std::string(PM_SAMPLES) + "/sections.dpia";
    ASSERT_EQ(pm9_tree_read(tree.get(), file.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    pm9_write_options options{};
    options.size = sizeof options;
    options.type = PM9_FILE_DPIA;
    const PreparedFile made = prepared(tree.get(), &options);
    EXPECT_THAT(made.losses, ElementsAre());
    EXPECT_NE(made.bytes.find("Drawing office, third floor"), std::string::npos);
}

// The bytes of a DPIA file of one section, loaded again.
CTree section_of(const pm9_tree* tree, const char* name, std::string* bytes = nullptr) {
    pm9_write_options options{};
    options.size = sizeof options;
    options.type = PM9_FILE_DPIA;
    options.section = name;
    options.section_length = PM9_Z;
    const PreparedFile made = prepared(tree, &options);
    EXPECT_THAT(made.losses, ElementsAre());
    const TempFolder folder;
    folder.write("a.dpia", made.bytes);
    CTree again = c_tree();
    EXPECT_EQ(pm9_tree_read(again.get(), (folder / "a.dpia").string().c_str(), PM9_Z, nullptr, nullptr),
              PM9_OK);
    if (bytes != nullptr) *bytes = made.bytes;
    return again;
}

TEST(CPrepare, MakesOneSectionOfAllOfATree) {
    const CTree tree = small_tree();
    ASSERT_EQ(pm9_tree_set_long(tree.get(), "\\top", PM9_Z, 1, nullptr), PM9_OK);
    EXPECT_THAT(listed(section_of(tree.get(), "A").get()),
                ElementsAre("Root", " A", "  top=1", "  media", "   copies=2"));
}

// Of a preparation that is refused.
pm9_status status_of(const pm9_tree* tree, const pm9_write_options& options) {
    char* data = nullptr;
    pm9_loss* losses = nullptr;
    std::size_t length = 0;
    std::size_t count = 0;
    return pm9_prepare(tree, &options, &data, &length, sizeof *losses, &losses, &count, nullptr);
}

TEST(CPrepare, TellsANameOfASectionThatNoNodeHas) {
    const CTree tree = small_tree();
    pm9_write_options options{};
    options.size = sizeof options;
    options.type = PM9_FILE_DPIA;
    options.section = "A\\B";
    options.section_length = PM9_Z;
    const PreparedFile made = prepared(tree.get(), &options);
    EXPECT_THAT(made.losses, ElementsAre("renamed \\A/B\\"));
    options.section = "";
    EXPECT_THAT(prepared(tree.get(), &options).losses, ElementsAre("renamed \\section\\"));
    options.subtree = "\\no";
    options.subtree_length = PM9_Z;
    EXPECT_EQ(status_of(tree.get(), options), PM9_BAD_INPUT);
}

TEST(CPrepare, KeepsTheInfoTextOfTheOneSectionThatWasRead) {
    const CTree tree = c_tree();
    const std::string file = std::string(PM_SAMPLES) + "/sections.dpia";
    pm9_read_options office{};
    office.size = sizeof office;
    office.type = PM9_FILE_ANY;
    office.section = "Office";
    office.section_length = PM9_Z;
    ASSERT_EQ(pm9_tree_read(tree.get(), file.c_str(), PM9_Z, &office, nullptr), PM9_OK);
    std::string bytes;
    (void)section_of(tree.get(), "Office", &bytes);
    EXPECT_NE(bytes.find("Drawing office, third floor"), std::string::npos);
    (void)section_of(tree.get(), "Other", &bytes);
    EXPECT_EQ(bytes.find("Drawing office, third floor"), std::string::npos);
}

TEST(CPrepare, TakesTheStructOfTheFirstInterface) {
    const CTree tree = small_tree();
    pm9_write_options options{};
    options.size = offsetof(pm9_write_options, section);
    options.type = PM9_FILE_DPIA;
    options.section = "not read";
    EXPECT_NE(prepared(tree.get(), &options).bytes.find("media"), std::string::npos);
    EXPECT_EQ(prepared(tree.get(), &options).bytes.find("not read"), std::string::npos);
    options.size -= 1;
    EXPECT_EQ(status_of(tree.get(), options), PM9_ERR_INVALID_ARGUMENT);
}

TEST(CPrepare, RefusesAFormatThatIsntWritten) {
    const CTree tree = small_tree();
    pm9_write_options options{};
    options.size = sizeof options;
    options.type = PM9_FILE_PDT;
    EXPECT_EQ(status_of(tree.get(), options), PM9_BAD_INPUT);
}

class CCompatibility : public testing::Test {
protected:
    CCompatibility() {
        const std::string device = std::string(PM_SAMPLES) + "/dx4200";
        EXPECT_EQ(pm9_tree_read(description.get(), device.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
        const std::string file = std::string(PM_SAMPLES) + "/plotter.pia";
        EXPECT_EQ(pm9_tree_read(configuration.get(), file.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    }
    std::string findings(const pm9_compatibility_options* options = nullptr) {
        char* text = nullptr;
        std::size_t length = 0;
        EXPECT_EQ(pm9_compatibility(configuration.get(), description.get(), options, &text, &length, nullptr),
                  PM9_OK);
        return taken(text, length);
    }
    CTree description = c_tree();
    CTree configuration = c_tree();
};

TEST_F(CCompatibility, TellsFindingsAsJson) {
    EXPECT_EQ(findings().find("\"looks\""), std::string::npos);
    EXPECT_NE(findings().find("\"findings\""), std::string::npos);
    pm9_compatibility_options options{};
    options.size = sizeof options;
    options.owner = -1;
    options.explain = 1;
    EXPECT_NE(findings(&options).find("\"looks\""), std::string::npos);
}

TEST_F(CCompatibility, ComparesTheNodeOfTheConfigurationThatItIsToldByTheMapThatItIsGiven) {
    configuration = c_tree();
    ASSERT_EQ(pm9_tree_set_string(configuration.get(), "\\here\\paper", PM9_Z, "A17", PM9_Z, nullptr),
              PM9_OK);
    ASSERT_EQ(pm9_tree_set_string(configuration.get(), "\\there\\paper", PM9_Z, "A18", PM9_Z, nullptr),
              PM9_OK);
    pm9_compatibility_options options{};
    options.size = sizeof options;
    options.owner = -1;
    options.configuration_base = "\\here, and no more";
    options.configuration_base_length = std::string_view("\\here").size();
    options.map = R"({"replace": true, "settings": [{"setting": "size", "path": "\\paper"}]})";
    options.map_length = PM9_Z;
    const std::string told = findings(&options);
    EXPECT_NE(told.find("The device has no media size \\\"A17\\\"."), std::string::npos) << told;
    EXPECT_EQ(told.find("A18"), std::string::npos) << told;
}

TEST_F(CCompatibility, RefusesWhatIsNoDescriptionAndNoMap) {
    char* text = nullptr;
    std::size_t length = 0;
    EXPECT_EQ(pm9_compatibility(description.get(), configuration.get(), nullptr, &text, &length, nullptr),
              PM9_BAD_INPUT);
    pm9_compatibility_options options{};
    options.size = sizeof options;
    options.owner = -1;
    options.map = "no JSON";
    options.map_length = PM9_Z;
    EXPECT_EQ(pm9_compatibility(configuration.get(), description.get(), &options, &text, &length, nullptr),
              PM9_BAD_INPUT);
}

TEST_F(CCompatibility, RefusesAnOwnerThatThereIsnt) {
    pm9_compatibility_options options{};
    options.size = sizeof options;
    for (const std::int32_t owner : {4, 99, -2}) {
        options.owner = owner;
        char* text = nullptr;
        std::size_t length = 0;
        pm9_error error = c_error();
        EXPECT_EQ(pm9_compatibility(configuration.get(), description.get(), &options, &text, &length, &error),
                  PM9_ERR_INVALID_ARGUMENT);
        EXPECT_STREQ(error.detail, "owner");
    }
    for (const std::int32_t owner : {-1, 0, 3}) {
        options.owner = owner;
        EXPECT_NE(findings(&options), "");
    }
}

} // namespace
