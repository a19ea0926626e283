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
              (Lines{"passed \\res_color_mem\\resolution_x @ "
                     "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi",
                     "passed \\res_color_mem\\resolution_y @ "
                     "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi"}));
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
              (Lines{"passed \\res_color_mem\\resolution_x @ "
                     "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi",
                     "passed \\res_color_mem\\resolution_y @ "
                     "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi"}));
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
              Lines{"error \\res_color_mem\\resolution_x = 1200 @ \\media\\type\\0\\max_resolution_x = 600: "
                    "The media type \"Plain\", the device's default, takes at most 600 x 600, and "
                    "\"1200_dpi\" is more. (Photo, Fotopapier)"});
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
                    "list = Fine: The resolution \"600_dpi\" (mittel), the device's default, is dithered by "
                    "\"Fine\". (Fine, fein)"});
}

constexpr const char* colour = "\\Plotter/DriverCustom\\dmColor";
constexpr const char* default_mode = "\\res_color_mem\\default_name";
constexpr const char* depth = "\\res_color_mem\\color_depth";
constexpr const char* dots_x = "\\res_color_mem\\resolution_x";
constexpr const char* dots_y = "\\res_color_mem\\resolution_y";
constexpr const char* installed = "\\res_color_mem\\installed_memory";
constexpr const char* size = "\\media\\default_size";
constexpr const char* type = "\\media\\default_type";
constexpr const char* method = "\\res_color_mem\\dithering";
constexpr const char* mode_of_colour = "\\res_color_mem\\rcm_list\\Colour";
constexpr const char* mode_of_mono = "\\res_color_mem\\rcm_list\\Mono";
constexpr const char* system_of_colour = "\\res_color_mem\\rcm_list\\Colour\\color_system";
constexpr const char* depth_of_mono = "\\res_color_mem\\rcm_list\\Mono\\color_depth";
constexpr const char* default_of_600 =
    "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\default_mem_area";
constexpr const char* areas_of_600 = "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\mem_area";
constexpr const char* dithering_of_600 =
    "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\res_color_mem\\dithering_list";
constexpr const char* small_memory = "\\res_color_mem\\mem_area_list\\Small\\device_memory";
constexpr const char* small_room = "\\res_color_mem\\mem_area_list\\Small\\printable_area";
constexpr const char* large_memory = "\\res_color_mem\\mem_area_list\\Large\\device_memory";
constexpr const char* large_room = "\\res_color_mem\\mem_area_list\\Large\\printable_area";

TEST(ColourMode, ThatNoModeHasOrIsWithoutIsFound) {
    expect_said(
        "colour-mode",
        {{{{colour, text("color")}},
          {mode_of_colour},
          {},
          {"error \\Plotter/DriverCustom\\dmColor = color @ \\res_color_mem\\rcm_list = : No colour mode of "
           "the device has colours."}},
         {{{colour, text("mono")}},
          {mode_of_mono},
          {},
          {"error \\Plotter/DriverCustom\\dmColor = mono @ \\res_color_mem\\rcm_list = : No colour mode of "
           "the device is without colours."}},
         {{{colour, text("mono")}, {default_mode, text("Colour")}},
          {},
          {},
          {"error \\Plotter/DriverCustom\\dmColor = mono @ \\res_color_mem\\rcm_list\\Colour\\color_system = "
           "1: The colour mode \"Colour\" (bunt) has colours. (Mono, schwarz)",
           "passed \\res_color_mem\\default_name @ \\res_color_mem\\rcm_list\\Colour"}},
         {{{colour, text("mono")}, {default_mode, text("Colour")}},
          {system_of_colour},
          {},
          {"error \\Plotter/DriverCustom\\dmColor = mono @ \\res_color_mem\\rcm_list\\Colour\\color_system = "
           ": The colour mode \"Colour\" (bunt) has colours. (Mono, schwarz)",
           "passed \\res_color_mem\\default_name @ \\res_color_mem\\rcm_list\\Colour"}},
         {{{colour, text("mono")}},
          {},
          {{system_of_colour, 3}},
          {"passed \\Plotter/DriverCustom\\dmColor @ \\res_color_mem\\rcm_list\\Colour\\color_system"}}});
}

