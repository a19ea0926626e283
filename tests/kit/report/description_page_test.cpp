#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <kit/report/pages.h>

namespace {

using pm::Tree;
using pm_test::Markup;
using pm_test::MarkupElement;
using pm_test::page_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// A sheet of 200 by 100 whose edge of 10 all round can't be printed on.
Tree one_size() {
    Tree tree;
    tree.set("\\media\\size\\0\\name", "Card");
    tree.set("\\media\\size\\0\\localized_name", "A card (200 × 100 mm)");
    tree.set("\\media\\size\\0\\media_group", 4);
    tree.set("\\media\\size\\0\\media_description_name", "Card_area");
    tree.set("\\media\\description\\0\\name", "Card_area");
    tree.set("\\media\\description\\0\\printable_area", 0.72);
    tree.set("\\media\\description\\0\\media_bounds_urx", 200.0);
    tree.set("\\media\\description\\0\\media_bounds_ury", 100.0);
    tree.set("\\media\\description\\0\\printable_bounds_llx", 10.0);
    tree.set("\\media\\description\\0\\printable_bounds_lly", 10.0);
    tree.set("\\media\\description\\0\\printable_bounds_urx", 190.0);
    tree.set("\\media\\description\\0\\printable_bounds_ury", 90.0);
    return tree;
}

TEST(MediaSection, DrawsASizeToScaleWithItsPrintableArea) {
    const Markup page = page_of(one_size());
    ASSERT_EQ(page.find("svg", "medium").size(), 1U);
    const MarkupElement paper = page.find("rect", "paper")[1]; // the first is the legend's
    const MarkupElement printable = page.find("rect", "printable")[1];
    EXPECT_EQ(paper.attribute("width"), "100");
    EXPECT_EQ(paper.attribute("height"), "50");
    EXPECT_EQ(printable.attribute("x"), "6");
    EXPECT_EQ(printable.attribute("y"), "6");
    EXPECT_EQ(printable.attribute("width"), "90");
    EXPECT_EQ(printable.attribute("height"), "40");
    EXPECT_THAT(page.texts("title"),
                testing::Contains("A card (200 × 100 mm): 200 × 100 mm, printable 180 × 80 mm"));
}

TEST(MediaSection, TellsTheBoundsOnceAndThePartThatIsPrintable) {
    const Markup page = page_of(one_size());
    EXPECT_THAT(page.texts("p", "name"), ElementsAre("A card"));
    EXPECT_THAT(page.section("media"), HasSubstr("200 × 100 mm"));
    EXPECT_THAT(page.section("media"), HasSubstr("72 % printable"));
    EXPECT_THAT(page.texts("td"), testing::Contains("left 10, right 10, top 10, bottom 10 mm"));
}

TEST(MediaSection, TellsBoundsAndPrintablePartBelowTheName) {
    EXPECT_THAT(page_of(one_size()).texts("p", "muted"),
                testing::IsSupersetOf({"200 × 100 mm", "72 % printable"}));
}

TEST(MediaSection, TagsTheSizeByDefault) {
    Tree tree = one_size();
    EXPECT_THAT(page_of(tree).texts("p", "marks"), IsEmpty());
    tree.set("\\media\\default_size", "Card");
    EXPECT_THAT(page_of(tree).texts("p", "marks"), ElementsAre("default"));
}

TEST(MediaSection, LeavesATitleOfBoundsAlone) {
    Tree tree = one_size();
    tree.set("\\media\\size\\0\\localized_name", " (200 × 100 mm)");
    EXPECT_THAT(page_of(tree).texts("p", "name"), ElementsAre("(200 × 100 mm)"));
}

TEST(MediaSection, GroupsSizesUnderTheNamesOfTheirGroups) {
    Tree tree = one_size();
    tree.set("\\media\\size\\1\\name", "Odd");
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("h3"), testing::IsSupersetOf({"ISO", "Of no group"}));
    EXPECT_THAT(page.section("media"), HasSubstr("not drawn"));
}

