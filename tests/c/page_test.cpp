#include "c/c_support.h"

#include "pm_test_paths.h"

namespace {

using namespace pm::test;

CTree sample(const char* name) {
    CTree tree = c_tree();
    const std::string file = std::string(PM_SAMPLES) + '/' + name;
    EXPECT_EQ(pm9_tree_read(tree.get(), file.c_str(), PM9_Z, nullptr, nullptr), PM9_OK);
    return tree;
}

pm9_page_part part(const pm9_tree* tree, const char* name, const char* base = nullptr) {
    return {sizeof(pm9_page_part), tree, name, PM9_Z, base, PM9_Z};
}

// A page is too long to be shown by a test.
bool holds(const std::string& html, std::string_view text) {
    return html.find(text) != std::string::npos;
}

class CPage : public testing::Test {
protected:
    std::string page(const pm9_page_part* description, const std::vector<pm9_page_part>& configurations,
                     const pm9_page_options* options = nullptr) {
        char* html = nullptr;
        std::size_t length = 0;
        error = c_error();
        EXPECT_EQ(pm9_report_page(description, configurations.data(), sizeof(pm9_page_part),
                                  configurations.size(), options, &html, &length, &error),
                  PM9_OK)
            << told(error);
        return html == nullptr ? std::string() : taken(html, length);
    }
    pm9_status refused(const pm9_page_part* description, const pm9_page_part* configurations,
                       std::size_t count, const pm9_page_options* options = nullptr,
                       std::size_t item_size = sizeof(pm9_page_part)) {
        char* html = nullptr;
        std::size_t length = 0;
        error = c_error();
        const pm9_status status =
            pm9_report_page(description, configurations, item_size, count, options, &html, &length, &error);
        EXPECT_EQ(html, nullptr);
        return status;
    }

