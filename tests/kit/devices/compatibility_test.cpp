#include "kit/devices/small_device.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pm/kit/error.h>
#include <pm/kit/stored.h>
#include <sstream>

namespace {

using namespace pm::test;
using namespace pm::kit;

pm::Tree through_pia(const pm::Tree& tree, const char* base) {
    std::stringstream stream;
    tree.save(stream);
    pm::Tree loaded;
    loaded.load(stream, {.base = base});
    return loaded;
}

const std::initializer_list<Item> copies{{"\\media\\copies", 10}};

// As a finding shows what is asked for.
std::string configuration_text(const pm::Value& value) {
    const auto* number = std::get_if<std::int32_t>(&value);
    return number != nullptr ? std::to_string(*number) : std::get<std::string>(value);
}

TEST(Compatibility, DescriptionThatWasSavedAndStandsUnderANodeIsFound) {
    const pm::Tree device = through_pia(small_device(), "\\devices\\first");
    EXPECT_EQ(find_description(device), "\\devices\\first");
    EXPECT_EQ(answer_of("copies", tree_of(copies), device).findings,
              Lines{"error \\media\\copies = 10 @ \\devices\\first\\media\\max_number_of_copies = 9: The "
                    "number of copies, 10, is "
                    "above the most, 9. (1 to 9)"});
}

TEST(Compatibility, BasesOfBothTreesCanBeTold) {
    pm::Tree device = small_device();
    device.set("\\b\\media\\max_number_of_copies", 20);
    const auto configuration = tree_of({{"\\a\\media\\copies", 21}, {"\\media\\copies", 100}});
    EXPECT_EQ(
        answer_of("copies", configuration, device, {.description_base = "\\b\\", .configuration_base = "a"})
            .findings,
        Lines{"error \\a\\media\\copies = 21 @ \\b\\media\\max_number_of_copies = 20: The number of copies, "
              "21, is above "
              "the most, 20. (1 to 20)"});
}

TEST(Compatibility, NodeThatIsNotThereIsAnError) {
    const auto error = [](const CompatibilityOptions& options) -> std::string {
        try {
            (void)check_compatibility(tree_of(copies), small_device(), options);
        } catch (const Error& failure) {
            return failure.what();
        }
        return "none";
    };
    EXPECT_EQ(error({.configuration_base = "\\x"}), "There is no node \\x in the configuration.");
    EXPECT_EQ(error({.description_base = "\\x"}), "There is no node \\x in the description.");
    EXPECT_EQ(error({}), "none");
}

TEST(Compatibility, TreeThatDescribesNoDeviceIsAnError) {
    EXPECT_EQ(find_description(tree_of(copies)), std::nullopt);
    EXPECT_THROW((void)check_compatibility(tree_of(copies), tree_of(copies)), Error);
    EXPECT_THROW((void)check_description(tree_of({{"\\media\\abilities", 5}})), Error);
}

TEST(Compatibility, EmptyConfigurationHasNoFindings) {
    EXPECT_EQ(check_compatibility(pm::Tree(), small_device()), std::vector<Finding>{});
}

TEST(Compatibility, FindingsStandInTheOrderOfTheRules) {
    const auto findings = check_compatibility(tree_of({{"\\x", 1},
                                                       {"\\io\\default_type", 5},
                                                       {"\\media\\copies", 10},
                                                       {"\\media\\default_size", text("A9")}}),
                                              small_device());
    std::vector<std::string> rules;
    for (const Finding& finding : findings)
        rules.push_back(finding.rule);
    EXPECT_EQ(rules, (Lines{"media-size", "copies", "io-method", "unspoken"}));
}

TEST(Compatibility, OffersAreAtMost64) {
    pm::Tree device = small_device();
    for (int i = 0; i < 100; ++i)
        device.set("\\media\\size\\" + std::to_string(i + 3) + "\\name", "B" + std::to_string(i));
    const auto findings = check_compatibility(tree_of({{"\\media\\default_size", text("B100")}}), device);
    ASSERT_EQ(findings.size(), 1U);
    ASSERT_EQ(findings[0].offers.size(), 64U);
    EXPECT_EQ(findings[0].offers[0].value, "B10");
}

TEST(Compatibility, OffersAreGivenWithTheFirst1000Findings) {
    pm::Tree configuration;
    for (int i = 0; i < 1001; ++i)
        configuration.set("\\" + std::to_string(i) + "\\HW_LINETYPE", 1);
    const auto findings = check_compatibility(configuration, small_device());
    ASSERT_EQ(findings.size(), 1001U);
    EXPECT_EQ(findings[999].offers.size(), 2U);
    EXPECT_EQ(findings[1000].offers.size(), 0U);
}

TEST(Compatibility, ExplainsWhatIsNotSet) {
    const auto looks = explain_compatibility(tree_of(copies), small_device()).looks;
    const Look wanted{"copies", "copies", "\\media\\copies", "\\media\\max_number_of_copies", "found"};
    EXPECT_EQ(std::ranges::count(looks, wanted), 1);
    const Look unset{"pen-count", "pen_count",
                     "\\physical_pen\\count, \\physical_pen\\default_npens, \\Plotter/Device\\Pens, "
                     "\\Plotter/Device/PenTable\\Pens, \\Plotter/DriverCustom/pen\\count",
                     "\\physical_pen\\max_npens", "not set"};
    EXPECT_EQ(std::ranges::count(looks, unset), 1);
}

TEST(Compatibility, IsWrittenAsJson) {
    const auto json =
        nlohmann::json::parse(findings_to_json({check_compatibility(tree_of(copies), small_device()), {}}));
    const auto wanted = nlohmann::json::parse(R"({"findings": [{"rule": "copies", "severity": "error",
        "configuration_path": "\\media\\copies", "description_path": "\\media\\max_number_of_copies", "configured": "10",
        "described": "9", "text": "", "offers": [{"value": "1 to 9", "text": "", "path": "\\media\\max_number_of_copies"}],
        "message": "The number of copies, 10, is above the most, 9."}]})");
    EXPECT_EQ(json, wanted);
    EXPECT_EQ(nlohmann::json::parse(findings_to_json({{}, {{"r", "s", "\\c", "\\d", "passed"}}})),
              nlohmann::json::parse(
                  R"({"findings": [], "looks": [{"rule": "r", "setting": "s", "configuration_path": "\\c",
                  "description_path": "\\d", "outcome": "passed"}]})"));
}

