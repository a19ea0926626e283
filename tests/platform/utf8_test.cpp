#include "platform/utf8.h"

#include "platform/code_page_bytes.h"
#include <gtest/gtest.h>
#include <string>

namespace {

using pm::to_narrow;
using pm::to_wide;
using pm::test::character_lengths;
using pm::test::every_byte;

std::u16string name_as_wide(std::string_view name) {
    std::u16string wide;
    pm::decode_name(name, wide);
    return wide;
}

std::string wide_as_name(std::u16string_view wide) {
    std::string name;
    pm::encode_name(wide, name);
    return name;
}

// All characters from `first` to `last`; the surrogates aren't any.
std::u16string characters(char32_t first, char32_t last) {
    std::u16string wide;
    for (char32_t code = first; code <= last; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) continue;
        if (code > 0xFFFF) wide += static_cast<char16_t>(0xD7C0 + (code >> 10));
        wide += static_cast<char16_t>(code > 0xFFFF ? 0xDC00 + (code & 0x3FF) : code);
    }
    return wide;
}

} // namespace

TEST(Utf8Page, DecodesAndEncodes) {
    const std::u16string wide = u"a\u00E4\u20AC\uFFFF\U0001F600\U0010FFFF";
    const std::string narrow = "a\xC3\xA4\xE2\x82\xAC\xEF\xBF\xBF\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(narrow, to_narrow(wide, 65001));
    EXPECT_EQ(wide, to_wide(narrow, 65001));
}

TEST(Utf8Page, MalformedInputIsReplaced) {
    EXPECT_EQ(u"a\uFFFDb", to_wide("a\x80"
                                   "b",
                                   65001)); // a trail byte alone
    EXPECT_EQ(u"a\uFFFDb", to_wide("a\xE4\xB8"
                                   "b",
                                   65001));                                     // cut inside
    EXPECT_EQ(u"a\uFFFD", to_wide("a\xE4\xB8", 65001));                         // cut at the end
    EXPECT_EQ(u"\uFFFD\uFFFD", to_wide("\xC0\xAF", 65001));                     // overlong
    EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD", to_wide("\xED\xA0\x80", 65001));           // a surrogate
    EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD\uFFFD", to_wide("\xF4\x90\x80\x80", 65001)); // above the last character
    EXPECT_EQ(u"\uFFFD\uFFFD", to_wide("\xFE\xFF", 65001));
}

TEST(Utf8Page, UnpairedSurrogatesBecomeQuestionMarks) {
    EXPECT_EQ("?", to_narrow(u"\xD800", 65001));
    EXPECT_EQ("a?b", to_narrow(u"a\xDC00"
                               u"b",
                               65001));
    EXPECT_EQ("??", to_narrow(u"\xDC00\xD800", 65001));
    EXPECT_EQ("?\xF0\x9F\x98\x80", to_narrow(u"\xD83D\U0001F600", 65001));
}

TEST(Utf8Page, CharacterHasTheBytesThatItsLeadTells) {
    EXPECT_EQ("12341", character_lengths(65001, "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z"));
    EXPECT_EQ("11", character_lengths(65001, "\x80\xBF"));
    EXPECT_EQ("21", character_lengths(65001, "\xE4\xB8z"));
    EXPECT_EQ("3", character_lengths(65001, "\xF0\x9F\x98"));
    EXPECT_EQ(1U, pm::code_page(65001).character_length(""));
}

TEST(Utf8, EveryCharacterComesBackAndHasTheLengthOfItsRange) {
    struct Range {
        char32_t first;
        char32_t last;
        std::size_t size; // in UTF-8
    };
    for (const Range& range : {Range{0, 0x7F, 0x80}, Range{0x80, 0x7FF, 2 * 0x780},
                               Range{0x800, 0xFFFF, 3 * 0xF000}, Range{0x10000, 0x10FFFF, 4 * 0x100000}}) {
        const std::u16string wide = characters(range.first, range.last);
        const std::string narrow = to_narrow(wide, 65001);
        EXPECT_EQ(range.size, narrow.size());
        EXPECT_TRUE(wide == to_wide(narrow, 65001)) << range.size;
    }
}

TEST(Utf8, BrokenSequenceIsReplacedOnceUpToWhereItBreaks) {
    EXPECT_EQ(u"\uFFFDx", to_wide("\xF0\x9F\x98x", 65001));
    EXPECT_EQ(u"\uFFFD\u00E4", to_wide("\xF0\x9F\xC3\xA4", 65001));
    EXPECT_EQ(u"\uFFFD\uFFFD", to_wide("\xE0\x80", 65001));
    EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD\uFFFD", to_wide("\xF0\x80\x80\x80", 65001));
    EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD", to_wide("\xF5\x80\x80", 65001));
    EXPECT_EQ(u"\uFFFD", to_wide("\xC3", 65001));
}

TEST(NameText, Utf8IsWhatItSays) {
    EXPECT_EQ(u"/a\u00E4\u4E00\U0001F600", name_as_wide("/a\xC3\xA4\xE4\xB8\x80\xF0\x9F\x98\x80"));
    EXPECT_EQ("/a\xC3\xA4\xE4\xB8\x80\xF0\x9F\x98\x80", wide_as_name(u"/a\u00E4\u4E00\U0001F600"));
}

TEST(NameText, EveryOtherByteIsAUnitThatStandsAlone) {
    const std::string bytes = every_byte(0x80, 0xFF);
    const std::u16string wide = name_as_wide(bytes);
    ASSERT_EQ(128U, wide.size());
    for (std::size_t index = 0; index < wide.size(); ++index) {
        EXPECT_EQ(0xDC80 + index, wide[index]);
    }
    EXPECT_EQ(bytes, wide_as_name(wide));
}

TEST(NameText, BytesOfABrokenSequenceStandAloneEach) {
    EXPECT_EQ(std::u16string({0xDCE4, 0xDCB8, u'x'}), name_as_wide("\xE4\xB8x"));
    EXPECT_EQ(std::u16string({0xDCED, 0xDCA0, 0xDC80}), name_as_wide("\xED\xA0\x80"));
    EXPECT_EQ("\xE4\xB8x", wide_as_name(std::u16string({0xDCE4, 0xDCB8, u'x'})));
}

TEST(NameText, UnitThatIsHalfOfAPairIsNoByte) {
    EXPECT_EQ("\xF0\x90\x82\x80", wide_as_name(std::u16string({0xD800, 0xDC80})));
    EXPECT_EQ("\xF0\x90\x82\x80\x80", wide_as_name(std::u16string({0xD800, 0xDC80, 0xDC80})));
}

TEST(NameText, OtherUnpairedSurrogatesAreQuestionMarks) {
    EXPECT_EQ("????", wide_as_name(std::u16string({0xDC00, 0xDC7F, 0xDD00, 0xD800})));
}

TEST(NameText, EveryNameOfTwoBytesComesBack) {
    for (const char first : every_byte(1, 0xFF)) {
        for (const char second : every_byte(1, 0xFF)) {
            const std::string name{first, second, '\xA4'};
            ASSERT_EQ(name, wide_as_name(name_as_wide(name)));
        }
    }
}
