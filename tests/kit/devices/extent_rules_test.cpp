#include "kit/devices/small_device.h"
#include <gtest/gtest.h>

namespace {

using namespace pm::test;

TEST(Bounds, OfTheSizePass) {
    EXPECT_EQ(looked("media-bounds", {{"\\media\\size\\7\\name", text("A4")},
                                      {"\\media\\size\\7\\width", 210.0},
                                      {"\\media\\size\\7\\height", 297}}),
              (Lines{"passed \\media\\size\\7\\width @ \\media\\description\\0\\media_bounds_urx",
                     "passed \\media\\size\\7\\height @ \\media\\description\\0\\media_bounds_ury"}));
}

TEST(Bounds, OtherThanThoseOfTheSizeAreFound) {
    EXPECT_EQ(
        found("media-bounds", {{"\\media\\size\\7\\name", text("A4")}, {"\\media\\size\\7\\width", 200.0}}),
        Lines{"error \\media\\size\\7\\width = 200 @ \\media\\description\\0\\media_bounds_urx = 210: The "
              "media size "
              "\"A4\" (DIN A4) is 210 wide. (210, DIN A4)"});
}

TEST(Bounds, OfAFreeSizeMayBeShorter) {
    EXPECT_EQ(looked("media-bounds",
                     {{"\\media\\size\\7\\name", text("Free")}, {"\\media\\size\\7\\height", 499.0}}),
              Lines{"passed \\media\\size\\7\\height @ \\media\\description\\2\\media_bounds_ury"});
}

TEST(Bounds, OfAFreeSizeThatAreLongerAreFound) {
    EXPECT_EQ(found("media-bounds",
                    {{"\\media\\size\\7\\name", text("Free")}, {"\\media\\size\\7\\height", 501.0}}),
              Lines{"error \\media\\size\\7\\height = 501 @ \\media\\description\\2\\media_bounds_ury = 500: "
                    "The media size "
                    "\"Free\" (Frei) is at most 500 high. (up to 500, Frei)"});
}

TEST(Extent, OfNoSizePassesUpToTheLargestInEitherRotation) {
    EXPECT_EQ(looked("media-extent", {{"\\Plotter/User\\IsMetric", 1},
                                      {"\\Plotter/User\\UserWidth1", 300.0},
                                      {"\\Plotter/User\\UserHeight1", 500.0}}),
              (Lines{"passed \\Plotter/User\\UserWidth1 @ \\media\\size_max_x",
                     "passed \\Plotter/User\\UserHeight1 @ \\media\\size_max_y"}));
}

TEST(Extent, LongerThanTheLargestIsFound) {
    EXPECT_EQ(found("media-extent",
                    {{"\\media\\size\\0\\name", text("Poster")}, {"\\media\\size\\0\\width", 501.0}}),
              Lines{"error \\media\\size\\0\\width = 501 @ \\media\\size_max_x = 500: The largest size of "
                    "the device is "
                    "500 x 300. (500 x 300)"});
}

TEST(Extent, OfTwoSidesThatDoNotFitTogetherIsFoundAtTheWidth) {
    EXPECT_EQ(found("media-extent", {{"\\SIZE\\Big\\X", 400.0}, {"\\SIZE\\Big\\Y", 400.0}}),
              Lines{"error \\SIZE\\Big\\X = 400 @ \\media\\size_max_x = 500: The largest size of the device "
                    "is 500 x 300. "
                    "(500 x 300)"});
}

TEST(Extent, InInchesIsMeasuredInMillimetres) {
    EXPECT_EQ(found("media-extent", {{"\\UNITS", text("i")}, {"\\SIZE\\A\\X", 19.0}, {"\\SIZE\\B\\X", 20.0}}),
              Lines{"error \\SIZE\\B\\X = 20 @ \\media\\size_max_x = 500: The largest size of the device is "
                    "19.685039 x 11.811024 inches. (19.685039 x 11.811024)"});
}

TEST(Extent, OfALongPlotHasALimitOfItsOwn) {
    EXPECT_EQ(
        looked("media-extent", {{"\\Plotter/User\\IsMetric", 1}, {"\\Plotter/User\\LongPlotSize", 1000.0}}),
        Lines{"passed \\Plotter/User\\LongPlotSize @ \\media\\max_roll_height"});
    EXPECT_EQ(
        found("media-extent", {{"\\Plotter/User\\IsMetric", 1}, {"\\Plotter/User\\LongPlotSize", 1001.0}}),
        Lines{"error \\Plotter/User\\LongPlotSize = 1001 @ \\media\\max_roll_height = 1000: The length of a "
              "long "
              "plot, 1001, is above the most, 1000. (up to 1000)"});
}

TEST(Printable, PlotWithinTheAreaPasses) {
    EXPECT_EQ(looked("media-printable", {{"\\Plotter/User\\IsMetric", 1},
                                         {"\\Plotter/DriverCustom\\dmFormName", text("A4")},
                                         {"\\Plotter/User\\PlotWidth", 198.0},
                                         {"\\Plotter/User\\PlotHeight", 283.0}}),
              (Lines{"passed \\Plotter/User\\PlotWidth @ \\media\\description\\0\\printable_bounds_urx",
                     "passed \\Plotter/User\\PlotHeight @ \\media\\description\\0\\printable_bounds_ury"}));
}

TEST(Printable, PlotBeyondTheAreaIsFoundWithSizesThatHaveRoom) {
    EXPECT_EQ(found("media-printable", {{"\\Plotter/User\\IsMetric", 1},
                                        {"\\Plotter/DriverCustom\\dmFormName", text("A4")},
                                        {"\\Plotter/User\\PlotWidth", 210.0}}),
              Lines{"error \\Plotter/User\\PlotWidth = 210 @ \\media\\description\\0\\printable_bounds_urx = "
                    "203: The printable area of \"A4\" (DIN A4) is only 198 wide. (Free, Frei)"});
}

TEST(Printable, PlotOnNoSizePassesIfAnyHasRoom) {
    EXPECT_EQ(
        looked("media-printable", {{"\\Plotter/User\\IsMetric", 1}, {"\\Plotter/User\\PlotHeight", 480.0}}),
        Lines{"passed \\Plotter/User\\PlotHeight @ \\media\\description\\2"});
    EXPECT_EQ(
        found("media-printable", {{"\\Plotter/User\\IsMetric", 1}, {"\\Plotter/User\\PlotHeight", 481.0}}),
        Lines{"error \\Plotter/User\\PlotHeight = 481 @ \\media\\description = : No media size of the device "
              "has a "
              "printable area of 0 x 481."});
}

TEST(Printable, PartOfTheAreaUpToThatOfTheDevicePasses) {
    EXPECT_EQ(looked("media-printable", {{"\\media\\printable_area", 0.9}}),
              Lines{"passed \\media\\printable_area @ \\media\\description\\0\\printable_area"});
}

TEST(Printable, MoreOfTheAreaThanTheDevicePrintsIsFound) {
    EXPECT_EQ(found("media-printable", {{"\\media\\printable_area", 0.95}}),
              Lines{"error \\media\\printable_area = 0.95 @ \\media\\description\\0\\printable_area = 0.9: "
                    "Only 0.9 of the area \"A4_area\", the device's default, can be printed. (up to 0.9)"});
}

TEST(Printable, MarginsOfTheDevicePass) {
    EXPECT_EQ(looked("media-printable", {{"\\media\\margin_left", 5.0},
                                         {"\\media\\margin_bottom", 6.0},
                                         {"\\media\\margin_right", 7.0},
                                         {"\\media\\margin_top", 8.0}}),
              (Lines{"passed \\media\\margin_left @ \\media\\description\\0\\printable_bounds_llx",
                     "passed \\media\\margin_bottom @ \\media\\description\\0\\printable_bounds_lly",
                     "passed \\media\\margin_right @ \\media\\description\\0\\printable_bounds_urx",
                     "passed \\media\\margin_top @ \\media\\description\\0\\printable_bounds_ury"}));
}

TEST(Printable, SmallerMarginsAreFound) {
    EXPECT_EQ(
        found("media-printable", {{"\\media\\margin_right", 6.9}, {"\\media\\margin_top", 7.9}}),
        (Lines{"error \\media\\margin_right = 6.9 @ \\media\\description\\0\\printable_bounds_urx = 203: The "
               "device leaves a margin of at least 7 on \"A4_area\", the device's default. (from 7)",
               "error \\media\\margin_top = 7.9 @ \\media\\description\\0\\printable_bounds_ury = 289: The "
               "device leaves a margin of at least 8 on \"A4_area\", the device's default. (from 8)"}));
}

TEST(Rotation, OfTheSizePasses) {
    EXPECT_EQ(
        looked("media-rotation", {{"\\media\\default_size", text("A4_wide")}, {"\\media\\landscape", true}}),
        Lines{"passed \\media\\landscape @ \\media\\size\\1\\landscape_mode"});
}

TEST(Rotation, AnotherThanThatOfTheSizeIsFoundWithTheTurnedSize) {
    EXPECT_EQ(found("media-rotation", {{"\\media\\default_size", text("A4")}, {"\\media\\landscape", true}}),
              Lines{"error \\media\\landscape = true @ \\media\\size\\0\\landscape_mode = false: The media "
                    "size \"A4\" "
                    "(DIN A4) is portrait. (A4_wide, DIN A4 quer)"});
}

TEST(Rotation, InWordsIsRead) {
    EXPECT_EQ(found("media-rotation", {{"\\Plotter/DriverCustom\\dmFormName", text("A4 wide")},
                                       {"\\Plotter/DriverCustom\\dmOrientation", text("Portrait")}}),
              Lines{"error \\Plotter/DriverCustom\\dmOrientation = Portrait @ "
                    "\\media\\size\\1\\landscape_mode = true: The "
                    "media size \"A4_wide\" (DIN A4 quer) is landscape. (A4, DIN A4)"});
}

TEST(Rotation, OfNoSizePassesIfAnyIsSo) {
    EXPECT_EQ(looked("media-rotation", {{"\\media\\landscape", true}}),
              Lines{"passed \\media\\landscape @ \\media\\size\\1\\landscape_mode"});
}

TEST(Rotation, ByAQuarterNeedsSizesOfBothRotations) {
    EXPECT_EQ(looked("media-rotation", {{"\\ROTATE", 270}}), Lines{"passed \\ROTATE @ \\media\\landscape"});
    pm::Tree device = small_device();
    device.erase("\\media\\landscape");
    EXPECT_EQ(answer_of("media-rotation", tree_of({{"\\ROTATE", 180}}), device).looks,
              Lines{"passed \\ROTATE @ \\media\\landscape"});
    EXPECT_EQ(answer_of("media-rotation", tree_of({{"\\ROTATE", 270}}), device).findings,
              Lines{"error \\ROTATE = 270 @ \\media\\landscape = : The device can't turn a plot by 270 "
                    "degrees. (0, 180)"});
}

TEST(Rotation, ThatNoSizeHasIsFound) {
    pm::Tree device = small_device();
    device.set("\\media\\size\\1\\landscape_mode", false);
    EXPECT_EQ(answer_of("media-rotation", tree_of({{"\\media\\landscape", true}}), device).findings,
              Lines{"error \\media\\landscape = true @ \\media\\size = : No media size of the device is "
                    "landscape."});
}

TEST(Rotation, ByLessThanAQuarterIsFound) {
    EXPECT_EQ(found("media-rotation", {{"\\ROTATE", 45}}),
              Lines{"error \\ROTATE = 45 @ \\media\\landscape = true: The device can't turn a plot by 45 "
                    "degrees. (0, 90, "
                    "180, 270)"});
}

constexpr const char* size = "\\media\\default_size";
constexpr const char* landscape = "\\media\\landscape";
const Item metric{"\\Plotter/User\\IsMetric", 1};
const Item form_a4{"\\Plotter/DriverCustom\\dmFormName", text("A4")};

TEST(Extent, OfASideThatIsTooLongIsFoundThere) {
    expect_said("media-extent",
                {{{{"\\SIZE\\Big\\X", 400.0}, {"\\SIZE\\Big\\Y", 600.0}},
                  {},
                  {},
                  {"error \\SIZE\\Big\\Y = 600 @ \\media\\size_max_y = 300: The largest size of the device "
                   "is 500 x 300. (500 x 300)",
                   "passed \\SIZE\\Big\\X @ \\media\\size_max_x"}},
                 {{{"\\SIZE\\Big\\X", 600.0}, {"\\SIZE\\Big\\Y", 100.0}},
                  {},
                  {},
                  {"error \\SIZE\\Big\\X = 600 @ \\media\\size_max_x = 500: The largest size of the device "
                   "is 500 x 300. (500 x 300)",
                   "passed \\SIZE\\Big\\Y @ \\media\\size_max_y"}},
                 {{{"\\SIZE\\Big\\X", 400.0}, {"\\SIZE\\Big\\Y", text("some")}},
                  {},
                  {},
                  {"passed \\SIZE\\Big\\X @ \\media\\size_max_x", "unspoken \\SIZE\\Big\\Y @ "}},
                 {{{"\\media\\size\\7\\height", 501.0}, {"\\media\\size\\7\\name", text("Poster")}},
                  {},
                  {},
                  {"error \\media\\size\\7\\height = 501 @ \\media\\size_max_y = 300: The largest size of "
                   "the device is 500 x 300. (500 x 300)"}}});
}

TEST(Printable, PlotNeedsRoomAlongBothSides) {
    const Item wide{"\\Plotter/User\\PlotWidth", 281.0};
    const Item high{"\\Plotter/User\\PlotHeight", 300.0};
    expect_said("media-printable",
                {{{metric, wide},
                  {},
                  {},
                  {"error \\Plotter/User\\PlotWidth = 281 @ \\media\\description = : No media size of the "
                   "device has a printable area of 281 x 0."}},
                 {{metric, form_a4, high},
                  {},
                  {},
                  {"error \\Plotter/User\\PlotHeight = 300 @ \\media\\description\\0\\printable_bounds_ury = "
                   "289: The printable area of \"A4\" (DIN A4) is only 283 high. (Free, Frei)"}},
                 {{metric, form_a4, wide, high},
                  {},
                  {},
                  {"error \\Plotter/User\\PlotWidth = 281 @ \\media\\description\\0\\printable_bounds_urx = "
                   "203: The printable area of \"A4\" (DIN A4) is only 198 wide.",
                   "error \\Plotter/User\\PlotHeight = 300 @ \\media\\description\\0\\printable_bounds_ury = "
                   "289: The printable area of \"A4\" (DIN A4) is only 283 high."}},
                 {{metric, form_a4, high},
                  {"\\media\\size\\2\\media_description_name"},
                  {},
                  {"error \\Plotter/User\\PlotHeight = 300 @ \\media\\description\\0\\printable_bounds_ury = "
                   "289: The printable area of \"A4\" (DIN A4) is only 283 high."}},
                 {{metric, high},
                  {"\\media\\description\\2\\printable_bounds_urx"},
                  {},
                  {"error \\Plotter/User\\PlotHeight = 300 @ \\media\\description = : No media size of the "
                   "device has a printable area of 0 x 300."}}});
}

TEST(Printable, SizesWithRoomAreOfferedTheSmallestFirst) {
    expect_said("media-printable",
                {{{metric, form_a4, {"\\Plotter/User\\PlotHeight", 300.0}},
                  {},
                  {{"\\media\\size\\3\\name", text("Less")},
                   {"\\media\\size\\3\\media_description_name", text("Less_area")},
                   {"\\media\\description\\3\\name", text("Less_area")},
                   {"\\media\\description\\3\\printable_bounds_llx", 0},
                   {"\\media\\description\\3\\printable_bounds_lly", 0},
                   {"\\media\\description\\3\\printable_bounds_urx", 200},
                   {"\\media\\description\\3\\printable_bounds_ury", 300}},
                  {"error \\Plotter/User\\PlotHeight = 300 @ \\media\\description\\0\\printable_bounds_ury = "
                   "289: The printable area of \"A4\" (DIN A4) is only 283 high. (Less; Free, Frei)"}}});
}

TEST(Rotation, IsOfferedWithSizesOfTheSameSidesAlone) {
    const std::vector<Item> asked{{size, text("A4")}, {landscape, true}};
    expect_said("media-rotation", {{asked,
                                    {"\\media\\description\\1"},
                                    {},
                                    {"error \\media\\landscape = true @ \\media\\size\\0\\landscape_mode = "
                                     "false: The media size \"A4\" (DIN A4) is portrait."}},
                                   {asked,
                                    {"\\media\\description\\0"},
                                    {},
                                    {"error \\media\\landscape = true @ \\media\\size\\0\\landscape_mode = "
                                     "false: The media size \"A4\" (DIN A4) is portrait."}},
                                   {asked,
                                    {"\\media\\description\\1\\media_bounds_urx"},
                                    {},
                                    {"error \\media\\landscape = true @ \\media\\size\\0\\landscape_mode = "
                                     "false: The media size \"A4\" (DIN A4) is portrait."}},
                                   {asked,
                                    {"\\media\\description\\0\\media_bounds_urx"},
                                    {},
                                    {"error \\media\\landscape = true @ \\media\\size\\0\\landscape_mode = "
                                     "false: The media size \"A4\" (DIN A4) is portrait."}},
                                   {asked,
                                    {"\\media\\size\\1\\landscape_mode"},
                                    {},
                                    {"error \\media\\landscape = true @ \\media\\size\\0\\landscape_mode = "
                                     "false: The media size \"A4\" (DIN A4) is portrait."}},
                                   {asked,
                                    {},
                                    {{"\\media\\description\\1\\media_bounds_urx", 298.0}},
                                    {"error \\media\\landscape = true @ \\media\\size\\0\\landscape_mode = "
                                     "false: The media size \"A4\" (DIN A4) is portrait."}},
                                   {asked,
                                    {},
                                    {{"\\media\\description\\1\\media_bounds_ury", 211.0}},
                                    {"error \\media\\landscape = true @ \\media\\size\\0\\landscape_mode = "
                                     "false: The media size \"A4\" (DIN A4) is portrait."}}});
}

TEST(Rotation, OfAnEntryIsThatOfItsSize) {
    const Item turned{"\\media\\size\\7\\landscape_mode", true};
    expect_said("media-rotation",
                {{{turned, {"\\media\\size\\7\\name", text("A4 wide")}},
                  {},
                  {},
                  {"passed \\media\\size\\7\\landscape_mode @ \\media\\size\\1\\landscape_mode"}},
                 {{turned, {"\\media\\size\\7\\name", text("A4")}},
                  {},
                  {},
                  {"error \\media\\size\\7\\landscape_mode = true @ \\media\\size\\0\\landscape_mode = "
                   "false: The media size \"A4\" (DIN A4) is portrait. (A4_wide, DIN A4 quer)"}},
                 {{turned, {"\\media\\size\\7\\name", text("Poster")}}, {}, {}, {}},
                 {{turned}, {}, {}, {}}});
}

TEST(Rotation, ByAnythingButHalvesIsFoundWithoutSizesOfBoth) {
    expect_said("media-rotation",
                {{{{"\\ROTATE", 45}},
                  {landscape},
                  {},
                  {"error \\ROTATE = 45 @ \\media\\landscape = : The device can't turn a plot by 45 degrees. "
                   "(0, 180)"}},
                 {{{"\\ROTATE", 90}},
                  {},
                  {{landscape, false}},
                  {"error \\ROTATE = 90 @ \\media\\landscape = : The device can't turn a plot by 90 degrees. "
                   "(0, 180)"}},
                 {{{"\\ROTATE", -180}}, {}, {{landscape, false}}, {"passed \\ROTATE @ \\media\\landscape"}}});
}

TEST(Printable, OfTheDefaultSizeIsToldOfAsSuch) {
    EXPECT_EQ(
        found("media-printable", {{"\\media\\margin_top", 1}, {"\\media\\printable_area", 1.0}}),
        (Lines{
            "error \\media\\printable_area = 1 @ \\media\\description\\0\\printable_area = 0.9: Only 0.9 of "
            "the area \"A4_area\", the device's default, can be printed. (up to 0.9)",
            "error \\media\\margin_top = 1 @ \\media\\description\\0\\printable_bounds_ury = 289: The device "
            "leaves a margin of at least 8 on \"A4_area\", the device's default. (from 8)"}));
}

TEST(Printable, MarginInInchesIsOfferedInInches) {
    EXPECT_EQ(found("media-printable", {{"\\Plotter/User\\IsMetric", 0},
                                        {"\\Plotter/User\\WidthOrigin", 0.1},
                                        {"\\Plotter/DriverCustom\\dmFormName", text("A4")}}),
              Lines{"error \\Plotter/User\\WidthOrigin = 0.1 @ \\media\\description\\0\\printable_bounds_llx "
                    "= 5: The "
                    "device leaves a margin of at least 0.1968504 inches on \"A4_area\". (from 0.1968504)"});
}

TEST(Rotation, OfAnEntryWithoutANameIsUnspoken) {
    EXPECT_EQ(
        found("unspoken", {{"\\media\\size\\0\\landscape_mode", true}}),
        Lines{
            "note \\media\\size\\0\\landscape_mode = true @  = : Nothing in the description speaks of it."});
}

} // namespace
