#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <initializer_list>
#include <kit/report/pages.h>
#include <pm/value.h>

// What a page shows of a description that has little of a section, or values that say nothing.
namespace {

using pm::Tree;
using pm::Value;
using pm_test::Markup;
using pm_test::page_of;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

using Settings = std::vector<std::pair<std::string, Value>>;
using Texts = std::vector<std::string>;

Tree tree_of(const Settings& settings) {
    Tree tree;
    for (const auto& [path, value] : settings) {
        tree.set(path, value);
    }
    return tree;
}

// Settings below a node.
Settings below(const std::string& node, Settings settings) {
    for (auto& [path, value] : settings) {
        path = node + "\\" + path;
    }
    return settings;
}

// What the elements of that name and class hold on the page of a description of these settings.
struct Row {
    Settings settings;
    std::string_view element;
    std::string_view classes;
    Texts texts;
};

// The first fact of every page is the description's name.
Texts facts(Texts others) {
    others.insert(others.begin(), "Descriptiondevice");
    return others;
}

void expect_texts(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const Tree tree = tree_of(row.settings);
        EXPECT_EQ(row.texts, page_of(tree).texts(row.element, row.classes))
            << row.settings.front().first << ", " << row.settings.back().first;
    }
}

Markup page_with_finding(const Tree& device, const std::string& path) {
    pm::kit::ReportInput input{pm::kit::ReportDescription{"device", device.root()}, {}};
    input.description->check.findings.push_back(
        pm_test::finding(pm::kit::Severity::warning, "rule", "\\a", path, "Odd."));
    return Markup(pm::kit::report_page(input));
}

TEST(SparsePage, SectionOfAFindingAloneHasTheFindingAlone) {
    const std::pair<std::string, std::string> rows[] = {
        {"\\media\\size", "media"},
        {"\\media\\source", "flow"},
        {"\\res_color_mem\\rcm_list", "resolution"},
        {"\\res_color_mem\\dithering_list", "dither"},
        {"\\io\\method", "io"},
        {"\\physical_pen\\max_width", "pens"},
        {"\\custom_name\\Fan", "custom"},
        {"\\meta\\model_abilities", "ownership"},
    };
    const Tree device;
    for (const auto& [path, section] : rows) {
        const Markup page = page_with_finding(device, path);
        EXPECT_THAT(page.texts("li", "finding"),
                    ElementsAre("Doubtful Odd. Defaults of the device · \\a · rule rule"))
            << path;
        ASSERT_EQ(1U, page.find("section").size()) << path;
        EXPECT_EQ(section, page.find("section")[0].attribute("id"));
    }
}

TEST(SparsePage, FindingOfAPathThatOnlyBeginsLikeAnotherBelongsToNoSection) {
    const Tree device = tree_of({{"\\meta\\model_abilities", "1"}});
    for (const char* const path : {"\\mediaeval", "\\iota\\method", "\\meta\\model_ability", "\\other"}) {
        EXPECT_THAT(page_with_finding(device, path).texts("li", "finding"), IsEmpty()) << path;
    }
    EXPECT_EQ(1U, page_with_finding(device, "\\media\\x\\ui_owner").texts("li", "finding").size());
}

const std::string area = "\\media\\description\\0";

// A size of an area with these bounds.
Settings size_of(Settings bounds) {
    Settings settings = below(area, std::move(bounds));
    settings.insert(settings.begin(), {area + "\\name", "D"});
    settings.insert(settings.begin(), {"\\media\\size\\0\\media_description_name", "D"});
    settings.insert(settings.begin(), {"\\media\\size\\0\\name", "S"});
    return settings;
}

TEST(SparsePage, SizeIsDrawnIfItsBoundsAreThere) {
    const auto drawn = [](const Settings& settings) {
        return page_of(tree_of(settings)).find("svg", "medium").size();
    };
    EXPECT_EQ(1U, drawn(size_of({{"media_bounds_urx", 10.0}, {"media_bounds_ury", 10.0}})));
    EXPECT_EQ(0U, drawn(size_of({{"media_bounds_urx", 10.0}})));
    EXPECT_EQ(0U, drawn(size_of({{"media_bounds_ury", 10.0}})));
    EXPECT_EQ(0U, drawn(size_of({{"media_bounds_urx", 10.0}, {"media_bounds_ury", 1e6}})));
    EXPECT_EQ(0U, drawn(size_of({{"media_bounds_urx", 0.05}, {"media_bounds_ury", 10.0}})));
}

