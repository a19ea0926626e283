#include "platform/code_page.h"

#include "platform/code_page_bytes.h"
#include "support/exceptions.h"
#include <bitset>
#include <gtest/gtest.h>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <set>
#include <span>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using pm::to_narrow;
using pm::to_wide;
using pm::test::character_lengths;
using pm::test::every_byte;
using pm::test::expect_thrown;

constexpr unsigned single_byte_pages[] = {
    437,   720,   737,   775,   850,   852,   855,   857,   858,   860,   861,   862,   863,  864,
    865,   866,   869,   874,   1250,  1251,  1252,  1253,  1254,  1255,  1256,  1257,  1258, 20127,
    20866, 21866, 28591, 28592, 28593, 28594, 28595, 28596, 28597, 28598, 28599, 28603, 28605};
constexpr unsigned multi_byte_pages[] = {932, 936, 949, 950, 65001};

class SystemCodePage : public testing::Test {
protected:
    ~SystemCodePage() override { pm_set_system_code_page(1252); }
};

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

TEST(SingleBytePage, EveryByteHasAUnitOfItsOwnAndComesBack) {
    for (const unsigned number : single_byte_pages) {
        const std::u16string wide = to_wide(every_byte(0, 0xFF), number);
        EXPECT_EQ(256U, std::set<char16_t>(wide.begin(), wide.end()).size()) << number;
        EXPECT_EQ(std::u16string::npos, wide.find(u'\uFFFD')) << number;
        EXPECT_EQ(every_byte(0, 0xFF), to_narrow(wide, number)) << number;
    }
}

TEST(SingleBytePage, UnitsOfOtherCharactersAreNotFittedIn) {
    for (const unsigned number : single_byte_pages) {
        std::u16string foreign;
        const std::u16string own = to_wide(every_byte(0, 0xFF), number);
        std::bitset<0x10000> is_own;
        for (const char16_t unit : own) {
            is_own[unit] = true;
        }
        for (unsigned unit = 0x80; unit <= 0xFFFF; ++unit) {
            if (!is_own[unit]) foreign += static_cast<char16_t>(unit);
        }
        EXPECT_TRUE(std::string(foreign.size(), '?') == to_narrow(foreign, number)) << number;
    }
    EXPECT_EQ("???", to_narrow(u"\u0100\uFF21\u2032", 1252)) << "a letter with macron, a wide one, a prime";
}

TEST(SingleBytePage, MicroSignAndOthersAreThoseOfWindows) {
    for (const unsigned number : {437U, 860U, 861U, 862U, 863U, 865U}) {
        EXPECT_EQ(u"\u00B5", to_wide("\xE6", number)) << number;
        EXPECT_EQ("\xE6?", to_narrow(u"\u00B5\u03BC", number)) << number;
    }
    EXPECT_EQ(u"\u00AC", to_wide("\xAA", 852));
    EXPECT_EQ(u"\uFEC1\uFEC5\u0651", to_wide("\xD7\xD8\xF1", 864));
    EXPECT_EQ(u"\u00B7\u0384", to_wide("\x88\xEF", 869));
}

TEST(SingleBytePage, UndefinedBytesAreTheUnitsThatWindowsHasForThem) {
    EXPECT_EQ(u"\uF8BB\uF8BC\uF8BD", to_wide("\xD5\xE7\xF2", 857));
    EXPECT_EQ(u"\u009F\uF8BE\uF8BF\uF8C0", to_wide("\x9F\xA6\xA7\xFF", 864));
    EXPECT_EQ(u"\uF8C1\uF8C4\uF8C5\uF8C8", to_wide("\xDB\xDE\xFC\xFF", 874));
    EXPECT_EQ(u"\uF8F9\uF8FA\uF8FB", to_wide("\xAA\xD2\xFF", 1253));
    EXPECT_EQ(u"\u05BA\uF88D\uF893\uF894\uF895\uF896", to_wide("\xCA\xD9\xDF\xFB\xFC\xFF", 1255));
    EXPECT_EQ(u"\uF8FC\uF8FD", to_wide("\xA1\xA5", 1257));
    EXPECT_EQ(u"\uF7F5\uF7F6\uF7F7\uF7F8\uF7F9\uF7FA\uF7FB", to_wide("\xA5\xAE\xBE\xC3\xD0\xE3\xF0", 28593));
    EXPECT_EQ(u"\uF7C8\uF7CA\uF7CB\uF7E2\uF7E8\uF7F4", to_wide("\xA1\xA3\xA5\xC0\xF3\xFF", 28596));
    EXPECT_EQ(u"\uF7C5\uF7C6\uF7C7", to_wide("\xAE\xD2\xFF", 28597));
    EXPECT_EQ(u"\uF79C\uF79D\uF7BC\uF7BD\uF7BE\uF7C1", to_wide("\xA1\xBF\xDE\xFB\xFC\xFF", 28598));
}

TEST(SingleBytePage, ByteWhoseUnitIsKnownNowhereIsMarkedByItsValue) {
    EXPECT_EQ(u"\u0080\u009F\uF7A0\uF7FF", to_wide("\x80\x9F\xA0\xFF", 20127));
    EXPECT_EQ("\x80\x9F\xA0\xFF?", to_narrow(u"\u0080\u009F\uF7A0\uF7FF\u00E4", 20127));
}

TEST(SingleBytePage, EachCharacterIsOneByte) {
    for (const unsigned number : single_byte_pages) {
        EXPECT_EQ("1111", character_lengths(number, "a\x81\xE4z")) << number;
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

TEST(CodePage1253, DecodesAndEncodes) {
    EXPECT_EQ(u"\u0081\u0088\u009F", to_wide("\x81\x88\x9F", 1253));
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

TEST(CodePage, ThreadsConvertAtOnce) {
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

TEST_F(SystemCodePage, UnknownNumberIsRefusedAndTheSettingStays) {
    pm_set_system_code_page(866);
    for (const auto& [number, text] : {std::pair(1U, u"1"), std::pair(12345U, u"12345"),
                                       std::pair(65000U, u"65000"), std::pair(4294967295U, u"4294967295")}) {
        expect_thrown<PM_Error>([n = number] { pm_set_system_code_page(n); }, PM_ERR_INVALID_ARGUMENT,
                                u"pm_set_system_code_page()", text);
        EXPECT_EQ(866U, pm_system_code_page());
    }
}

TEST_F(SystemCodePage, ThreadMayHaveAnotherOfItsOwn) {
    pm_set_system_code_page(866);
    EXPECT_EQ(0U, pm_set_thread_code_page(65001));
    EXPECT_EQ(65001U, pm_system_code_page());
    EXPECT_EQ("\xD0\x90", to_narrow(u"\u0410"));
    std::thread([] { EXPECT_EQ("\x80", to_narrow(u"\u0410")); }).join();
    pm_set_system_code_page(1251);
    EXPECT_EQ(65001U, pm_system_code_page());
    EXPECT_EQ(65001U, pm_set_thread_code_page(437));
    EXPECT_EQ(437U, pm_set_thread_code_page(0));
    EXPECT_EQ(1251U, pm_system_code_page());
}

TEST_F(SystemCodePage, UnknownNumberForAThreadIsRefusedAndTheSettingStays) {
    (void)pm_set_thread_code_page(866);
    expect_thrown<PM_Error>([] { (void)pm_set_thread_code_page(12345); }, PM_ERR_INVALID_ARGUMENT,
                            u"pm_set_thread_code_page()", u"12345");
    EXPECT_EQ(866U, pm_set_thread_code_page(0));
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
