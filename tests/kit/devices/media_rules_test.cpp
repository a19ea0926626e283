#include "kit/devices/small_device.h"
#include <gtest/gtest.h>

namespace {

using namespace pm::test;

TEST(MediaSize, OfTheDevicePasses) {
    EXPECT_EQ(looked("media-size",
                     {{"\\media\\default_size", text("A4")}, {"\\media\\size\\0\\name", text("Free")}}),
              (Lines{"passed \\media\\default_size @ \\media\\size\\0",
                     "passed \\media\\size\\0\\name @ \\media\\size\\2"}));
}

TEST(MediaSize, OfAnotherNameIsFoundWithTheNearestInFront) {
    EXPECT_EQ(found("media-size", {{"\\media\\default_size", text("A4_tall")}}),
              Lines{"error \\media\\default_size = A4_tall @ \\media\\size = : The device has no media size "
                    "\"A4_tall\". "
                    "(A4_wide, DIN A4 quer; A4, DIN A4; Free, Frei)"});
}

TEST(MediaSize, OfADeviceWithoutSizesIsUnspoken) {
    pm::Tree device = tree_of({{"\\media\\abilities", text("0")}});
    const auto answer = answer_of("unspoken", tree_of({{"\\media\\default_size", text("A4")}}), device);
    EXPECT_EQ(
        answer.findings,
        Lines{
            "warning \\media\\default_size = A4 @ \\media\\size = : The description tells no media sizes."});
}

TEST(MediaSource, OfTheDevicePasses) {
    EXPECT_EQ(looked("media-source", {{"\\media\\default_source", text("Tray")}}),
              Lines{"passed \\media\\default_source @ \\media\\source\\Tray"});
}

TEST(MediaSource, OfAnotherNameIsFoundOnceForAllThatIsToldOfIt) {
    EXPECT_EQ(found("media-source",
                    {{"\\media\\source\\Rolle\\loaded", text("Wide")}, {"\\media\\source\\Rolle\\feed", 3}}),
              Lines{"error \\media\\source\\Rolle\\loaded = Wide @ \\media\\source = : The device has no "
                    "media source "
                    "\"Rolle\". (Roll, Rolle; Tray, Fach)"});
}

TEST(MediaLoaded, AsTheDescriptionTellsPasses) {
    EXPECT_EQ(looked("media-loaded", {{"\\media\\source\\Roll\\loaded", text("Narrow")},
                                      {"\\media\\source\\Roll\\feed", 3},
                                      {"\\media\\source\\Roll\\width", 210.04}}),
              (Lines{"passed \\media\\source\\Roll\\loaded @ \\media\\source\\Roll\\entry\\Narrow",
                     "passed \\media\\source\\Roll\\feed @ \\media\\source\\Roll\\feed",
                     "passed \\media\\source\\Roll\\width @ \\media\\source\\Roll\\entry\\Narrow\\width"}));
}

TEST(MediaLoaded, EntryThatTheSourceHasNotIsFound) {
    EXPECT_EQ(found("media-loaded", {{"\\media\\source\\Roll\\loaded", text("Sheet")}}),
              Lines{"error \\media\\source\\Roll\\loaded = Sheet @ \\media\\source\\Roll\\entry = : The "
                    "source \"Roll\" "
                    "(Rolle) can't be loaded with \"Sheet\". (Wide, breit; Narrow, schmal)"});
}

TEST(MediaLoaded, AnotherFeedIsFound) {
    EXPECT_EQ(found("media-loaded", {{"\\media\\source\\Tray\\feed", 1}}),
              Lines{"error \\media\\source\\Tray\\feed = 1 @ \\media\\source\\Tray\\feed = 2: The source "
                    "\"Tray\" (Fach) "
                    "has another feed. (2, SheetFeeder)"});
}

TEST(MediaLoaded, AnotherWidthThanThatOfTheDefaultEntryIsFound) {
    EXPECT_EQ(found("media-loaded", {{"\\media\\source\\Roll\\width", 210.0}}),
              Lines{"error \\media\\source\\Roll\\width = 210 @ \\media\\source\\Roll\\entry\\Wide\\width = "
                    "300: \"Wide\" (breit), the device's default, is 300 wide. (300, breit)"});
}

TEST(SizeInSource, PassesIfAnyEntryTakesIt) {
    EXPECT_EQ(looked("media-size-source", {{"\\media\\default_size", text("Free")}}),
              Lines{"passed \\media\\default_size @ \\media\\source\\Roll\\entry\\Wide\\size_names\\1"});
}

TEST(SizeInSource, IsFoundIfWhatIsLoadedDoesNotTakeIt) {
    EXPECT_EQ(found("media-size-source", {{"\\media\\default_size", text("Free")},
                                          {"\\media\\source\\Roll\\loaded", text("Narrow")}}),
              Lines{"error \\media\\default_size = Free @ \\media\\source\\Roll\\entry = : The media size "
                    "\"Free\" (Frei) isn't one that the source \"Roll\" (Rolle), the device's default, takes "
                    "with \"Narrow\" loaded. (Roll\\Wide, Rolle: breit)"});
}

TEST(SizeInSource, SourceThatDoesNotTakeTheDefaultSizeIsFound) {
    EXPECT_EQ(found("media-size-source", {{"\\media\\default_source", text("Tray")}}),
              Lines{"error \\media\\default_source = Tray @ \\media\\source\\Tray\\entry = : The media size "
                    "\"A4\" (DIN A4), "
                    "the device's default, isn't one that the source \"Tray\" (Fach) takes. (Roll\\Wide, "
                    "Rolle: breit; "
                    "Roll\\Narrow, Rolle: schmal)"});
}

TEST(Destination, OfTheDevicePasses) {
    EXPECT_EQ(looked("media-destination", {{"\\media\\default_destination", text("Finisher")}}),
              Lines{"passed \\media\\default_destination @ \\media\\destination\\Finisher"});
}

TEST(Destination, OfAnotherNameIsFound) {
    EXPECT_EQ(
        found("media-destination", {{"\\media\\default_destination", text("Bin")}}),
        Lines{"error \\media\\default_destination = Bin @ \\media\\destination = : The device has no media "
              "destination \"Bin\". (Basket, Korb; Finisher, Hefter)"});
}

TEST(MediaType, OfTheDevicePasses) {
    EXPECT_EQ(looked("media-type", {{"\\media\\default_type", text("Photo")}}),
              Lines{"passed \\media\\default_type @ \\media\\type\\1"});
}

TEST(MediaType, OfAnotherNameIsFound) {
    EXPECT_EQ(
        found("media-type", {{"\\media\\default_type", text("Film")}}),
        Lines{"error \\media\\default_type = Film @ \\media\\type = : The device has no media type \"Film\". "
              "(Plain; Photo, Fotopapier)"});
}

TEST(Copies, UpToTheMostPass) {
    EXPECT_EQ(looked("copies", {{"\\media\\copies", 9}}),
              Lines{"passed \\media\\copies @ \\media\\max_number_of_copies"});
}

TEST(Copies, AboveTheMostAreFound) {
    EXPECT_EQ(found("copies", {{"\\media\\copies", 10}}),
              Lines{"error \\media\\copies = 10 @ \\media\\max_number_of_copies = 9: The number of copies, "
                    "10, is above the "
                    "most, 9. (1 to 9)"});
}

TEST(Copies, NoneAreFound) {
    EXPECT_EQ(found("copies", {{"\\media\\copies", 0}}),
              Lines{"error \\media\\copies = 0 @ \\media\\max_number_of_copies = 9: The number of copies, 0, "
                    "is below the least, 1. (1 to 9)"});
}

TEST(Copies, PartOfACopyIsFound) {
    EXPECT_EQ(found("copies", {{"\\media\\copies", 1.5}}),
              Lines{"error \\media\\copies = 1.5 @ \\media\\max_number_of_copies = 9: The number of copies, "
                    "1.5, isn't whole. (1 to 9)"});
    EXPECT_EQ(found("copies", {{"\\media\\copies", 2.0}}), Lines{});
}

TEST(Copies, InWordsAreUnspoken) {
    EXPECT_EQ(
        found("unspoken", {{"\\media\\copies", text("two")}}),
        Lines{"warning \\media\\copies = two @  = : The value is no number, so that it can't be compared."});
}

TEST(Duplex, ModeOfTheDevicePasses) {
    EXPECT_EQ(looked("duplex", {{"\\media\\default_duplexing_mode", 2}}),
              Lines{"passed \\media\\default_duplexing_mode @ \\media\\duplexing_modes"});
}

TEST(Duplex, AnotherModeIsFound) {
    EXPECT_EQ(found("duplex", {{"\\media\\default_duplexing_mode", 4}}),
              Lines{"error \\media\\default_duplexing_mode = 4 @ \\media\\duplexing_modes = 3: The device "
                    "doesn't offer "
                    "duplexing mode 4 (Short). (1, None; 2, Long)"});
}

TEST(Duplex, ModeOfAPc2FileHasItsOwnNumbers) {
    EXPECT_EQ(found("duplex", {{"\\Plotter/DriverCustom\\dmDuplex", 3}}),
              Lines{"error \\Plotter/DriverCustom\\dmDuplex = 3 @ \\media\\duplexing_modes = 3: The device "
                    "doesn't offer duplexing mode 3 (Short). (1, None; 2, Long)"});
}

TEST(SelectionMethod, OfTheDevicePasses) {
    EXPECT_EQ(looked("selection-method", {{"\\media\\default_selection_method", 1}}),
              Lines{"passed \\media\\default_selection_method @ \\media\\selection_methods"});
}

TEST(SelectionMethod, AnotherIsFound) {
    EXPECT_EQ(found("selection-method", {{"\\media\\default_selection_method", 2}}),
              Lines{"error \\media\\default_selection_method = 2 @ \\media\\selection_methods = 1: The "
                    "device doesn't offer "
                    "selection method 2 (MediaSizeByMediaSize). (1, MediaSizeByMediaSource)"});
}

constexpr const char* size = "\\media\\default_size";
constexpr const char* source = "\\media\\default_source";
constexpr const char* loaded_roll = "\\media\\source\\Roll\\loaded";

TEST(MediaLoaded, IsThatOfTheChosenSourceWhereThePathTellsNone) {
    const auto map = pm::kit::load_map(R"({"settings": [{"setting": "loaded", "path": "\\paper"},
        {"setting": "feed", "path": "\\feed"}, {"setting": "loaded_width", "path": "\\width"}]})");
    expect_said("media-loaded",
                {{{{"\\paper", text("Narrow")}, {"\\feed", 3}, {"\\width", 210}},
                  {},
                  {},
                  {"passed \\paper @ \\media\\source\\Roll\\entry\\Narrow",
                   "passed \\feed @ \\media\\source\\Roll\\feed",
                   "passed \\width @ \\media\\source\\Roll\\entry\\Narrow\\width"}},
                 {{{"\\paper", text("Sheet")}, {source, text("Tray")}, {"\\feed", 3}},
                  {},
                  {},
                  {"error \\feed = 3 @ \\media\\source\\Tray\\feed = 2: The source \"Tray\" (Fach) has "
                   "another feed. (2, SheetFeeder)",
                   "passed \\paper @ \\media\\source\\Tray\\entry\\Sheet"}},
                 {{{"\\paper", text("Narrow")}, {"\\feed", 3}, {"\\width", 210}},
                  {source},
                  {},
                  {"unspoken \\paper @ \\media\\default_source", "unspoken \\feed @ \\media\\default_source",
                   "unspoken \\width @ \\media\\default_source"}},
                 {{{"\\paper", text("Narrow")}, {"\\media\\source\\Tray\\width", 297}},
                  {},
                  {},
                  {"passed \\paper @ \\media\\source\\Roll\\entry\\Narrow",
                   "passed \\media\\source\\Tray\\width @ \\media\\source\\Tray\\entry\\Sheet\\width"}}},
                {.map = &map});
    expect_said("media-source", {{{{"\\feed", 3}}, {}, {}, {}}}, {.map = &map});
}

