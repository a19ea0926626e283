#include "platform/code_page.h"

#include "support/exceptions.h"
#include <gtest/gtest.h>
#include <pm/code_page.h>
#include <span>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using pm::to_narrow;
using pm::to_wide;
using pm::test::expect_thrown;

constexpr unsigned single_byte_pages[] = {
    437,   720,   737,   775,   850,   852,   855,   857,   858,   860,   861,   862,   863,  864,
    865,   866,   869,   874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258, 20127,
    20866, 21866, 28591, 28592, 28593, 28594, 28595, 28596, 28597, 28598, 28599, 28603, 28605};
constexpr unsigned multi_byte_pages[] = {932, 936, 949, 950, 65001};

// The characters of a narrow text by their lengths.
std::string lengths(unsigned number, const char* text) {
    const pm::CodePage& page = pm::code_page(number);
    std::string all;
    for (; *text != '\0'; text += page.character_length(text)) {
        all += static_cast<char>('0' + page.character_length(text));
    }
    return all;
}

class SystemCodePage : public testing::Test {
protected:
    ~SystemCodePage() override { pm_set_system_code_page(0); }
};

std::string every_byte(unsigned first, unsigned last) {
    std::string bytes;
    for (unsigned byte = first; byte <= last; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

} // namespace

TEST(CodePage, AsciiIsItselfInEveryPage) {
    const std::string ascii = every_byte(0, 0x7F);
    const std::u16string wide(ascii.begin(), ascii.end());
    for (const auto& pages :
         {std::span<const unsigned>(single_byte_pages), std::span<const unsigned>(multi_byte_pages)}) {
        for (const unsigned number : pages) {
            EXPECT_EQ(wide, to_wide(ascii, number)) << number;
            EXPECT_EQ(ascii, to_narrow(wide, number)) << number;
        }
    }
}

TEST(CodePage, AsciiBehindOtherCharactersIsItselfToo) {
    const std::string ascii = every_byte(0, 0x7F);
    const std::u16string wide(ascii.begin(), ascii.end());
    for (const auto& [number, narrow, character] :
         {std::tuple(1252U, "\xC4", u"\u00C4"), std::tuple(437U, "\x8E", u"\u00C4"),
          std::tuple(932U, "\x82\xA0", u"\u3042"), std::tuple(936U, "\xB0\xA1", u"\u554A"),
          std::tuple(949U, "\xB0\xA1", u"\uAC00"), std::tuple(950U, "\xB0\xA1", u"\u965B"),
          std::tuple(65001U, "\xE3\x81\x82", u"\u3042")}) {
        EXPECT_EQ(character + wide, to_wide(narrow + ascii, number)) << number;
        EXPECT_EQ(narrow + ascii, to_narrow(character + wide, number)) << number;
    }
}

TEST(CodePage, EmptyTextStaysEmpty) {
    for (const unsigned number : multi_byte_pages) {
        EXPECT_EQ(u"", to_wide("", number));
        EXPECT_EQ("", to_narrow(u"", number));
    }
}

TEST(CodePage, Appends) {
    std::u16string wide = u"x";
    std::string narrow = "x";
    for (const unsigned number : {1252U, 932U, 65001U}) {
        pm::code_page(number).decode("a", wide);
        pm::code_page(number).encode(u"a\u4E00", narrow);
    }
    pm::code_page(1252).decode("b\xC4", wide);
    EXPECT_EQ(u"xaaab\u00C4", wide);
    EXPECT_EQ("xa?a\x88\xEA"
              "a\xE4\xB8\x80",
              narrow);
}

TEST(SingleBytePage, EveryDefinedByteComesBack) {
    for (const unsigned number : single_byte_pages) {
        for (const char byte : every_byte(0, 0xFF)) {
            const std::u16string wide = to_wide({&byte, 1}, number);
            ASSERT_EQ(1U, wide.size());
            if (wide == u"\uFFFD") continue;
            EXPECT_EQ(std::string(1, byte), to_narrow(wide, number)) << number;
        }
    }
}

TEST(SingleBytePage, EachCharacterIsOneByte) {
    for (const unsigned number : single_byte_pages) {
        EXPECT_EQ("1111", lengths(number, "a\x81\xE4z")) << number;
    }
    EXPECT_EQ(1U, pm::code_page(1252).character_length(""));
}

TEST(SingleBytePage, UnitsWithoutAByteBecomeAQuestionMarkEach) {
    for (const unsigned number : single_byte_pages) {
        EXPECT_EQ("a?b", to_narrow(u"a\u4E00b", number)) << number;
        EXPECT_EQ("??", to_narrow(u"\U0001F600", number)) << number;
        EXPECT_EQ("?x?", to_narrow(u"\xD800x\xDC00", number)) << number;
        EXPECT_EQ("?", to_narrow(u"\uFFFD", number)) << number;
    }
}

TEST(CodePage1252, DecodesItsUpperHalf) {
    EXPECT_EQ(u"\u20AC\u201A\u0192\u201E\u2026\u2020\u2021\u02C6\u2030\u0160\u2039\u0152\u017D",
              to_wide("\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8E", 1252));
    EXPECT_EQ(u"\u00A0\u00C4\u00DF\u00FF", to_wide("\xA0\xC4\xDF\xFF", 1252));
}

TEST(CodePage1252, UndefinedBytesAreTheirControls) {
    EXPECT_EQ(u"\u0081\u008D\u008F\u0090\u009D", to_wide("\x81\x8D\x8F\x90\x9D", 1252));
    EXPECT_EQ("\x81\x8D\x8F\x90\x9D", to_narrow(u"\u0081\u008D\u008F\u0090\u009D", 1252));
    EXPECT_EQ("?", to_narrow(u"\u0080", 1252));
}

TEST(CodePage1253, UndefinedBytesAreControlsBelowA0AndReplacedAbove) {
    EXPECT_EQ(u"\u0081\u0088\u009F", to_wide("\x81\x88\x9F", 1253));
    EXPECT_EQ(u"\uFFFD\uFFFD", to_wide("\xD2\xFF", 1253));
    EXPECT_EQ(u"\u0391\u03C9", to_wide("\xC1\xF9", 1253));
    EXPECT_EQ("\xC1\xF9?", to_narrow(u"\u0391\u03C9\u00C4", 1253));
}

TEST(CodePage437, DecodesAndEncodes) {
    EXPECT_EQ(u"\u00C7\u2592\u2514\u03B1\u00B1\u00A0", to_wide("\x80\xB1\xC0\xE0\xF1\xFF", 437));
    EXPECT_EQ("\x80\xB1\xC0\xE0\xF1\xFF?", to_narrow(u"\u00C7\u2592\u2514\u03B1\u00B1\u00A0\u20AC", 437));
}

TEST(CodePage850, DecodesAndEncodes) {
    EXPECT_EQ(u"\u00C7\u00A9\u00C0\u0131\u00D3", to_wide("\x80\xB8\xB7\xD5\xE0", 850));
    EXPECT_EQ("\x80\xB8\xB7\xD5\xE0?", to_narrow(u"\u00C7\u00A9\u00C0\u0131\u00D3\u20AC", 850));
    EXPECT_EQ(u"\u20AC", to_wide("\xD5", 858));
}

TEST(CodePage866, DecodesAndEncodes) {
    EXPECT_EQ(u"\u0410\u043F\u0440\u0401\u2116", to_wide("\x80\xAF\xE0\xF0\xFC", 866));
    EXPECT_EQ("\x80\xAF\xE0\xF0\xFC?", to_narrow(u"\u0410\u043F\u0440\u0401\u2116\u00C4", 866));
}

TEST(CodePage28591, IsTheFirst256Units) {
    std::u16string wide;
    for (char16_t unit = 0; unit < 256; ++unit) {
        wide += unit;
    }
    EXPECT_EQ(wide, to_wide(every_byte(0, 255), 28591));
    EXPECT_EQ(every_byte(0, 255), to_narrow(wide, 28591));
}

TEST(TwoBytePage, DecodesAndEncodes) {
    EXPECT_EQ(u"\u3042\u30BD\uFF71\\~", to_wide("\x82\xA0\x83\x5C\xB1\\~", 932));
    EXPECT_EQ("\x82\xA0\x83\x5C\xB1\\~", to_narrow(u"\u3042\u30BD\uFF71\\~", 932));
    EXPECT_EQ(u"\u554A\u50DC\u20AC", to_wide("\xB0\xA1\x83\x5C\x80", 936));
    EXPECT_EQ("\xB0\xA1\x83\x5C\x80", to_narrow(u"\u554A\u50DC\u20AC", 936));
    EXPECT_EQ(u"\uAC00\u3000", to_wide("\xB0\xA1\xA1\xA1", 949));
    EXPECT_EQ("\xB0\xA1\xA1\xA1", to_narrow(u"\uAC00\u3000", 949));
    EXPECT_EQ(u"\u965B\uFE5B", to_wide("\xB0\xA1\xA1\xA1", 950));
    EXPECT_EQ("\xB0\xA1\xA1\xA1", to_narrow(u"\u965B\uFE5B", 950));
}

TEST(TwoBytePage, CharacterIsTwoBytesBehindALeadByte) {
    EXPECT_EQ("12121", lengths(932, "a\x83\x5C\xB1\xE0\x40z"));
    EXPECT_EQ("1212", lengths(936, "a\x83\x5C\x80\xFE\x40"));
    EXPECT_EQ("122", lengths(949, "a\xB0\xA1\xFE\x41"));
    EXPECT_EQ("122", lengths(950, "a\xB0\xA1\xFE\x41"));
}

TEST(TwoBytePage, LeadBytesAreThoseOfThePage) {
    const auto leads = [](unsigned number) {
        std::string all;
        for (const char byte : every_byte(1, 255)) {
            const char text[] = {byte, 'A', '\0'};
            if (pm::code_page(number).character_length(text) == 2) all += byte;
        }
        return all;
    };
    EXPECT_EQ(every_byte(0x81, 0x9F) + every_byte(0xE0, 0xFC), leads(932));
    EXPECT_EQ(every_byte(0x81, 0xFE), leads(936));
    EXPECT_EQ(every_byte(0x81, 0xFE), leads(949));
    EXPECT_EQ(every_byte(0x81, 0xFE), leads(950));
}

TEST(TwoBytePage, CharacterNeverPassesTheTerminator) {
    for (const unsigned number : {932U, 936U, 949U, 950U}) {
        EXPECT_EQ(1U, pm::code_page(number).character_length("\x83"));
        EXPECT_EQ(1U, pm::code_page(number).character_length(""));
    }
}

TEST(TwoBytePage, CutCharacterIsReplaced) {
    for (const unsigned number : {932U, 936U, 949U, 950U}) {
        EXPECT_EQ(u"a\uFFFD", to_wide("a\x83", number)) << number;
        EXPECT_EQ(u"\uFFFD \uFFFD", to_wide("\x83 \x83", number)) << number;
    }
    EXPECT_EQ(u"\u3042a", to_wide("\x82\xA0"
                                  "a",
                                  932))
        << "a cut character left something behind";
}

TEST(TwoBytePage, UndefinedBytesAreReplaced) {
    EXPECT_EQ(u"\uFFFD\uFFFDx", to_wide("\x81\xFFx", 932));
    EXPECT_EQ(u"\uFFFD", to_wide("\xA0", 932));
    EXPECT_EQ(u"\uFFFDx", to_wide("\x81\x80x", 949));
    EXPECT_EQ(u"\uFFFDx", to_wide("\x81\x80x", 950));
}

TEST(TwoBytePage, UnitsWithoutACharacterBecomeAQuestionMarkEach) {
    for (const unsigned number : {932U, 936U, 949U, 950U}) {
        EXPECT_EQ("a?b", to_narrow(u"a\u0E01b", number)) << number;
        EXPECT_EQ("a??b", to_narrow(u"a\U0001F600b", number)) << number;
        EXPECT_EQ("?x?", to_narrow(u"\xD800x\xDC00", number)) << number;
        EXPECT_EQ("??", to_narrow(u"\xDC00\xD800", number)) << number;
        EXPECT_EQ("?", to_narrow(u"\u200D", number)) << number;
    }
}

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
    EXPECT_EQ("12341", lengths(65001, "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80z"));
    EXPECT_EQ("11", lengths(65001, "\x80\xBF"));
    EXPECT_EQ("21", lengths(65001, "\xE4\xB8z"));
    EXPECT_EQ("3", lengths(65001, "\xF0\x9F\x98"));
    EXPECT_EQ(1U, pm::code_page(65001).character_length(""));
}