    CTree device = sample("dx4200");
    CTree configuration = sample("plotter.pia");
    pm9_error error{};
};

TEST_F(CPage, ShowsADeviceAlone) {
    const pm9_page_part description = part(device.get(), "DX <one>");
    const std::string html = page(&description, {});
    EXPECT_TRUE(html.starts_with("<!DOCTYPE html>"));
    EXPECT_TRUE(holds(html, "DX &lt;one&gt;"));
    EXPECT_FALSE(holds(html, "Does it fit?"));
}

TEST_F(CPage, HoldsConfigurationsAgainstTheDevice) {
    ASSERT_EQ(pm9_tree_set_string(configuration.get(), "\\Plotter/DriverCustom\\dmFormName", PM9_Z, "A17",
                                  PM9_Z, nullptr),
              PM9_OK);
    const pm9_page_part description = part(device.get(), "DX");
    const CTree other = sample("office.pc2");
    const std::string html =
        page(&description, {part(configuration.get(), "one.pia"), part(other.get(), "two.pc2")});
    EXPECT_TRUE(holds(html, "Does it fit?"));
    EXPECT_TRUE(holds(html, "The device has no media size"));
    EXPECT_LT(html.find("one.pia"), html.find("two.pc2"));
}

TEST_F(CPage, ShowsTheNodesThatItIsTold) {
    const CTree both = sample("sections.dpia");
    const std::string html = page(nullptr, {part(both.get(), "Office part", "\\Office")});
    EXPECT_TRUE(holds(html, "Office part"));
    EXPECT_FALSE(holds(html, "Workshop"));
    const CTree placed = c_tree();
    const pm9_load_options here{sizeof here, PM9_FILE_ANY, 0, "\\here", PM9_Z, nullptr, 0, nullptr, nullptr};
    const std::string folder = std::string(PM_SAMPLES) + "/dx4200";
    ASSERT_EQ(pm9_tree_load(placed.get(), folder.c_str(), PM9_Z, &here, nullptr), PM9_OK);
    const pm9_page_part found = part(placed.get(), "DX");
    const pm9_page_part given = part(placed.get(), "DX", "\\here");
    const pm9_page_part alone = part(device.get(), "DX");
    EXPECT_TRUE(page(&found, {}) == page(&given, {}));
    EXPECT_TRUE(page(&found, {}).size() == page(&alone, {}).size());
}

TEST_F(CPage, TakesTheMapAndTheOwnerThatItIsGiven) {
    const pm9_page_part description = part(device.get(), "DX");
    const CTree tree = c_tree();
    ASSERT_EQ(pm9_tree_set_string(tree.get(), "\\paper", PM9_Z, "A17", PM9_Z, nullptr), PM9_OK);
    const std::vector<pm9_page_part> one = {part(tree.get(), "one")};
    const pm9_page_options options{
        sizeof options, R"({"replace": true, "settings": [{"setting": "size", "path": "\\paper"}]})", PM9_Z,
        3, 0};
    EXPECT_FALSE(holds(page(&description, one), "The device has no media size"));
    EXPECT_TRUE(holds(page(&description, one, &options), "The device has no media size"));
    const pm9_page_options nobody{sizeof nobody, nullptr, 0, -1, 0};
    const pm9_page_options owner{sizeof owner, nullptr, 0, 3, 0};
    const std::vector<pm9_page_part> plotter = {part(configuration.get(), "plotter")};
    EXPECT_TRUE(page(&description, plotter, &nobody) == page(&description, plotter));
    EXPECT_TRUE(page(&description, plotter, &owner) != page(&description, plotter));
}

TEST_F(CPage, StepsAsFarAsTheCallersItemsLieApart) {
    struct Larger {
        pm9_page_part known;
        std::uint64_t added;
    };
    Larger parts[] = {{part(configuration.get(), "one.pia"), 1}, {part(configuration.get(), "two.pia"), 2}};
    parts[0].known.size = parts[1].known.size = sizeof(Larger);
    char* html = nullptr;
    std::size_t length = 0;
    ASSERT_EQ(pm9_report_page(nullptr, &parts[0].known, sizeof(Larger), 2, nullptr, &html, &length, nullptr),
              PM9_OK);
    const std::string both = taken(html, length);
    EXPECT_TRUE(holds(both, "one.pia"));
    EXPECT_TRUE(holds(both, "two.pia"));
}

TEST_F(CPage, OfNothingIsRefused) {
    EXPECT_EQ(refused(nullptr, nullptr, 0), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(told(error), "78 at \"pm9c\" with \"configurations\"");
    EXPECT_EQ(refused(nullptr, nullptr, 1), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(told(error), "78 at \"pm9c\" with \"configurations\"");
    pm9_page_part none = part(nullptr, "none");
    EXPECT_EQ(refused(&none, nullptr, 0), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(told(error), "78 at \"pm9c\" with \"tree\"");
    EXPECT_EQ(refused(nullptr, &none, 1), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(told(error), "78 at \"pm9c\" with \"tree\"");
}

TEST_F(CPage, OfStructsThatAreTooSmallIsRefused) {
    pm9_page_part small = part(configuration.get(), "a");
    EXPECT_EQ(refused(nullptr, &small, 1, nullptr, sizeof small - 8), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(told(error), "78 at \"pm9c\" with \"item_size\"");
    EXPECT_EQ(refused(nullptr, &small, 1, nullptr, sizeof small + 1), PM9_ERR_INVALID_ARGUMENT);
    const pm9_page_options options{sizeof options - 1, nullptr, 0, -1, 0};
    EXPECT_EQ(refused(nullptr, &small, 1, &options), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(told(error), "78 at \"pm9c\" with \"options\"");
    small.size -= 1;
    EXPECT_EQ(refused(nullptr, &small, 1), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(told(error), "78 at \"pm9c\" with \"configurations\"");
    EXPECT_EQ(refused(&small, nullptr, 0), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(told(error), "78 at \"pm9c\" with \"description\"");
}

TEST_F(CPage, OfWhatIsntThereIsBadInput) {
    const pm9_page_part no_device = part(configuration.get(), "a");
    EXPECT_EQ(refused(&no_device, nullptr, 0), PM9_BAD_INPUT);
    const pm9_page_part no_node = part(configuration.get(), "a", "\\no");
    EXPECT_EQ(refused(nullptr, &no_node, 1), PM9_BAD_INPUT);
    EXPECT_EQ(told(error), "200 at \"pm9kit\" with \"There is no node \\no.\"");
    EXPECT_EQ(refused(&no_node, nullptr, 0), PM9_BAD_INPUT);
    const pm9_page_options no_map{sizeof no_map, "no JSON", PM9_Z, -1, 0};
    EXPECT_EQ(refused(nullptr, &no_device, 1, &no_map), PM9_BAD_INPUT);
}

} // namespace
