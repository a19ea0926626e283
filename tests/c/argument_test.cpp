#include "c/c_support.h"

#include "pm_test_paths.h"
#include "support/temp_folder.h"
#include <cstring>
#include <functional>

namespace {

using namespace pm::test;

struct Refused {
    const char* name; // of the argument
    std::function<pm9_status(pm9_error*)> call;
};

// An error of a newer header: what this library doesn't know is behind the rest.
struct LargerError {
    pm9_error known{};
    std::uint64_t added = 0x5555;
};

// Fills what is known of a larger error, and leaves one that is too small as it is.
void expect_sizes_held(const Refused& row) {
    LargerError larger;
    larger.known.size = sizeof larger;
    EXPECT_EQ(row.call(&larger.known), PM9_ERR_INVALID_ARGUMENT) << row.name;
    EXPECT_EQ(larger.known.number, PM9_ERR_INVALID_ARGUMENT) << row.name;
    EXPECT_EQ(larger.known.size, sizeof larger) << row.name;
    EXPECT_EQ(larger.added, 0x5555U) << row.name;
    for (const std::size_t size : {std::size_t{0}, std::size_t{3}, sizeof(pm9_error) - 1}) {
        pm9_error before;
        std::memset(&before, 0x55, sizeof before);
        before.size = size;
        pm9_error error = before;
        EXPECT_EQ(row.call(&error), PM9_ERR_INVALID_ARGUMENT) << row.name;
        EXPECT_EQ(std::memcmp(&error, &before, sizeof error), 0) << row.name << ", size " << size;
    }
}

// One call with one argument that isn't good.
class CArgument : public testing::Test {
protected:
    void expect_refused(const std::vector<Refused>& rows) {
        for (const Refused& row : rows) {
            pm9_error error = c_error();
            EXPECT_EQ(row.call(&error), PM9_ERR_INVALID_ARGUMENT) << row.name;
            EXPECT_EQ(told(error), std::string("78 at \"pm9c\" with \"") + row.name + '"');
            expect_sizes_held(row);
        }
    }