TEST(MediaLoaded, InASourceThatIsNotThereIsLeftToItsRule) {
    expect_said(
        "media-loaded",
        {{{{"\\media\\source\\Bin\\loaded", text("Wide")},
           {"\\media\\source\\Bin\\feed", 3},
           {"\\media\\source\\Bin\\width", 300}},
          {},
          {},
          {}},
         {{{loaded_roll, text("Sheet")}, {"\\media\\source\\Roll\\width", 300}},
          {},
          {},
          {"error \\media\\source\\Roll\\loaded = Sheet @ \\media\\source\\Roll\\entry = : The source "
           "\"Roll\" (Rolle) can't be loaded with \"Sheet\". (Wide, breit; Narrow, schmal)"}}});
}

TEST(MediaLoaded, FeedWithoutAWordIsToldByItsNumber) {
    expect_said("media-loaded", {{{{"\\media\\source\\Roll\\feed", -1}},
                                  {},
                                  {{"\\media\\source\\Roll\\feed", 99}},
                                  {"error \\media\\source\\Roll\\feed = -1 @ \\media\\source\\Roll\\feed = "
                                   "99: The source \"Roll\" (Rolle) has another feed. (99)"}}});
}

TEST(SizeInSource, ByDefaultIsOneOfItsEntry) {
    const char* const wide = "\\media\\source\\Roll\\entry\\Wide\\default_size";
    const char* const sheet = "\\media\\source\\Roll\\entry\\Sheet\\default_size";
    const char* const bin = "\\media\\source\\Bin\\entry\\Wide\\default_size";
    expect_said("media-size-source", {{{{wide, text("Free")}},
                                       {},
                                       {},
                                       {"passed \\media\\source\\Roll\\entry\\Wide\\default_size @ "
                                        "\\media\\source\\Roll\\entry\\Wide\\size_names\\1"}},
                                      {{{wide, text("A4 wide")}},
                                       {},
                                       {},
                                       {"error \\media\\source\\Roll\\entry\\Wide\\default_size = A4 wide @ "
                                        "\\media\\source\\Roll\\entry\\Wide\\size_names = : \"Wide\" (breit) "
                                        "doesn't take its own default size \"A4_wide\". (A4; Free)"}},
                                      {{{sheet, text("A4")}}, {}, {}, {}},
                                      {{{bin, text("A4")}}, {}, {}, {}}});
    const auto map = pm::kit::load_map(R"({"settings": [{"setting": "entry_size", "path": "\\of\\*"}]})");
    expect_said("media-size-source", {{{{"\\of\\Roll", text("A4")}}, {}, {}, {}}}, {.map = &map});
}