TEST(ColourDepth, ThatIsNotTheModesOwnIsFoundWithThoseThatAre) {
    expect_said("colour-depth",
                {{{{depth, 8}},
                  {},
                  {},
                  {"error \\res_color_mem\\color_depth = 8 @ \\res_color_mem\\rcm_list = : No colour mode of "
                   "the device has 8 bits. (24, bunt; 1, schwarz)"}},
                 {{{depth, 8}},
                  {depth_of_mono},
                  {},
                  {"error \\res_color_mem\\color_depth = 8 @ \\res_color_mem\\rcm_list = : No colour mode of "
                   "the device has 8 bits. (24, bunt)"}},
                 {{{depth, 8}, {default_mode, text("Mono")}},
                  {depth_of_mono},
                  {},
                  {"error \\res_color_mem\\color_depth = 8 @ \\res_color_mem\\rcm_list\\Mono\\color_depth = "
                   ": The colour mode \"Mono\" (schwarz) hasn't 8 bits. (24, bunt)"}},
                 {{{depth, 24}, {default_mode, text("Mono")}},
                  {},
                  {},
                  {"error \\res_color_mem\\color_depth = 24 @ \\res_color_mem\\rcm_list\\Mono\\color_depth = "
                   "1: The colour mode \"Mono\" (schwarz) hasn't 24 bits. (24, bunt; 1, schwarz)"}}});
}

TEST(Resolution, OfOneSideIsThatOfBoth) {
    expect_said("resolution",
                {{{{dots_y, 300}},
                  {},
                  {},
                  {"passed \\res_color_mem\\resolution_y @ "
                   "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi"}},
                 {{{dots_y, 301}},
                  {},
                  {},
                  {"error \\res_color_mem\\resolution_y = 301 @ \\res_color_mem\\rcm_list = : The device has "
                   "no resolution of 301 x 301. (600 x 600, mittel; 1200 x 1200; 300 x 300)"}}});
}

TEST(Resolution, IsOfferedByItsNameWhereNothingTellsItsDots) {
    expect_said(
        "resolution",
        {{{{dots_x, 600}, {default_mode, text("Mono")}},
          {},
          {{"\\res_color_mem\\rcm_list\\Mono\\resolution_list\\Draft\\localized_name", text("grob")}},
          {"error \\res_color_mem\\resolution_x = 600 @ \\res_color_mem\\rcm_list\\Mono\\resolution_list = : "
           "The colour mode \"Mono\" (schwarz) has no resolution of 600 x 600. (300 x 300; Draft, grob)"}},
         {{{dots_x, 600}},
          {},
          {{"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\addressable_resolution_y", 300.0}},
          {"error \\res_color_mem\\resolution_x = 600 @ \\res_color_mem\\rcm_list = : The device has no "
           "resolution of 600 x 600. (600 x 300, mittel; 1200 x 1200; 300 x 300)"}}});
}

TEST(Resolution, ByNameIsOneOfItsMode) {
    expect_said("resolution",
                {{{{"\\res_color_mem\\rcm_list\\Mono\\default_resolution", text("300_dpi")}},
                  {},
                  {},
                  {"passed \\res_color_mem\\rcm_list\\Mono\\default_resolution @ "
                   "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi"}},
                 {{{"\\res_color_mem\\rcm_list\\Mono\\default_resolution", text("600 dpi")}},
                  {},
                  {},
                  {"error \\res_color_mem\\rcm_list\\Mono\\default_resolution = 600 dpi @ "
                   "\\res_color_mem\\rcm_list\\Mono\\resolution_list = : The colour mode \"Mono\" (schwarz) "
                   "has no resolution \"600_dpi\". (300_dpi)"}},
                 {{{"\\res_color_mem\\rcm_list\\Grays\\default_resolution", text("300_dpi")}}, {}, {}, {}}});
}

TEST(Resolution, ByNameWithoutAModeIsOneOfTheChosen) {
    const auto map =
        pm::kit::load_map(R"({"settings": [{"setting": "resolution", "path": "\\dpi", "form": "name"}]})");
    expect_said("resolution",
                {{{{"\\dpi", text("1200 dpi")}},
                  {},
                  {},
                  {"passed \\dpi @ \\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi"}},
                 {{{"\\dpi", text("300 dpi")}},
                  {},
                  {},
                  {"error \\dpi = 300 dpi @ \\res_color_mem\\rcm_list\\Colour\\resolution_list = : The "
                   "colour mode \"Colour\" (bunt), the device's default, has no resolution \"300_dpi\". "
                   "(600_dpi, mittel; 1200_dpi)"}},
                 {{{"\\dpi", text("300 dpi")}, {default_mode, text("Mono")}},
                  {},
                  {},
                  {"passed \\dpi @ \\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi"}},
                 {{{"\\dpi", text("300 dpi")}},
                  {default_mode},
                  {},
                  {"unspoken \\dpi @ \\res_color_mem\\default_name"}}},
                {.map = &map});
    expect_said("memory",
                {{{{"\\dpi", text("1200 dpi")}, {installed, 64}},
                  {},
                  {},
                  {"error \\res_color_mem\\installed_memory = 64 @ "
                   "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\mem_area = : The "
                   "resolution \"1200_dpi\" needs more memory than 64. (256, 256 MB)"}}},
                {.map = &map});
}

