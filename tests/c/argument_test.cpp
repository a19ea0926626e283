#include "c/c_support.h"

#include "support/temp_folder.h"
#include <functional>

namespace {

using namespace pm::test;

struct Refused {
    const char* name; // of the argument
    std::function<pm9_status(pm9_error*)> call;
};

// One call with one argument that isn't good.
class CArgument : public testing::Test {
protected:
    void expect_refused(const std::vector<Refused>& rows) {
        for (const Refused& row : rows) {
            pm9_error error = c_error();
            EXPECT_EQ(row.call(&error), PM9_ERR_INVALID_ARGUMENT) << row.name;
            EXPECT_EQ(told(error), std::string("78 at \"pm9c\" with \"") + row.name + '"');
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

// A struct of a newer header: what this library doesn't know is behind the rest.
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