TEST(SizeInSource, OfASourceWithWhatItIsLoadedWith) {
    const Item tray{source, text("Tray")};
    expect_said("media-size-source",
                {{{tray, {"\\media\\source\\Tray\\loaded", text("Sheet")}},
                  {},
                  {},
                  {"error \\media\\default_source = Tray @ \\media\\source\\Tray\\entry = : The media size "
                   "\"A4\" (DIN A4), the device's default, isn't one that the source \"Tray\" (Fach) takes "
                   "with \"Sheet\" loaded. (Roll\\Wide, Rolle: breit; Roll\\Narrow, Rolle: schmal)"}},
                 {{tray, {size, text("A4_wide")}},
                  {},
                  {},
                  {"passed \\media\\default_size @ \\media\\source\\Tray\\entry\\Sheet\\size_names\\0"}},
                 {{tray, {size, text("A4")}},
                  {},
                  {},
                  {"error \\media\\default_size = A4 @ \\media\\source\\Tray\\entry = : The media size "
                   "\"A4\" (DIN A4) isn't one that the source \"Tray\" (Fach) takes. (Roll\\Wide, Rolle: "
                   "breit; Roll\\Narrow, Rolle: schmal)"}},
                 {{tray, {size, text("Poster")}}, {}, {}, {}},
                 {{tray}, {size}, {}, {}},
                 {{{size, text("A4")}}, {source}, {}, {}},
                 {{{loaded_roll, text("Narrow")}}, {}, {}, {}}});
}