TEST(CodePage, ZerosInsideATextStay) {
    const std::string narrow("\xC3\xA4\0b\xC3\xA4", 6);
    EXPECT_EQ(std::u16string(u"\u00E4\0b\u00E4", 4), to_wide(narrow, 65001));
    EXPECT_EQ(narrow, to_narrow(std::u16string(u"\u00E4\0b\u00E4", 4), 65001));
    EXPECT_EQ(std::u16string(u"\u3042\0b", 3), to_wide(std::string("\x82\xA0\0b", 4), 932));
    EXPECT_EQ(std::string("\x82\xA0\0b", 4), to_narrow(std::u16string(u"\u3042\0b", 3), 932));
}

TEST(CodePage, LongTextsConvertWhole) {
    std::u16string wide;
    for (int i = 0; i < 100'000; ++i) {
        wide += i % 3 == 0 ? u'\u3042' : u'x';
    }
    for (const unsigned number : {932U, 936U, 949U, 65001U}) {
        EXPECT_EQ(wide, to_wide(to_narrow(wide, number), number));
    }
}

TEST(CodePage, EachThreadHasItsOwnConverters) {
    std::vector<std::thread> threads;
    std::vector<int> wrong(4);
    for (std::size_t i = 0; i < wrong.size(); ++i) {
        threads.emplace_back([&wrong, i] {
            for (int run = 0; run < 20'000; ++run) {
                if (to_narrow(to_wide("\x82\xA0x\x83\x5C", 932), 932) != "\x82\xA0x\x83\x5C") ++wrong[i];
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::vector<int>(4), wrong);
}

TEST_F(SystemCodePage, Is1252AtFirst) {
    EXPECT_EQ(1252U, pm_system_code_page());
    EXPECT_EQ(u"\u20AC", to_wide("\x80"));
}

TEST_F(SystemCodePage, IsWhatTheCallerSets) {
    pm_set_system_code_page(866);
    EXPECT_EQ(866U, pm_system_code_page());
    EXPECT_EQ(u"\u0410", to_wide("\x80"));
    EXPECT_EQ("\x80", to_narrow(u"\u0410"));
    EXPECT_EQ(866U, pm::code_page(pm::default_code_page).number());
    pm_set_system_code_page(65001);
    EXPECT_EQ("\xD0\x90", to_narrow(u"\u0410"));
}

TEST_F(SystemCodePage, ZeroSets1252) {
    pm_set_system_code_page(866);
    pm_set_system_code_page(0);
    EXPECT_EQ(1252U, pm_system_code_page());
}

TEST_F(SystemCodePage, UnknownNumberIsRefusedAndTheSettingStays) {
    pm_set_system_code_page(866);
    for (const auto& [number, text] : {std::pair(1U, u"1"), std::pair(12345U, u"12345"),
                                       std::pair(65000U, u"65000"), std::pair(4294967295U, u"4294967295")}) {
        expect_thrown<PM_Error>([n = number] { pm_set_system_code_page(n); }, 78,
                                u"pm_set_system_code_page()", text);
        EXPECT_EQ(866U, pm_system_code_page());
    }
}

TEST_F(SystemCodePage, EveryToldNumberIsTaken) {
    for (const unsigned number :
         {437U,   850U,   866U,   874U,   932U,   936U,   949U,   950U,   1250U,  1251U,
          1252U,  1253U,  1254U,  1255U,  1256U,  1257U,  1258U,  28591U, 28592U, 28593U,
          28594U, 28595U, 28596U, 28597U, 28598U, 28599U, 28603U, 28605U, 65001U}) {
        pm_set_system_code_page(number);
        EXPECT_EQ(number, pm_system_code_page());
        EXPECT_EQ(number, pm::code_page(0).number());
    }
}

TEST_F(SystemCodePage, UnknownPageFallsBackToIt) {
    EXPECT_FALSE(pm::code_page_known(12345));
    EXPECT_EQ(1252U, pm::code_page(12345).number());
    pm_set_system_code_page(866);
    EXPECT_EQ(866U, pm::code_page(12345).number());
    EXPECT_EQ(u"\u0410", to_wide("\x80", 12345));
}