TEST(SparsePage, PrintableAreaNeedsAllItsBounds) {
    const Settings all{{"printable_bounds_llx", 1.0},
                       {"printable_bounds_lly", 2.0},
                       {"printable_bounds_urx", 8.0},
                       {"printable_bounds_ury", 9.0}};
    const auto cells = [](const Settings& bounds) { return page_of(tree_of(size_of(bounds))).texts("td"); };
    EXPECT_THAT(cells(all), ElementsAre("S", "no bounds given", "7 × 7 mm", "–", "–"));
    for (std::size_t missing = 0; missing < all.size(); ++missing) {
        Settings some = all;
        some.erase(some.begin() + static_cast<std::ptrdiff_t>(missing));
        EXPECT_THAT(cells(some), ElementsAre("S", "no bounds given", "–", "–", "–")) << missing;
    }
    Settings wide = all;
    wide.emplace_back("media_bounds_urx", 10.0);
    EXPECT_THAT(cells(wide), ElementsAre("S", "no bounds given", "7 × 7 mm", "–", "–"));
    wide.emplace_back("media_bounds_ury", 10.0);
    EXPECT_THAT(cells(wide),
                ElementsAre("S", "10 × 10 mm", "7 × 7 mm", "left 1, right 2, top 1, bottom 2 mm", "–"));
}

TEST(SparsePage, SizeWithoutANameIsNoDefault) {
    expect_texts({
        {{{"\\media\\default_size", "A"}, {"\\media\\size\\0\\name", "A"}}, "p", "marks", {"default"}},
        {{{"\\media\\default_size", "A"}, {"\\media\\size\\0\\name", "B"}}, "p", "marks", {}},
        {{{"\\media\\default_size", "A"}, {"\\media\\size\\0\\media_group", 4}}, "p", "marks", {}},
    });
}

TEST(SparsePage, MediaFacts) {
    expect_texts({
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\size_max_x", 5}}, "div", "fact", facts({})},
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\size_max_y", 5}}, "div", "fact", facts({})},
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\size_max_x", 5}, {"\\media\\size_max_y", 6.5}},
         "div",
         "fact",
         facts({"Largest size5 × 6.5 mm"})},
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\landscape", true}},
         "div",
         "fact",
         facts({"Landscape and portraityes"})},
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\mediacopies", false}},
         "div",
         "fact",
         facts({"Copies made by the deviceno"})},
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\max_roll_height", ""}},
         "div",
         "fact",
         facts({"Longest piece of a roll(empty)"})},
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\selection_methods", 0}},
         "div",
         "fact",
         facts({"A size is selectednone"})},
    });
}

TEST(SparsePage, MediaTypesThatSayLittle) {
    expect_texts({
        {{{"\\media\\type\\0\\drying_time", 1.5}, {"\\media\\default_type", ""}},
         "tr",
         "type-row",
         {"–1.5 s"}},
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\type\\0\\max_resolution_x", 600}},
         "tr",
         "type-row",
         {"AA––"}},
        {{{"\\media\\type\\0\\name", "A"}, {"\\media\\type\\0\\max_resolution_y", 600}},
         "tr",
         "type-row",
         {"AA––"}},
    });
}

TEST(SparsePage, SourcesAndEntriesThatSayLittle) {
    expect_texts({
        {{{"\\media\\source\\Roll\\localized_name", "A roll"}}, "li", "card", {"A roll Roll"}},
        {{{"\\media\\source\\Roll\\entry\\E\\width", 5}}, "li", "entry", {"E E"}},
        {{{"\\media\\source\\Roll\\entry\\E\\size_names\\0\\name", "A"},
          {"\\media\\source\\Roll\\entry\\E\\size_names\\1\\name", "B"}},
         "li",
         "entry",
         {"E E · 2 sizes"}},
        {{{"\\media\\source\\Roll\\entry\\E\\default_size", "A"}}, "li", "entry", {"E E by default A"}},
    });
}