TEST(Duplex, ModeWithoutAWordIsToldByItsNumber) {
    expect_said("duplex", {{{{"\\media\\default_duplexing_mode", 128}},
                            {},
                            {},
                            {"error \\media\\default_duplexing_mode = 128 @ \\media\\duplexing_modes = 3: "
                             "The device doesn't offer duplexing mode 128. (1, None; 2, Long)"}},
                           {{{"\\media\\default_duplexing_mode", 3}},
                            {},
                            {},
                            {"passed \\media\\default_duplexing_mode @ \\media\\duplexing_modes"}},
                           {{{"\\media\\default_duplexing_mode", 6}},
                            {},
                            {},
                            {"error \\media\\default_duplexing_mode = 6 @ \\media\\duplexing_modes = 3: The "
                             "device doesn't offer duplexing mode 6 (Long + Short). (1, None; 2, Long)"}},
                           {{{"\\media\\default_duplexing_mode", 4}},
                            {},
                            {{"\\media\\duplexing_modes", 192}},
                            {"error \\media\\default_duplexing_mode = 4 @ \\media\\duplexing_modes = 192: "
                             "The device doesn't offer duplexing mode 4 (Short). (64; 128)"}}});
}

TEST(MediaSize, WithoutANameIsNotOffered) {
    expect_said("media-size",
                {{{{size, text("A4")}},
                  {"\\media\\size\\0\\name"},
                  {{"\\media\\size\\0\\name", 4}},
                  {"error \\media\\default_size = A4 @ \\media\\size = : The device has no media "
                   "size \"A4\". (A4_wide, DIN A4 quer; Free, Frei)"}}});
}