TEST(ResolutionOnMedia, IsNotComparedWithoutBoth) {
    expect_said("resolution-media",
                {{{{dots_x, 1200}, {type, text("Film")}}, {}, {}, {}},
                 {{{dots_x, 1200}}, {type}, {}, {}},
                 {{{dots_x, 1200}}, {"\\media\\type\\0\\max_resolution_y"}, {}, {}},
                 {{{dots_x, 900}}, {}, {}, {}},
                 {{{default_mode, text("Colour")}}, {}, {}, {}},
                 {{{type, text("Photo")}},
                  {},
                  {},
                  {"passed \\media\\default_type @ \\media\\type\\1\\max_resolution_x"}},
                 {{{type, text("Photo")}},
                  {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\addressable_resolution_x"},
                  {},
                  {}}});
}

TEST(ResolutionOnMedia, ThatIsTooMuchAlongOneSideIsFoundWithTypesThatTakeBoth) {
    expect_said("resolution-media",
                {{{{dots_x, 600}},
                  {},
                  {{"\\media\\type\\0\\max_resolution_y", 300.0},
                   {"\\media\\type\\2\\name", text("Wide")},
                   {"\\media\\type\\2\\max_resolution_x", 600.0},
                   {"\\media\\type\\2\\max_resolution_y", 300.0},
                   {"\\media\\type\\3\\name", text("High")},
                   {"\\media\\type\\3\\max_resolution_x", 300.0},
                   {"\\media\\type\\3\\max_resolution_y", 600.0},
                   {"\\media\\type\\4\\name", text("Any")}},
                  {"error \\res_color_mem\\resolution_x = 600 @ \\media\\type\\0\\max_resolution_y = 300: "
                   "The media type \"Plain\", the device's default, takes at most 600 x 300, and \"600_dpi\" "
                   "(mittel) is more. (Photo, Fotopapier)"}}});
}

TEST(Memory, ThatIsTooLittleForAllIsFound) {
    expect_said(
        "memory",
        {{{{installed, 1}},
          {},
          {},
          {"error \\res_color_mem\\installed_memory = 1 @ "
           "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\mem_area = : The resolution "
           "\"600_dpi\" (mittel), the device's default, needs more memory than 1. (64, 64 MB; 256, 256 MB)"}},
         {{{installed, 1}},
          {default_mode},
          {},
          {"error \\res_color_mem\\installed_memory = 1 @ \\res_color_mem\\mem_area_list = : The "
           "device needs more memory than 1. (64, 64 MB; 256, 256 MB)"}},
         {{{installed, 64}},
          {areas_of_600},
          {},
          {"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"}},
         {{{installed, 1}},
          {small_memory},
          {},
          {"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"}}});
}

TEST(Memory, WithTheMostRoomOfWhatIsInstalledCounts) {
    const Item free_size{size, text("Free")};
    expect_said("memory",
                {{{{installed, 256}, free_size},
                  {},
                  {},
                  {"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Large"}},
                 {{{installed, 256}, free_size},
                  {},
                  {{large_room, 400.0}},
                  {"error \\res_color_mem\\installed_memory = 256 @ "
                   "\\res_color_mem\\mem_area_list\\Large\\printable_area = 400: The installed memory has "
                   "room for a side of 400, and \"Free\" (Frei) has one of 500."}},
                 {{{installed, 256}, free_size},
                  {},
                  {{large_room, 200.0}},
                  {"error \\res_color_mem\\installed_memory = 256 @ "
                   "\\res_color_mem\\mem_area_list\\Small\\printable_area = 300: The installed memory has "
                   "room for a side of 300, and \"Free\" (Frei) has one of 500."}},
                 {{{installed, 64}, free_size},
                  {small_room},
                  {},
                  {"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"}},
                 {{{installed, 64}, free_size},
                  {large_room},
                  {},
                  {"error \\res_color_mem\\installed_memory = 64 @ "
                   "\\res_color_mem\\mem_area_list\\Small\\printable_area = 300: The installed memory has "
                   "room for a side of 300, and \"Free\" (Frei) has one of 500. (256, 256 MB)"}}});
}

TEST(Memory, IsEnoughForASizeOfUnknownSides) {
    const Item free_size{size, text("Free")};
    expect_said("memory",
                {{{{installed, 64}, free_size},
                  {"\\media\\description\\2"},
                  {},
                  {"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"}},
                 {{{installed, 64}, free_size},
                  {"\\media\\description\\2\\media_bounds_ury"},
                  {},
                  {"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"}},
                 {{{installed, 64}},
                  {size},
                  {},
                  {"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"}},
                 {{free_size}, {"\\media\\description\\2"}, {}, {}},
                 {{free_size}, {default_of_600}, {}, {}},
                 {{free_size}, {default_mode}, {}, {}},
                 {{{size, text("A9")}}, {}, {}, {}},
                 {{free_size}, {"\\res_color_mem\\memory_changes_print_area"}, {}, {}}});
}

TEST(Memory, ByNameGoesWithItsResolution) {
    const char* const mono = "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi\\default_mem_area";
    const char* const no_mode = "\\res_color_mem\\rcm_list\\Gray\\resolution_list\\300_dpi\\default_mem_area";
    const char* const no_dots = "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\900_dpi\\default_mem_area";
    expect_said(
        "memory",
        {{{{default_of_600, text("Large")}},
          {},
          {},
          {"passed \\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\default_mem_area @ "
           "\\res_color_mem\\mem_area_list\\Large"}},
         {{{default_of_600, text("Huge")}},
          {large_memory},
          {},
          {"error \\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\default_mem_area = Huge @ "
           "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\mem_area = : The resolution "
           "\"600_dpi\" (mittel) doesn't go with the memory \"Huge\". (64, 64 MB; Large, 256 MB)"}},
         {{{default_of_600, text("Small")}},
          {"\\res_color_mem\\mem_area_list\\Small"},
          {},
          {"error \\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\default_mem_area = Small @ "
           "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\mem_area = : The resolution "
           "\"600_dpi\" (mittel) doesn't go with the memory \"Small\". (256, 256 MB)"}},
         {{{default_of_600, text("Small")}, {size, text("Free")}},
          {},
          {},
          {"error \\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\default_mem_area = Small @ "
           "\\res_color_mem\\mem_area_list\\Small\\printable_area = 300: The memory \"Small\" (64 MB) has "
           "room for a side of 300, and \"Free\" (Frei) has one of 500. (256, 256 MB)"}},
         {{{mono, text("Small")}, {size, text("Free")}},
          {},
          {},
          {"passed \\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi\\default_mem_area @ "
           "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi\\mem_area\\0"}},
         {{{no_mode, text("Small")}}, {}, {}, {}},
         {{{no_dots, text("Small")}}, {}, {}, {}}});
}

TEST(Memory, ByNameWithoutAResolutionIsOneOfTheChosen) {
    const auto map = pm::kit::load_map(R"({"settings": [
        {"setting": "memory_area", "path": "\\memory"}, {"setting": "memory_area", "path": "\\of\\*"}]})");
    expect_said(
        "memory",
        {{{{"\\memory", text("Large")}}, {}, {}, {"passed \\memory @ \\res_color_mem\\mem_area_list\\Large"}},
         {{{"\\memory", text("Small")}, {dots_x, 1200}},
          {},
          {},
          {"error \\memory = Small @ \\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\mem_area "
           "= : The resolution \"1200_dpi\" doesn't go with the memory \"Small\". (256, 256 MB)"}},
         {{{"\\memory", text("Small")}},
          {default_mode},
          {},
          {"unspoken \\memory @ \\res_color_mem\\default_name"}},
         {{{"\\of\\Colour", text("Small")}}, {}, {}, {}}},
        {.map = &map});
}