TEST(MediaSection, DrawsSizesWhoseSidesAreBothWithinBounds) {
    for (const std::string side : {"media_bounds_urx", "media_bounds_ury"}) {
        Tree tree = one_size();
        for (const double length : {0.1, 999999.0}) {
            tree.set("\\media\\description\\0\\" + side, length);
            EXPECT_EQ(page_of(tree).find("svg", "medium").size(), 1U) << side << length;
        }
        for (const double length : {0.09, 1e6}) {
            tree.set("\\media\\description\\0\\" + side, length);
            EXPECT_THAT(page_of(tree).find("svg", "medium"), IsEmpty()) << side << length;
        }
    }
}

TEST(MediaSection, DrawsTheScaleOfAGroup) {
    const Markup page = page_of(one_size());
    std::vector<std::string> lines;
    for (const MarkupElement& line : page.find("line", "scale")) {
        lines.push_back(line.attribute("x1") + " " + line.attribute("y1") + " to " + line.attribute("x2") +
                        " " + line.attribute("y2"));
    }
    EXPECT_THAT(lines, ElementsAre("1 8 to 51 8", "1 3 to 1 13", "51 3 to 51 13"));
    EXPECT_THAT(page.texts("text"), ElementsAre("100 mm"));
    EXPECT_EQ(page.find("text").at(0).attribute("x"), "58");
}

TEST(MediaSection, TellsNoMarginsOfASizeWithoutAPrintableArea) {
    Tree tree;
    tree.set("\\media\\size\\0\\name", "Odd");
    tree.set("\\media\\size\\0\\width", 50.0);
    tree.set("\\media\\size\\0\\height", 20.0);
    EXPECT_THAT(page_of(tree).texts("tr", "size-row"), ElementsAre("OddOdd50 × 20 mm–––"));
}

TEST(MediaSection, TellsTheSourcesOfASize) {
    Tree tree = one_size();
    tree.set("\\media\\source\\Tray\\localized_name", "Upper tray");
    tree.set("\\media\\source\\Tray\\entry\\Cards\\size_names\\0\\name", "Card");
    EXPECT_THAT(page_of(tree).texts("td"), testing::Contains("Upper tray"));
}

TEST(MediaSection, TellsEachSourceOfASizeOnce) {
    Tree tree = one_size();
    tree.set("\\media\\source\\Tray\\entry\\Cards\\size_names\\0\\name", "Card");
    tree.set("\\media\\source\\Tray\\entry\\More\\size_names\\0\\name", "Card");
    tree.set("\\media\\source\\Roll\\entry\\Cards\\size_names\\0\\name", "Card");
    EXPECT_THAT(page_of(tree).texts("td"), testing::Contains("Tray, Roll"));
}

TEST(MediaSection, CountsTheSizesOfItsTable) {
    Tree tree = one_size();
    tree.set("\\media\\size\\1\\name", "Odd");
    EXPECT_THAT(page_of(tree).texts("summary"), ElementsAre("All 2 sizes as a table"));
}

TEST(MediaSection, ListsTypesAndMarksTheDefaultOne) {
    Tree tree;
    tree.set("\\media\\default_type", "Bond");
    tree.set("\\media\\type\\0\\name", "Bond");
    tree.set("\\media\\type\\0\\localized_name", "Plain paper");
    tree.set("\\media\\type\\0\\drying_time", 15);
    tree.set("\\media\\type\\0\\max_resolution_x", 600.0);
    tree.set("\\media\\type\\0\\max_resolution_y", 300.0);
    const Markup page = page_of(tree);
    EXPECT_EQ(page.texts("tr", "type-row").at(0), "Plain paper defaultBond600 × 300 dpi15 s");
}

