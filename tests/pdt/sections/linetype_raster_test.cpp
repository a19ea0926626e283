#include "pdt/description.h"
#include <gtest/gtest.h>

namespace {

using pm::Section;
using pm::test::has_item;
using pm::test::Items;

Items items_of_rows(Section section, std::string_view rows, std::u16string_view path) {
    pm::test::Description description;
    description.rows(section, rows);
    return pm::test::items_of(description, path);
}

// The items of a table of line types, without the one that every load has.
Items linetypes(std::string_view rows) {
    Items items = items_of_rows(Section::line_type_capabilities, rows, u"linetype");
    std::erase(items, "caps_state=\"0000\"");
    return items;
}

Items rasters(std::string_view rows) {
    return items_of_rows(Section::raster_capability, rows, u"RASTER");
}

Items raster_items(std::string_view abilities, int orientation) {
    return {"abilities=\"" + std::string(abilities) + '"',
            "orientation_prefs=" + std::to_string(orientation)};
}

// --- Line types

TEST(Linetype, EmptyTableHasAllFlagsUnset) {
    EXPECT_EQ(Items{"capabilities=\"00000\""}, linetypes(""));
}

TEST(Linetype, EachNameHasItsCodeAndItsBit) {
    const char* names[] = {"Solid",
                           "Dashed",
                           "Dotted",
                           "Dash_Dot",
                           "Short_Dash",
                           "Medium_Dash",
                           "Long_Dash",
                           "Short_Dash_X2",
                           "Medium_Dash_X2",
                           "Long_Dash_X2",
                           "Medium_Long_Dash",
                           "Medium_Dash_Short_Dash_Short_Dash",
                           "Long_Dash_Short_Dash",
                           "Long_Dash_Dot_Dot",
                           "Long_Dash_Dot",
                           "Medium_Dash_Dot_Short_Dash_Dot",
                           "Sparse_Dot",
                           "User_Defined"};
    const char* bits = "1248";
    for (std::size_t code = 0; code < std::size(names); ++code) {
        std::string flags = "00000";
        flags[code / 4] = bits[code % 4];
        const Items expected = {"capabilities=\"" + flags + '"',
                                "font\\" + std::to_string(code) + "\\width=0.5"};
        EXPECT_EQ(expected, linetypes(std::string(names[code]) + "\t.5\n")) << names[code];
    }
}

TEST(Linetype, BitsOfAFlagAddUp) {
    EXPECT_TRUE(has_item(linetypes("Solid\nDashed\n"), "capabilities=\"30000\""));
    EXPECT_TRUE(has_item(linetypes("Solid\nDashed\nDotted\nDash Dot\n"), "capabilities=\"F0000\""));
}

TEST(Linetype, BlankInANameCountsAsUnderscore) {
    EXPECT_EQ((Items{"capabilities=\"01000\"", "font\\4\\width=1.0"}), linetypes("Short Dash\t1\n"));
}

TEST(Linetype, WidthIsRoundedTo32Bits) {
    EXPECT_TRUE(has_item(linetypes("Solid\t0.1\n"), "font\\0\\width=0.10000000149011612"));
}

TEST(Linetype, EmptyWidthIsZero) {
    EXPECT_TRUE(has_item(linetypes("Solid\n"), "font\\0\\width=0.0"));
}

TEST(Linetype, RepeatedNameKeepsTheBitAndTakesTheLaterWidth) {
    EXPECT_EQ((Items{"capabilities=\"10000\"", "font\\0\\width=2.0"}), linetypes("Solid\t1\nSolid\t2\n"));
}

TEST(Linetype, UnknownNameStandsAtIndexMinusOneAndSetsNoBit) {
    const Items expected = {"capabilities=\"00000\"", "font\\-1\\width=3.0"};
    EXPECT_EQ(expected, linetypes("Wavy\t3\n"));
    EXPECT_EQ(expected, linetypes("short dash\t3\n"));
    EXPECT_EQ(expected, linetypes("\"\"\t3\n"));
}

TEST(Linetype, RowWithoutANameIsPassedOver) {
    EXPECT_EQ((Items{"capabilities=\"10000\"", "font\\0\\width=0.0"}), linetypes("\t5\n\nSolid\n"));
}

TEST(Linetype, LastLineWithoutLineEndIsNotUsed) {
    EXPECT_EQ((Items{"capabilities=\"10000\"", "font\\0\\width=0.0"}), linetypes("Solid\nDashed"));
}

// --- Rasters

TEST(Raster, EmptyTableWritesBothItems) {
    EXPECT_EQ(raster_items("0000", 0), rasters(""));
}

TEST(Raster, EachAbilityHasItsFlag) {
    EXPECT_EQ(raster_items("5000", 0), rasters("CanDoRasters\n"));
    EXPECT_EQ(raster_items("0500", 0), rasters("DrawsRastersAsRasters\n"));
    EXPECT_EQ(raster_items("0050", 0), rasters("DrawsRastersAsVectors\n"));
    EXPECT_EQ(raster_items("0005", 0), rasters("OrientationPrefs\n"));
    EXPECT_EQ(raster_items("5505", 0), rasters("CanDoRasters\nDrawsRastersAsRasters\nOrientationPrefs\n"));
}

TEST(Raster, AbilityIsReadAsAName) {
    EXPECT_EQ(raster_items("5000", 0), rasters("\"CanDoRasters\"  \n"));
}

TEST(Raster, UnknownAbilityIsPassedOver) {
    EXPECT_EQ(raster_items("0000", 0), rasters("candorasters\n"));
    EXPECT_EQ(raster_items("0000", 2), rasters("Other\tIOrient_X_Right_To_Left_Top_First\n"));
}

TEST(Raster, EachOrientationHasItsNumber) {
    const char* names[] = {"IOrient_X_Left_To_Right_Top_First",  "IOrient_X_Left_To_Right_Bottom_First",
                           "IOrient_X_Right_To_Left_Top_First",  "IOrient_X_Right_To_Left_Bottom_First",
                           "IOrient_Y_Top_To_Bottom_Left_First", "IOrient_Y_Top_To_Bottom_Right_First",
                           "IOrient_Y_Bottom_To_Top_Left_First", "IOrient_Y_Bottom_To_Top_Right_First"};
    for (int number = 0; number < 8; ++number) {
        EXPECT_EQ(raster_items("0000", number), rasters(std::string("\t") + names[number] + "\n"));
    }
}

TEST(Raster, OrientationsAreCombinedBitByBit) {
    EXPECT_EQ(raster_items("0000", 3),
              rasters("\tIOrient_X_Left_To_Right_Bottom_First\n\tIOrient_X_Right_To_Left_Top_First\n"));
}

TEST(Raster, UnknownOrientationSetsAllBitsForGood) {
    EXPECT_EQ(raster_items("0000", -1), rasters("\tSideways\n\tIOrient_X_Left_To_Right_Bottom_First\n"));
}

TEST(Raster, OrientationIsComparedAsItStands) {
    EXPECT_EQ(raster_items("0000", -1), rasters("\tIOrient_X_Left_To_Right_Top_First \n"));
}

TEST(Raster, LastLineWithoutLineEndIsNotUsed) {
    EXPECT_EQ(raster_items("5000", 0), rasters("CanDoRasters\nDrawsRastersAsRasters"));
}

} // namespace
