#include "kit/errors.h"
#include "kit/random_tree.h"
#include "pm_test_paths.h"
#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <pm/inspect.h>
#include <pm/kit/difference.h>
#include <pm/kit/file.h>
#include <pm/kit/json.h>
#include <sstream>

namespace pm::kit::test {
namespace {

using ::testing::IsEmpty;

std::string error_in(const std::string& text) {
    return error_of([&] { (void)from_json(text); });
}

// The one property of a document on one line.
std::string with_property(const std::string& members) {
    return "{\"pm9\": 1, \"properties\": [{" + members + "}]}";
}

std::string one(const Stored& stored) {
    Tree tree;
    put(tree, "\\p", stored);
    const std::string text = property_json(*tree.root().properties().begin());
    return text.substr(std::string("{\"pm9\": 1, \"name\": \"p\", ").size());
}

Tree small_tree() {
    Tree tree;
    tree.set("\\copies", 2);
    tree.set("\\note", "two\nlines", -1, false);
    tree.set("\\media\\width", 0.1);
    make_node(tree.object(), u"\\media\\empty");
    return tree;
}

TEST(ToJson, HasTheOrderOfTheTree) {
    EXPECT_EQ(R"({
  "pm9": 1,
  "properties": [
    {"name": "copies", "type": "long", "value": 2},
    {"name": "note", "type": "string", "value": "two\nlines", "strict": false}
  ],
  "nodes": [
    {
      "name": "media",
      "properties": [
        {"name": "width", "type": "double", "value": 0.1}
      ],
      "nodes": [
        {
          "name": "empty",
          "properties": [],
          "nodes": []
        }
      ]
    }
  ]
}
)",
              to_json(small_tree()));
}

TEST(ToJson, OnOneLine) {
    Tree tree;
    tree.set("\\a\\b", true);
    EXPECT_EQ("{\"pm9\": 1, \"properties\": [], \"nodes\": [{\"name\": \"a\", \"properties\": "
              "[{\"name\": \"b\", \"type\": \"bool\", \"value\": true}], \"nodes\": []}]}\n",
              to_json(tree, {.indent = -1}));
}

TEST(ToJson, CutNodeSaysSo) {
    EXPECT_EQ("{\"pm9\": 1, \"properties\": [], \"nodes\": [{\"name\": \"media\", \"properties\": "
              "[{\"name\": \"width\", \"type\": \"double\", \"value\": 0.1}], \"more\": true}]}\n",
              [] {
                  Tree tree = small_tree();
                  tree.erase("\\copies");
                  tree.erase("\\note");
                  return to_json(tree, {.indent = -1, .levels = 1});
              }());
}

TEST(ToJson, NodeWithoutNodesIsNotCut) {
    Tree tree;
    tree.set("\\a\\b", true);
    EXPECT_EQ(to_json(tree, {.indent = -1}), to_json(tree, {.indent = -1, .levels = 2}));
    EXPECT_EQ("{\"pm9\": 1, \"properties\": [], \"nodes\": [{\"name\": \"a\", \"properties\": "
              "[{\"name\": \"b\", \"type\": \"bool\", \"value\": true}]}]}\n",
              to_json(tree, {.indent = -1, .levels = 1}));
}

TEST(ToJson, ValuesAreExact) {
    EXPECT_EQ("\"type\": \"double\", \"value\": -0.0}", one(make_stored(Value(-0.0))));
    EXPECT_EQ("\"type\": \"double\", \"value\": 1e+22}", one(make_stored(Value(1e22))));
    EXPECT_EQ("\"type\": \"double\", \"value\": \"-inf\"}",
              one(make_stored(Value(-std::numeric_limits<double>::infinity()))));
    EXPECT_EQ("\"type\": \"raw\", \"value\": \"0AFF\"}",
              one(make_stored(Value(Bytes{std::byte{10}, std::byte{255}}))));
    EXPECT_EQ("\"type\": \"raw\", \"value\": \"\"}", one(make_stored(Value(Bytes()))));
    EXPECT_EQ("\"type\": \"raw\", \"value\": null}", one({PROP_VOID, true, std::nullopt}));
    EXPECT_EQ("\"type\": \"none\", \"value\": null}", one({}));
    EXPECT_EQ("\"type\": \"string\", \"bytes\": \"6100\", \"strict\": false}",
              one({PROP_STRING, false, Bytes{std::byte{0x61}, std::byte{0}}}));
    EXPECT_EQ("\"type\": \"string\", \"bytes\": \"00D80000\"}", one(make_stored(Value(to_utf8(u"\xD800")))));
}

