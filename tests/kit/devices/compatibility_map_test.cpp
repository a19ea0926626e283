#include "kit/devices/small_device.h"
#include <algorithm>
#include <gtest/gtest.h>
#include <pm/kit/error.h>

namespace {

using namespace pm::test;
using namespace pm::kit;

std::string error_of(const std::string& json) {
    try {
        (void)load_map(json);
    } catch (const Error& error) {
        return std::to_string(error.line()) + ' ' + error.what();
    }
    return "none";
}

TEST(BuiltInMap, ComesBackFromItsJson) {
    EXPECT_EQ(load_map(map_to_json(built_in_map())), built_in_map());
}

TEST(BuiltInMap, HasAPathForEachSettingOfARule) {
    for (const CompatibilityRule& rule : compatibility_rules()) {
        for (const std::string_view setting : rule.settings) {
            EXPECT_TRUE(std::ranges::any_of(built_in_map().settings, [&](const SettingPath& path) {
                return path.setting == setting;
            })) << setting;
        }
    }
}

TEST(Map, IsAddedInFrontOfTheBuiltInOne) {
    const auto map = load_map(R"({"settings": [{"setting": "size", "path": "\\paper", "form": "name"}]})");
    EXPECT_EQ(map.settings.size(), built_in_map().settings.size() + 1);
    EXPECT_EQ(map.settings.front(),
              (SettingPath{.setting = "size", .path = "\\paper", .form = SettingForm::name}));
    const auto answer =
        answer_of("media-size", tree_of({{"\\paper", text("A4 wide")}}), small_device(), {.map = &map});
    EXPECT_EQ(answer.looks, Lines{"passed \\paper @ \\media\\size\\1"});
}

TEST(Map, ReplacesTheBuiltInOne) {
    const auto map = load_map(R"({"replace": true, "quiet": [{"path": "\\media\\*", "values": ["1"]}]})");
    EXPECT_EQ(map.settings.size(), 0U);
    const auto configuration = tree_of({{"\\media\\copies", 1}, {"\\media\\landscape", true}});
    EXPECT_EQ(answer_of("unspoken", configuration, small_device(), {.map = &map}).findings,
              Lines{"note \\media\\landscape = true @  = : Nothing in the description speaks of it."});
}

TEST(Map, TellsAKeyCodesAndAnOwner) {
    const auto map = load_map(R"({"settings": [
        {"setting": "custom", "path": "\\fan", "key": "Fan_Speed"},
        {"setting": "duplex", "path": "\\sides", "codes": {"7": 2}, "zero-is-unset": true, "any-case": true,
         "default": true, "owner": {"path": "\\media\\ui_owner", "digit": 3}}]})");
    const SettingPath sides{.setting = "duplex",
                            .path = "\\sides",
                            .codes = {{7, 2}},
                            .zero_is_unset = true,
                            .any_case = true,
                            .is_default = true,
                            .owner = "\\media\\ui_owner",
                            .owner_digit = 3};
    EXPECT_EQ(map.settings[1], sides);
    EXPECT_EQ(load_map(map_to_json(map)), map);
    const auto configuration = tree_of({{"\\fan", 200}, {"\\SIDES", 7}});
    EXPECT_EQ(answer_of("custom", configuration, small_device(), {.map = &map}).findings.size(), 1U);
    EXPECT_EQ(answer_of("duplex", configuration, small_device(), {.map = &map}).looks,
              Lines{"passed \\SIDES @ \\media\\duplexing_modes"});
}