TEST(FlowSection, ShowsSourcesWithWhatTheyAreLoadedWith) {
    Tree tree;
    tree.set("\\media\\source\\Roll_1\\feed", 3);
    tree.set("\\media\\source\\Roll_1\\default_entry", "Wide");
    tree.set("\\media\\source\\Roll_1\\entry\\Wide\\width", 914.4000244140625);
    tree.set("\\media\\source\\Roll_1\\entry\\Wide\\frame_height", 2500.0);
    tree.set("\\media\\source\\Roll_1\\entry\\Wide\\size_names\\0\\name", "A0");
    const Markup page = page_of(tree);
    EXPECT_THAT(page.section("flow"), HasSubstr("Roll feeder"));
    EXPECT_THAT(page.texts("li", "entry"), ElementsAre("Wide default Wide · 914.4 × 2500 mm, 1 size"));
}

TEST(FlowSection, TellsTheSizeThatAnEntryHasByDefault) {
    Tree tree;
    tree.set("\\media\\source\\Roll_1\\entry\\Wide\\default_size", "A0");
    EXPECT_THAT(page_of(tree).texts("li", "entry"), ElementsAre("Wide Wide by default A0"));
}

TEST(FlowSection, DrawsTheFinishingOfAnOutputInTheOrderOfTheWork) {
    Tree tree;
    tree.set("\\media\\destination\\Bin\\default_stapling", "Corner");
    tree.set("\\media\\destination\\Bin\\stapling\\Corner\\location", 1);
    tree.set("\\media\\destination\\Bin\\stapling\\Corner\\when", 2);
    tree.set("\\media\\destination\\Bin\\stapling\\Corner\\orientation", 45);
    tree.set("\\media\\destination\\Bin\\folding\\Z\\folding_type", 1);
    tree.set("\\media\\destination\\Bin\\folding\\Z\\when", 3);
    tree.set("\\media\\destination\\Bin\\cutting\\Cut\\when", 1);
    tree.set("\\media\\destination\\Bin\\collating\\Sets\\collating_type", 1);
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("h5"), ElementsAre("Cutting", "Collating", "Folding", "Stapling"));
    EXPECT_EQ(page.find("line", "crease").size(), 3U);
    EXPECT_EQ(page.find("line", "staple").at(0).attribute("transform"), "rotate(-45 11 7)");
    EXPECT_THAT(page.texts("li", "step"),
                testing::Contains(HasSubstr("Corner default portrait, upper left, 45°, after each set")));
}

TEST(ResolutionSection, ShowsModesWithTheirResolutionsAndMemory) {
    Tree tree;
    tree.set("\\res_color_mem\\default_name", "Grays");
    tree.set("\\res_color_mem\\mem_area_list\\Small\\localized_name", "Small memory");
    tree.set("\\res_color_mem\\mem_area_list\\Small\\device_memory", 128);
    tree.set("\\res_color_mem\\mem_area_list\\Big\\device_memory", 512);
    tree.set("\\res_color_mem\\dithering_list\\Fine\\localized_name", "Fine dots");
    tree.set("\\res_color_mem\\rcm_list\\Grays\\number_of_colors", 256);
    tree.set("\\res_color_mem\\rcm_list\\Grays\\color_depth", 8);
    tree.set("\\res_color_mem\\rcm_list\\Grays\\color_system", 3);
    const std::string resolution = "\\res_color_mem\\rcm_list\\Grays\\resolution_list\\600_dpi\\";
    tree.set(resolution + "physical_resolution_x", 600.0);
    tree.set(resolution + "physical_resolution_y", 300.0);
    tree.set(resolution + "res_color_mem\\dithering_list", "Fine");
    tree.set(resolution + "default_mem_area", "Small");
    tree.set(resolution + "mem_area\\0\\name", "Small");
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("tr", "resolution"),
                ElementsAre("600_dpi600_dpi600 × 300––Fine dots Small memory default"));
    EXPECT_THAT(page.section("resolution"), HasSubstr("256 colours, 8 bit"));
    EXPECT_THAT(page.section("resolution"), HasSubstr("Grey scale"));
    EXPECT_EQ(page.find("rect", "fill").at(0).attribute("width"), "30"); // a quarter of 120
    EXPECT_EQ(page.find("rect", "fill").at(1).attribute("width"), "120");
}