TEST(ToJson, NameWithAnUnpairedSurrogateIsItsUnits) {
    Tree tree;
    put(tree, u"\\a\xD800", {});
    EXPECT_EQ("{\"pm9\": 1, \"name_units\": [97, 55296], \"type\": \"none\", \"value\": null}",
              property_json(*tree.root().properties().begin()));
}

TEST(ToJson, IsJsonWhateverTheTree) {
    RandomTree random(11);
    for (int i = 0; i < 100; ++i) {
        const Tree tree = random.make(60);
        EXPECT_TRUE(nlohmann::json::accept(to_json(tree)));
        EXPECT_TRUE(nlohmann::json::accept(to_json(tree, {.plain = true})));
        EXPECT_TRUE(nlohmann::json::accept(to_json(tree, {.indent = -1, .levels = 1, .plain = true})));
    }
}

TEST(ToJson, StreamGetsTheSame) {
    RandomTree random(12);
    const Tree tree = random.make(5000);
    std::ostringstream stream;
    write_json(stream, tree.root());
    EXPECT_EQ(to_json(tree), stream.str());
}

TEST(ToJson, PlainIsObjectsWithKeys) {
    Tree tree = small_tree();
    tree.set("\\media", "beside");
    EXPECT_EQ(
        "{\"copies\": 2, \"note\": \"two\\nlines\", \"media\": \"beside\", \"media\\\\\": {\"width\": 0.1, "
        "\"empty\": {}}}\n",
        to_json(tree, {.indent = -1, .plain = true}));
    EXPECT_EQ("2", property_json(*tree.root().properties().begin(), {.plain = true}));
}

TEST(FromJson, GivesTheTreeBackExactly) {
    RandomTree random(13);
    for (int i = 0; i < 400; ++i) {
        const Tree tree = random.make(40);
        ASSERT_THAT(compare(tree, from_json(to_json(tree))), IsEmpty());
        ASSERT_THAT(compare(tree, from_json(to_json(tree, {.indent = -1}))), IsEmpty());
    }
}

TEST(FromJson, GivesEverySampleBack) {
    for (const auto& entry : std::filesystem::directory_iterator(PM_SAMPLES)) {
        const FileContent content = read_file({.file = entry.path().string()});
        EXPECT_TRUE(identical(content.tree, from_json(to_json(content.tree)))) << entry.path();
    }
}

TEST(FromJson, MembersStandInAnyOrder) {
    const Tree tree = from_json(R"({"nodes": [{"nodes": [], "properties": [{"strict": false, "value": 2,
        "type": "long", "name": "p"}], "name": "n"}], "pm9": 1})");
    EXPECT_EQ(2, tree.get<int>("\\n\\p"));
    EXPECT_FALSE(tree.property("\\n\\p")->strict());
}

TEST(FromJson, NumbersGoWhereTheyFit) {
    const auto number = [](const std::string& type, const std::string& text) {
        const Tree tree =
            from_json(with_property("\"name\": \"p\", \"type\": \"" + type + "\", \"value\": " + text));
        return value_text(stored(*tree.root().properties().begin()));
    };
    EXPECT_EQ("double 2.0", number("double", "2"));
    EXPECT_EQ("double -0.0", number("double", "-0"));
    EXPECT_EQ("double 0.0", number("double", "0"));
    EXPECT_EQ("double 1.8446744073709552e+19", number("double", "18446744073709551615"));
    EXPECT_EQ("double nan", number("double", "\"nan\""));
    EXPECT_EQ("long -2147483648", number("long", "-2147483648"));
    EXPECT_EQ("long 0", number("long", "-0"));
}