TEST(Dithering, OfAnyMethodPassesWhereTheResolutionTellsNone) {
    expect_said("dithering",
                {{{{method, text("Coarse")}, {dots_x, 1200}},
                  {},
                  {},
                  {"passed \\res_color_mem\\dithering @ \\res_color_mem\\dithering_list\\Coarse"}},
                 {{{method, text("Coarse")}},
                  {default_mode},
                  {},
                  {"passed \\res_color_mem\\dithering @ \\res_color_mem\\dithering_list\\Coarse"}},
                 {{{method, text("Coarse")}},
                  {dithering_of_600},
                  {},
                  {"passed \\res_color_mem\\dithering @ \\res_color_mem\\dithering_list\\Coarse"}},
                 {{{dithering_of_600, text("Coarse")}},
                  {},
                  {},
                  {"passed "
                   "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\res_color_mem\\dithering_"
                   "list @ \\res_color_mem\\dithering_list\\Coarse"}}});
}

TEST(Dithering, ThatTheDeviceDoesNotListIsOfferedByItsName) {
    expect_said("dithering", {{{{method, text("Fine")}},
                               {},
                               {{dithering_of_600, text("Special")}},
                               {"warning \\res_color_mem\\dithering = Fine @ "
                                "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\res_color_"
                                "mem\\dithering_list = Special: The resolution \"600_dpi\" (mittel), the "
                                "device's default, is dithered by \"Special\". (Special)"}}});
}

