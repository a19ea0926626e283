#include <gtest/gtest.h>
#include <pm/text.h>
#include <string>
#include <string_view>

namespace {

using namespace std::string_literals;
using pm::file_name_to_utf16;
using pm::file_name_to_utf8;
using pm::TextView;
using pm::to_utf16;
using pm::to_utf8;

TEST(Utf8, EmptyTextStaysEmpty) {
    EXPECT_EQ(u"", to_utf16(""));
    EXPECT_EQ("", to_utf8(u""));
}

TEST(Utf8, FirstAndLastOfEachLengthGoThereAndBack) {
    const std::pair<std::string, std::u16string> texts[] = {
        {"\0"s, u"\0"s},
        {"\x7F", u"\x7F"},
        {"\xC2\x80", u"\x80"},
        {"\xDF\xBF", u"\u07FF"},
        {"\xE0\xA0\x80", u"\u0800"},
        {"\xEF\xBF\xBF", u"\uFFFF"},
        {"\xF0\x90\x80\x80", u"\U00010000"},
        {"\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
    };
    for (const auto& [utf8, wide] : texts) {
        EXPECT_EQ(wide, to_utf16(utf8));
        EXPECT_EQ(utf8, to_utf8(wide));
    }
}

TEST(Utf8, EveryUnitAloneComesBack) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const std::u16string wide(1, static_cast<char16_t>(unit));
        ASSERT_EQ(wide, to_utf16(to_utf8(wide))) << unit;
    }
}

TEST(Utf8, UnpairedSurrogatesAreThreeBytesEach) {
    EXPECT_EQ("\xED\xA0\x80", to_utf8(u"\xD800"));
    EXPECT_EQ("\xED\xBF\xBF", to_utf8(u"\xDFFF"));
    EXPECT_EQ(u"\xD800", to_utf16("\xED\xA0\x80"));
    EXPECT_EQ(u"\xDFFF", to_utf16("\xED\xBF\xBF"));
}

TEST(Utf8, SurrogatesInEveryOrderComeBack) {
    const char16_t units[] = {u'a', u'\xD83D', u'\xDE00', u'\xDC80'};
    for (const char16_t first : units) {
        for (const char16_t second : units) {
            for (const char16_t third : units) {
                const std::u16string wide = {first, second, third};
                EXPECT_EQ(wide, to_utf16(to_utf8(wide)));
            }
        }
    }
}

TEST(Utf8, PairBehindAnUnpairedSurrogateIsAPair) {
    EXPECT_EQ("\xED\xA0\xBD\xF0\x9F\x98\x80", to_utf8(u"\xD83D\xD83D\xDE00"));
}

TEST(Utf8, TextsAroundEightBytesAreWhole) {
    const std::string ascii = "0123456789abcdefghijklmnopqrstuvwxyz";
    for (std::size_t length = 0; length <= ascii.size(); ++length) {
        const std::string text = ascii.substr(0, length);
        EXPECT_EQ(std::u16string(text.begin(), text.end()), to_utf16(text));
        EXPECT_EQ(text, to_utf8(to_utf16(text)));
        EXPECT_EQ(text + "\xC3\xA4" + text, to_utf8(to_utf16(text + "\xC3\xA4" + text)));
    }
}

TEST(Utf8, BrokenSequencesBecomeOneReplacementEach) {
    const std::pair<std::string, std::u16string> texts[] = {
        {"a\x80z", u"a\uFFFDz"},                           // no lead
        {"a\xC3", u"a\uFFFD"},                             // cut short
        {"a\xE2\x82", u"a\uFFFD"},                         // cut short in the third byte
        {"\xE2\x82z", u"\uFFFDz"},                         // the third byte is no such
        {"\xF0\x9F\x98", u"\uFFFD"},                       // cut short in the fourth byte
        {"\xC0\xAF", u"\uFFFD\uFFFD"},                     // overlong, two bytes
        {"\xC1\xBF", u"\uFFFD\uFFFD"},                     // overlong, two bytes
        {"\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},           // overlong, three bytes
        {"\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // overlong, four bytes
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}, // above U+10FFFF
        {"\xF5\xFF", u"\uFFFD\uFFFD"},                     // no lead of UTF-8
        {"\xC3\xC3\xA4", u"\uFFFD\u00E4"},                 // the next sequence stays whole
    };
    for (const auto& [utf8, wide] : texts)
        EXPECT_EQ(wide, to_utf16(utf8));
}

TEST(FileName, BytesThatAreNoUtf8StandForThemselves) {
    EXPECT_EQ(u"a\xDC80\xDCFFz", file_name_to_utf16("a\x80\xFFz"));
    EXPECT_EQ("a\x80\xFFz", file_name_to_utf8(u"a\xDC80\xDCFFz"));
}

TEST(FileName, EncodedSurrogateIsThreeBytesOfTheSystem) {
    EXPECT_EQ(u"\xDCED\xDCB2\xDC80", file_name_to_utf16("\xED\xB2\x80"));
}

TEST(FileName, EveryPairOfBytesComesBack) {
    for (int first = 0; first < 256; ++first) {
        for (int second = 0; second < 256; ++second) {
            const std::string name = {static_cast<char>(first), static_cast<char>(second), 'x'};
            ASSERT_EQ(name, file_name_to_utf8(file_name_to_utf16(name)));
        }
    }
}

TEST(FileName, ProperUtf8IsRead) {
    EXPECT_EQ(u"Plotter \u00E4\U0001F600", file_name_to_utf16("Plotter \xC3\xA4\xF0\x9F\x98\x80"));
}

TEST(TextView, TakesEveryKindOfText) {
    EXPECT_EQ("a", TextView("a").utf8());
    EXPECT_EQ("a", TextView("a"s).utf8());
    EXPECT_EQ("a", TextView(std::string_view("a")).utf8());
    EXPECT_EQ(u"a", TextView(u"a").wide());
    EXPECT_EQ(u"a", TextView(u"a"s).wide());
    EXPECT_EQ(u"a", TextView(std::u16string_view(u"a")).wide());
}

TEST(TextView, NullIsEmpty) {
    EXPECT_EQ(0U, TextView(static_cast<const char*>(nullptr)).size());
    EXPECT_EQ(0U, TextView(static_cast<const char16_t*>(nullptr)).size());
}

TEST(TextView, TheOtherWidthIsEmpty) {
    EXPECT_EQ(u"", TextView("a").wide());
    EXPECT_EQ("", TextView(u"a").utf8());
}

TEST(TextView, OnlyAViewOrAStringCanHoldAZero) {
    EXPECT_TRUE(TextView("a\0b"s).holds_zero());
    EXPECT_TRUE(TextView(u"a\0b"s).holds_zero());
    EXPECT_TRUE(TextView(std::u16string_view(u"a\0b", 3)).holds_zero());
    EXPECT_FALSE(TextView("a\0b").holds_zero());
    EXPECT_FALSE(TextView(u"ab"s).holds_zero());
}

TEST(TextView, OnlyPointersAndStringsAreKnownToEndWithAZero) {
    EXPECT_TRUE(TextView(u"ab").is_terminated());
    EXPECT_TRUE(TextView(u"ab"s).is_terminated());
    EXPECT_FALSE(TextView(std::u16string_view(u"ab")).is_terminated());
}

} // namespace