TEST(Map, AddsRulesOfEachTest) {
    const auto map = load_map(R"({"settings": [{"setting": "a", "path": "\\a"}], "rules": [
        {"rule": "r-one", "setting": "a", "test": "one-of", "capability": "\\io\\method\\*\\baudrates\\*\\rate"},
        {"rule": "r-most", "severity": "note", "setting": "a", "test": "at-most", "capability": "\\media\\size_max_x"},
        {"rule": "r-least", "severity": "warning", "setting": "a", "test": "at-least", "capability": "\\media\\size_max_y"},
        {"rule": "r-equal", "setting": "a", "test": "equal", "capability": "\\media\\size_max_x"},
        {"rule": "r-bits", "setting": "a", "test": "bits-of", "capability": "\\io\\method\\4\\handshakes"}]})");
    EXPECT_EQ(load_map(map_to_json(map)), map);
    const auto rule = [&](std::string_view name, int value) {
        const auto answer = answer_of(name, tree_of({{"\\a", value}}), small_device(), {.map = &map});
        return answer.findings.empty() ? answer.looks.at(0) : answer.findings.at(0);
    };
    EXPECT_EQ(rule("r-one", 9600), "passed \\a @ \\io\\method\\4\\baudrates\\0\\rate");
    EXPECT_EQ(rule("r-one", 1),
              "error \\a = 1 @ \\io\\method\\*\\baudrates\\*\\rate = : The device doesn't offer \"1\" here. "
              "(9600; 19200)");
    EXPECT_EQ(rule("r-most", 500), "passed \\a @ \\media\\size_max_x");
    EXPECT_EQ(rule("r-most", 501),
              "note \\a = 501 @ \\media\\size_max_x = 500: The device doesn't offer \"501\" here. (500)");
    EXPECT_EQ(rule("r-least", 300), "passed \\a @ \\media\\size_max_y");
    EXPECT_EQ(rule("r-least", 299),
              "warning \\a = 299 @ \\media\\size_max_y = 300: The device doesn't offer \"299\" here. (300)");
    EXPECT_EQ(rule("r-equal", 500), "passed \\a @ \\media\\size_max_x");
    EXPECT_EQ(rule("r-equal", 499),
              "error \\a = 499 @ \\media\\size_max_x = 500: The device doesn't offer \"499\" here. (500)");
    EXPECT_EQ(rule("r-bits", 4), "passed \\a @ \\io\\method\\4\\handshakes");
    EXPECT_EQ(rule("r-bits", 5),
              "error \\a = 5 @ \\io\\method\\4\\handshakes = 6: The device doesn't offer \"5\" here. (6)");
}

TEST(Map, RuleWithoutItsCapabilityIsUnspoken) {
    const auto map = load_map(R"({"settings": [{"setting": "a", "path": "\\a"}],
        "rules": [{"rule": "r", "setting": "a", "test": "equal", "capability": "\\none\\*\\x"}]})");
    EXPECT_EQ(answer_of("unspoken", tree_of({{"\\a", 1}}), small_device(), {.map = &map}).findings,
              Lines{"warning \\a = 1 @ \\none\\*\\x = : The description tells no such capability."});
}

TEST(Map, OfBrokenJsonTellsTheLine) {
    EXPECT_EQ(error_of("{\n\"settings\": [\n}"), "3 The map is no JSON.");
    EXPECT_EQ(error_of(""), "1 The map is no JSON.");
}

TEST(Map, RefusesWhatItDoesNotKnow) {
    EXPECT_EQ(error_of("[]"), "0 The map is no object.");
    EXPECT_EQ(error_of(R"({"setting": []})"), "0 The map has no member \"setting\".");
    EXPECT_EQ(error_of(R"({"settings": {}})"), "0 \"settings\" of The map is not a list.");
    EXPECT_EQ(error_of(R"({"settings": [1]})"), "0 A setting is no object.");
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a"}]})"), "0 A setting has no text \"path\".");
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "", "path": "\\a"}]})"),
              "0 A setting has no text \"setting\".");
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a", "path": "\\a", "form": "x"}]})"),
              "0 There is no form \"x\".");
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a", "path": "\\a", "codes": {"x": 1}}]})"),
              "0 A code is no integer of 32 bits.");
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a", "path": "\\a", "codes": {"1": 2147483648}}]})"),
              "0 A code is no integer of 32 bits.");
    EXPECT_EQ(
        error_of(R"({"settings": [{"setting": "a", "path": "\\a", "codes": {"1": 18446744073709551615}}]})"),
        "0 A code is no integer of 32 bits.");
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a", "path": "\\a", "owner": 1}]})"),
              "0 \"owner\" of A setting is not an object.");
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a", "path": "\\a", "owner": {"path": "\\o"}}]})"),
              "0 An owner has no digit from 0 to 255.");
    EXPECT_EQ(
        error_of(R"({"rules": [{"rule": "copies", "setting": "a", "test": "equal", "capability": "\\c"}]})"),
        "0 There is a built-in rule \"copies\".");
    EXPECT_EQ(error_of(R"({"rules": [{"rule": "r", "setting": "a", "test": "like", "capability": "\\c"}]})"),
              "0 There is no test \"like\".");
    EXPECT_EQ(
        error_of(
            R"({"rules": [{"rule": "r", "severity": "bad", "setting": "a", "test": "equal", "capability": "\\c"}]})"),
        "0 There is no severity \"bad\".");
    EXPECT_EQ(error_of(R"({"quiet": [{"path": "\\a", "values": [1]}]})"), "0 A quiet value is no text.");
}