TEST(PensSection, NumbersADefaultSpeedThatIsFarFromBothEnds) {
    Tree tree;
    tree.set("\\physical_pen\\max_npens", 8);
    tree.set("\\physical_pen\\min_speed", 0.0);
    tree.set("\\physical_pen\\max_speed", 100.0);
    tree.set("\\physical_pen\\default_speed", 20.0);
    EXPECT_THAT(page_of(tree).texts("text"), ElementsAre("0", "100"));
    tree.set("\\physical_pen\\default_speed", 21.0);
    EXPECT_THAT(page_of(tree).texts("text"), ElementsAre("0", "100", "21"));
}

TEST(ResolutionSection, ShowsTheInksOfAColourSystem) {
    Tree tree;
    tree.set("\\res_color_mem\\rcm_list\\Inks\\color_system", 4);
    const Markup page = page_of(tree);
    ASSERT_EQ(page.find("svg", "swatch").size(), 1U);
    for (const char* const ink : {"cyan", "magenta", "yellow", "black"}) {
        EXPECT_EQ(page.find("rect", ink).size(), 2U) << ink;
    }
    EXPECT_EQ(page.find("rect", "yellow").at(0).attribute("x"), "65");
}

TEST(ResolutionSection, TellsTheColourSystemBesideItsInks) {
    Tree tree;
    tree.set("\\res_color_mem\\rcm_list\\Grays\\color_system", 3);
    EXPECT_THAT(page_of(tree).texts("span", "muted"), ElementsAre("Grey scale"));
}

TEST(ResolutionSection, TagsTheModeByDefault) {
    Tree tree;
    tree.set("\\res_color_mem\\default_name", "Grays");
    tree.set("\\res_color_mem\\rcm_list\\Grays\\color_depth", 8);
    tree.set("\\res_color_mem\\rcm_list\\Inks\\color_depth", 8);
    EXPECT_THAT(page_of(tree).texts("h3"), ElementsAre("Grays default", "Inks"));
}

TEST(ResolutionSection, TellsThatAModeHasNoResolutions) {
    Tree tree;
    tree.set("\\res_color_mem\\rcm_list\\Grays\\color_depth", 8);
    EXPECT_THAT(page_of(tree).texts("p"), ElementsAre("Grays · 8 bit", "No resolutions."));
}

TEST(ResolutionSection, TellsTheMemoryBesideItsBar) {
    Tree tree;
    tree.set("\\res_color_mem\\mem_area_list\\Small\\device_memory", 128);
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("td", "bar-cell"), ElementsAre("128 MB 128 MB", "–"));
    EXPECT_THAT(page.texts("title"), testing::Contains("128 MB"));
}

TEST(ResolutionSection, DrawsNoInksOfAnUnknownSystem) {
    for (const int system : {-1, 5}) {
        Tree tree;
        tree.set("\\res_color_mem\\rcm_list\\Inks\\color_system", system);
        const Markup page = page_of(tree);
        EXPECT_THAT(page.find("svg", "swatch"), IsEmpty());
        EXPECT_THAT(page.section("resolution"), HasSubstr(system < 0 ? "unknown (-1)" : "unknown (5)"));
    }
}

TEST(PensSection, DrawsTheSpeedsWithTheirNumbers) {
    Tree tree;
    tree.set("\\physical_pen\\max_npens", 8);
    tree.set("\\physical_pen\\min_speed", 10.0);
    tree.set("\\physical_pen\\max_speed", 400.0);
    tree.set("\\physical_pen\\default_speed", 205.0);
    const Markup page = page_of(tree);
    EXPECT_EQ(page.find("svg", "range").size(), 1U);
    EXPECT_THAT(page.texts("text"), ElementsAre("10", "400", "205"));
}