    CTree tree = small_tree();
    pm9_tree* const t = tree.get();
    const char* const path = "\\media\\copies";
    std::int32_t number = 0;
    double real = 0;
    char* text = nullptr;
    std::size_t size = 0;
};

TEST_F(CArgument, ThatIsNoHandleIsRefused) {
    pm9_value value{sizeof value, PM9_LONG, 1, 0, nullptr, 0};
    pm9_item* items = nullptr;
    pm9_report* reports = nullptr;
    expect_refused({
        {"tree", [&](pm9_error* e) { return pm9_tree_new(nullptr, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_set(nullptr, path, PM9_Z, nullptr, &value, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_set_long(nullptr, path, PM9_Z, 1, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_set_double(nullptr, path, PM9_Z, 1, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_set_bool(nullptr, path, PM9_Z, 1, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_set_string(nullptr, path, PM9_Z, "", 0, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_set_raw(nullptr, path, PM9_Z, "", 0, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_get(nullptr, path, PM9_Z, nullptr, &value, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_get_long(nullptr, path, PM9_Z, &number, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_get_double(nullptr, path, PM9_Z, &real, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_get_bool(nullptr, path, PM9_Z, &number, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_get_string(nullptr, path, PM9_Z, &text, &size, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_get_raw(nullptr, path, PM9_Z, &text, &size, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_contains(nullptr, path, PM9_Z, nullptr, &number, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_erase(nullptr, path, PM9_Z, nullptr, nullptr, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_make_node(nullptr, path, PM9_Z, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_copy_node(nullptr, path, PM9_Z, path, PM9_Z, e); }},
        {"tree",
         [&](pm9_error* e) {
             return pm9_tree_list(nullptr, path, PM9_Z, nullptr, sizeof *items, &items, &size, e);
         }},
        {"tree", [&](pm9_error* e) { return pm9_tree_load(nullptr, "a", PM9_Z, nullptr, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_load_memory(nullptr, "a", 1, nullptr, e); }},
        {"tree",
         [&](pm9_error* e) { return pm9_tree_reports(nullptr, sizeof *reports, &reports, &size, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_save(nullptr, "a", PM9_Z, nullptr, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_save_memory(nullptr, nullptr, &text, &size, e); }},
    });
}

TEST_F(CArgument, ThatIsNoPlaceForAResultIsRefused) {
    expect_refused({
        {"value", [&](pm9_error* e) { return pm9_tree_set(t, path, PM9_Z, nullptr, nullptr, e); }},
        {"value", [&](pm9_error* e) { return pm9_tree_get(t, path, PM9_Z, nullptr, nullptr, e); }},
        {"value", [&](pm9_error* e) { return pm9_tree_get_long(t, path, PM9_Z, nullptr, e); }},
        {"value", [&](pm9_error* e) { return pm9_tree_get_double(t, path, PM9_Z, nullptr, e); }},
        {"value", [&](pm9_error* e) { return pm9_tree_get_bool(t, path, PM9_Z, nullptr, e); }},
        {"what", [&](pm9_error* e) { return pm9_tree_contains(t, path, PM9_Z, nullptr, nullptr, e); }},
        {"data", [&](pm9_error* e) { return pm9_error_text(57, nullptr, &size, e); }},
        {"length", [&](pm9_error* e) { return pm9_error_text(57, &text, nullptr, e); }},
        {"items",
         [&](pm9_error* e) { return pm9_tree_list(t, "", 0, nullptr, sizeof(pm9_item), nullptr, &size, e); }},
        {"identity", [&](pm9_error* e) { return pm9_identify_memory("a", 1, nullptr, e); }},
    });
}

TEST_F(CArgument, OfTheKitThatIsNoHandleOrPlaceIsRefused) {
    pm9_difference* differences = nullptr;
    pm9_conflict* conflicts = nullptr;
    pm9_loss* losses = nullptr;
    pm9_source source{};
    source.size = sizeof source;
    expect_refused({
        {"tree", [&](pm9_error* e) { return pm9_tree_read(nullptr, "a", PM9_Z, nullptr, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_source(nullptr, &source, e); }},
        {"source", [&](pm9_error* e) { return pm9_tree_source(t, nullptr, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_encoding(nullptr, &number, e); }},
        {"encoding", [&](pm9_error* e) { return pm9_tree_encoding(t, nullptr, e); }},
        {"tree",
         [&](pm9_error* e) { return pm9_tree_to_json(nullptr, path, PM9_Z, nullptr, &text, &size, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_from_json(nullptr, "{}", PM9_Z, e); }},
        {"tree", [&](pm9_error* e) { return pm9_tree_apply(nullptr, "", PM9_Z, e); }},
        {"first",
         [&](pm9_error* e) {
             return pm9_compare(nullptr, t, nullptr, sizeof *differences, &differences, &size, e);
         }},
        {"second", [&](pm9_error* e) { return pm9_script(t, nullptr, nullptr, &text, &size, e); }},
        {"base",
         [&](pm9_error* e) {
             return pm9_merge(t, nullptr, t, t, 0, sizeof *conflicts, &conflicts, &size, e);
         }},
        {"tree",
         [&](pm9_error* e) {
             return pm9_prepare(nullptr, nullptr, &text, &size, sizeof *losses, &losses, &size, e);
         }},
        {"configuration",
         [&](pm9_error* e) { return pm9_compatibility(nullptr, t, nullptr, &text, &size, e); }},
        {"description",
         [&](pm9_error* e) { return pm9_compatibility(t, nullptr, nullptr, &text, &size, e); }},
    });
}

TEST_F(CArgument, OfAnArrayWithASmallerItemIsRefused) {
    const std::string samples = PM_SAMPLES;
    const std::string sections_file = samples + "/sections.dpia";
    const std::string plotters_file = samples + "/three-plotters.cfg";
    const std::string file = samples + "/plotter.pia";
    const auto row = [&]<class Item>(Item*, auto call) {
        return Refused{"item_size", [&, call](pm9_error* e) {
                           Item* items = nullptr;
                           return call(sizeof(Item) - alignof(Item), &items, e);
                       }};
    };
    expect_refused({
        row(static_cast<pm9_section*>(nullptr),
            [&](std::size_t item, pm9_section** items, pm9_error* e) {
                return pm9_sections(sections_file.c_str(), PM9_Z, item, items, &size, e);
            }),
        row(static_cast<pm9_plotter*>(nullptr),
            [&](std::size_t item, pm9_plotter** items, pm9_error* e) {
                return pm9_plotters(plotters_file.c_str(), PM9_Z, item, items, &size, e);
            }),
        row(static_cast<pm9_difference*>(nullptr),
            [&](std::size_t item, pm9_difference** items, pm9_error* e) {
                return pm9_compare(t, t, nullptr, item, items, &size, e);
            }),
        row(static_cast<pm9_conflict*>(nullptr),
            [&](std::size_t item, pm9_conflict** items, pm9_error* e) {
                return pm9_merge(t, t, t, t, 0, item, items, &size, e);
            }),
        row(static_cast<pm9_diagnostic*>(nullptr),
            [&](std::size_t item, pm9_diagnostic** items, pm9_error* e) {
                return pm9_check(file.c_str(), PM9_Z, nullptr, item, items, &size, e);
            }),
        row(static_cast<pm9_loss*>(nullptr),
            [&](std::size_t item, pm9_loss** items, pm9_error* e) {
                return pm9_unreported(file.c_str(), PM9_Z, nullptr, item, items, &size, e);
            }),
        row(static_cast<pm9_loss*>(nullptr),
            [&](std::size_t item, pm9_loss** items, pm9_error* e) {
                return pm9_prepare(t, nullptr, &text, &size, item, items, &size, e);
            }),
    });
    EXPECT_EQ(text, nullptr);
}

TEST_F(CArgument, OfTheKitThatIsAStructOfASmallerSizeIsRefused) {
    const pm9_read_options reading{};
    const pm9_json_options json{};
    const pm9_compare_options comparing{};
    const pm9_check_options checking{};
    const pm9_compatibility_options fitting{};
    pm9_source source{};
    source.size = sizeof source - 1;
    pm9_difference* differences = nullptr;
    pm9_diagnostic* diagnostics = nullptr;
    expect_refused({
        {"options", [&](pm9_error* e) { return pm9_tree_read(t, "a", PM9_Z, &reading, e); }},
        {"source", [&](pm9_error* e) { return pm9_tree_source(t, &source, e); }},
        {"options", [&](pm9_error* e) { return pm9_tree_to_json(t, "", 0, &json, &text, &size, e); }},
        {"options",
         [&](pm9_error* e) {
             return pm9_compare(t, t, &comparing, sizeof *differences, &differences, &size, e);
         }},
        {"options",
         [&](pm9_error* e) {
             return pm9_check("a", PM9_Z, &checking, sizeof *diagnostics, &diagnostics, &size, e);
         }},
        {"options", [&](pm9_error* e) { return pm9_compatibility(t, t, &fitting, &text, &size, e); }},
    });
}

TEST_F(CArgument, ThatIsAStructOfASmallerSizeIsRefused) {
    pm9_value value{};
    value.size = sizeof value - 1;
    const pm9_access access{1, 0, 0};
    const pm9_list_options listing{sizeof listing - 4, 0, 0};
    pm9_load_options loading{};
    pm9_save_options saving{};
    pm9_identity identity{};
    pm9_item* items = nullptr;
    pm9_report* reports = nullptr;
    expect_refused({
        {"value", [&](pm9_error* e) { return pm9_tree_set(t, path, PM9_Z, nullptr, &value, e); }},
        {"value", [&](pm9_error* e) { return pm9_tree_get(t, path, PM9_Z, nullptr, &value, e); }},
        {"access", [&](pm9_error* e) { return pm9_tree_get(t, path, PM9_Z, &access, &value, e); }},
        {"options",
         [&](pm9_error* e) { return pm9_tree_list(t, "", 0, &listing, sizeof *items, &items, &size, e); }},
        {"item_size",
         [&](pm9_error* e) { return pm9_tree_list(t, "", 0, nullptr, sizeof *items - 8, &items, &size, e); }},
        {"item_size",
         [&](pm9_error* e) { return pm9_tree_reports(t, sizeof *reports + 1, &reports, &size, e); }},
        {"options", [&](pm9_error* e) { return pm9_tree_load(t, "a", PM9_Z, &loading, e); }},
        {"options", [&](pm9_error* e) { return pm9_tree_save(t, "a", PM9_Z, &saving, e); }},
        {"identity", [&](pm9_error* e) { return pm9_identify_memory("a", 1, &identity, e); }},
    });
}

TEST_F(CArgument, ThatNamesNoTypeIsRefused) {
    const pm9_value value{sizeof value, 6, 0, 0, nullptr, 0};
    pm9_load_options loading{};
    loading.size = sizeof loading;
    loading.type = 7;
    pm9_save_options saving{};
    saving.size = sizeof saving;
    saving.type = PM9_FILE_ANY;
    expect_refused({
        {"type", [&](pm9_error* e) { return pm9_tree_set(t, path, PM9_Z, nullptr, &value, e); }},
        {"type", [&](pm9_error* e) { return pm9_tree_load_memory(t, "a", 1, &loading, e); }},
        {"type", [&](pm9_error* e) { return pm9_tree_save_memory(t, &saving, &text, &size, e); }},
    });
}

// Any other struct of a newer header.
template<class Struct>
struct Larger {
    Struct known{};
    std::uint64_t added = 0x5555;
};

TEST_F(CArgument, ThatIsALargerStructIsReadAndWrittenAsFarAsItIsKnown) {
    Larger<pm9_value> value;
    value.known.size = sizeof value;
    ASSERT_EQ(pm9_tree_get(t, path, PM9_Z, nullptr, &value.known, nullptr), PM9_OK);
    EXPECT_EQ(value.known.number, 2);
    EXPECT_EQ(value.known.size, sizeof value);
    EXPECT_EQ(value.added, 0x5555U);
    Larger<pm9_source> source;
    source.known.size = sizeof source;
    ASSERT_EQ(pm9_tree_source(t, &source.known, nullptr), PM9_OK);
    EXPECT_EQ(source.known.type, PM9_FILE_ANY);
    EXPECT_EQ(source.added, 0x5555U);
    Larger<pm9_identity> identity;
    identity.known.size = sizeof identity;
    ASSERT_EQ(pm9_identify_memory("a", 1, &identity.known, nullptr), PM9_OK);
    EXPECT_EQ(identity.known.size, sizeof identity);
    EXPECT_EQ(identity.added, 0x5555U);
    Larger<pm9_list_options> one;
    one.known = {sizeof one, 1, 0};
    EXPECT_EQ(listed(t, &one.known), (std::vector<std::string>{"Root", " media"}));
}

TEST_F(CArgument, MayHaveNoErrorOrASmallOne) {
    EXPECT_EQ(pm9_tree_get_long(t, "\\no", PM9_Z, &number, nullptr), PM9_ERR_BAD_PATH);
    pm9_error error = c_error();
    error.size = sizeof error - 1;
    error.number = 1234;
    EXPECT_EQ(pm9_tree_get_long(t, "\\no", PM9_Z, &number, &error), PM9_ERR_BAD_PATH);
    EXPECT_EQ(error.number, 1234);
}

TEST_F(CArgument, ThatHoldsAZeroIsRefusedWhereATextCant) {
    EXPECT_EQ(pm9_tree_set_long(t, "\\a\0b", 4, 1, nullptr), PM9_ERR_BAD_PATH);
    EXPECT_EQ(pm9_tree_set_string(t, "\\a", PM9_Z, "x\0y", 3, nullptr), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(pm9_tree_make_node(t, "\\a\0b", 4, nullptr), PM9_ERR_BAD_PATH);
    pm9_identity identity{};
    identity.size = sizeof identity;
    EXPECT_EQ(pm9_identify("a\0b", 3, &identity, nullptr), PM9_ERR_BAD_PATH);
}

} // namespace