TEST(Map, RefusesMembersOfOtherKinds) {
    const struct {
        const char* json;
        const char* error;
    } rows[] = {
        {R"({"replace": 1})", "\"replace\" of The map is not a truth value."},
        {R"({"rules": {}})", "\"rules\" of The map is not a list."},
        {R"({"rules": [[]]})", "A rule is no object."},
        {R"({"quiet": [true]})", "A quiet path is no object."},
        {R"({"quiet": [{"path": 1}]})", "A quiet path has no text \"path\"."},
        {R"({"quiet": [{"path": "\\a", "values": "x"}]})", "\"values\" of A quiet path is not a list."},
        {R"({"quiet": [{"path": "\\a", "any-case": "x"}]})",
         "\"any-case\" of A quiet path is not a truth value."},
        {R"({"quiet": [{"path": "\\a", "value": "x"}]})", "A quiet path has no member \"value\"."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "key": 1}]})", "A setting has no text \"key\"."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "form": null}]})",
         "A setting has no text \"form\"."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "codes": []}]})",
         "\"codes\" of A setting is not an object."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "codes": {"1": 1.5}}]})",
         "A code is no integer of 32 bits."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "codes": {"-2147483649": 1}}]})",
         "A code is no integer of 32 bits."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "owner": {"digit": 1}}]})",
         "An owner has no text \"path\"."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "owner": {"path": "\\o", "digit": 256}}]})",
         "An owner has no digit from 0 to 255."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "owner": {"path": "\\o", "digit": -1}}]})",
         "An owner has no digit from 0 to 255."},
        {R"({"settings": [{"setting": "a", "path": "\\a", "owner": {"path": "\\o", "digit": 1, "x": 1}}]})",
         "An owner has no member \"x\"."},
        {R"({"rules": [{"rule": "r", "setting": "a", "test": "equal", "capability": ""}]})",
         "A rule has no text \"capability\"."},
        {R"({"rules": [{"rule": "r", "setting": "a", "capability": "\\c"}]})",
         "A rule has no text \"test\"."},
    };
    for (const auto& [json, error] : rows)
        EXPECT_EQ(error_of(json), std::string("0 ") + error);
}

TEST(Map, RefusesAPathThatNamesNothing) {
    const std::string error = "0 The path \"\\\" names nothing.";
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a", "path": "\\"}]})"), error);
    EXPECT_EQ(
        error_of(R"({"settings": [{"setting": "a", "path": "\\a", "owner": {"path": "\\", "digit": 1}}]})"),
        error);
    EXPECT_EQ(error_of(R"({"quiet": [{"path": "\\"}]})"), error);
    EXPECT_EQ(error_of(R"({"rules": [{"rule": "r", "setting": "a", "test": "equal", "capability": "\\"}]})"),
              error);
}

TEST(Map, RefusesTwoStarsInOneName) {
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a", "path": "\\*\\*x*"}]})"),
              "0 A name of the path \"\\*\\*x*\" has two \"*\".");
    EXPECT_EQ(error_of(R"({"settings": [{"setting": "a", "path": "\\*\\*x"}]})"), "none");
}

TEST(Map, MadeByHandWithARuleThatNamesNothingIsUnspoken) {
    CompatibilityMap map;
    map.settings = {{.setting = "a", .path = "\\a"}};
    map.rules = {{.name = "r", .setting = "a", .test = ValueTest::equal, .capability = "\\"}};
    EXPECT_EQ(answer_of("unspoken", tree_of({{"\\a", 1}}), small_device(), {.map = &map}).findings,
              Lines{"warning \\a = 1 @ \\ = : The description tells no such capability."});
}

TEST(Map, WithAPathThatIsQuietWhateverItHolds) {
    const auto map = load_map(R"({"replace": true, "quiet": [{"path": "\\note", "any-case": true}]})");
    EXPECT_EQ(map.quiet, (std::vector<QuietPath>{{.path = "\\note", .any_case = true}}));
    EXPECT_EQ(load_map(map_to_json(map)), map);
    expect_said(
        "unspoken",
        {{{{"\\NOTE", text("x")}, {"\\a\\note", 1}},
          {},
          {},
          {"note \\a\\note = 1 @  = : Nothing in the description speaks of it.", "unspoken \\a\\note @ "}}},
        {.map = &map});
}