TEST(PensSection, TellsSpeedsThatMakeNoRangeInFacts) {
    Tree tree;
    tree.set("\\physical_pen\\max_width", 1.0);
    tree.set("\\physical_pen\\min_speed", 10.0);
    tree.set("\\physical_pen\\max_speed", 400.0);
    EXPECT_THAT(page_of(tree).texts("div", "fact"),
                ElementsAre("Descriptiondevice", "Lowest speed10 mm/s", "Highest speed400 mm/s"));
    Tree other;
    other.set("\\physical_pen\\max_width", 1.0);
    other.set("\\physical_pen\\default_speed", 20.0);
    EXPECT_THAT(page_of(other).texts("div", "fact"),
                ElementsAre("Descriptiondevice", "Speed by default20 mm/s"));
}

TEST(DitheringSection, DrawsAMatrixByItsThresholds) {
    Tree tree;
    const std::string method = "\\res_color_mem\\dithering_list\\Two\\";
    tree.set(method + "matrix_size_x", 2);
    tree.set(method + "matrix_size_y", 2);
    tree.set(method + "matrix_list\\M\\0\\data", 0);
    tree.set(method + "matrix_list\\M\\1\\data", 2);
    tree.set(method + "matrix_list\\M\\3\\data", 4);
    const Markup page = page_of(tree);
    std::vector<std::string> fills;
    for (const MarkupElement& cell : page.find("rect")) {
        if (!cell.attribute("fill").empty()) {
            fills.push_back(cell.attribute("fill"));
        }
    }
    EXPECT_THAT(fills, ElementsAre("rgb(0,0,0)", "rgb(128,128,128)", "rgb(255,255,255)"));
    EXPECT_EQ(page.find("rect", "gap").size(), 1U);
    EXPECT_THAT(page.texts("figcaption"), ElementsAre("Matrix M, 2 × 2"));
    EXPECT_EQ(page.find("path", "ink").size(), 1U);
}

TEST(DitheringSection, DrawsTheDotsOfARamp) {
    Tree tree;
    const std::string method = "\\res_color_mem\\dithering_list\\One\\";
    tree.set(method + "matrix_size_x", 1);
    tree.set(method + "matrix_size_y", 1);
    tree.set(method + "matrix_list\\M\\0\\data", 3);
    const std::string dots = page_of(tree).find("path", "ink").at(0).attribute("d");
    EXPECT_EQ(dots.substr(0, 24), "M0 0h1v1h-1zM1 0h1v1h-1z");
    EXPECT_EQ(std::ranges::count(dots, 'M'), 48 * 16); // the darker half
}

TEST(DitheringSection, DrawsNoCellWhoseNameIsNoNumber) {
    Tree tree;
    const std::string method = "\\res_color_mem\\dithering_list\\One\\";
    tree.set(method + "matrix_size_x", 1);
    tree.set(method + "matrix_size_y", 1);
    tree.set(method + "matrix_list\\M\\first\\data", 7);
    tree.set(method + "matrix_list\\M\\0\\data", 3);
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("figcaption"), ElementsAre("Matrix M, 1 × 1"));
    EXPECT_THAT(page.texts("text"), ElementsAre("3"));
}

TEST(DitheringSection, DoesNotDrawAMatrixThatIsTooLarge) {
    Tree tree;
    const std::string method = "\\res_color_mem\\dithering_list\\Huge\\";
    tree.set(method + "matrix_size_x", 2147483647);
    tree.set(method + "matrix_size_y", 2147483647);
    tree.set(method + "matrix_list\\M\\0\\data", 1);
    EXPECT_THAT(page_of(tree).texts("figcaption"),
                ElementsAre("Matrix M, 2147483647 × 2147483647 (not drawn)"));
}

