#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kit/report/pages.h>
#include <pm_test_paths.h>
#include <set>

namespace {

using pm::Tree;
using pm_test::Markup;
using pm_test::MarkupElement;
using testing::ElementsAre;
using testing::HasSubstr;

Tree sample(const std::string& name, PM_Object::FileType type) {
    return pm::load(std::string(PM_SAMPLES "/") + name, {.type = type}).tree;
}

std::string device_page() {
    const Tree device = sample("dx4200/strings.pdt", PM_Object::FILE_PDT);
    return pm::kit::report_page({pm::kit::ReportDescription{"dx4200", device.root()}, {}});
}

TEST(PageOfTheSample, HasAllSections) {
    const Markup page(device_page());
    EXPECT_THAT(page.texts("h1"), ElementsAre("Draftex DX-4200"));
    EXPECT_THAT(page.texts("h2"),
                ElementsAre("Media", "Sources, outputs and finishing", "Colours, resolutions and memory",
                            "Dithering", "Connections", "Pens and line types",
                            "Settings of this device alone", "Ownership and abilities"));
    EXPECT_EQ(page.find("svg", "medium").size(), 44U);
    EXPECT_EQ(page.find("svg", "matrix").size(), 2U);
    EXPECT_EQ(page.find("li", "card line-type").size(), 15U);
    EXPECT_EQ(page.find("tr", "resolution").size(), 13U);
    EXPECT_EQ(page.find("li", "card output").size(), 4U);
}

TEST(PageOfTheSample, HasNoWordThatIsUnknown) {
    const Markup page(device_page());
    for (const std::string& heading : page.texts("h3")) {
        EXPECT_THAT(heading, Not(HasSubstr("unknown")));
    }
    for (const std::string& item : page.texts("li")) {
        EXPECT_THAT(item, Not(HasSubstr("unknown")));
        EXPECT_THAT(item, Not(HasSubstr("(no.")));
    }
}

TEST(PageOfTheSample, IsTheSameEachTime) {
    EXPECT_EQ(device_page(), device_page());
}

TEST(PageOfTheSample, IsAccessible) {
    const Markup page(device_page());
    EXPECT_EQ(page.find("html").at(0).attribute("lang"), "en");
    std::set<std::string> ids;
    for (const MarkupElement& element : page.all()) {
        if (const std::string id = element.attribute("id"); !id.empty()) {
            EXPECT_TRUE(ids.insert(id).second) << id;
        }
        if (element.name == "th") {
            EXPECT_THAT(element.attribute("scope"), testing::AnyOf("col", "row", "rowgroup"));
        }
        if (element.name == "svg" && element.attribute("role") != "img") {
            EXPECT_EQ(element.outer.back(), "div"); // an arrow, hidden from readers
        }
    }
    for (const MarkupElement& section : page.find("section")) {
        EXPECT_TRUE(ids.contains(section.attribute("aria-labelledby")));
    }
    const auto drawings = page.find("svg");
    const auto named = std::ranges::count_if(
        drawings, [](const MarkupElement& drawing) { return drawing.attribute("role") == "img"; });
    const auto titles = page.find("title");
    EXPECT_EQ(
        std::ranges::count_if(titles, [](const MarkupElement& title) { return title.outer.back() == "svg"; }),
        named);
}

TEST(PageOfTheSample, HasHeadingsThatLeaveOutNoLevel) {
    const Markup page(device_page());
    int level = 0;
    for (const MarkupElement& element : page.all()) {
        if (element.name.size() == 2 && element.name[0] == 'h' && element.name[1] >= '1' &&
            element.name[1] <= '6') {
            const int next = element.name[1] - '0';
            EXPECT_LE(next, level + 1) << element.text;
            level = next;
        }
    }
}

TEST(PageOfConfigurations, ShowsEachSample) {
    const Tree plotter = sample("plotter.pia", PM_Object::FILE_PIA);
    const Tree office = sample("office.pc2", PM_Object::FILE_PC2);
    const Tree pens = sample("pens.pcp", PM_Object::FILE_PCP);
    EXPECT_THAT(pm_test::settings_of(plotter).texts("h3"),
                ElementsAre("General", "Model", "Media", "Colour, resolution and memory", "Connections",
                            "Pens", "Start and end strings", "Calibration"));
    EXPECT_THAT(pm_test::settings_of(office).texts("tr", "setting"),
                testing::Contains(HasSubstr("Color 1 to 255 1: 1 2: 2 3: 3")));
    EXPECT_THAT(pm_test::settings_of(pens).section("configuration"), HasSubstr("General: 255 entries"));
}

} // namespace