TEST(Compatibility, ValuesOfOtherTypesThanADescriptionHasAreNothing) {
    pm::Tree device =
        tree_of({{"\\media\\abilities", text("5")}, {"\\media\\max_number_of_copies", text("nine")}});
    EXPECT_EQ(answer_of("unspoken", tree_of(copies), device).findings,
              Lines{"warning \\media\\copies = 10 @ \\media\\max_number_of_copies = : The description tells "
                    "no maximum of "
                    "copies."});
}

TEST(Description, WhoseDefaultsArePossibleHasNoFindings) {
    EXPECT_EQ(check_description(small_device()), std::vector<Finding>{});
}

// Without a part of the description.
TEST(Compatibility, WhatTheDescriptionIsSilentOfIsUnspoken) {
    const struct {
        Item asked;
        const char* gone;
        const char* at;
        const char* what;
    } rows[] = {
        {{"\\io\\default_type", 4}, "\\io\\method", "\\io\\method", "methods of output"},
        {{"\\io\\plot_to_file", 1}, "\\io\\method", "\\io\\method", "methods of output"},
        {{"\\io\\serial\\baud_rate", 300}, "\\io\\method", "\\io\\method", "methods of output"},
        {{"\\io\\file_extension", text("plt")},
         "\\io\\default_plot_file_extension",
         "\\io\\default_plot_file_extension",
         "extension of plot files"},
        {{"\\init_term\\pre_init", text("x")},
         "\\init_term\\abilities",
         "\\init_term\\abilities",
         "start strings"},
        {{"\\res_color_mem\\color_depth", 8},
         "\\res_color_mem\\rcm_list",
         "\\res_color_mem\\rcm_list",
         "colour modes"},
        {{"\\res_color_mem\\rcm_list\\Mono\\default_resolution", text("300_dpi")},
         "\\res_color_mem\\rcm_list",
         "\\res_color_mem\\rcm_list",
         "colour modes"},
        {{"\\res_color_mem\\dithering", text("Fine")},
         "\\res_color_mem\\dithering_list",
         "\\res_color_mem\\dithering_list",
         "dithering methods"},
        {{"\\media\\finishing\\cutting", text("Pages")},
         "\\media\\destination",
         "\\media\\destination",
         "media destinations"},
        {{"\\media\\finishing\\collate", 1},
         "\\media\\destination",
         "\\media\\destination",
         "media destinations"},
        {{"\\custom_name\\Fan_Speed", 5}, "\\custom_name", "\\custom_name", "custom capabilities"},
        {{"\\physical_pen\\default_optimization", 1},
         "\\physical_pen\\max_optimization",
         "\\physical_pen\\max_optimization",
         "optimisation of pens"},
        {{"\\FILL_ADJUST", text("Y")},
         "\\physical_pen\\area_fill_corr",
         "\\physical_pen\\area_fill_corr",
         "correction of area fills"},
        {{"\\Plotter/Device/LineTypeTable\\Types", 2},
         "\\linetype\\capabilities",
         "\\linetype\\capabilities",
         "line types"},
        {{"\\media\\source\\Roll\\loaded", text("Wide")},
         "\\media\\source\\Roll\\entry",
         "\\media\\source\\Roll\\entry",
         "entries of this source"},
    };
    for (const auto& row : rows) {
        pm::Tree device = small_device();
        device.erase(row.gone);
        const Lines expected{std::string("warning ") + row.asked.first + " = " +
                             configuration_text(row.asked.second) + " @ " + row.at +
                             " = : The description tells no " + row.what + "."};
        EXPECT_EQ(answer_of("unspoken", tree_of({row.asked}), device).findings, expected);
    }
}