TEST(SparsePage, FinishingThatSaysLittle) {
    const std::string bin = "\\media\\destination\\Bin\\";
    expect_texts({
        {{{bin + "stapling\\S\\when", 0}}, "li", "step", {"Staple: no known place S never"}},
        {{{bin + "cutting\\C\\localized_name", "Cut"}},
         "li",
         "step",
         {"Cut at no known time Cut at no known time"}},
        {{{bin + "collating\\C\\localized_name", "Sets"}},
         "li",
         "step",
         {"Collating: unknown (-1) Sets unknown (-1)"}},
    });
}

TEST(SparsePage, EachFoldIsDrawnByItsType) {
    const std::size_t creases[] = {2, 3, 3, 1, 1, 1, 2, 0};
    for (std::size_t type = 0; type < std::size(creases); ++type) {
        const Tree tree = tree_of(
            {{"\\media\\destination\\Bin\\folding\\F\\folding_type", static_cast<std::int32_t>(type)}});
        EXPECT_EQ(creases[type], page_of(tree).find("line", "crease").size()) << type;
    }
}

TEST(SparsePage, EachStapleIsDrawnAtItsPlace) {
    const std::vector<std::string> places[] = {{},       {"8,7"},   {"18,7"}, {"13,10", "13,22"},
                                               {"4,11"}, {"22,11"}, {}};
    for (std::size_t location = 0; location < std::size(places); ++location) {
        const Tree tree = tree_of(
            {{"\\media\\destination\\Bin\\stapling\\S\\location", static_cast<std::int32_t>(location)}});
        std::vector<std::string> found;
        for (const auto& staple : page_of(tree).find("line", "staple")) {
            found.push_back(staple.attribute("x1") + "," + staple.attribute("y1"));
        }
        EXPECT_EQ(places[location], found) << location;
    }
}

TEST(SparsePage, EachCollationIsDrawnByItsType) {
    const std::vector<std::string> sheets[] = {
        {"3,20", "3,16", "3,12", "3,8"}, {"3,20", "3,16", "3,8", "3,4"}, {"3,20", "3,16", "7,12", "7,8"}};
    for (std::size_t type = 0; type < std::size(sheets); ++type) {
        const Tree tree = tree_of(
            {{"\\media\\destination\\Bin\\collating\\C\\collating_type", static_cast<std::int32_t>(type)}});
        std::vector<std::string> found;
        for (const auto& sheet : page_of(tree).find("rect", "sheet")) {
            found.push_back(sheet.attribute("x") + "," + sheet.attribute("y"));
        }
        EXPECT_EQ(sheets[type], found) << type;
    }
}

TEST(SparsePage, ColourModeWithoutResolutions) {
    const Markup page = page_of(tree_of({{"\\res_color_mem\\rcm_list\\M\\undithered_colors", 8}}));
    EXPECT_EQ("Colours, resolutions and memory M M · 8 without dithering No resolutions.",
              page.section("resolution"));
}

TEST(SparsePage, ResolutionsThatSayLittle) {
    const std::string mode = "\\res_color_mem\\rcm_list\\M\\";
    const std::string resolution = mode + "resolution_list\\R\\";
    expect_texts({
        {{{mode + "default_resolution", "R"}, {resolution + "physical_resolution_x", 600}},
         "tr",
         "resolution",
         {"R defaultR––––"}},
        {{{resolution + "res_color_mem\\dithering_list", "Fine"}}, "tr", "resolution", {"RR–––Fine"}},
        {{{resolution + "res_color_mem\\dithering_list", "Fine"},
          {"\\res_color_mem\\dithering_list\\Fine\\threshold", 5}},
         "tr",
         "resolution",
         {"RR–––Fine"}},
        {{{resolution + "res_color_mem\\other", "Fine"}}, "tr", "resolution", {"RR––––"}},
        {{{resolution + "mem_area\\0\\name", "Small"}, {resolution + "default_mem_area", "Big"}},
         "tr",
         "resolution",
         {"RR–––– Small"}},
        {{{resolution + "mem_area\\0\\other", "Small"}}, "tr", "resolution", {"RR––––"}},
    });
}