TEST(Map, TakesTheFirstPathOfASettingAndEachSettingOfAPath) {
    CompatibilityMap map;
    map.settings = {{.setting = "copies", .path = "\\a", .codes = {{1, 20}}},
                    {.setting = "copies", .path = "\\*"},
                    {.setting = "pen_count", .path = "\\a"}};
    const std::vector<Item> asked{{"\\a", 1}, {"\\b", 10}};
    expect_said("copies",
                {{asked,
                  {},
                  {},
                  {"error \\a = 1 @ \\media\\max_number_of_copies = 9: The number of copies, 20, is above "
                   "the most, 9. (1 to 9)",
                   "error \\b = 10 @ \\media\\max_number_of_copies = 9: The number of copies, 10, is above "
                   "the most, 9. (1 to 9)"}}},
                {.map = &map});
    expect_said("pen-count", {{asked, {}, {}, {"passed \\a @ \\physical_pen\\max_npens"}}}, {.map = &map});
}

// What is no number, and what is no text, on either side.
TEST(Map, RulesCompareValuesOfEachType) {
    const auto map = load_map(R"({"settings": [{"setting": "a", "path": "\\a"}], "rules": [
        {"rule": "r-one", "setting": "a", "test": "one-of", "capability": "\\list\\*\\value"},
        {"rule": "r-most", "setting": "a", "test": "at-most", "capability": "\\of\\most"},
        {"rule": "r-least", "setting": "a", "test": "at-least", "capability": "\\of\\least"},
        {"rule": "r-bits", "setting": "a", "test": "bits-of", "capability": "\\of\\bits"}]})");
    const CompatibilityOptions options{.map = &map};
    const std::vector<Item> list{{"\\list\\0\\value", 1},
                                 {"\\list\\1\\value", text("x")},
                                 {"\\list\\1\\localized_name", text("ix")},
                                 {"\\list\\2\\value", true},
                                 {"\\list\\3\\note", 5}};
    expect_said(
        "r-one",
        {{{{"\\a", text("x")}}, {}, list, {"passed \\a @ \\list\\1\\value"}},
         {{{"\\a", text("1")}}, {}, list, {"passed \\a @ \\list\\0\\value"}},
         {{{"\\a", 5}},
          {},
          list,
          {"error \\a = 5 @ \\list\\*\\value = : The device doesn't offer \"5\" here. (1; x, ix; true)"}},
         {{{"\\a", pm::Bytes(1)}},
          {},
          list,
          {"error \\a = 00 @ \\list\\*\\value = : The device doesn't offer \"00\" here. (1; x, ix; true)"}}},
        options);
    const Item most{"\\of\\most", 5};
    const Item least{"\\of\\least", 5};
    const Item bits{"\\of\\bits", 5};
    expect_said("r-most",
                {{{{"\\a", text("x")}},
                  {},
                  {most},
                  {"error \\a = x @ \\of\\most = 5: The device doesn't offer \"x\" here. (5)"}},
                 {{{"\\a", 1}},
                  {},
                  {{"\\of\\most", text("x")}},
                  {"error \\a = 1 @ \\of\\most = x: The device doesn't offer \"1\" here. (x)"}}},
                options);
    expect_said("r-least",
                {{{{"\\a", text("x")}},
                  {},
                  {least},
                  {"error \\a = x @ \\of\\least = 5: The device doesn't offer \"x\" here. (5)"}},
                 {{{"\\a", 1}},
                  {},
                  {{"\\of\\least", text("x")}},
                  {"error \\a = 1 @ \\of\\least = x: The device doesn't offer \"1\" here. (x)"}}},
                options);
    expect_said("r-bits",
                {{{{"\\a", text("x")}},
                  {},
                  {bits},
                  {"error \\a = x @ \\of\\bits = 5: The device doesn't offer \"x\" here. (5)"}},
                 {{{"\\a", 1.5}},
                  {},
                  {bits},
                  {"error \\a = 1.5 @ \\of\\bits = 5: The device doesn't offer \"1.5\" here. (5)"}},
                 {{{"\\a", 1}},
                  {},
                  {{"\\of\\bits", 1.5}},
                  {"error \\a = 1 @ \\of\\bits = 1.5: The device doesn't offer \"1\" here. (1.5)"}}},
                options);
}

TEST(Map, RuleOffersUpTo64) {
    const auto map = load_map(R"({"settings": [{"setting": "a", "path": "\\a"}], "rules": [
        {"rule": "r", "setting": "a", "test": "one-of", "capability": "\\list\\*\\value"}]})");
    pm::Tree device = small_device();
    for (int i = 0; i < 70; ++i)
        device.set("\\list\\" + std::to_string(i) + "\\value", i);
    const auto findings = check_compatibility(tree_of({{"\\a", 70}}), device, {.map = &map});
    ASSERT_EQ(findings.size(), 1U);
    ASSERT_EQ(findings[0].offers.size(), 64U);
    EXPECT_EQ(findings[0].offers.back().value, "63");
}

} // namespace