TEST(Copies, AreCountedExactly) {
    expect_said("copies",
                {{{{"\\media\\copies", 1000001}},
                  {},
                  {{"\\media\\max_number_of_copies", 1000000}},
                  {"error \\media\\copies = 1000001 @ \\media\\max_number_of_copies = 1000000: The number "
                   "of copies, 1000001, is above the most, 1000000. (1 to 1000000)"}},
                 {{{"\\media\\copies", 16777217}},
                  {},
                  {{"\\media\\max_number_of_copies", 16777216}},
                  {"error \\media\\copies = 16777217 @ \\media\\max_number_of_copies = 16777216: The number "
                   "of copies, 16777217, is above the most, 16777216. (1 to 16777216)"}}});
}

TEST(Duplex, OfAPc2FileIsOfferedByItsNumbers) {
    expect_said("duplex",
                {{{{"\\Plotter/DriverCustom\\dmDuplex", 2}},
                  {},
                  {{"\\media\\duplexing_modes", 5}},
                  {"error \\Plotter/DriverCustom\\dmDuplex = 2 @ \\media\\duplexing_modes = 5: The device "
                   "doesn't offer duplexing mode 2 (Long). (1, None; 3, Short)"}}});
}

TEST(Duplex, OfAPc2FileWithoutACodeIsUnspoken) {
    EXPECT_EQ(
        found("unspoken", {{"\\Plotter/DriverCustom\\dmDuplex", 4}}),
        Lines{
            "warning \\Plotter/DriverCustom\\dmDuplex = 4 @  = : The value is no code that the map knows, so "
            "that it can't be compared."});
}

TEST(MediaLoaded, InTheDefaultSourceIsToldOfAsSuch) {
    const auto map = pm::kit::load_map(R"({"settings": [{"setting": "feed", "path": "\\feed"},
        {"setting": "loaded", "path": "\\loaded"}, {"setting": "loaded_width", "path": "\\width"}]})");
    expect_said(
        "media-loaded",
        {{{{"\\feed", 2}},
          {},
          {},
          {"error \\feed = 2 @ \\media\\source\\Roll\\feed = 3: The source \"Roll\" (Rolle), the device's "
           "default, has another feed. (3, RollFeeder)"}},
         {{{"\\loaded", text("Thin")}},
          {},
          {},
          {"error \\loaded = Thin @ \\media\\source\\Roll\\entry = : The source \"Roll\" (Rolle), the "
           "device's "
           "default, can't be loaded with \"Thin\". (Wide, breit; Narrow, schmal)"}},
         {{{"\\width", 100}},
          {},
          {},
          {"error \\width = 100 @ \\media\\source\\Roll\\entry\\Wide\\width = 300: \"Wide\" (breit), the "
           "device's default, is 300 wide. (300, breit)"}}},
        {.map = &map});
}

} // namespace