TEST(SparsePage, MemoryAreasThatSayLittle) {
    expect_texts({
        {{{"\\res_color_mem\\mem_area_list\\A\\device_memory", 0}}, "tr", "memory", {"AA0 MB 0 MB–"}},
        {{{"\\res_color_mem\\mem_area_list\\A\\printable_area", 5.5}}, "tr", "memory", {"AA–5.5 mm 5.5 mm"}},
    });
}

TEST(SparsePage, DitheringMethodsThatSayLittle) {
    const std::string method = "\\res_color_mem\\dithering_list\\M\\";
    expect_texts({
        {{{method + "source_pixel_ratio", 2}}, "div", "fact", facts({})},
        {{{method + "pixel_expansion_ratio", 2}}, "div", "fact", facts({})},
        {{{method + "source_pixel_ratio", 1}, {method + "pixel_expansion_ratio", 2}},
         "div",
         "fact",
         facts({"Pixels1 to 2"})},
    });
}

TEST(SparsePage, MatrixIsDrawnIfItHasCellsAndASizeThatIsOne) {
    const auto caption = [](Value width, Value height, const std::string& cell) {
        const std::string method = "\\res_color_mem\\dithering_list\\M\\";
        const Tree tree = tree_of({{method + "matrix_size_x", width},
                                   {method + "matrix_size_y", height},
                                   {method + "matrix_list\\L\\" + cell + "\\data", 3}});
        return page_of(tree).texts("figcaption").at(0);
    };
    EXPECT_EQ("Matrix L, 64 × 64", caption(64, 64, "0"));
    EXPECT_EQ("Matrix L, 0 × 2 (not drawn)", caption(0, 2, "0"));
    EXPECT_EQ("Matrix L, 2 × -1 (not drawn)", caption(2, -1, "0"));
    EXPECT_EQ("Matrix L, 4097 × 1 (not drawn)", caption(4097, 1, "0"));
    EXPECT_EQ("Matrix L, 1 × 4097 (not drawn)", caption(1, 4097, "0"));
    EXPECT_EQ("Matrix L, 64 × 65 (not drawn)", caption(64, 65, "0"));
    EXPECT_EQ("Matrix L, 2 × 2 (not drawn)", caption(2, 2, "4"));
    EXPECT_EQ("Matrix L, 2 × 2 (not drawn)", caption(2, 2, "000000"));
    EXPECT_EQ("Matrix L, 2 × 2", caption(2, 2, "00003"));
    EXPECT_EQ("Matrix L, 2 × 2 (not drawn)", caption(2, 2, "-1"));
}

TEST(SparsePage, CellsOfALargeMatrixHaveNoNumbers) {
    const std::string method = "\\res_color_mem\\dithering_list\\M\\";
    const auto numbers = [&](int side) {
        return page_of(tree_of({{method + "matrix_size_x", side},
                                {method + "matrix_size_y", 1},
                                {method + "matrix_list\\L\\0\\data", 3}}))
            .texts("text");
    };
    EXPECT_THAT(numbers(8), ElementsAre("3"));
    EXPECT_THAT(numbers(9), IsEmpty());
}

