#include "kit/devices/small_device.h"
#include <gtest/gtest.h>
#include <pm/text.h>

namespace {

using namespace pm::test;

TEST(ColourMode, OfTheDevicePasses) {
    EXPECT_EQ(looked("colour-mode", {{"\\res_color_mem\\default_name", text("Mono")}}),
              Lines{"passed \\res_color_mem\\default_name @ \\res_color_mem\\rcm_list\\Mono"});
}

TEST(ColourMode, OfAnotherNameIsFound) {
    EXPECT_EQ(found("colour-mode", {{"\\res_color_mem\\default_name", text("Grays")}}),
              Lines{"error \\res_color_mem\\default_name = Grays @ \\res_color_mem\\rcm_list = : The device "
                    "has no colour "
                    "mode \"Grays\". (Colour, bunt; Mono, schwarz)"});
}

TEST(ColourMode, WithColoursPassesIfAnyHasThem) {
    EXPECT_EQ(
        looked("colour-mode", {{"\\Plotter/DriverCustom\\dmColor", text("color")}}),
        Lines{"passed \\Plotter/DriverCustom\\dmColor @ \\res_color_mem\\rcm_list\\Colour\\color_system"});
}

TEST(ColourMode, WithoutColoursWhereTheyAreAskedForIsFound) {
    EXPECT_EQ(found("colour-mode", {{"\\res_color_mem\\default_name", text("Mono")},
                                    {"\\Plotter/DriverCustom\\dmColor", text("color")}}),
              Lines{"error \\Plotter/DriverCustom\\dmColor = color @ "
                    "\\res_color_mem\\rcm_list\\Mono\\color_system = 2: The "
                    "colour mode \"Mono\" (schwarz) has no colours. (Colour, bunt)"});
}

TEST(ColourDepth, OfTheModePasses) {
    EXPECT_EQ(looked("colour-depth", {{"\\res_color_mem\\default_name", text("Colour")},
                                      {"\\res_color_mem\\color_depth", 24}}),
              Lines{"passed \\res_color_mem\\color_depth @ \\res_color_mem\\rcm_list\\Colour\\color_depth"});
}

TEST(ColourDepth, OfAnotherModeIsFound) {
    EXPECT_EQ(found("colour-depth",
                    {{"\\res_color_mem\\default_name", text("Colour")}, {"\\res_color_mem\\color_depth", 1}}),
              Lines{"error \\res_color_mem\\color_depth = 1 @ \\res_color_mem\\rcm_list\\Colour\\color_depth "
                    "= 24: The colour "
                    "mode \"Colour\" (bunt) hasn't 1 bits. (24, bunt; 1, schwarz)"});
}

TEST(Resolution, OfTheModePasses) {
    EXPECT_EQ(looked("resolution", {{"\\res_color_mem\\default_name", text("Colour")},
                                    {"\\res_color_mem\\resolution_x", 600},
                                    {"\\res_color_mem\\resolution_y", 600}}),
              Lines{"passed \\res_color_mem\\resolution_x @ "
                    "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi"});
}

TEST(Resolution, OfAModePassesIfNoOtherTellsAny) {
    pm::Tree device = small_device();
    const std::string other = "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi";
    device.object().deletePath(pm::to_utf16(other).c_str());
    EXPECT_EQ(answer_of("resolution",
                        tree_of({{"\\res_color_mem\\default_name", text("Colour")},
                                 {"\\res_color_mem\\resolution_x", 600},
                                 {"\\res_color_mem\\resolution_y", 600}}),
                        device)
                  .looks,
              Lines{"passed \\res_color_mem\\resolution_x @ "
                    "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi"});
}

TEST(Resolution, OfAnyModePassesIfNoneIsNamed) {
    EXPECT_EQ(looked("resolution", {{"\\Plotter/DriverCustom\\dmPrintQuality", 300}}),
              Lines{"passed \\Plotter/DriverCustom\\dmPrintQuality @ "
                    "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi"});
}

TEST(Resolution, OfAnotherModeIsFound) {
    EXPECT_EQ(found("resolution", {{"\\res_color_mem\\default_name", text("Mono")},
                                   {"\\res_color_mem\\resolution_x", 600}}),
              Lines{"error \\res_color_mem\\resolution_x = 600 @ "
                    "\\res_color_mem\\rcm_list\\Mono\\resolution_list = : The "
                    "colour mode \"Mono\" (schwarz) has no resolution of 600 x 600. (300 x 300)"});
}

TEST(Resolution, WithSidesThatDoNotGoTogetherIsFoundOnce) {
    EXPECT_EQ(found("resolution",
                    {{"\\res_color_mem\\resolution_x", 600}, {"\\res_color_mem\\resolution_y", 1200}}),
              Lines{"error \\res_color_mem\\resolution_x = 600 @ \\res_color_mem\\rcm_list = : The device "
                    "has no resolution of "
                    "600 x 1200. (600 x 600, mittel; 1200 x 1200; 300 x 300)"});
}

TEST(ResolutionOnMedia, ThatTheTypeTakesPasses) {
    EXPECT_EQ(looked("resolution-media",
                     {{"\\media\\default_type", text("Photo")}, {"\\res_color_mem\\resolution_x", 1200}}),
              Lines{"passed \\res_color_mem\\resolution_x @ \\media\\type\\1\\max_resolution_x"});
}

TEST(ResolutionOnMedia, ThatIsTooMuchForTheTypeIsFound) {
    EXPECT_EQ(found("resolution-media", {{"\\res_color_mem\\resolution_x", 1200}}),
              Lines{"error \\res_color_mem\\resolution_x = 1200 @ \\media\\type\\0\\max_resolution_x = 600 x "
                    "600: The media "
                    "type \"Plain\", the device's default, takes at most 600 x 600, and \"1200_dpi\" is "
                    "more. (Photo, "
                    "Fotopapier)"});
}

TEST(Memory, WithRoomForTheSizePasses) {
    EXPECT_EQ(
        looked("memory", {{"\\res_color_mem\\installed_memory", 64}, {"\\media\\default_size", text("A4")}}),
        Lines{"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"});
}

TEST(Memory, ThatIsTooLittleForTheResolutionIsFound) {
    EXPECT_EQ(
        found("memory", {{"\\res_color_mem\\installed_memory", 64}, {"\\res_color_mem\\resolution_x", 1200}}),
        Lines{"error \\res_color_mem\\installed_memory = 64 @ "
              "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\mem_area = : The resolution "
              "\"1200_dpi\" "
              "needs more memory than 64. (256, 256 MB)"});
}

TEST(Memory, ThatIsTooLittleForTheSizeIsFound) {
    EXPECT_EQ(
        found("memory", {{"\\res_color_mem\\installed_memory", 64}, {"\\media\\default_size", text("Free")}}),
        Lines{"error \\res_color_mem\\installed_memory = 64 @ "
              "\\res_color_mem\\mem_area_list\\Small\\printable_area = "
              "300: The installed memory has room for a side of 300, and \"Free\" (Frei) has one of 500. "
              "(256, 256 MB)"});
}

TEST(Memory, ByDefaultThatIsTooLittleForTheSizeIsAWarning) {
    EXPECT_EQ(found("memory", {{"\\media\\default_size", text("Free")}}),
              Lines{"warning \\media\\default_size = Free @ "
                    "\\res_color_mem\\mem_area_list\\Small\\printable_area = 300: The "
                    "device's default memory \"Small\" (64 MB) has room for a side of 300, and \"Free\" "
                    "(Frei) has one of "
                    "500. (256, 256 MB)"});
}

TEST(Memory, DoesNotBoundTheSizeUnlessTheDescriptionSaysSo) {
    pm::Tree device = small_device();
    device.set("\\res_color_mem\\memory_changes_print_area", false);
    const auto configuration =
        tree_of({{"\\res_color_mem\\installed_memory", 64}, {"\\media\\default_size", text("Free")}});
    EXPECT_EQ(answer_of("memory", configuration, device).looks,
              Lines{"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"});
}

TEST(Dithering, OfTheResolutionPasses) {
    EXPECT_EQ(looked("dithering", {{"\\res_color_mem\\dithering", text("Fine")}}),
              Lines{"passed \\res_color_mem\\dithering @ \\res_color_mem\\dithering_list\\Fine"});
}

TEST(Dithering, OfAnotherNameIsFound) {
    EXPECT_EQ(found("dithering", {{"\\res_color_mem\\dithering", text("Ordered")}}),
              Lines{"error \\res_color_mem\\dithering = Ordered @ \\res_color_mem\\dithering_list = : The "
                    "device has no "
                    "dithering method \"Ordered\". (Fine, fein; Coarse, grob)"});
}

TEST(Dithering, OfAnotherResolutionIsAWarning) {
    EXPECT_EQ(found("dithering", {{"\\res_color_mem\\dithering", text("Coarse")}}),
              Lines{"warning \\res_color_mem\\dithering = Coarse @ "
                    "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\res_color_mem\\dithering_"
                    "list = Fine: The "
                    "resolution \"600_dpi\" (mittel) is dithered by \"Fine\". (Fine, fein)"});
}

} // namespace
