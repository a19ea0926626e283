#include "devices/json_tree.h"

#include <gtest/gtest.h>

namespace {

using namespace pm::kit;

const JsonTree* member(const std::optional<JsonTree>& json, std::string_view name) {
    for (const auto& [known, value] : *json->as<JsonTree::Object>()) {
        if (known == name) return &value;
    }
    return nullptr;
}

TEST(JsonTree, HoldsEachKindOfValue) {
    const auto json = parse_json(R"({"n": null, "t": true, "i": -7, "d": 0.5, "s": "\u00e4", "l": [1, 2]})");
    ASSERT_TRUE(json);
    EXPECT_NE(member(json, "n")->as<std::monostate>(), nullptr);
    EXPECT_EQ(*member(json, "t")->as<bool>(), true);
    EXPECT_EQ(*member(json, "i")->as<std::int64_t>(), -7);
    EXPECT_EQ(*member(json, "d")->as<double>(), 0.5);
    EXPECT_EQ(*member(json, "s")->as<std::string>(), "\xC3\xA4");
    ASSERT_EQ(member(json, "l")->as<JsonTree::List>()->size(), 2U);
    EXPECT_EQ(*member(json, "l")->as<JsonTree::List>()->at(1).as<std::int64_t>(), 2);
}

TEST(JsonTree, IntegerBeyond64BitsWithItsSignIsADouble) {
    EXPECT_EQ(*parse_json("9223372036854775807")->as<std::int64_t>(), 9223372036854775807);
    EXPECT_EQ(*parse_json("9223372036854775808")->as<double>(), 9223372036854775808.0);
    EXPECT_EQ(*parse_json("18446744073709551615")->as<double>(), 18446744073709551615.0);
}

TEST(JsonTree, LastOfMembersWithOneNameCounts) {
    const auto json = parse_json(R"({"a": {"b": 1}, "c": 2, "a": 3})");
    ASSERT_EQ(json->as<JsonTree::Object>()->size(), 2U);
    EXPECT_EQ(*member(json, "a")->as<std::int64_t>(), 3);
}

TEST(JsonTree, WhatIsNestedTooDeepIsNull) {
    const auto nested = [](std::size_t levels) {
        const auto json = parse_json(std::string(levels, '[') + std::string(levels, ']'));
        const JsonTree* inner = &*json;
        while (inner->as<JsonTree::List>() != nullptr && !inner->as<JsonTree::List>()->empty()) {
            inner = &inner->as<JsonTree::List>()->front();
        }
        return inner->as<JsonTree::List>() != nullptr;
    };
    EXPECT_TRUE(nested(most_json_levels));
    EXPECT_FALSE(nested(most_json_levels + 1));
    EXPECT_FALSE(nested(1'000'000));
}

TEST(JsonTree, WhatFollowsSomethingTooDeepIsKept) {
    const std::string deep = std::string(20, '[') + "1" + std::string(20, ']');
    const auto json = parse_json("{\"a\": " + deep + ", \"b\": 2}");
    EXPECT_EQ(*member(json, "b")->as<std::int64_t>(), 2);
}

TEST(JsonTree, MistakeTellsHowFarItWasRead) {
    std::size_t mistake = 0;
    EXPECT_FALSE(parse_json("[1, x]", &mistake));
    EXPECT_EQ(mistake, 5U);
    EXPECT_FALSE(parse_json(""));
    EXPECT_FALSE(parse_json("[1] 2"));
}

TEST(JsonLines, WritesAMemberALine) {
    JsonLines out;
    out.open('{');
    out.member("a", std::string("x"));
    out.open_member("b", '[');
    out.value(1);
    out.open('{');
    out.member("c", true);
    out.close('}');
    out.close(']');
    out.open_member("d", '{');
    out.close('}');
    out.close('}');
    EXPECT_EQ(
        out.take(),
        "{\n  \"a\": \"x\",\n  \"b\": [\n    1,\n    {\n      \"c\": true\n    }\n  ],\n  \"d\": {}\n}");
}

TEST(JsonLines, EscapesAndReplacesBytesThatAreNoUtf8) {
    JsonLines out;
    out.value(std::string_view("\"\\\n\x01\x7F\xC3\xA4\xFF", 8));
    EXPECT_EQ(out.take(), "\"\\\"\\\\\\n\\u0001\x7F\xC3\xA4\xEF\xBF\xBD\"");
}

} // namespace
