#include "kit/devices/small_device.h"
#include <gtest/gtest.h>

namespace {

using namespace pm::test;

TEST(Model, OfTheDevicePassesByEitherName) {
    EXPECT_EQ(looked("model", {{"\\MODEL", text("DX-1")},
                               {"\\Plotter/DriverCustom\\dmDeviceName", text("Draftex 1")}}),
              (Lines{"passed \\MODEL @ \\meta\\canonical_model_name",
                     "passed \\Plotter/DriverCustom\\dmDeviceName @ \\meta\\canonical_model_name"}));
}

TEST(Model, OfAnotherDeviceIsAWarning) {
    EXPECT_EQ(found("model", {{"\\MODEL", text("DX-2")}}),
              Lines{"warning \\MODEL = DX-2 @ \\meta\\canonical_model_name = DX-1: The configuration is made "
                    "for another model. "
                    "(DX-1, Draftex 1)"});
}

TEST(Custom, ValueInItsRangePasses) {
    EXPECT_EQ(looked("custom", {{"\\custom_name\\Fan_Speed", 100}}),
              Lines{"passed \\custom_name\\Fan_Speed @ \\custom_name\\Fan_Speed\\range_max"});
}

TEST(Custom, ValueOutsideItsRangeIsFound) {
    EXPECT_EQ(found("custom", {{"\\custom_name\\Fan_Speed", 101}}),
              Lines{"error \\custom_name\\Fan_Speed = 101 @ \\custom_name\\Fan_Speed\\range_max = 100: "
                    "\"Fan_Speed\" (Luefter), "
                    "101, is above the most, 100. (0 to 100)"});
}

TEST(Custom, ValueOfItsListPasses) {
    EXPECT_EQ(looked("custom", {{"\\custom_name\\Ink\\value", text("Low")}}),
              Lines{"passed \\custom_name\\Ink\\value @ \\custom_name\\Ink\\value_list"});
}

TEST(Custom, ValueThatIsNotInItsListIsFound) {
    EXPECT_EQ(found("custom", {{"\\custom_name\\Ink", text("High")}}),
              Lines{"error \\custom_name\\Ink = High @ \\custom_name\\Ink\\value_list = : \"Ink\" (Tinte) "
                    "has no value \"High\". "
                    "(Off; Low)"});
}

TEST(Custom, ValueOfAnotherTypeIsFound) {
    EXPECT_EQ(found("custom", {{"\\custom_name\\Ink", 1}}),
              Lines{"error \\custom_name\\Ink = 1 @ \\custom_name\\Ink\\data_type = 0: \"Ink\" (Tinte) has "
                    "values of another "
                    "type. (Off; Low)"});
}

TEST(Custom, CapabilityThatTheDeviceHasNotIsFound) {
    EXPECT_EQ(found("custom", {{"\\custom_name\\Fan", 1}}),
              Lines{"error \\custom_name\\Fan = 1 @ \\custom_name = : The device has no custom capability "
                    "\"Fan\". (Fan_Speed, "
                    "Luefter; Ink, Tinte)"});
}

TEST(Unspoken, IsWhatNoPathOfTheMapHolds) {
    EXPECT_EQ(found("unspoken", {{"\\media\\copies", 1}, {"\\calibration\\offset", 0.5}}),
              Lines{"note \\calibration\\offset = 0.5 @  = : Nothing in the description speaks of it."});
}

TEST(Unspoken, IsASettingWithoutARule) {
    EXPECT_EQ(found("unspoken", {{"\\io\\port", text("COM1")}}),
              Lines{"note \\io\\port = COM1 @  = : Nothing in the description speaks of it."});
}

TEST(Unspoken, AreNotTheDefaultsOfAPc2File) {
    EXPECT_EQ(found("unspoken", {{"\\Plotter/Port\\Link", -1},
                                 {"\\Plotter/Port\\Enabled", 0},
                                 {"\\Plotter/Port\\DCB", pm::Bytes(1)},
                                 {"\\Plotter/DriverCustom\\fDither", 1}}),
              Lines{});
    EXPECT_EQ(
        found("unspoken", {{"\\Plotter/Port\\Link", 0}, {"\\Plotter/DriverCustom\\fDither", 0}}),
        (Lines{"note \\Plotter/Port\\Link = 0 @  = : Nothing in the description speaks of it.",
               "note \\Plotter/DriverCustom\\fDither = 0 @  = : Nothing in the description speaks of it."}));
}

pm::Tree owned_device() {
    pm::Tree device = small_device();
    device.set("\\physical_pen\\ui_owner", "0012000"); // widths are owner 1's, speeds owner 2's
    return device;
}

const std::initializer_list<Item> pens{{"\\physical_pen\\count", 1},
                                       {"\\physical_pen\\table\\1\\width", 0.5},
                                       {"\\physical_pen\\table\\1\\speed", 100},
                                       {"\\physical_pen\\table\\2\\width", 0.5}};

TEST(Owner, OtherThanTheFirstIsANoteOncePerSetting) {
    EXPECT_EQ(answer_of("owner", tree_of(pens), owned_device()).findings,
              (Lines{"note \\physical_pen\\table\\1\\width = 0.5 @ \\physical_pen\\ui_owner = 0012000: Owner "
                     "1 has this setting, and 1 more like it.",
                     "note \\physical_pen\\table\\1\\speed = 100 @ \\physical_pen\\ui_owner = 0012000: Owner "
                     "2 has this setting."}));
}

TEST(Owner, OtherThanTheOneToldIsAWarning) {
    const auto answer = answer_of("owner", tree_of(pens), owned_device(), {.owner = 2});
    EXPECT_EQ(answer.findings,
              (Lines{"warning \\physical_pen\\count = 1 @ \\physical_pen\\ui_owner = 0012000: Owner 0 has "
                     "this setting.",
                     "warning \\physical_pen\\table\\1\\width = 0.5 @ \\physical_pen\\ui_owner = 0012000: "
                     "Owner 1 has this setting, and 1 more like it."}));
    EXPECT_EQ(answer.looks.back(), "passed \\physical_pen\\table\\1\\speed @ \\physical_pen\\ui_owner");
}

TEST(Model, IsComparedWithTheNameThatTheDescriptionHas) {
    const char* const canonical = "\\meta\\canonical_model_name";
    expect_said("model", {{{{"\\MODEL", text("Draftex 1")}},
                           {canonical},
                           {},
                           {"passed \\MODEL @ \\meta\\canonical_model_name"}},
                          {{{"\\MODEL", text("Draftex 1")}},
                           {"\\meta\\localized_model_name"},
                           {},
                           {"warning \\MODEL = Draftex 1 @ \\meta\\canonical_model_name = DX-1: The "
                            "configuration is made for another model. (DX-1)"}},
                          {{{"\\MODEL", text("7")}},
                           {"\\meta"},
                           {{canonical, 7}},
                           {"unspoken \\MODEL @ \\meta\\canonical_model_name"}}});
}

TEST(Custom, ValueIsOfItsTypeWhereThatIsAKnownOne) {
    const char* const any = "\\custom_name\\Any";
    const char* const of_any = "\\custom_name\\Any\\data_type";
    expect_said(
        "custom",
        {{{{any, 1}}, {}, {{of_any, 7}}, {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
         {{{any, true}}, {}, {{of_any, -1}}, {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
         {{{any, 1}}, {}, {{of_any, 2}}, {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
         {{{any, true}},
          {},
          {{of_any, 2}},
          {"error \\custom_name\\Any = true @ \\custom_name\\Any\\data_type = 2: \"Any\" has values of "
           "another type."}},
         {{{any, 0.5}}, {}, {{of_any, 2}}, {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
         {{{any, true}}, {}, {{of_any, 3}}, {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
         {{{any, 1}},
          {},
          {{of_any, 3}},
          {"error \\custom_name\\Any = 1 @ \\custom_name\\Any\\data_type = 3: \"Any\" has values of another "
           "type."}},
         {{{any, pm::Bytes(2)}},
          {},
          {{of_any, 4}},
          {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
         {{{any, text("x")}},
          {},
          {{of_any, 4}},
          {"error \\custom_name\\Any = x @ \\custom_name\\Any\\data_type = 4: \"Any\" has values of another "
           "type."}}});
}

TEST(Custom, ValuesOfAListAreComparedByTheirTypes) {
    const char* const any = "\\custom_name\\Any";
    const Item of_any{"\\custom_name\\Any\\data_type", 7};
    const Item first{"\\custom_name\\Any\\value_list\\0\\value", 1};
    const Item second{"\\custom_name\\Any\\value_list\\1\\value", text("x")};
    const Item third{"\\custom_name\\Any\\value_list\\2\\value", true};
    const Item empty{"\\custom_name\\Any\\value_list\\3\\note", 1};
    expect_said("custom", {{{{any, true}},
                            {},
                            {of_any, first, second, empty},
                            {"error \\custom_name\\Any = true @ \\custom_name\\Any\\value_list = : \"Any\" "
                             "has no value \"true\". (1; x)"}},
                           {{{any, 1}},
                            {},
                            {of_any, second, third, empty},
                            {"error \\custom_name\\Any = 1 @ \\custom_name\\Any\\value_list = : \"Any\" has "
                             "no value \"1\". (x; true)"}},
                           {{{any, true}},
                            {},
                            {of_any, first, second, third},
                            {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
                           {{{any, 1.0}},
                            {},
                            {of_any, first, second},
                            {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
                           {{{any, text("x")}},
                            {},
                            {of_any, first, second},
                            {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}},
                           {{{any, text("y")}},
                            {},
                            {of_any, empty},
                            {"passed \\custom_name\\Any @ \\custom_name\\Any\\value_list"}}});
}

TEST(Custom, ValuesOfAListAreOfferedUpTo64) {
    pm::Tree device = small_device();
    for (int i = 0; i < 70; ++i)
        device.set("\\custom_name\\Ink\\value_list\\" + std::to_string(i) + "\\value", std::to_string(i));
    const auto findings =
        pm::kit::check_compatibility(tree_of({{"\\custom_name\\Ink", text("High")}}), device);
    ASSERT_EQ(findings.size(), 1U);
    ASSERT_EQ(findings[0].offers.size(), 64U);
    EXPECT_EQ(findings[0].offers.back().value, "63");
}

TEST(Owner, IsNoneWhereTheTextOfOwnersIsTooShort) {
    expect_said("owner", {{{pens},
                           {},
                           {{"\\physical_pen\\ui_owner", text("001")}},
                           {"note \\physical_pen\\table\\1\\width = 0.5 @ \\physical_pen\\ui_owner = 001: "
                            "Owner 1 has this setting, and 1 more like it.",
                            "passed \\physical_pen\\count @ \\physical_pen\\ui_owner"}}});
}

TEST(Owner, OfAPathOfItsOwnIsToldByTheDigitThere) {
    pm::kit::CompatibilityMap map;
    const auto add_path = [&](const char* path, const char* owner, int digit) {
        map.settings.push_back({.setting = path + 1, .path = path, .owner = owner, .owner_digit = digit});
    };
    add_path("\\b", "\\owners", 2);
    add_path("\\c", "\\owners", -1);
    add_path("\\d", "\\owners", 3);
    add_path("\\e", "\\number", 0);
    expect_said("owner",
                {{{{"\\b", 1}, {"\\c", 1}, {"\\d", 1}, {"\\e", 1}},
                  {},
                  {{"\\owners", text("012")}, {"\\number", 3}},
                  {"note \\b = 1 @ \\owners = 012: Owner 2 has this setting."}}},
                {.map = &map});
}

TEST(Model, IsOfferedByTheNameThatTheDescriptionHas) {
    expect_said("model", {{{{"\\MODEL", text("DX-1")}},
                           {"\\meta\\canonical_model_name"},
                           {},
                           {"warning \\MODEL = DX-1 @ \\meta\\canonical_model_name = : The configuration is "
                            "made for another model. (Draftex 1)"}}});
}

TEST(Owner, OfAPathThatBeginsWithoutABackslashIsToldByTheWholeOne) {
    pm::kit::CompatibilityMap map;
    map.settings = {{.setting = "a", .path = "\\a", .owner = "owners", .owner_digit = 1}};
    expect_said("owner",
                {{{{"\\a", 1}},
                  {},
                  {{"\\owners", text("01")}},
                  {"note \\a = 1 @ \\owners = 01: Owner 1 has this setting."}}},
                {.map = &map});
}

TEST(Custom, NumbersAreComparedAsOnesOf32Bits) {
    const char* const most = "\\custom_name\\Fan_Speed\\range_max";
    expect_said(
        "custom",
        {{{{"\\custom_name\\Fan_Speed", 2000001000}},
          {},
          {{most, 2000000000.0}},
          {"error \\custom_name\\Fan_Speed = 2000001000 @ \\custom_name\\Fan_Speed\\range_max = 2000000000: "
           "\"Fan_Speed\" (Luefter), 2000001000, is above the most, 2000000000. (0 to 2000000000)"}},
         {{{"\\custom_name\\Ink", 16777217}},
          {"\\custom_name\\Ink\\data_type", "\\custom_name\\Ink\\value_list\\0\\value"},
          {{"\\custom_name\\Ink\\data_type", 1}, {"\\custom_name\\Ink\\value_list\\0\\value", 16777216}},
          {"error \\custom_name\\Ink = 16777217 @ \\custom_name\\Ink\\value_list = : \"Ink\" (Tinte) has no "
           "value "
           "\"16777217\". (16777216; Low)"}}});
}

} // namespace