TEST(DitheringSection, DoesNotDrawAMatrixOfANegativeSide) {
    for (const std::string side : {"matrix_size_x", "matrix_size_y"}) {
        Tree tree;
        const std::string method = "\\res_color_mem\\dithering_list\\Odd\\";
        tree.set(method + "matrix_size_x", 2);
        tree.set(method + "matrix_size_y", 2);
        tree.set(method + side, -2);
        tree.set(method + "matrix_list\\M\\0\\data", 1);
        EXPECT_THAT(page_of(tree).texts("figcaption"), ElementsAre(HasSubstr(" (not drawn)"))) << side;
    }
}

TEST(DitheringSection, DrawsNoDotAsLightAsItsThreshold) {
    Tree tree;
    const std::string method = "\\res_color_mem\\dithering_list\\Rows\\";
    tree.set(method + "matrix_size_x", 1);
    tree.set(method + "matrix_size_y", 2);
    tree.set(method + "matrix_list\\M\\0\\data", 0);
    tree.set(method + "matrix_list\\M\\1\\data", 31);
    const std::string dots = page_of(tree).find("path", "ink").at(0).attribute("d");
    EXPECT_EQ(std::ranges::count(dots, 'M'), 8 * (1 + 94)); // the next one of each row is just as light
}

TEST(DitheringSection, DrawsTheNumberOfAMiddleGreyAsOnLight) {
    Tree tree;
    const std::string method = "\\res_color_mem\\dithering_list\\One\\";
    tree.set(method + "matrix_size_x", 1);
    tree.set(method + "matrix_size_y", 1);
    tree.set(method + "matrix_list\\M\\0\\data", 3);
    EXPECT_THAT(page_of(tree).texts("text", "on-light"), ElementsAre("3"));
}

TEST(DitheringSection, TellsThePixelsOnceBothSidesOfTheRatioAreThere) {
    const std::string method = "\\res_color_mem\\dithering_list\\One\\";
    for (const std::string side : {"source_pixel_ratio", "pixel_expansion_ratio"}) {
        Tree tree;
        tree.set(method + side, 2);
        EXPECT_THAT(page_of(tree).section("dither"), Not(HasSubstr("Pixels"))) << side;
    }
    Tree tree;
    tree.set(method + "source_pixel_ratio", 2);
    tree.set(method + "pixel_expansion_ratio", 3);
    EXPECT_THAT(page_of(tree).texts("div", "fact"), testing::Contains("Pixels2 to 3"));
}

TEST(ConnectionsSection, TellsMethodsInWords) {
    Tree tree;
    tree.set("\\io\\default_type", 4);
    const std::string method = "\\io\\method\\4\\";
    tree.set(method + "min_output_timeout", 5);
    tree.set(method + "max_output_timeout", 105);
    tree.set(method + "default_output_timeout", 30);
    tree.set(method + "default_baud_rate", 9600);
    tree.set(method + "baudrates\\0\\rate", 1200);
    tree.set(method + "baudrates\\1\\rate", 9600);
    tree.set(method + "default_protocol", "8N1");
    tree.set(method + "protocol\\0\\canonical_name", "8N1");
    tree.set(method + "protocol\\0\\data_bits", 3);
    tree.set(method + "protocol\\0\\parity", 0);
    tree.set(method + "protocol\\0\\stop_bits", 0);
    tree.set(method + "handshakes", 6);
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("h3"), ElementsAre("Serial port (RS-232) default"));
    EXPECT_THAT(page.texts("tr", "protocol"), ElementsAre("8N1 default8N18none1"));
    EXPECT_THAT(page.texts("li"), testing::IsSupersetOf({"1,200", "9,600 default", "XON/XOFF out", "CTS"}));
    EXPECT_THAT(page.texts("figcaption"), ElementsAre("Output timeout: 30 s by default, 5 to 105 s"));
    EXPECT_EQ(page.find("circle", "knob").at(0).attribute("cx"), "54"); // a quarter of the way
}