TEST(SparsePage, ConnectionsThatSayLittle) {
    const std::string method = "\\io\\method\\4\\";
    expect_texts({
        {{{method + "other", 1}}, "p", "muted", {"Nothing more to set."}},
        {{{method + "default_output_timeout", 5}}, "p", "muted", {}},
        {{{method + "protocol\\0\\parity", 1}}, "p", "muted", {}},
        {{{method + "baudrates\\0\\rate", 1200}}, "p", "muted", {}},
        {{{"\\io\\method\\Fax\\other", 1}}, "h3", "", {"unknown (Fax)"}},
        {{{"\\io\\method\\4x\\other", 1}}, "h3", "", {"unknown (4x)"}},
        {{{"\\io\\method\\4\\other", 1}, {"\\io\\default_type", 6}}, "h3", "", {"Serial port (RS-232)"}},
        {{{method + "max_output_timeout", 5}}, "div", "fact", facts({"Longest output timeout5 s"})},
        {{{method + "min_input_timeout", 1}, {method + "max_input_timeout", 5}},
         "div",
         "fact",
         facts({"Shortest input timeout1 s", "Longest input timeout5 s"})},
        {{{method + "min_input_timeout", 1}, {method + "default_input_timeout", 5}},
         "div",
         "fact",
         facts({"Shortest input timeout1 s", "Input timeout by default5 s"})},
        {{{"\\io\\default_plot_file_extension", "plt"}, {method + "other", 1}},
         "div",
         "fact",
         facts({"Plot file extension by defaultplt"})},
    });
}

TEST(SparsePage, RatesAndProtocolsThatSayLittle) {
    const std::string method = "\\io\\method\\4\\";
    expect_texts({
        {{{method + "baudrates\\0\\rate", "many"}}, "li", "chip", {"–"}},
        {{{method + "baudrates\\0\\rate", 300}, {method + "default_baud_rate", 1200}}, "li", "chip", {"300"}},
        {{{method + "protocol\\0\\parity", 1}, {method + "default_protocol", ""}},
         "tr",
         "protocol",
         {"–odd–"}},
        {{{method + "protocol\\0\\canonical_name", "8N1"}, {method + "default_protocol", "7E1"}},
         "tr",
         "protocol",
         {"8N18N1–––"}},
    });
}

TEST(SparsePage, PensThatSayLittle) {
    expect_texts({
        {{{"\\physical_pen\\max_npens", 8}, {"\\physical_pen\\min_speed", 5}},
         "div",
         "fact",
         facts({"Most pens8", "Lowest speed5 mm/s"})},
        {{{"\\physical_pen\\max_npens", 8},
          {"\\physical_pen\\min_speed", 5},
          {"\\physical_pen\\max_speed", 9}},
         "div",
         "fact",
         facts({"Most pens8", "Lowest speed5 mm/s", "Highest speed9 mm/s"})},
        {{{"\\physical_pen\\max_npens", 8}, {"\\physical_pen\\default_optimization", 1}},
         "div",
         "fact",
         facts({"Most pens8", "Optimization by defaultswaps end points"})},
        {{{"\\linetype\\font\\0\\width", 1.0}}, "p", "", {"The device draws none itself."}},
    });
}

TEST(SparsePage, LineTypeWithoutAFontHasNoWidth) {
    expect_texts({
        {{{"\\linetype\\capabilities", "1"}, {"\\linetype\\font\\5\\width", 1.0}},
         "li",
         "line-type",
         {"SolidSolid no width given"}},
        {{{"\\linetype\\capabilities", "1"}, {"\\linetype\\font\\0\\other", 1.0}},
         "li",
         "line-type",
         {"SolidSolid no width given"}},
        {{{"\\linetype\\capabilities", "G:/"}, {"\\linetype\\font\\0\\width", 1.0}}, "li", "line-type", {}},
    });
}

TEST(SparsePage, SettingsOfItsOwnThatSayLittle) {
    expect_texts({
        {{{"\\custom_name\\A\\range_type", true}}, "tr", "custom", {"AA––0 to 0"}},
        {{{"\\custom_name\\A\\value_list\\0\\other", 1}}, "tr", "custom", {"AA–– no value"}},
        {{{"\\custom_name\\A\\value_list\\0\\value", 5}, {"\\custom_name\\A\\default_value", 6}},
         "tr",
         "custom",
         {"AA–6 5"}},
    });
}

TEST(SparsePage, RangeOfAnotherTypeIsNone) {
    const Tree tree = tree_of({{"\\custom_name\\A\\range_type", 1}, {"\\custom_name\\A\\range_max", 5.0}});
    EXPECT_THAT(page_of(tree).texts("tr", "custom"), ElementsAre("AA––"));
}

