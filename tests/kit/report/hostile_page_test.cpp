#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kit/report/pages.h>
#include <limits>

namespace {

using pm::Tree;
using pm_test::Markup;
using pm_test::page_of;
using pm_test::settings_of;
using testing::HasSubstr;
using testing::Not;

constexpr std::string_view script = "\"><script>alert('x')</script>&<b onload='y'>";

// Names in paths hold no backslash.
Tree hostile_description() {
    Tree tree;
    const std::string name(script);
    for (const std::string item : {"localized_model_name", "localized_family_name", "driver_tag_line",
                                   "driver_version", "canonical_model_name"}) {
        tree.set("\\meta\\" + item, name);
    }
    tree.set("\\media\\size\\0\\name", name);
    tree.set("\\media\\size\\0\\localized_name", name);
    tree.set("\\media\\type\\0\\name", name);
    tree.set("\\media\\source\\S\\localized_name", name);
    tree.set("\\media\\source\\S\\entry\\E\\default_size", name);
    tree.set("\\media\\destination\\D\\localized_name", name);
    tree.set("\\media\\destination\\D\\folding\\F\\localized_name", name);
    tree.set("\\res_color_mem\\rcm_list\\M\\localized_name", name);
    tree.set("\\res_color_mem\\rcm_list\\M\\resolution_list\\R\\localized_name", name);
    tree.set("\\res_color_mem\\mem_area_list\\A\\localized_name", name);
    tree.set("\\res_color_mem\\dithering_list\\N\\localized_name", name);
    tree.set("\\io\\method\\4\\protocol\\0\\canonical_name", name);
    tree.set("\\io\\default_plot_file_extension", name);
    tree.set("\\custom_name\\C\\localized_name", name);
    tree.set("\\custom_name\\C\\value_list\\0\\value", name);
    tree.set("\\media\\ui_owner", name);
    tree.set("\\linetype\\capabilities", name);
    tree.set("\\linetype\\font\\0\\width", 1.0);
    return tree;
}

TEST(HostileTexts, StayTexts) {
    const Tree tree = hostile_description();
    const Markup page = page_of(tree);
    EXPECT_TRUE(page.find("script").empty());
    EXPECT_TRUE(page.find("b").empty());
    EXPECT_EQ(page.texts("h1").at(0), script);
    for (const auto& element : page.all()) {
        EXPECT_EQ(element.attribute("onload"), "");
    }
}

TEST(HostileTexts, StayTextsInFindingsAndSettings) {
    const Tree tree = hostile_description();
    Tree office;
    const std::string text(script);
    office.set("\\<i>\\<u>", text);
    pm::kit::ReportInput input{pm::kit::ReportDescription{text, tree.root()},
                               {{text, office.root()}, {text, tree.root()}}};
    auto found = pm_test::finding(pm::kit::Severity::error, text, text, "\\media\\size\\0", text);
    found.configured = found.text = found.described = text;
    found.offers.push_back({text, text + "2", text});
    input.configurations[0].check.findings.push_back(found);
    const Markup page(pm::kit::report_page(input));
    for (const std::string_view name : {"script", "b", "i", "u"}) {
        EXPECT_TRUE(page.find(name).empty()) << name;
    }
    EXPECT_THAT(page.texts("li", "finding error").at(0), HasSubstr(text));
}

TEST(HostileTexts, OfBrokenUtf16AreReplaced) {
    Tree tree;
    tree.set("\\meta\\localized_model_name", std::u16string(u"a\xD800z"));
    EXPECT_EQ(page_of(tree).texts("h1").at(0), "a\uFFFDz");
}

TEST(HostileNumbers, LeaveDrawingsWithinBounds) {
    Tree tree;
    for (const double value : {std::numeric_limits<double>::infinity(),
                               std::numeric_limits<double>::quiet_NaN(), -1e300, 1e300, 0.0}) {
        tree.set("\\media\\size\\0\\name", "S");
        tree.set("\\media\\size\\0\\media_description_name", "D");
        tree.set("\\media\\description\\0\\name", "D");
        for (const std::string item :
             {"media_bounds_urx", "media_bounds_ury", "printable_bounds_llx", "printable_bounds_lly",
              "printable_bounds_urx", "printable_bounds_ury", "printable_area"}) {
            tree.set("\\media\\description\\0\\" + item, value);
        }
        for (const std::string item :
             {"min_width", "max_width", "default_width", "min_speed", "max_speed", "default_speed"}) {
            tree.set("\\physical_pen\\" + item, value);
        }
        tree.set("\\res_color_mem\\mem_area_list\\A\\device_memory", 5);
        tree.set("\\res_color_mem\\mem_area_list\\A\\printable_area", value);
        const std::string page =
            pm::kit::report_page({pm::kit::ReportDescription{"device", tree.root()}, {}});
        const Markup markup(page);
        for (const auto& element : markup.all()) {
            for (const std::string name : {"x", "y", "width", "height", "cx", "stroke-width"}) {
                EXPECT_THAT(element.attribute(name),
                            testing::AllOf(Not(HasSubstr("nan")), Not(HasSubstr("inf")), Not(HasSubstr("e"))))
                    << element.name;
            }
        }
    }
}

TEST(HostileTrees, MayBeDeepAndWide) {
    Tree tree;
    std::string path;
    for (int level = 0; level < 200; ++level) {
        path += "\\n";
    }
    tree.set(path + "\\value", 1);
    for (int node = 0; node < 3000; ++node) {
        tree.set("\\wide\\" + std::to_string(node) + "\\value", node);
    }
    EXPECT_THAT(settings_of(tree).section("configuration"), HasSubstr("Wide: 3000 entries"));
}

TEST(Pages, LoadNothingAndRunNothing) {
    const Tree tree = hostile_description();
    const std::string page = pm::kit::report_page({pm::kit::ReportDescription{"device", tree.root()}, {}});
    const Markup markup(page);
    for (const auto& element : markup.all()) {
        EXPECT_THAT(element.name,
                    Not(testing::AnyOf("script", "link", "img", "iframe", "object", "base", "form")));
        EXPECT_EQ(element.attribute("src"), "");
        EXPECT_EQ(element.attribute("style"), "");
        if (const std::string target = element.attribute("href"); !target.empty()) {
            EXPECT_EQ(target.front(), '#');
        }
    }
    EXPECT_THAT(page, Not(HasSubstr("url(")));
    EXPECT_THAT(page, Not(HasSubstr("@import")));
}

} // namespace