TEST(Resolution, ThatStandsInAnotherPlaceTooIsComparedThere) {
    expect_said("resolution", {{{{dots_x, text("some")}, {"\\Plotter/DriverCustom\\dmPrintQuality", 300}},
                                {},
                                {},
                                {"unspoken \\res_color_mem\\resolution_x @ ",
                                 "passed \\Plotter/DriverCustom\\dmPrintQuality @ "
                                 "\\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi"}}});
}

TEST(Resolution, BelongsTogetherByItsKey) {
    const auto map = pm::kit::load_map(R"({"settings": [
        {"setting": "resolution_x", "path": "\\x\\*"}, {"setting": "resolution_y", "path": "\\y\\*"}]})");
    expect_said(
        "resolution",
        {{{{"\\x\\a", 300}, {"\\x\\b", 1200}, {"\\y\\b", 600}},
          {},
          {},
          {"error \\x\\b = 1200 @ \\res_color_mem\\rcm_list = : The device has no resolution of 1200 x "
           "600. (600 x 600, mittel; 1200 x 1200; 300 x 300)",
           "passed \\x\\a @ \\res_color_mem\\rcm_list\\Mono\\resolution_list\\300_dpi"}}},
        {.map = &map});
}

TEST(Resolution, OfTheHeightIsComparedWhereThatOfTheWidthCanNotBeRead) {
    expect_said("resolution",
                {{{{dots_y, 301}, {dots_x, text("some")}},
                  {},
                  {},
                  {"error \\res_color_mem\\resolution_y = 301 @ \\res_color_mem\\rcm_list = : The device has "
                   "no resolution of 301 x 301. (600 x 600, mittel; 1200 x 1200; 300 x 300)",
                   "unspoken \\res_color_mem\\resolution_x @ "}}});
}

TEST(Memory, ThatIsTheMostOfWhatIsInstalledPasses) {
    EXPECT_EQ(looked("memory", {{installed, 256}}),
              Lines{"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Large"});
    EXPECT_EQ(looked("memory", {{installed, 255}}),
              Lines{"passed \\res_color_mem\\installed_memory @ \\res_color_mem\\mem_area_list\\Small"});
}

TEST(ResolutionOnMedia, IsDescribedByTheSideThatIsTooFine) {
    expect_said(
        "resolution-media",
        {{{{"\\res_color_mem\\resolution_x", 600}},
          {},
          {{"\\media\\type\\0\\max_resolution_y", 300.0}},
          {"error \\res_color_mem\\resolution_x = 600 @ \\media\\type\\0\\max_resolution_y = 300: The media "
           "type \"Plain\", the device's default, takes at most 600 x 300, and \"600_dpi\" (mittel) is more. "
           "(Photo, Fotopapier)"}}});
}

TEST(ColourRule, TellsOfADefault) {
    EXPECT_EQ(
        found("dithering", {{"\\res_color_mem\\dithering", text("Coarse")}}),
        Lines{"warning \\res_color_mem\\dithering = Coarse @ "
              "\\res_color_mem\\rcm_list\\Colour\\resolution_list\\600_dpi\\res_color_mem\\dithering_list = "
              "Fine: The resolution \"600_dpi\" (mittel), the device's default, is dithered by \"Fine\". "
              "(Fine, fein)"});
    expect_said(
        "memory",
        {{{{installed, 64}},
          {},
          {{"\\media\\default_size", text("Free")}},
          {"error \\res_color_mem\\installed_memory = 64 @ "
           "\\res_color_mem\\mem_area_list\\Small\\printable_area = 300: The installed memory has room for a "
           "side of 300, and \"Free\" (Frei), the device's default, has one of 500. (256, 256 MB)"}}});
}

} // namespace
