#include "kit/errors.h"
#include "kit/random_tree.h"
#include <gtest/gtest.h>
#include <pm/kit/difference.h>
#include <pm/kit/stored.h>

namespace pm::kit::test {
namespace {

std::string text_of(const Value& value) {
    return value_text(make_stored(value));
}

std::string bytes_text(PropType type, const char* bytes, std::size_t size) {
    const auto* const first = reinterpret_cast<const std::byte*>(bytes);
    return value_text({type, true, Bytes(first, first + size)});
}

std::string error_in(const std::string& text) {
    return error_of([&] { (void)parse_value(text); });
}

TEST(ValueText, TellsTypeAndValue) {
    EXPECT_EQ("long -2", text_of(std::int32_t{-2}));
    EXPECT_EQ("bool true", text_of(true));
    EXPECT_EQ("string \"a \\\"b\\\"\\n\"", text_of(std::string("a \"b\"\n")));
    EXPECT_EQ("raw 0AFF", text_of(Bytes{std::byte{10}, std::byte{255}}));
    EXPECT_EQ("none", text_of(Value()));
}

TEST(ValueText, DoubleIsTheShortestThatReadsBack) {
    EXPECT_EQ("double 0.1", text_of(0.1));
    EXPECT_EQ("double -0.0", text_of(-0.0));
    EXPECT_EQ("double 100.0", text_of(100.0));
    EXPECT_EQ("double 5e-324", text_of(5e-324));
    EXPECT_EQ("double inf", text_of(std::numeric_limits<double>::infinity()));
    EXPECT_EQ("double nan", text_of(std::numeric_limits<double>::quiet_NaN()));
}

TEST(ValueText, UnpairedSurrogateIsEscaped) {
    EXPECT_EQ("string \"\\ud800x\"", text_of(to_utf8(u"\xD800x")));
}

TEST(QuotedText, EscapesWhatATerminalObeysAndWhatNobodySees) {
    EXPECT_EQ("\"\\u001b[2J\\u009b31m\\u007f\\u0080\u00A0\"", quoted_text("\x1B[2J\xC2\x9B"
                                                                          "31m\x7F\xC2\x80\xC2\xA0"));
    EXPECT_EQ("\"a\\u202eb\\u2066c\\u2069\\u200e\\u200f\\u061c\\u2028\"",
              quoted_text("a\u202Eb\u2066c\u2069\u200E\u200F\u061C\u2028"));
}

TEST(QuotedText, ReadsBackWhateverItEscapes) {
    for (char16_t unit = 1; unit < 0xFFFF; ++unit) {
        const std::string text = to_utf8(std::u16string(1, unit));
        const auto value = exact_value(parse_value("string " + quoted_text(text)));
        ASSERT_EQ(text, std::get<std::string>(value.value())) << static_cast<unsigned>(unit);
    }
}

TEST(PrintableText, IsOneLineThatNoTerminalObeys) {
    EXPECT_EQ("a\\x1B[2J\\x0A\\x9B\\x7F b", printable_text("a\x1B[2J\n\xC2\x9B\x7F b"));
    EXPECT_EQ("\\u202Etxt.exe\\u2069\\u2028", printable_text("\u202Etxt.exe\u2069\u2028"));
    EXPECT_EQ("B\u00FCro \u0416 \U0001F600 \\n", printable_text("B\u00FCro \u0416 \U0001F600 \\n"));
}

TEST(PrintableText, ShowsTheBytesThatAreNoUtf8AndUnpairedSurrogatesAsReplaced) {
    EXPECT_EQ("B\\xFCro \u00E4 \\x9B", printable_text("B\xFCro \u00E4 \x9B"));
    EXPECT_EQ("\uFFFDx\uFFFD", printable_text(to_utf8(u"\xD800x\xDC9B")));
}

TEST(ValueText, WhatNoValueTellsShowsItsBytes) {
    EXPECT_EQ("string bytes 616200", bytes_text(PROP_STRING, "ab", 3));
    EXPECT_EQ("string bytes 6100", bytes_text(PROP_STRING, "a", 2));
    EXPECT_EQ("string bytes ", bytes_text(PROP_STRING, "", 0));
    EXPECT_EQ("long bytes 0102", bytes_text(PROP_LONG, "\1\2", 2));
    EXPECT_EQ("bool bytes 02", bytes_text(PROP_BOOL, "\2", 1));
    EXPECT_EQ("double bytes 010000000000F87F", bytes_text(PROP_DOUBLE, "\1\0\0\0\0\0\xF8\x7F", 8));
}

TEST(ValueText, NoValueIsNotEmpty) {
    EXPECT_EQ("raw", text_of(Bytes()));
    EXPECT_EQ("raw none", value_text({PROP_VOID, true, std::nullopt}));
}

TEST(ValueText, ReadsBackToTheSameWhateverItIs) {
    RandomTree random(1);
    for (int i = 0; i < 5000; ++i) {
        Stored value = random.stored();
        value.strict = true;
        ASSERT_EQ(value, parse_value(value_text(value))) << value_text(value);
    }
}

TEST(ExactValue, IsNoneWithoutBytesButOfNoType) {
    EXPECT_EQ(std::optional(Value()), exact_value({PROP_NONE, true, std::nullopt}));
    EXPECT_EQ(std::nullopt, exact_value({PROP_LONG, true, std::nullopt}));
    EXPECT_EQ(std::nullopt, exact_value({PROP_LONG, true, Bytes(3)}));
}

TEST(TypeName, OfNoTypeIsUnknown) {
    EXPECT_EQ("none", type_name(PROP_NONE));
    EXPECT_EQ("unknown", type_name(static_cast<PropType>(99)));
}

TEST(ParseValue, BlanksAroundWordsDoNotCount) {
    EXPECT_EQ(make_stored(Value(std::int32_t{2})), parse_value("  long \t 2  "));
    EXPECT_EQ(make_stored(Value(true)), parse_value("bool True"));
    EXPECT_EQ(make_stored(Value(Bytes{std::byte{0xAB}})), parse_value("raw aB"));
}

TEST(ParseValue, MistakesAreToldWithTheirColumn) {
    EXPECT_EQ("1: \"int\": no such type; there are long, double, string, bool, raw, none", error_in("int 2"));
    EXPECT_EQ("6: \"12x\" isn't a whole number from -2147483648 to 2147483647, which long asks for",
              error_in("long 12x"));
    EXPECT_EQ("6: \"2147483648\" isn't a whole number from -2147483648 to 2147483647, which long asks for",
              error_in("long 2147483648"));
    EXPECT_EQ("8: something stands behind the end of what belongs here", error_in("long 2 3"));
    EXPECT_EQ("6: \"truely\" isn't true or false, which bool asks for", error_in("bool truely"));
    EXPECT_EQ("8: \"nan(1)\" isn't a number, which double asks for", error_in("double nan(1)"));
    EXPECT_EQ("8: a text stands in double quotes", error_in("string x"));
    EXPECT_EQ("8: the text has no closing quote", error_in("string \"x"));
    EXPECT_EQ("9: a backslash is followed by nothing it may be", error_in("string \"\\q\""));
    EXPECT_EQ("12: \\u asks for four hexadecimal digits", error_in("string \"\\u0g\""));
    EXPECT_EQ("5: \"ABC\" isn't an even number of hexadecimal digits, which raw asks for",
              error_in("raw ABC"));
    EXPECT_EQ("5: \"A-\" isn't an even number of hexadecimal digits, which raw asks for", error_in("raw A-"));
    EXPECT_EQ("5: \"-A\" isn't an even number of hexadecimal digits, which raw asks for", error_in("raw -A"));
    EXPECT_EQ("8: \"NaN\" isn't a number, which double asks for", error_in("double NaN"));
    EXPECT_EQ("8: \"infinity\" isn't a number, which double asks for", error_in("double infinity"));
    EXPECT_EQ("1: a value of no type can't be told", error_of([] { (void)parse_value("x", PROP_NONE); }));
    EXPECT_EQ("6: none has no value", error_in("none 1"));
    EXPECT_EQ("9: this isn't UTF-8", error_in("string \"\xff\""));
    EXPECT_EQ("2: this isn't UTF-8", error_of([] { (void)parse_value("a\xff", PROP_STRING); }));
}

TEST(ParseValue, OfAKnownTypeTakesATextAsItIs) {
    EXPECT_EQ(make_stored(Value(std::string("a \"b"))), parse_value("a \"b", PROP_STRING));
    EXPECT_EQ(make_stored(Value(-0.0)), parse_value("-0", PROP_DOUBLE));
    EXPECT_EQ("1: \"12 34\" isn't a whole number from -2147483648 to 2147483647, which long asks for",
              error_of([] { (void)parse_value("12 34", PROP_LONG); }));
}

TEST(Stored, IsWhatWasPut) {
    RandomTree random(2);
    Tree tree;
    for (int i = 0; i < 500; ++i) {
        const Stored value = random.stored();
        put(tree, "\\a\\*x", value);
        ASSERT_EQ(value, stored(*tree.node("a")->properties().begin()));
    }
}

TEST(Copy, TreeIsIdentical) {
    RandomTree random(3);
    for (int i = 0; i < 50; ++i) {
        const Tree tree = random.make(60);
        EXPECT_TRUE(identical(tree, copy(tree)));
    }
}

TEST(Copy, NodeGoesBesideItselfInOneTree) {
    Tree tree;
    tree.set("\\a\\x\\y", 1, -1, false);
    tree.set("\\a\\b", "text");
    copy(*tree.node("\\a"), tree, "\\c\\a");
    EXPECT_TRUE(identical(*tree.node("\\a"), *tree.node("\\c\\a")));
}

TEST(Copy, NodeGoesIntoItselfAsItWas) {
    Tree tree;
    tree.set("\\a\\a\\p", 1);
    tree.set("\\a\\q", 2);
    copy(*tree.node("\\a"), tree, "\\a\\a");
    EXPECT_EQ(1, tree.get<int>("\\a\\a\\a\\p"));
    EXPECT_EQ(2, tree.get<int>("\\a\\a\\q"));
    EXPECT_FALSE(tree.node("\\a\\a\\a\\a"));
    copy(*tree.node("\\a\\a"), tree, "\\a");
    EXPECT_EQ(1, tree.get<int>("\\a\\a\\p"));
    EXPECT_EQ(1, tree.get<int>("\\a\\p"));
}

TEST(Copy, WhatIsThereIsReplaced) {
    Tree tree;
    tree.set("\\a\\x", 1);
    tree.set("\\b\\x", "text");
    tree.set("\\b\\y", 2);
    copy(*tree.node("\\a"), tree, "\\b");
    EXPECT_EQ(1, tree.get<int>("\\b\\x"));
    EXPECT_EQ(2, tree.get<int>("\\b\\y"));
}

} // namespace
} // namespace pm::kit::test