TEST(SparsePage, DefaultNearTheHighEndOfARangeHasNoNumber) {
    const auto numbers = [](int by_default) {
        return page_of(tree_of({{"\\physical_pen\\max_npens", 8},
                                {"\\physical_pen\\min_speed", 0},
                                {"\\physical_pen\\max_speed", 100},
                                {"\\physical_pen\\default_speed", by_default}}))
            .texts("text");
    };
    EXPECT_THAT(numbers(79), ElementsAre("0", "100", "79"));
    EXPECT_THAT(numbers(80), ElementsAre("0", "100"));
}

TEST(SparsePage, AbilitiesOfMethodsStandUnderTheirNumbersOrNames) {
    for (const auto& [name, head] : std::vector<std::pair<std::string, std::string>>{
             {"4", "Serial port (RS-232)"}, {"Fax", "Fax"}, {"4:", "4:"}, {"000004", "000004"}}) {
        const Tree tree =
            tree_of({{"\\meta\\model_abilities", "1"}, {"\\io\\method\\" + name + "\\abilities", "0"}});
        EXPECT_THAT(page_of(tree).texts("th"), Contains(head));
    }
}

TEST(SparsePage, OwnershipIsThereForAbilitiesOrOwners) {
    const auto has_section = [](const Settings& settings) {
        return !page_of(tree_of(settings)).section("ownership").empty();
    };
    EXPECT_TRUE(has_section({{"\\media\\ui_owner", "1"}}));
    EXPECT_TRUE(has_section({{"\\media\\abilities", "1"}}));
    EXPECT_TRUE(has_section({{"\\meta\\model_abilities", "1"}}));
    EXPECT_FALSE(has_section({{"\\meta\\abilities", "1"}}));
    EXPECT_FALSE(has_section({{"\\RASTER\\orientation_prefs", 0}}));
}

TEST(SparsePage, OwnersAreTheDigitsOfFour) {
    expect_texts({
        {{{"\\init_term\\ui_owner", "0"}}, "td", "", {"Before initialization", "–", "–", "–"}},
        {{{"\\init_term\\ui_owner", "A"}}, "td", "", {"–", "–", "–", "–"}},
        {{{"\\init_term\\ui_owner", "0/2"}}, "td", "", {"Before initialization", "–", "At the end", "–"}},
        {{{"\\linetype\\ui_owner", "10"}}, "td", "", {"–", "(no. 0)", "–", "–"}},
    });
}

TEST(SparsePage, RastersHaveAnOrientation) {
    const Tree tree = tree_of({{"\\RASTER\\abilities", "1"}, {"\\RASTER\\orientation_prefs", 0}});
    EXPECT_THAT(page_of(tree).texts("dt"), ElementsAre("Description", "Rasters are best given as"));
}

TEST(SparsePage, ModelHasItsOwnNameOrTheDescriptions) {
    const std::pair<Settings, std::string> rows[] = {
        {{{"\\meta\\localized_model_name", "Nine"}, {"\\meta\\canonical_model_name", "P9"}}, "Nine"},
        {{{"\\meta\\canonical_model_name", "P9"}}, "P9"},
        {{{"\\meta\\driver_version", "1"}}, "device"},
    };
    for (const auto& [settings, name] : rows) {
        Settings more = settings;
        more.emplace_back("\\media\\source\\Roll\\feed", 3);
        const Markup page = page_of(tree_of(more));
        EXPECT_THAT(page.texts("h1"), ElementsAre(name));
        EXPECT_EQ(page.texts("div", "device"), Texts{name});
    }
}

TEST(SparsePage, FamilyHasItsTranslatedNameFirst) {
    expect_texts({
        {{{"\\meta\\canonical_family_name", "F"}}, "div", "fact", {"FamilyF", "Descriptiondevice"}},
        {{{"\\meta\\canonical_family_name", "F"}, {"\\meta\\localized_family_name", "Familie"}},
         "div",
         "fact",
         {"FamilyFamilie", "Descriptiondevice"}},
    });
}

} // namespace
