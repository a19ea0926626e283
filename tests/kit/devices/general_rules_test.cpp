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
              (Lines{"note \\physical_pen\\table\\1\\width = 0.5 @ \\physical_pen\\ui_owner = 1: Owner 1 has "
                     "this setting, and 1 "
                     "more like it.",
                     "note \\physical_pen\\table\\1\\speed = 100 @ \\physical_pen\\ui_owner = 2: Owner 2 has "
                     "this setting."}));
}

TEST(Owner, OtherThanTheOneToldIsAWarning) {
    const auto answer = answer_of("owner", tree_of(pens), owned_device(), {.owner = 2});
    EXPECT_EQ(
        answer.findings,
        (Lines{"warning \\physical_pen\\count = 1 @ \\physical_pen\\ui_owner = 0: Owner 0 has this setting.",
               "warning \\physical_pen\\table\\1\\width = 0.5 @ \\physical_pen\\ui_owner = 1: Owner 1 has "
               "this setting, and "
               "1 more like it."}));
    EXPECT_EQ(answer.looks.back(), "passed \\physical_pen\\table\\1\\speed @ \\physical_pen\\ui_owner");
}

} // namespace