TEST(Compatibility, WhatIsNoNumberCanNotBeCompared) {
    const struct {
        const char* path;
        const char* wanted;
    } rows[] = {
        {"\\io\\plot_to_file", "truth value"},
        {"\\res_color_mem\\color_depth", "number"},
        {"\\physical_pen\\default_optimization", "integer"},
        {"\\FILL_ADJUST", "truth value"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(found("unspoken", {{row.path, text("some")}}),
                  Lines{std::string("warning ") + row.path + " = some @  = : The value is no " + row.wanted +
                        ", so that it can't be compared."});
    }
}

TEST(Description, WhoseDefaultsAreNotPossibleIsFound) {
    pm::Tree device = small_device();
    add(device,
        {{"\\media\\default_size", text("A9")},
         {"\\media\\source\\Roll\\default_entry", text("Sheet")},
         {"\\media\\source\\Tray\\entry\\Sheet\\default_size", text("A4")},
         {"\\media\\destination\\Basket\\default_cutting", text("Sets")},
         {"\\res_color_mem\\rcm_list\\Mono\\default_resolution", text("600_dpi")},
         {"\\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\default_mem_area", text("Small")},
         {"\\physical_pen\\default_width", 2.0},
         {"\\io\\default_type", 5},
         {"\\io\\method\\4\\default_baud_rate", 300},
         {"\\custom_name\\Fan_Speed\\default_value", 101}});
    std::vector<std::string> found_at;
    for (const Finding& finding : check_description(device)) {
        found_at.push_back(finding.rule + ' ' + finding.configuration_path);
        EXPECT_EQ(finding.severity, Severity::error);
    }
    EXPECT_EQ(found_at,
              (Lines{"media-size \\media\\default_size", "media-loaded \\media\\source\\Roll\\default_entry",
                     "media-size-source \\media\\source\\Tray\\entry\\Sheet\\default_size",
                     "cutting \\media\\destination\\Basket\\default_cutting",
                     "resolution \\res_color_mem\\rcm_list\\Mono\\default_resolution",
                     "memory \\res_color_mem\\rcm_list\\Colour\\resolution_list\\1200_dpi\\default_mem_area",
                     "pen-width \\physical_pen\\default_width", "io-method \\io\\default_type",
                     "io-baud-rate \\io\\method\\4\\default_baud_rate",
                     "custom \\custom_name\\Fan_Speed\\default_value"}));
}

// No type, or no value of it.
TEST(Compatibility, WhatHoldsNoValueIsNotConfigured) {
    const Stored broken{PROP_LONG, true, std::nullopt};
    pm::Tree configuration;
    put(configuration, "\\media\\copies", broken);
    put(configuration, "\\media\\default_size", {});
    put(configuration, "\\a", broken);
    put(configuration, "\\b", {});
    EXPECT_EQ(answer_of("copies", configuration, small_device()).looks, Lines{});
    EXPECT_EQ(answer_of("media-size", configuration, small_device()).looks, Lines{});
    EXPECT_EQ(answer_of("unspoken", configuration, small_device()).findings,
              (Lines{"note \\a =  @  = : Nothing in the description speaks of it.",
                     "note \\b =  @  = : Nothing in the description speaks of it."}));
}

TEST(Compatibility, WhatHoldsNoValueIsNotDescribed) {
    pm::Tree device = small_device();
    put(device, "\\media\\max_number_of_copies", {PROP_LONG, true, std::nullopt});
    EXPECT_EQ(answer_of("unspoken", tree_of(copies), device).findings,
              Lines{"warning \\media\\copies = 10 @ \\media\\max_number_of_copies = : The description tells "
                    "no maximum of copies."});
}

TEST(Compatibility, LengthsAreInchesOnlyWhereTheUnitIsRead) {
    const Item width{"\\SIZE\\A\\X", 20};
    expect_said("media-extent",
                {{{width, {"\\UNITS", text("inches")}},
                  {},
                  {},
                  {"error \\SIZE\\A\\X = 20 @ \\media\\size_max_x = 500: The largest size of the device is "
                   "19.685039 x 11.811024 inches. (19.685039 x 11.811024)"}},
                 {{width, {"\\UNITS", text("feet")}}, {}, {}, {"passed \\SIZE\\A\\X @ \\media\\size_max_x"}},
                 {{width, {"\\UNITS", false}, {"\\SIZE\\B\\X", text("some")}},
                  {},
                  {},
                  {"error \\SIZE\\A\\X = 20 @ \\media\\size_max_x = 500: The largest size of the device is "
                   "19.685039 x 11.811024 inches. (19.685039 x 11.811024)",
                   "unspoken \\SIZE\\B\\X @ "}}});
    expect_said("unspoken", {{{{"\\UNITS", text("feet")}},
                              {},
                              {},
                              {"note \\UNITS = feet @  = : Nothing in the description speaks of it.",
                               "unspoken \\UNITS @ "}},
                             {{{"\\UNITS", text("Millimetres")}}, {}, {}, {}}});
}

TEST(Compatibility, WhatIsUnsetByItsValueIsNotConfigured) {
    expect_said("media-size", {{{{"\\media\\default_size", text("")}}, {}, {}, {}},
                               {{{"\\media\\default_size", 0}}, {}, {}, {}},
                               {{{"\\media\\default_size", 1}},
                                {},
                                {},
                                {"error \\media\\default_size = 1 @ \\media\\size = : The device has no "
                                 "media size \"1\". (A4, DIN A4; A4_wide, DIN A4 quer; Free, Frei)"}},
                               {{{"\\media\\default_size", text("A4 ")}},
                                {},
                                {},
                                {"passed \\media\\default_size @ \\media\\size\\0"}}});
}

// Names and texts as numbers, bounds without their other side.
TEST(Compatibility, WhatADescriptionHoldsAsAnotherTypeIsNothing) {
    expect_said("media-size", {{{{"\\media\\default_size", text("B9")}},
                                {"\\media\\size\\1\\localized_name"},
                                {{"\\media\\size\\1\\localized_name", 4}},
                                {"error \\media\\default_size = B9 @ \\media\\size = : The device has no "
                                 "media size \"B9\". (A4, DIN A4; A4_wide; Free, Frei)"}}});
    expect_said("media-printable",
                {{{{"\\media\\margin_left", 5}},
                  {"\\media\\description\\0\\printable_bounds_ury"},
                  {},
                  {"unspoken \\media\\margin_left @ \\media\\description\\0\\printable_bounds_llx"}}});
    expect_said("io-baud-rate",
                {{{{"\\io\\serial\\baud_rate", 300}},
                  {"\\io\\method\\4\\baudrates\\0\\rate"},
                  {{"\\io\\method\\4\\baudrates\\0\\rate", text("fast")}},
                  {"error \\io\\serial\\baud_rate = 300 @ \\io\\method\\4\\baudrates = : Output by 4 "
                   "(RS232), the device's default, has no baud rate of 300. (19200)"}}});
}

TEST(Compatibility, OwnerThatIsNoneIsAnError) {
    for (const int owner : {-7, -1, 4, 99}) {
        EXPECT_THROW((void)check_compatibility(tree_of(copies), small_device(), {.owner = owner}), Error)
            << owner;
    }
    EXPECT_NO_THROW((void)check_compatibility(tree_of(copies), small_device(), {.owner = 3}));
}

TEST(Compatibility, ExplainsWhichSettingOfAMapsRuleIsNotSet) {
    CompatibilityMap map;
    map.settings = {{.setting = "glue", .path = "\\glue"}};
    map.rules = {{.name = "site-glue", .setting = "glue", .capability = "\\media\\glue"}};
    const auto looks = explain_compatibility(tree_of(copies), small_device(), {.map = &map}).looks;
    const Look unset{"site-glue", "glue", "\\glue", "\\media\\glue", "not set"};
    EXPECT_EQ(std::ranges::count(looks, unset), 1);
}

} // namespace