TEST(FromJson, NumbersOfEachSignAreRead) {
    const auto number = [](const std::string& type, const std::string& text) {
        const Tree tree =
            from_json(with_property("\"name\": \"p\", \"type\": \"" + type + "\", \"value\": " + text));
        return value_text(stored(*tree.root().properties().begin()));
    };
    EXPECT_EQ("long -5", number("long", "-5"));
    EXPECT_EQ("long 0", number("long", "-0.0"));
    EXPECT_EQ("double -5.0", number("double", "-5"));
    EXPECT_EQ("double inf", number("double", "\"inf\""));
    EXPECT_EQ("double -inf", number("double", "\"-inf\""));
    EXPECT_EQ("double -0.0", number("double", "-0.0"));
}

TEST(FromJson, MistakesAreToldWithLineAndColumn) {
    EXPECT_EQ(
        "2:1: this isn't JSON: syntax error while parsing object key - unexpected end of input; expected "
        "string literal",
        error_in("{\n "));
    EXPECT_EQ("1:1: what is read is an object", error_in("1"));
    EXPECT_EQ("1:2: \"pm9\", the version of the form, is missing", error_in("{}"));
    EXPECT_EQ("1:9: \"pm9\" is the version of the form, 1", error_in("{\"pm9\": 2}"));
    EXPECT_EQ("2:6: a member \"size\" can't stand here", error_in("{\"pm9\": 1,\n\"size\": 1}"));
    EXPECT_EQ("1:15: \"pm9\" is there twice", error_in("{\"pm9\": 1,\"pm9\": 1}"));
    EXPECT_EQ("1:12: an array can't stand here", error_in("{\"pm9\":    [1]}"));
    EXPECT_EQ("1:1: an array can't stand here", error_in("[]"));
}

