#include "kit/devices/small_device.h"
#include <gtest/gtest.h>

namespace {

using namespace pm::test;

TEST(PenCount, UpToTheMostPasses) {
    EXPECT_EQ(looked("pen-count", {{"\\physical_pen\\count", 8}}),
              Lines{"passed \\physical_pen\\count @ \\physical_pen\\max_npens"});
}

TEST(PenCount, IsNoLengthInInches) {
    EXPECT_EQ(looked("pen-count", {{"\\Plotter/User\\IsMetric", 0}, {"\\Plotter/Device\\Pens", 8}}),
              Lines{"passed \\Plotter/Device\\Pens @ \\physical_pen\\max_npens"});
}

TEST(PenCount, AboveTheMostIsFound) {
    EXPECT_EQ(found("pen-count", {{"\\physical_pen\\count", 9}}),
              Lines{"error \\physical_pen\\count = 9 @ \\physical_pen\\max_npens = 8: The number of pens, 9, "
                    "is above the "
                    "most, 8. (0 to 8)"});
}

TEST(PenCount, PartOfAPenIsFound) {
    EXPECT_EQ(found("pen-count", {{"\\physical_pen\\count", 2.5}}),
              Lines{"error \\physical_pen\\count = 2.5 @ \\physical_pen\\max_npens = 8: The number of pens, "
                    "2.5, isn't "
                    "whole. (0 to 8)"});
}

TEST(PenNumber, OfTheDevicePasses) {
    EXPECT_EQ(looked("pen-number", {{"\\3\\PEN_NUMBER", 8}}),
              Lines{"passed \\3\\PEN_NUMBER @ \\physical_pen\\max_npens"});
}

TEST(PenNumber, ThatTheDeviceHasNotIsFound) {
    EXPECT_EQ(found("pen-number", {{"\\3\\PEN_NUMBER", 0}, {"\\4\\PEN_NUMBER", 9}}),
              (Lines{"error \\3\\PEN_NUMBER = 0 @ \\physical_pen\\max_npens = 8: The pen's number, 0, is "
                     "below the least, 1. "
                     "(1 to 8)",
                     "error \\4\\PEN_NUMBER = 9 @ \\physical_pen\\max_npens = 8: The pen's number, 9, is "
                     "above the most, 8. "
                     "(1 to 8)"}));
}

TEST(PenWidth, AtTheLimitsThatAreRoundedTo32BitsPasses) {
    EXPECT_EQ(looked("pen-width",
                     {{"\\physical_pen\\table\\1\\width", 0.1}, {"\\physical_pen\\table\\2\\width", 1.4}}),
              (Lines{"passed \\physical_pen\\table\\1\\width @ \\physical_pen\\max_width",
                     "passed \\physical_pen\\table\\2\\width @ \\physical_pen\\max_width"}));
}

TEST(PenWidth, OutsideTheLimitsIsFound) {
    EXPECT_EQ(found("pen-width",
                    {{"\\physical_pen\\table\\1\\width", 0.09}, {"\\physical_pen\\table\\2\\width", 1.5}}),
              (Lines{"error \\physical_pen\\table\\1\\width = 0.09 @ \\physical_pen\\min_width = 0.1: The "
                     "pen's width, 0.09, "
                     "is below the least, 0.1. (0.1 to 1.4)",
                     "error \\physical_pen\\table\\2\\width = 1.5 @ \\physical_pen\\max_width = 1.4: The "
                     "pen's width, 1.5, "
                     "is above the most, 1.4. (0.1 to 1.4)"}));
}

TEST(PenWidth, ThatCanNotBeSetIsFound) {
    pm::Tree device = small_device();
    device.set("\\physical_pen\\programmable_widths", false);
    EXPECT_EQ(answer_of("pen-width", tree_of({{"\\physical_pen\\table\\1\\width", 0.5}}), device).findings,
              Lines{"error \\physical_pen\\table\\1\\width = 0.5 @ \\physical_pen\\programmable_widths = "
                    "false: The pen's width "
                    "can't be set on this device."});
}

TEST(PenWidth, OfTheDevicesDefaultPassesWhereItCanNotBeSet) {
    pm::Tree device = small_device();
    device.set("\\physical_pen\\programmable_widths", false);
    device.set("\\physical_pen\\default_width", double{0.35F});
    const auto answer = answer_of(
        "pen-width",
        tree_of({{"\\physical_pen\\table\\1\\width", 0.35}, {"\\physical_pen\\table\\2\\width", 0.5}}),
        device);
    EXPECT_EQ(answer.findings,
              Lines{"error \\physical_pen\\table\\2\\width = 0.5 @ "
                    "\\physical_pen\\programmable_widths = false: The pen's width can't be set on "
                    "this device. (0.35)"});
    EXPECT_EQ(answer.looks.at(0), "passed \\physical_pen\\table\\1\\width @ \\physical_pen\\max_width");
    EXPECT_EQ(findings_of(pm::kit::check_description(device), "pen-width"), Lines{});
}

TEST(PenWidth, ByDefaultOutsideItsLimitsIsFoundWhereItCanNotBeSet) {
    pm::Tree device = small_device();
    device.set("\\physical_pen\\programmable_widths", false);
    device.set("\\physical_pen\\default_width", 2.0);
    EXPECT_EQ(
        findings_of(pm::kit::check_description(device), "pen-width"),
        Lines{
            "error \\physical_pen\\default_width = 2 @ \\physical_pen\\max_width = 1.4: The pen's width, 2, "
            "is above the most, 1.4. (0.1 to 1.4)"});
}

TEST(PenWidth, InInchesIsToldOfInInches) {
    EXPECT_EQ(
        found("pen-width", {{"\\Plotter/User\\IsMetric", 0}, {"\\Plotter/User\\LineWidth", 1.0}}),
        Lines{
            "error \\Plotter/User\\LineWidth = 1 @ \\physical_pen\\max_width = 1.4: The pen's width, 1 inch, "
            "is above the most, 0.05511811 inches. (0.003937008 to 0.05511811)"});
}

TEST(PenWidth, LimitBelowAllDecimalsIsToldInInchesWithAllItsDigits) {
    pm::Tree device = small_device();
    device.set("\\physical_pen\\min_width", 0.0);
    device.set("\\physical_pen\\max_width", 1e-14);
    EXPECT_EQ(answer_of("pen-width",
                        tree_of({{"\\Plotter/User\\IsMetric", 0}, {"\\Plotter/User\\LineWidth", 1.0}}),
                        device)
                  .findings,
              Lines{"error \\Plotter/User\\LineWidth = 1 @ \\physical_pen\\max_width = 1e-14: The pen's "
                    "width, 1 inch, is above the most, 3.9370078740157483e-16 inches. (0 to "
                    "3.9370078740157483e-16)"});
}

TEST(PenWidth, OfferedInInchesPasses) {
    EXPECT_EQ(found("pen-width", {{"\\Plotter/User\\IsMetric", 0},
                                  {"\\Plotter/Device/WidthTable\\Color1", 0.003937008},
                                  {"\\Plotter/Device/WidthTable\\Color2", 0.05511811}}),
              Lines{});
}

TEST(PenWidth, WithoutLimitsIsUnspoken) {
    const auto device = tree_of({{"\\physical_pen\\abilities", text("0")}});
    EXPECT_EQ(answer_of("unspoken", tree_of({{"\\physical_pen\\table\\1\\width", 0.5}}), device).findings,
              Lines{"warning \\physical_pen\\table\\1\\width = 0.5 @ \\physical_pen\\max_width = : The "
                    "description tells no "
                    "limits of it."});
}

TEST(PenSpeed, WithinTheLimitsPasses) {
    EXPECT_EQ(looked("pen-speed", {{"\\physical_pen\\table\\1\\speed", 500}}),
              Lines{"passed \\physical_pen\\table\\1\\speed @ \\physical_pen\\max_speed"});
}

TEST(PenSpeed, OfTheDevicesDefaultPassesWhereItCanNotBeSet) {
    pm::Tree device = small_device();
    device.set("\\physical_pen\\programmable_speeds", false);
    device.set("\\physical_pen\\default_speed", 100.0);
    EXPECT_EQ(answer_of("pen-speed", tree_of({{"\\physical_pen\\table\\1\\speed", 100}}), device).looks,
              Lines{"passed \\physical_pen\\table\\1\\speed @ \\physical_pen\\max_speed"});
}

TEST(PenSpeed, OutsideTheLimitsIsFound) {
    EXPECT_EQ(found("pen-speed", {{"\\physical_pen\\table\\1\\speed", 501}}),
              Lines{"error \\physical_pen\\table\\1\\speed = 501 @ \\physical_pen\\max_speed = 500: The "
                    "pen's speed, 501, is "
                    "above the most, 500. (10 to 500)"});
}

TEST(Optimization, UpToTheBestPasses) {
    EXPECT_EQ(looked("pen-optimization", {{"\\OPTIMIZE_LEVEL", 2}}),
              Lines{"passed \\OPTIMIZE_LEVEL @ \\physical_pen\\max_optimization"});
}

TEST(Optimization, BetterThanTheBestIsFound) {
    EXPECT_EQ(found("pen-optimization", {{"\\OPTIMIZE_LEVEL", 3}}),
              Lines{"error \\OPTIMIZE_LEVEL = 3 @ \\physical_pen\\max_optimization = 2: The device's best "
                    "optimisation of pens "
                    "is 2. (0, No Optimizations; 1, Endpoint Swap; 2, Pen Sorting)"});
}

TEST(PenFill, ThatIsNotAskedForPasses) {
    EXPECT_EQ(looked("pen-fill", {{"\\fill_adjust", text("n")}}),
              Lines{"passed \\fill_adjust @ \\physical_pen\\area_fill_corr"});
}

TEST(PenFill, ThatTheDeviceDoesNotCorrectIsFound) {
    EXPECT_EQ(found("pen-fill", {{"\\FILL_ADJUST", text("Y")}}),
              Lines{"error \\FILL_ADJUST = Y @ \\physical_pen\\area_fill_corr = false: The device doesn't "
                    "correct the edges of "
                    "filled areas for the pen's width."});
}

TEST(LineType, OfTheDevicePasses) {
    EXPECT_EQ(looked("line-type", {{"\\1\\HW_LINETYPE", 2}, {"\\Plotter/Device/LineTypeTable\\Types", 2}}),
              (Lines{"passed \\1\\HW_LINETYPE @ \\linetype\\capabilities",
                     "passed \\Plotter/Device/LineTypeTable\\Types @ \\linetype\\capabilities"}));
}

TEST(LineType, ThatTheDeviceDoesNotDrawIsFound) {
    EXPECT_EQ(found("line-type", {{"\\1\\HW_LINETYPE", 1}, {"\\2\\HW_LINETYPE", 18}}),
              (Lines{"error \\1\\HW_LINETYPE = 1 @ \\linetype\\capabilities = : The device doesn't draw line "
                     "type 1 (Dashed). "
                     "(0, Solid; 2, Dotted)",
                     "error \\2\\HW_LINETYPE = 18 @ \\linetype\\capabilities = : The device doesn't draw "
                     "line type 18. "
                     "(0, Solid; 2, Dotted)"}));
}

TEST(LineType, MoreThanTheDeviceDrawsAreFound) {
    EXPECT_EQ(found("line-type", {{"\\Plotter/Device/LineTypeTable\\Types", 3}}),
              Lines{"error \\Plotter/Device/LineTypeTable\\Types = 3 @ \\linetype\\capabilities = 50000: The "
                    "number of line types, "
                    "3, is above the most, 2. (up to 2)"});
}

TEST(LineWidth, OfAPenThatIsWideEnoughPasses) {
    EXPECT_EQ(looked("line-width", {{"\\1\\HW_LINETYPE", 2}, {"\\1\\PEN_WEIGHT", 0.2}}),
              Lines{"passed \\1\\PEN_WEIGHT @ \\linetype\\font\\2\\width"});
}

TEST(LineWidth, OfAPenThatIsTooNarrowIsFound) {
    EXPECT_EQ(
        found("line-width", {{"\\1\\HW_LINETYPE", 2}, {"\\1\\PEN_WEIGHT", 0.13}, {"\\2\\PEN_WEIGHT", 0.13}}),
        Lines{"error \\1\\PEN_WEIGHT = 0.13 @ \\linetype\\font\\2\\width = 0.2: The line type 2 (Dotted) "
              "needs a width of "
              "at least 0.2. (from 0.2, Dotted)"});
}

constexpr const char* width = "\\physical_pen\\table\\1\\width";
constexpr const char* least_width = "\\physical_pen\\min_width";
constexpr const char* most_width = "\\physical_pen\\max_width";
constexpr const char* line_types = "\\linetype\\capabilities";

TEST(PenWidth, WithOneLimitIsHeldAgainstThat) {
    expect_said("pen-width", {{{{width, 0.05}},
                               {most_width},
                               {},
                               {"error \\physical_pen\\table\\1\\width = 0.05 @ \\physical_pen\\min_width = "
                                "0.1: The pen's width, 0.05, is below the least, 0.1. (from 0.1)"}},
                              {{{width, 5.0}},
                               {most_width},
                               {},
                               {"passed \\physical_pen\\table\\1\\width @ \\physical_pen\\min_width"}},
                              {{{width, 0.05}},
                               {least_width},
                               {},
                               {"passed \\physical_pen\\table\\1\\width @ \\physical_pen\\max_width"}},
                              {{{width, 5.0}},
                               {least_width},
                               {},
                               {"error \\physical_pen\\table\\1\\width = 5 @ \\physical_pen\\max_width = "
                                "1.4: The pen's width, 5, is above the most, 1.4. (up to 1.4)"}}});
}

TEST(Optimization, BelowNoneIsFound) {
    expect_said("pen-optimization",
                {{{{"\\OPTIMIZE_LEVEL", -1}},
                  {},
                  {},
                  {"error \\OPTIMIZE_LEVEL = -1 @ \\physical_pen\\max_optimization = 2: The device's best "
                   "optimisation of pens is 2. (0, No Optimizations; 1, Endpoint Swap; 2, Pen Sorting)"}},
                 {{{"\\OPTIMIZE_LEVEL", 9}},
                  {},
                  {{"\\physical_pen\\max_optimization", 8}},
                  {"error \\OPTIMIZE_LEVEL = 9 @ \\physical_pen\\max_optimization = 8: The device's best "
                   "optimisation of pens is 8. (0, No Optimizations; 1, Endpoint Swap; 2, Pen Sorting; 3, "
                   "Limited Motion Optimzation; 4, Full Motion Optimization; 5, Elimination of Overlapped "
                   "Horizontal and Vertical Vectors; 6, Elimination of Overlapped Diagonal Vectors)"}}});
}

TEST(PenFill, ThatTheDeviceCorrectsPasses) {
    expect_said("pen-fill", {{{{"\\FILL_ADJUST", text("Y")}},
                              {},
                              {{"\\physical_pen\\area_fill_corr", true}},
                              {"passed \\FILL_ADJUST @ \\physical_pen\\area_fill_corr"}}});
}

TEST(LineType, IsMarkedByDigitsOfSixteen) {
    const auto type = [](int number) { return Item{"\\1\\HW_LINETYPE", number}; };
    expect_said(
        "line-type",
        {{{type(3)}, {}, {{line_types, text("A")}}, {"passed \\1\\HW_LINETYPE @ \\linetype\\capabilities"}},
         {{type(2)},
          {},
          {{line_types, text("A")}},
          {"error \\1\\HW_LINETYPE = 2 @ \\linetype\\capabilities = : The device doesn't draw line type 2 "
           "(Dotted). (1, Dashed; 3, Dash_Dot)"}},
         {{type(17)},
          {},
          {{line_types, text("F")}},
          {"error \\1\\HW_LINETYPE = 17 @ \\linetype\\capabilities = : The device doesn't draw line type 17 "
           "(User_Defined). (0, Solid; 1, Dashed; 2, Dotted; 3, Dash_Dot)"}},
         {{type(4)},
          {},
          {{line_types, text("1G")}},
          {"error \\1\\HW_LINETYPE = 4 @ \\linetype\\capabilities = : The device doesn't draw line type 4 "
           "(Short_Dash). (0, Solid)"}},
         {{type(4)},
          {},
          {{line_types, text("1a")}},
          {"error \\1\\HW_LINETYPE = 4 @ \\linetype\\capabilities = : The device doesn't draw line type 4 "
           "(Short_Dash). (0, Solid)"}},
         {{type(0)},
          {},
          {{line_types, text("/1")}},
          {"error \\1\\HW_LINETYPE = 0 @ \\linetype\\capabilities = : The device doesn't draw line type 0 "
           "(Solid). (4, Short_Dash)"}},
         {{type(-1)},
          {},
          {},
          {"error \\1\\HW_LINETYPE = -1 @ \\linetype\\capabilities = : The device doesn't draw line type -1. "
           "(0, Solid; 2, Dotted)"}}});
}

TEST(LineWidth, IsNotComparedWithoutBoth) {
    const Item weight{"\\1\\PEN_WEIGHT", 0.1};
    const Item dotted{"\\1\\HW_LINETYPE", 2};
    expect_said("line-width", {{{dotted}, {}, {}, {}},
                               {{weight}, {}, {}, {}},
                               {{{"\\1\\PEN_WEIGHT", text("some")}, dotted}, {}, {}, {}},
                               {{weight, {"\\1\\HW_LINETYPE", text("some")}}, {}, {}, {}},
                               {{weight, dotted}, {"\\linetype\\font\\2\\width"}, {}, {}}});
}

TEST(LineWidth, OfATypeWithoutAWordIsToldByItsNumber) {
    expect_said("line-width", {{{{"\\1\\PEN_WEIGHT", 0.1}, {"\\1\\HW_LINETYPE", 25}},
                                {},
                                {{"\\linetype\\font\\25\\width", 0.5}},
                                {"error \\1\\PEN_WEIGHT = 0.1 @ \\linetype\\font\\25\\width = 0.5: The line "
                                 "type 25 needs a width of at least 0.5. (from 0.5)"}}});
}

} // namespace