TEST(ConnectionsSection, HasAHeadingForEachListOfAMethod) {
    Tree tree;
    const std::string method = "\\io\\method\\4\\";
    tree.set(method + "baudrates\\0\\rate", 1200);
    tree.set(method + "protocol\\0\\canonical_name", "8N1");
    tree.set(method + "handshakes", 6);
    tree.set(method + "default_handshake", 2);
    tree.set(method + "bidi_flags", 0);
    EXPECT_THAT(page_of(tree).texts("h4"), ElementsAre("Baud rates", "Protocols", "Handshakes",
                                                       "Handshake by default", "Reports of the device"));
}

TEST(ConnectionsSection, TellsATimeoutWithoutAllItsNumbersInFacts) {
    const std::vector<std::pair<std::string, std::string>> numbers{
        {"min_", "Shortest output timeout5 s"},
        {"max_", "Longest output timeout5 s"},
        {"default_", "Output timeout by default5 s"}};
    for (unsigned given = 1; given < 7; ++given) {
        Tree tree;
        std::vector<std::string> facts{"Descriptiondevice"};
        for (std::size_t at = 0; at < numbers.size(); ++at) {
            if ((given >> at & 1U) == 0) continue;
            tree.set("\\io\\method\\4\\" + numbers[at].first + "output_timeout", 5);
            facts.push_back(numbers[at].second);
        }
        EXPECT_EQ(page_of(tree).texts("div", "fact"), facts);
    }
}

TEST(ConnectionsSection, TellsThatAMethodHasNothingMoreToSet) {
    const std::string method = "\\io\\method\\4\\";
    Tree tree;
    tree.set(method + "handshakes", 6);
    EXPECT_THAT(page_of(tree).texts("p", "muted"), ElementsAre("Nothing more to set."));
    for (const std::string item : {"default_output_timeout", "protocol\\0\\parity", "baudrates\\0\\rate"}) {
        Tree more;
        more.set(method + item, 1);
        EXPECT_THAT(page_of(more).texts("p", "muted"), IsEmpty()) << item;
    }
}

TEST(PensSection, DrawsPensAsWideAsTheyAre) {
    Tree tree;
    tree.set("\\physical_pen\\max_npens", 8);
    tree.set("\\physical_pen\\max_width", 2.54);
    tree.set("\\physical_pen\\max_optimization", 2);
    const Markup page = page_of(tree);
    EXPECT_EQ(page.find("line", "pen-line").at(0).attribute("stroke-width"), "9.6");
    EXPECT_THAT(page.section("pens"), HasSubstr("sorts by pen"));
}

TEST(PensSection, DrawsTheLineTypesThatTheDeviceHas) {
    Tree tree;
    tree.set("\\linetype\\capabilities", "10001");
    tree.set("\\linetype\\font\\0\\width", 0.05);
    tree.set("\\linetype\\font\\16\\width", 0.15);
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("li", "line-type"),
                ElementsAre(HasSubstr("from 0.05 mm"), HasSubstr("from 0.15 mm")));
    EXPECT_THAT(page.texts("title"), testing::IsSupersetOf({"Solid", "Sparse dot"}));
    EXPECT_EQ(page.find("line", "pen-line").at(1).attribute("stroke-dasharray"), "1.5 14");
}

TEST(CustomSection, ShowsRangesAndLists) {
    Tree tree;
    tree.set("\\custom_name\\Fan\\localized_name", "Fan speed");
    tree.set("\\custom_name\\Fan\\data_type", 1);
    tree.set("\\custom_name\\Fan\\default_value", 60);
    tree.set("\\custom_name\\Fan\\range_type", true);
    tree.set("\\custom_name\\Fan\\range_min", 0.0);
    tree.set("\\custom_name\\Fan\\range_max", 100.0);
    tree.set("\\custom_name\\Ink\\range_type", false);
    tree.set("\\custom_name\\Ink\\default_value", "Off");
    tree.set("\\custom_name\\Ink\\value_list\\0\\value", "Off");
    tree.set("\\custom_name\\Ink\\value_list\\1\\value", "On");
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("tr", "custom"),
                ElementsAre("Fan speedFaninteger600 to 100", HasSubstr("Off default On")));
}

