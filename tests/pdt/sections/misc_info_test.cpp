#include "pdt/description.h"
#include <gmock/gmock.h>
#include <map>

namespace {

using pm::Section;
using pm::test::has_item;
using pm::test::Items;
using testing::UnorderedElementsAreArray;

// Lines of the form by their numbers; all others are empty.
using Lines = std::map<int, std::string>;

std::string form(const Lines& lines) {
    std::string text;
    for (int number = 3; number <= 68; ++number) {
        const auto line = lines.find(number);
        if (line != lines.end()) text += line->second;
        text += '\n';
    }
    return text;
}

Items load(const Lines& lines) {
    pm::test::Description description;
    description.rows(Section::misc_info, form(lines));
    return pm::test::items_of(description, u"");
}

// The items that a form adds or changes against one without any line.
Items effect(const Lines& lines) {
    static const Items without = load({});
    Items items = load(lines);
    std::erase_if(items, [](const std::string& item) { return has_item(without, item); });
    return items;
}
Items effect(int line, const std::string& cells) {
    return effect({{line, "label\t" + cells}});
}

std::string abilities(const char* path, int count, const std::vector<int>& marks) {
    std::string text(static_cast<std::size_t>(count), '0');
    for (const int mark : marks) {
        text[static_cast<std::size_t>(mark)] = '5';
    }
    return std::string(path) + "\\abilities=\"" + text + '"';
}
std::string pens(const std::vector<int>& marks) {
    return abilities("physical_pen", 19, marks);
}
std::string start_strings(const std::vector<int>& marks) {
    return abilities("init_term", 3, marks);
}
std::string res_color_mem(const std::vector<int>& marks) {
    return abilities("res_color_mem", 24, marks);
}
std::string io(const std::vector<int>& marks) {
    return abilities("io", 12, marks);
}
std::string media(std::vector<int> marks) {
    marks.push_back(24); // in every load
    return abilities("media", 51, marks);
}

struct Case {
    int line;
    const char* cells;
    Items expected;
};

void expect_effects(std::initializer_list<Case> cases) {
    for (const Case& each : cases) {
        EXPECT_THAT(effect(each.line, each.cells), UnorderedElementsAreArray(each.expected))
            << "line " << each.line << ", " << each.cells;
    }
}

// --- The whole form

TEST(MiscInfo, EmptyFormWritesOwnersAndAbilities) {
    const Items expected = {
        "init_term\\ui_owner=\"000\"",
        start_strings({}),
        "physical_pen\\ui_owner=\"0000000\"",
        pens({}),
        "res_color_mem\\ui_owner=\"00000000000000\"",
        res_color_mem({}),
        "io\\ui_owner=\"000000000\"",
        io({}),
        "media\\ui_owner=\"00000000000000000000000\"",
        media({}),
        "meta\\model_abilities=\"000000000000\"",
    };
    const Items items = load({});
    for (const std::string& item : expected) {
        EXPECT_TRUE(has_item(items, item)) << item;
    }
    // With the items of rasters, line types and the user flags, which every load has.
    EXPECT_EQ(expected.size() + 9, items.size());
}

TEST(MiscInfo, TableOfHeadingsAloneIsAnEmptyForm) {
    EXPECT_EQ(load({}), pm::test::items_of(pm::test::Description(), u""));
}

TEST(MiscInfo, EmptyTableIsAnEmptyForm) {
    pm::test::Description description;
    description.whole(Section::misc_info, "");
    EXPECT_EQ(load({}), pm::test::items_of(description, u""));
}

TEST(MiscInfo, ItemsAreCreatedInTheOrderOfTheForm) {
    const Items items = load({{3, "\t8"}, {7, "\tx"}, {24, "\tx"}, {30, "\tx"}, {43, "label"}});
    const Items expected = {
        "RASTER\\abilities=\"0000\"",
        "RASTER\\orientation_prefs=0",
        "physical_pen\\max_npens=8",
        "physical_pen\\max_optimization=0",
        "physical_pen\\ui_owner=\"0000000\"",
        pens({0, 5, 6, 16}),
        "physical_pen\\caps_state=\"0000000000000000\"",
        "media\\selection_methods=0",
        "media\\ui_owner=\"00000000000000000000000\"",
        media({0}),
        "media\\caps_state=\"0000000000000000000\"",
        "res_color_mem\\default_name=\"x\"",
        "res_color_mem\\ui_owner=\"00000000000000\"",
        res_color_mem({22}),
        "res_color_mem\\caps_state=\"000000000000000\"",
        "linetype\\abilities=\"00\"",
        "linetype\\capabilities=\"00000\"",
        "linetype\\caps_state=\"0000\"",
        "init_term\\ui_owner=\"000\"",
        start_strings({}),
        "io\\ui_owner=\"000000000\"",
        io({}),
        "io\\caps_state=\"0000\"",
        "meta\\model_abilities=\"000000000000\"",
        "meta\\toolkit_version=0.0",
    };
    EXPECT_EQ(expected, items);
}

TEST(MiscInfo, LandscapeComesBehindTheColorModes) {
    pm::test::Description description;
    description.rows(Section::media_size, "A\t\t\tL\nB\t\t\tP\n")
        .rows(Section::resolution_color_memory, "M\n");
    const Items items = pm::test::items_of(description, u"media");
    const auto place = [&](const char* item) { return std::find(items.begin(), items.end(), item); };
    EXPECT_LT(place("ui_owner=\"00000000000000000000000\""), place("landscape=true"));
    EXPECT_TRUE(has_item(items, media({5, 6, 12}).substr(sizeof "media")));
}

TEST(MiscInfo, EmptyCellsLeaveEverythingAlone) {
    Lines lines;
    for (int number = 3; number <= 68; ++number) {
        lines[number] = number == 43 ? "" : "label\t";
    }
    EXPECT_EQ(Items{}, effect(lines));
}

TEST(MiscInfo, LabelsAreNotLookedAt) {
    Lines lines;
    for (int number = 3; number <= 68; ++number) {
        lines[number] = number == 43 ? "" : "Y ALL 255";
    }
    EXPECT_EQ(Items{}, effect(lines));
}

TEST(MiscInfo, LinesBehindTheFormAreNotRead) {
    pm::test::Description description;
    description.rows(Section::misc_info, form({}) + "max pens\t255\n");
    EXPECT_EQ(load({}), pm::test::items_of(description, u""));
}

TEST(MiscInfo, LastLineWithoutLineEndCounts) {
    pm::test::Description description;
    description.rows(Section::misc_info, "max pens\t255");
    EXPECT_TRUE(has_item(pm::test::items_of(description, u"physical_pen"), "max_npens=255"));
}

TEST(MiscInfo, LinesWithoutASettingAreIgnored) {
    expect_effects({{27, "Y", {}}, {28, "Y", {}}, {35, "Y", {}}, {37, "Y", {}}});
}

// --- Numbers, texts and names

TEST(MiscInfo, PenCountMarksAboveZeroOnly) {
    expect_effects({
        {3, "255", {"physical_pen\\max_npens=255", pens({0, 16, 5})}},
        {3, "0", {"physical_pen\\max_npens=0"}},
        {3, "-1", {"physical_pen\\max_npens=-1"}},
        {3, "many", {"physical_pen\\max_npens=0"}},
    });
}

TEST(MiscInfo, Integers) {
    expect_effects({
        {4, "8", {"physical_pen\\default_npens=8", pens({13})}},
        {4, "none", {"physical_pen\\default_npens=0", pens({13})}},
        {10, " 99x", {"media\\max_number_of_copies=99", media({39})}},
        {10, "x", {"media\\max_number_of_copies=0", media({39})}},
    });
}

TEST(MiscInfo, NarrowNumbersAreRoundedTo32Bits) {
    struct Line {
        int number;
        const char* item;
        std::string marks;
    };
    const Line lines[] = {
        {5, "physical_pen\\max_speed", pens({10})},
        {6, "physical_pen\\default_speed", pens({12, 4})},
        {9, "media\\default_longplot_reduction", media({25})},
        {21, "physical_pen\\max_width", pens({8})},
        {22, "physical_pen\\min_width", pens({7})},
        {23, "physical_pen\\min_speed", pens({9})},
        {25, "physical_pen\\default_width", pens({11, 3})},
    };
    for (const Line& line : lines) {
        const std::string item = std::string(line.item) + "=";
        expect_effects({{line.number, "0.1", {item + "0.10000000149011612", line.marks}},
                        {line.number, "12.5 mm", {item + "12.5", line.marks}},
                        {line.number, "wide", {item + "0.0", line.marks}},
                        {line.number, "Informal", {item + "0.0", line.marks}},
                        {line.number, "nan", {item + "0.0", line.marks}},
                        {line.number, "0x10", {item + "0.0", line.marks}}});
    }
}

TEST(MiscInfo, NumbersAreNotRounded) {
    expect_effects({
        {40, "0.1", {"media\\size_max_x=0.1"}},
        {40, "x", {"media\\size_max_x=0.0"}},
        {40, "inf", {"media\\size_max_x=0.0"}},
        {40, "0x10", {"media\\size_max_x=0.0"}},
        {41, "0.1", {"media\\size_max_y=0.1"}},
        {41, "x", {"media\\size_max_y=0.0"}},
        {42, "0.1", {"media\\max_roll_height=0.1", media({50})}},
        {42, "x", {"media\\max_roll_height=0.0", media({50})}},
    });
}

TEST(MiscInfo, TextsStandAsTheyAre) {
    expect_effects({
        {16, "\"Draft ex\" ", {"meta\\canonical_family_name=\"\"Draft ex\" \""}},
        {38, "4.2.1", {"meta\\driver_version=\"4.2.1\""}},
        {39, "DX 4200", {"meta\\canonical_model_name=\"DX 4200\""}},
        {65, "p l t", {"io\\default_plot_file_extension=\"p l t\"", io({1})}},
    });
}

TEST(MiscInfo, NamesAreNormalized) {
    expect_effects({
        {30, "True Color ", {"res_color_mem\\default_name=\"True_Color\"", res_color_mem({22})}},
        {31, "\"Roll 1\"", {"media\\default_source=\"Roll_1\"", media({40})}},
        {32, "ISO A0", {"media\\default_size=\"ISO_A0\"", media({34})}},
        {33, "Catch Basket", {"media\\default_destination=\"Catch_Basket\"", media({42})}},
        {34, "\"\"", {"media\\default_type=\"\"", media({43})}},
    });
}

// --- Yes and no

TEST(MiscInfo, BoolsOfAnyCase) {
    struct Line {
        int number;
        const char* item;
        std::string marks;
    };
    const Line lines[] = {
        {17, "physical_pen\\programmable_widths", pens({17})},
        {18, "physical_pen\\programmable_speeds", pens({18})},
        {19, "physical_pen\\hardware_fills", pens({1})},
        {20, "physical_pen\\area_fill_corr", pens({2})},
    };
    for (const Line& line : lines) {
        const std::string item = std::string(line.item) + "=";
        expect_effects({{line.number, "Y", {item + "true", line.marks}},
                        {line.number, "yes", {item + "true", line.marks}},
                        {line.number, "N", {item + "false", line.marks}},
                        {line.number, " Y", {item + "false", line.marks}}});
    }
}

TEST(MiscInfo, ExactBools) {
    struct Line {
        int number;
        const char* item;
        std::string marks;
    };
    const Line lines[] = {
        {29, "res_color_mem\\memory_changes_print_area", res_color_mem({18})},
        {36, "media\\mediacopies", media({23})},
    };
    for (const Line& line : lines) {
        const std::string item = std::string(line.item) + "=";
        expect_effects({{line.number, "Yes", {item + "true", line.marks}},
                        {line.number, "y", {item + "false", line.marks}},
                        {line.number, "N", {item + "false", line.marks}}});
    }
}

TEST(MiscInfo, MarksWithoutAnItem) {
    expect_effects({
        {13, "Y", {start_strings({0})}},
        {13, "y", {}},
        {13, "N", {}},
        {14, "Yes", {start_strings({1})}},
        {14, "y", {}},
        {15, "Y", {start_strings({2})}},
        {15, "y", {}},
        {66, "Y", {res_color_mem({15})}},
        {66, "y", {}},
        {67, "Yes", {res_color_mem({11})}},
        {67, "y", {}},
    });
}

// The last line looks where the cell of the line before began.

TEST(MiscInfo, LastLineWithTheSameLabelLengthLooksAtItsOwnCell) {
    EXPECT_EQ(Items{res_color_mem({11, 12})}, effect({{67, "label\tY"}, {68, "other\tY"}}));
    EXPECT_EQ(Items{res_color_mem({11})}, effect({{67, "label\tY"}, {68, "other\tN"}}));
    EXPECT_EQ(Items{res_color_mem({12})}, effect({{67, "label\tN"}, {68, "other\tY"}}));
}

TEST(MiscInfo, LastLineLooksInsideItsLabel) {
    EXPECT_EQ(Items{res_color_mem({12})}, effect({{67, "ab\tN"}, {68, "abcYef\tN"}}));
    EXPECT_EQ(Items{}, effect({{67, "ab\tN"}, {68, "abcdef\tY"}}));
}

TEST(MiscInfo, LastLineLooksBehindTheStartOfItsCell) {
    EXPECT_EQ(Items{res_color_mem({12})}, effect({{67, "label\tN"}, {68, "\tno,  Y"}}));
    EXPECT_EQ(Items{}, effect({{67, "a long label\tN"}, {68, "\tY"}}));
}

TEST(MiscInfo, LastLineWithoutACellDoesNotLook) {
    EXPECT_EQ(Items{res_color_mem({11, 15})}, effect({{66, "label\tY"}, {67, "label\tY"}, {68, "abcdefY"}}));
    EXPECT_EQ(Items{}, effect({{67, "ab\tN"}, {68, "abcYef\t"}}));
}

TEST(MiscInfo, PlaceIsKeptFromALineWithoutACell) {
    EXPECT_EQ(Items{res_color_mem({12})}, effect({{67, "label"}, {68, "other\tY"}}));
    // An empty line's second field begins behind the two terminators that ended its fields.
    EXPECT_EQ(Items{res_color_mem({12})}, effect({{67, ""}, {68, "abY\tN"}}));
}

// --- Keywords

TEST(MiscInfo, SelectionMethods) {
    expect_effects({
        {7, "MediaSizeByMediaSource = 0x1", {"media\\selection_methods=1", media({0})}},
        {7, "MediaSizeByMediaSize = 0x2", {"media\\selection_methods=2", media({0})}},
        {7,
         "MediaSizeByMediaSource = 0x1\tMediaSizeByMediaSize = 0x2",
         {"media\\selection_methods=3", media({0})}},
        {7, "Other\tMediaSizeByMediaSize = 0x2", {"media\\selection_methods=2", media({0})}},
        {7, "MediaSizeByMediaSource", {"media\\selection_methods=0", media({0})}},
        {7, "mediasizebymediasource = 0x1", {"media\\selection_methods=0", media({0})}},
        {8, "MediaSizeByMediaSource = 0x1", {"media\\default_selection_method=1", media({45})}},
        {8,
         "MediaSizeByMediaSource = 0x1\tMediaSizeByMediaSize = 0x2",
         {"media\\default_selection_method=3", media({45})}},
        {8, "x", {"media\\default_selection_method=0", media({45})}},
    });
}

TEST(MiscInfo, DuplexingModes) {
    expect_effects({
        {11, "None = 0x1", {"media\\duplexing_modes=1", media({22})}},
        {11, "Long = 0x2", {"media\\duplexing_modes=2", media({22})}},
        {11, "Short = 0x4", {"media\\duplexing_modes=4", media({22})}},
        {11, "Short = 0x4\tLong = 0x2\tNone = 0x1", {"media\\duplexing_modes=7", media({22})}},
        {11, "Short", {"media\\duplexing_modes=0", media({22})}},
        {12, "Long = 0x2", {"media\\default_duplexing_mode=2", media({46})}},
        {12, "Long = 0x2\tShort = 0x4", {"media\\default_duplexing_mode=6", media({46})}},
        {12, "x", {"media\\default_duplexing_mode=0", media({46})}},
    });
}

TEST(MiscInfo, KeywordListEndsAtTheFirstEmptyCell) {
    expect_effects({
        {11, "Long = 0x2\t\tShort = 0x4", {"media\\duplexing_modes=2", media({22})}},
        {11, "\tShort = 0x4", {}},
    });
}

TEST(MiscInfo, PenOptimizations) {
    const char* keywords[] = {"No Optimizations",
                              "Endpoint Swap",
                              "Pen Sorting",
                              "Limited Motion Optimzation",
                              "Full Motion Optimization",
                              "Elimination of Overlapped Horizontal and Vertical Vectors",
                              "Elimination of Overlapped Diagonal Vectors"};
    for (int code = 0; code < 7; ++code) {
        const std::string number = std::to_string(code);
        expect_effects({{24, keywords[code], {"physical_pen\\max_optimization=" + number, pens({6})}},
                        {26, keywords[code], {"physical_pen\\default_optimization=" + number, pens({14})}}});
    }
    expect_effects({
        {24, "Limited Motion Optimization", {"physical_pen\\max_optimization=0", pens({6})}},
        {26, "Endpoint_Swap", {"physical_pen\\default_optimization=0", pens({14})}},
    });
}

TEST(MiscInfo, DefaultConnection) {
    const char* keywords[] = {"None", "Does_Own_IO", "File", "System", "RS232", "Parallel", "Network"};
    for (int code = 0; code < 7; ++code) {
        expect_effects({{64, keywords[code], {"io\\default_type=" + std::to_string(code), io({3})}}});
    }
    expect_effects({
        {64, "Does Own IO", {"io\\default_type=1", io({3})}},
        {64, "\"File\" ", {"io\\default_type=2", io({3})}},
        {64, "File // to disk", {"io\\default_type=2", io({3})}},
        {64, "file", {"io\\default_type=-1", io({3})}},
        {64, "F", {"io\\default_type=-1", io({3})}},
        {64, "/", {"io\\default_type=-1", io({3})}},
        {64, "\"\"", {"io\\default_type=-1", io({3})}},
        {64, "// File", {}},
    });
}

TEST(MiscInfo, LinetypeAbilities) {
    expect_effects({
        {43, "", {"linetype\\abilities=\"00\""}},
        {43, "LinetypeScale", {"linetype\\abilities=\"50\""}},
        {43, "LinetypeAdaptive", {"linetype\\abilities=\"05\""}},
        {43, "LinetypeAdaptive\tLinetypeScale", {"linetype\\abilities=\"55\""}},
        {43, "\tLinetypeScale", {"linetype\\abilities=\"50\""}},
        {43, "Other\tLinetypeAdaptive", {"linetype\\abilities=\"05\""}},
        {43, "linetypescale\t\tLinetypeScale", {"linetype\\abilities=\"00\""}},
    });
}

TEST(MiscInfo, LinetypeAbilitiesNeedALabel) {
    EXPECT_EQ(Items{}, effect({{43, "\tLinetypeScale"}}));
}

TEST(MiscInfo, EachFormHasItsSize) {
    pm::test::Description description;
    description.rows(Section::misc_info, form({{3, "\t8"},
                                               {5, "\t0.1"},
                                               {16, "\tab"},
                                               {17, "\tY"},
                                               {29, "\tN"},
                                               {31, "\ta b"},
                                               {40, "\t0.1"}}));
    PM_Object object;
    description.load(object);
    EXPECT_EQ(4U, object.getPropertySize(u"physical_pen\\max_npens"));
    EXPECT_EQ(8U, object.getPropertySize(u"physical_pen\\max_speed"));
    EXPECT_EQ(6U, object.getPropertySize(u"meta\\canonical_family_name"));
    EXPECT_EQ(1U, object.getPropertySize(u"physical_pen\\programmable_widths"));
    EXPECT_EQ(1U, object.getPropertySize(u"res_color_mem\\memory_changes_print_area"));
    EXPECT_EQ(8U, object.getPropertySize(u"media\\default_source"));
    EXPECT_EQ(8U, object.getPropertySize(u"media\\size_max_x"));
}

// --- Owners

struct OwnerGroup {
    int line; // the first of four
    const char* path;
    int flags;
    std::vector<const char*> keywords;
};

const OwnerGroup owner_groups[] = {
    {44, "init_term", 3, {"PreInitString", "PostInitString", "TerminationString"}},
    {48,
     "physical_pen",
     7,
     {"NumberOfPens", "PenColor", "PenWidth", "PenSpeed", "AreaFillCorrection", "PenOptimization",
      "PenChangingEnable"}},
    {52,
     "res_color_mem",
     14,
     {"Resolution", "PhysicalMemory", "ColorDepth", "ColorSystem", "ISMMaxMem", "OLEMaxMem",
      "HardSoftNoDithering", "ColorVsMono", "RastColorVsResPref", "InstalledMemory", "ICMMethod", "ICMIntent",
      "DMColor", "LinesOverwrite"}},
    {56,
     "io",
     9,
     {"Portname", "Type", "Protocol", "BaudRate", "Handshake", "InputTimeout", "OutputTimeout", "PlotToFile",
      "Pathname"}},
    {60,
     "media",
     23,
     {"SelectionMethod",
      "Type",
      "Source",
      "Feed",
      "Stapling",
      "Cutting",
      "Folding",
      "Collating",
      "Size",
      "Bounds",
      "PrintableArea",
      "Dimensional",
      "LandscapeMode",
      "DestinationNumberOfCopies",
      "DuplexingMode",
      "Margins",
      "LongplotReductionDmScale",
      "DmOrientation",
      "DmFormName",
      "ActualBounds",
      "CanDoRasters",
      "DrawsRastersAsRasters"}},
};

std::string owners(const OwnerGroup& group, const std::string& digits) {
    return std::string(group.path) + "\\ui_owner=\"" + digits + '"';
}
std::string no_owners(const OwnerGroup& group) {
    return std::string(static_cast<std::size_t>(group.flags), '0');
}

TEST(Ownership, EachKeywordHasItsFlag) {
    for (const OwnerGroup& group : owner_groups) {
        for (std::size_t flag = 0; flag < group.keywords.size(); ++flag) {
            std::string digits = no_owners(group);
            digits[flag] = '1';
            EXPECT_EQ(Items{owners(group, digits)}, effect(group.line + 1, group.keywords[flag]));
        }
    }
}

TEST(Ownership, LineOfTheGroupTellsTheOwner) {
    for (const OwnerGroup& group : owner_groups) {
        for (int owner = 1; owner < 4; ++owner) {
            std::string digits = no_owners(group);
            digits[0] = static_cast<char>('0' + owner);
            EXPECT_EQ(Items{owners(group, digits)}, effect(group.line + owner, group.keywords[0]));
        }
        EXPECT_EQ(Items{}, effect(group.line, group.keywords[0]));
    }
}

TEST(Ownership, AllStandsForEveryKeyword) {
    for (const OwnerGroup& group : owner_groups) {
        std::string digits = no_owners(group);
        std::fill_n(digits.begin(), group.keywords.size(), '3');
        EXPECT_EQ(Items{owners(group, digits)}, effect(group.line + 3, "ALL"));
    }
}

TEST(Ownership, AllReachesAllMediaFlagsButTheLast) {
    EXPECT_EQ(Items{"media\\ui_owner=\"22222222222222222222220\""}, effect(62, "ALL"));
}

TEST(Ownership, LaterLineTakesAFlagOver) {
    for (const OwnerGroup& group : owner_groups) {
        std::string digits = no_owners(group);
        std::fill_n(digits.begin(), group.keywords.size(), '2');
        digits[1] = '3';
        EXPECT_EQ(Items{owners(group, digits)},
                  effect({{group.line + 2, "label\tALL"},
                          {group.line + 3, std::string("label\t") + group.keywords[1]}}));
    }
}

TEST(Ownership, FirstOwnerTakesAFlagBack) {
    // Owner 0 shows as such only against another.
    EXPECT_EQ(Items{"init_term\\ui_owner=\"101\""},
              effect({{44, "\tALL"}, {45, "\tPreInitString\tTerminationString"}}));
}

TEST(Ownership, LineHoldsManyKeywords) {
    EXPECT_EQ(Items{"init_term\\ui_owner=\"202\""}, effect(46, "PreInitString\tTerminationString"));
    EXPECT_EQ(Items{"init_term\\ui_owner=\"222\""}, effect(46, "PreInitString\tALL"));
}

TEST(Ownership, UnknownKeywordsArePassedOver) {
    EXPECT_EQ(Items{"init_term\\ui_owner=\"200\""}, effect(46, "Other\tPreInitString"));
    EXPECT_EQ(Items{}, effect(46, "preinitstring\tall\tPreInitString \tPre Init String"));
    EXPECT_EQ(Items{}, effect(62, "DrawsRastersAsVectors\tOrientationPrefs"));
}

TEST(Ownership, ListEndsAtTheFirstEmptyCell) {
    EXPECT_EQ(Items{"init_term\\ui_owner=\"200\""}, effect(46, "PreInitString\t\tPostInitString"));
    EXPECT_EQ(Items{}, effect(46, "\tPreInitString"));
}

TEST(Ownership, KeywordsOfOneGroupMeanNothingInAnother) {
    EXPECT_EQ(Items{}, effect(46, "PenColor"));
    EXPECT_EQ(Items{"io\\ui_owner=\"020000000\""}, effect(58, "Type"));
}

TEST(Ownership, ListMayFillTheLine) {
    std::string keywords;
    for (int count = 0; count < 140; ++count) {
        keywords += "PreInitString\t";
    }
    EXPECT_EQ(Items{"init_term\\ui_owner=\"110\""}, effect(45, keywords + "PostInitString"));
}

} // namespace