TEST(FromJson, MistakesShowNoControlCharacters) {
    EXPECT_EQ("1:2: this isn't JSON: syntax error while parsing object key - invalid literal; last read: "
              "'{\\x7F'; expected string literal",
              error_in("{\x7F"));
    EXPECT_EQ("1:22: a member \"\\u001b[1m\" can't stand here", error_in(R"({"pm9": 1, "\u001b[1m": 1})"));
}

TEST(FromJson, PropertiesThatAreNoneAreRefused) {
    const auto message = [](const std::string& members) {
        const std::string text = error_in(with_property(members));
        return text.substr(text.find(' ') + 1);
    };
    EXPECT_EQ("a name is missing", message("\"type\": \"long\", \"value\": 1"));
    EXPECT_EQ("a name is empty", message("\"name\": \"\""));
    EXPECT_EQ("a name holds a backslash or a zero", message("\"name\": \"a\\\\b\""));
    EXPECT_EQ("a name is empty", message("\"name_units\": []"));
    EXPECT_EQ("\"name_units\" are numbers from 0 to 65535", message("\"name_units\": [65536]"));
    EXPECT_EQ("a property has \"type\" and \"value\" or \"bytes\"",
              message("\"name\": \"a\", \"type\": \"long\""));
    EXPECT_EQ("\"int\": no such type; there are long, double, string, bool, raw, none",
              message("\"name\": \"a\", \"type\": \"int\""));
    EXPECT_EQ("a long is a whole number from -2147483648 to 2147483647",
              message("\"name\": \"a\", \"type\": \"long\", \"value\": 2147483648"));
    EXPECT_EQ("a long is a whole number from -2147483648 to 2147483647",
              message("\"name\": \"a\", \"type\": \"long\", \"value\": 1.5"));
    EXPECT_EQ("a double is a number, \"inf\", \"-inf\" or \"nan\"",
              message("\"name\": \"a\", \"type\": \"double\", \"value\": \"1\""));
    EXPECT_EQ("\"value\" is true or false for a bool",
              message("\"name\": \"a\", \"type\": \"bool\", \"value\": 1"));
    EXPECT_EQ("\"value\" is a text for a string",
              message("\"name\": \"a\", \"type\": \"string\", \"value\": 1"));
    EXPECT_EQ("\"value\" is an even number of hexadecimal digits in quotes",
              message("\"name\": \"a\", \"type\": \"raw\", \"value\": \"ABC\""));
    EXPECT_EQ("\"bytes\" is an even number of hexadecimal digits in quotes",
              message("\"name\": \"a\", \"type\": \"long\", \"bytes\": null"));
    EXPECT_EQ("a property of type \"none\" has the value null",
              message("\"name\": \"a\", \"type\": \"none\", \"value\": 1"));
    EXPECT_EQ(
        "a node has two properties named \"a\"",
        message(
            "\"name\": \"a\", \"type\": \"none\", \"value\": null}, {\"name\": \"a\", \"type\": \"none\", "
            "\"value\": null"));
}

TEST(FromJson, NodesThatAreNoneAreRefused) {
    EXPECT_EQ("1:52: a node has two nodes named \"a\"",
              error_in("{\"pm9\": 1, \"nodes\": [{\"name\": \"a\"}, {\"name\": \"a\"   }]}"));
    EXPECT_THAT(error_in(to_json(small_tree(), {.levels = 1})),
                ::testing::EndsWith(": a node was cut when this was written; write it whole"));
    std::string deep = "{\"pm9\": 1";
    for (int i = 0; i < 257; ++i) {
        deep += ", \"nodes\": [{\"name\": \"a\"";
    }
    EXPECT_THAT(error_in(deep), ::testing::EndsWith(": a node is deeper than 256 levels"));
}

TEST(FromJson, ValuesOfOtherKindsAreRefused) {
    const auto message = [](const std::string& text) {
        const std::string error = error_in(text);
        return error.substr(error.find(' ') + 1);
    };
    const std::string version = "\"pm9\" is the version of the form, 1";
    const std::string units = "\"name_units\" are numbers from 0 to 65535";
    EXPECT_EQ(version, message("{\"pm9\": \"1\"}"));
    EXPECT_EQ("an object can't stand here", message("{\"pm9\": {}}"));
    EXPECT_EQ("an object can't stand here", message(with_property("\"name\": {}")));
    EXPECT_EQ("only objects can stand here", message("{\"pm9\": 1, \"nodes\": [1]}"));
    EXPECT_EQ("only objects can stand here", message("{\"pm9\": 1, \"properties\": [null]}"));
    EXPECT_EQ("\"nodes\" is an array", message("{\"pm9\": 1, \"nodes\": true}"));
    EXPECT_EQ("\"name\" is a text", message(with_property("\"name\": 1")));
    EXPECT_EQ(units, message(with_property("\"name_units\": [-1]")));
    EXPECT_EQ(units, message(with_property("\"name_units\": [\"a\"]")));
    EXPECT_EQ("an array can't stand here", message(with_property("\"name_units\": [[]]")));
    EXPECT_EQ("an array can't stand here", message(with_property("\"value\": []")));
    EXPECT_EQ("a double is a number, \"inf\", \"-inf\" or \"nan\"",
              message(with_property("\"name\": \"a\", \"type\": \"double\", \"value\": true")));
    EXPECT_EQ("\"strict\" is true or false", message(with_property("\"strict\": 1")));
}

TEST(FromJson, EveryPrefixIsRefused) {
    const std::string text = to_json(small_tree());
    for (std::size_t size = 0; size + 2 < text.size(); ++size) {
        EXPECT_NE("", error_in(text.substr(0, size))) << size;
    }
}

} // namespace
} // namespace pm::kit::test