TEST(OwnershipSection, NamesSettingsUnderTheirOwners) {
    Tree tree;
    tree.set("\\init_term\\ui_owner", "021");
    tree.set("\\init_term\\abilities", "505");
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("tr"),
                testing::IsSupersetOf(
                    {"Start and end strings Before initialization At the end After initialization–",
                     "Start and end strings Before initialization At the end After initialization"}));
}

TEST(OwnershipSection, WhatIsNoDigitIsNobodys) {
    Tree tree;
    tree.set("\\init_term\\ui_owner", ":G ");
    EXPECT_THAT(page_of(tree).texts("tr"), testing::Contains("Start and end strings––––"));
}

TEST(OwnershipSection, HasNoDigitsButThoseOfOwnersAndUnknownPlaces) {
    Tree tree;
    tree.set("\\media\\ui_owner", "11111111111111111111113");
    EXPECT_THAT(page_of(tree).section("ownership"), HasSubstr("(no. 22)"));
}

TEST(DescriptionPage, HasOnlyTheSectionsThatTheDescriptionFills) {
    Tree tree;
    tree.set("\\meta\\localized_model_name", "Plotter 9");
    tree.set("\\linetype\\font\\0\\width", 1.0);
    const Markup page = page_of(tree);
    EXPECT_THAT(page.texts("h1"), ElementsAre("Plotter 9"));
    EXPECT_THAT(page.texts("h2"), ElementsAre("Pens and line types"));
    EXPECT_THAT(page.texts("a"), ElementsAre("To the content", "Pens and line types"));
}

TEST(DescriptionPage, HasTheModelAsItsTitle) {
    Tree tree;
    tree.set("\\meta\\localized_model_name", "Plotter 9");
    EXPECT_THAT(page_of(tree).texts("title"), ElementsAre("Plotter 9"));
}

TEST(DescriptionPage, TellsOfTheDriverAtTheTop) {
    Tree tree;
    tree.set("\\meta\\canonical_model_name", "P9");
    tree.set("\\meta\\canonical_family_name", "Plotters");
    tree.set("\\meta\\driver_version", "1.2");
    EXPECT_THAT(page_of(tree).texts("div", "fact"),
                ElementsAre("FamilyPlotters", "ModelP9", "Version of the driver1.2", "Descriptiondevice"));
    tree.set("\\meta\\localized_family_name", "All plotters");
    EXPECT_EQ(page_of(tree).texts("div", "fact").at(0), "FamilyAll plotters");
}

TEST(DescriptionPage, OfATreeWithoutADescriptionHasNoSection) {
    const Markup page = page_of(Tree());
    EXPECT_THAT(page.texts("h1"), ElementsAre("device"));
    EXPECT_THAT(page.find("section"), IsEmpty());
}

TEST(DescriptionPage, TakesValuesOfOtherTypesAsMissing) {
    Tree tree;
    tree.set("\\media\\size\\0\\name", 7);
    tree.set("\\media\\size\\0\\media_group", "ISO");
    tree.set("\\media\\default_size", true);
    tree.set("\\physical_pen\\max_npens", "many");
    tree.set("\\io\\method\\4\\handshakes", 1.5);
    tree.set("\\media\\ui_owner", 5);
    const Markup page = page_of(tree);
    EXPECT_THAT(page.section("media"), HasSubstr("(no name)"));
    EXPECT_THAT(page.section("media"), HasSubstr("Of no group"));
    EXPECT_THAT(page.section("io"), Not(HasSubstr("Handshakes")));
}

} // namespace
