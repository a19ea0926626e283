#include "store/value_text.h"

#include "platform/code_page.h"
#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <locale>
#include <memory>
#include <optional>
#include <pm/code_page.h>
#include <pm_test_paths.h>
#include <random>
#include <string>
#include <vector>

namespace {

using pm::test::expect_thrown;
using pm::test::FailingAllocation;

constexpr std::uint32_t no_memory = 55;
constexpr double infinity = std::numeric_limits<double>::infinity();

std::u16string formatted(double value) {
    char16_t buffer[pm::double_text_capacity];
    const std::size_t length = pm::format_double(value, buffer);
    EXPECT_EQ(std::u16string_view(buffer).size(), length);
    return buffer;
}

std::optional<double> parsed(std::u16string_view text) {
    double value = -77.125;
    if (pm::parse_double(text, value)) return value;
    EXPECT_EQ(-77.125, value) << "touched on failure";
    return std::nullopt;
}

std::uint64_t bits_of(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

void expect_round_trip(double value) {
    char16_t buffer[pm::double_text_capacity];
    const std::size_t length = pm::format_double(value, buffer);
    double read = 0;
    ASSERT_TRUE(pm::parse_double({buffer, length}, read)) << value;
    ASSERT_EQ(bits_of(value), bits_of(read)) << value;
}

std::string to_hex(std::string_view bytes) {
    std::string text(2 * bytes.size() + 1, '*');
    EXPECT_TRUE(pm_bin_to_hex(bytes.data(), text.data(), static_cast<int>(bytes.size())));
    EXPECT_EQ('\0', text.back());
    text.pop_back();
    return text;
}

std::string from_hex(const char* text) {
    std::string bytes(std::strlen(text) / 2 + 1, '*');
    EXPECT_TRUE(pm_hex_to_bin(text, bytes.data()));
    EXPECT_EQ('*', bytes.back()) << "a terminator was written";
    bytes.pop_back();
    return bytes;
}

// What stringtobinary() gives, or nothing if it refuses and leaves its results alone.
std::optional<std::string> disarmed(const char16_t* text) {
    char untouched = 0;
    char* block = &untouched;
    unsigned size = 77;
    const int result = stringtobinary(text, &block, &size);
    if (result == 0) {
        EXPECT_EQ(&untouched, block);
        EXPECT_EQ(77U, size);
        return std::nullopt;
    }
    EXPECT_EQ(1, result);
    const std::unique_ptr<char, decltype(&std::free)> owner(block, &std::free);
    return std::string(block, size);
}

// Armoured text by the book, with a check value worked out bit by bit.
std::u16string armoured(std::string payload) {
    unsigned crc = 0xC0C1;
    for (const char byte : payload) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xA001U : crc >> 1;
    }
    payload += static_cast<char>(crc >> 8);
    payload += static_cast<char>(crc & 0xFF);
    const std::size_t units = (payload.size() * 8 + 5) / 6;
    payload.append(3, '\0');
    std::u16string text;
    for (std::size_t unit = 0; unit < units; ++unit) {
        unsigned value = 0;
        for (std::size_t bit = unit * 6; bit < unit * 6 + 6; ++bit) {
            const auto byte = static_cast<unsigned char>(payload[bit / 8]);
            value = value << 1U | (byte >> (7 - bit % 8) & 1U);
        }
        text += static_cast<char16_t>(value + 32);
    }
    return text;
}

std::u16string with_unit(std::u16string text, std::size_t place, char16_t unit) {
    text[place] = unit;
    return text;
}

std::u16string compound(const char16_t* a, const char16_t* b) {
    ZT_String out;
    EXPECT_TRUE(build_compound_str_ex(a, b, out));
    return out.text();
}

// Sets the system's code page for one test.
class CodePageSetting {
public:
    explicit CodePageSetting(unsigned number) { pm_set_system_code_page(number); }
    ~CodePageSetting() { pm_set_system_code_page(1252); }
    CodePageSetting(const CodePageSetting&) = delete;
    CodePageSetting& operator=(const CodePageSetting&) = delete;
};

} // namespace

TEST(BinToHex, WritesTwoUppercaseDigitsAByte) {
    EXPECT_EQ("000A7F80ABFF", to_hex(std::string_view("\x00\x0A\x7F\x80\xAB\xFF", 6)));
}

TEST(BinToHex, RefusesNullsAndNoBytes) {
    const char data[1] = {'x'};
    char out[3] = {'*', '*', '*'};
    EXPECT_FALSE(pm_bin_to_hex(nullptr, out, 1));
    EXPECT_FALSE(pm_bin_to_hex(data, nullptr, 1));
    EXPECT_FALSE(pm_bin_to_hex(data, out, 0));
    EXPECT_FALSE(pm_bin_to_hex(data, out, -1));
    EXPECT_EQ('*', out[0]);
}

TEST(HexToBin, ReadsUppercaseDigits) {
    EXPECT_EQ(std::string("\x00\x0A\x7F\x80\xAB\xFF", 6), from_hex("000A7F80ABFF"));
}

TEST(HexToBin, RefusesNullsEmptyAndOddTexts) {
    char out[4] = {'*', '*', '*', '*'};
    EXPECT_FALSE(pm_hex_to_bin(nullptr, out));
    EXPECT_FALSE(pm_hex_to_bin("00", nullptr));
    EXPECT_FALSE(pm_hex_to_bin("", out));
    EXPECT_FALSE(pm_hex_to_bin("0", out));
    EXPECT_FALSE(pm_hex_to_bin("000", out));
    EXPECT_EQ('*', out[0]);
}

TEST(HexToBin, LowercaseLetterIsWrongInSecondPlaceOnly) {
    EXPECT_EQ("\x2A", from_hex("0a"));
    EXPECT_EQ("\xA0", from_hex("a0"));
}

TEST(HexToBin, TakesAnyCharacter) {
    EXPECT_EQ(std::string(1, '\0'), from_hex(" 0"));                            // 16 * (32 - 48)
    EXPECT_EQ("\xF0", from_hex("0 "));                                          // 32 - 48
    EXPECT_EQ("\x03", from_hex("0:"));                                          // 58 - 55
    EXPECT_EQ(std::string(1, static_cast<char>(0xC8 - 48)), from_hex("0\xC8")); // a negative code
}

TEST(HexToBin, InvertsBinToHexForEveryByte) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    EXPECT_EQ(bytes, from_hex(to_hex(bytes).c_str()));
}

TEST(StringToBinary, DecodesTheDoubleOfAFile) {
    const double third = 1.0 / 3.0;
    EXPECT_EQ(std::string(std::bit_cast<std::array<char, 8>>(third).data(), 8), disarmed(u"55555555U3_#T@"));
}

TEST(StringToBinary, DecodesPayloadsOfEachLength) {
    std::mt19937 random(4);
    for (std::size_t size = 0; size < 200; ++size) {
        std::string payload;
        for (std::size_t i = 0; i < size; ++i)
            payload += static_cast<char>(random());
        EXPECT_EQ(payload, disarmed(armoured(payload).c_str())) << size;
    }
}

TEST(StringToBinary, CheckValueAloneIsAnEmptyPayload) {
    EXPECT_EQ(u"P,$", armoured(""));
    EXPECT_EQ("", disarmed(u"P,$"));
}

TEST(StringToBinary, RefusesTextsOfNoPossibleLength) {
    EXPECT_FALSE(disarmed(nullptr));
    EXPECT_FALSE(disarmed(u""));
    EXPECT_FALSE(disarmed(u"P"));
    EXPECT_FALSE(disarmed(u"P,"));
    for (std::size_t size = 5; size < 40; size += 4) {
        EXPECT_FALSE(disarmed(std::u16string(size, u' ').c_str())) << size;
    }
}

TEST(StringToBinary, RefusesAUnitOutsideTheRangeAnywhere) {
    for (const std::size_t size : {std::size_t{8}, std::size_t{9}, std::size_t{10}}) {
        const std::u16string good = armoured(std::string(size, 'x'));
        ASSERT_TRUE(disarmed(good.c_str()));
        for (std::size_t place = 0; place < good.size(); ++place) {
            for (const char16_t unit : {u'\x1F', u'\x60', u'\x7F', u'\x0155', u'\xFF30'}) {
                EXPECT_FALSE(disarmed(with_unit(good, place, unit).c_str())) << place;
            }
        }
    }
}

TEST(StringToBinary, RefusesEveryChangeOfAPayloadBit) {
    const std::u16string good = u"55555555U3_#T@";
    for (std::size_t place = 0; place + 1 < good.size(); ++place) {
        for (unsigned bit = 1; bit < 64; bit <<= 1U) {
            const auto changed = static_cast<char16_t>(((good[place] - 32U) ^ bit) + 32U);
            EXPECT_FALSE(disarmed(with_unit(good, place, changed).c_str())) << place << ' ' << bit;
        }
    }
}

TEST(StringToBinary, IgnoresTheBitsBehindTheCheckValue) {
    const auto expected = disarmed(u"55555555U3_#T@");
    ASSERT_TRUE(expected);
    for (char16_t last = u'@'; last < u'P'; ++last) {
        EXPECT_EQ(expected, disarmed(with_unit(u"55555555U3_#T@", 13, last).c_str()));
    }
    EXPECT_FALSE(disarmed(u"55555555U3_#TP"));
}

TEST(StringToBinary, GivesZeroWithoutMemory) {
    const FailingAllocation failing(0);
    EXPECT_FALSE(disarmed(u"55555555U3_#T@"));
    EXPECT_TRUE(FailingAllocation::was_hit());
}

TEST(FormatDouble, WritesAtMostFourDecimalsShort) {
    EXPECT_EQ(u"0.0", formatted(0));
    EXPECT_EQ(u"5.0", formatted(5));
    EXPECT_EQ(u"2.5", formatted(2.5));
    EXPECT_EQ(u"2.0005", formatted(2.0005));
    EXPECT_EQ(u"-0.25", formatted(-0.25));
    EXPECT_EQ(u"0.1", formatted(0.1));
    EXPECT_EQ(u"0.0001", formatted(0.0001));
    EXPECT_EQ(u"0.05", formatted(0.05));
    EXPECT_EQ(u"1.004", formatted(1.004));
    EXPECT_EQ(u"10.2", formatted(10.2));
    EXPECT_EQ(u"-1234.5678", formatted(-1234.5678));
}

TEST(FormatDouble, DecimalsWhoseProductIsNotWholeTakeTheExactForm) {
    ASSERT_NE(10010.0, 1.001 * 10000.0);
    EXPECT_EQ(u"1.0010000000 (", formatted(1.001).substr(0, 14));
    EXPECT_EQ(1.001, parsed(u"1.001"));
    EXPECT_EQ(1.001, parsed(formatted(1.001)));
}

TEST(FormatDouble, NegativeZeroHasNoSign) {
    EXPECT_EQ(u"0.0", formatted(-0.0));
}

TEST(FormatDouble, ShortFormEndsAtTheLimitOfAnInteger) {
    EXPECT_EQ(u"214748.3647", formatted(214748.3647));
    EXPECT_EQ(u"-214748.3647", formatted(-214748.3647));
    EXPECT_EQ(u"214748.36480 (", formatted(214748.3648).substr(0, 14));
    EXPECT_EQ(u"-214748.36480 (", formatted(-214748.3648).substr(0, 15));
    EXPECT_EQ(u"214749.00000 (", formatted(214749).substr(0, 14));
}

TEST(FormatDouble, WritesTheExactBitsOfOtherNumbers) {
    EXPECT_EQ(u"0.33333333333 (55555555U3_#T@)", formatted(1.0 / 3.0));
    EXPECT_EQ(u"0.61803398875 (4.DO-^_&XS_P7P)", formatted((std::sqrt(5.0) - 1) / 2));
    EXPECT_EQ(u"1.0002441000 (<448]?\\ \\#]U9 )", formatted(1.0002441));
    EXPECT_EQ(u"1.0000000000e-09 (E=8FZ LN$3ZR^P)", formatted(1e-9));
    EXPECT_EQ(u"123456789.50 (    5C1OG4$1TP)", formatted(123456789.5));
}

TEST(FormatDouble, ReproducesTheNumbersOfASampleFile) {
    const std::u16string file = pm::to_wide(pm::test::TempFolder::read_file(PM_SAMPLES "/plotter.pia"));
    int found = 0;
    for (std::size_t open = file.find(u" ("); open != file.npos; open = file.find(u" (", open + 1)) {
        const std::size_t start = file.rfind(u'=', open) + 1;
        const std::u16string text = file.substr(start, open + 17 - start);
        if (text.back() != u')' || text.find(u'\n') != text.npos) continue;
        const std::optional<double> value = parsed(text);
        ASSERT_TRUE(value);
        EXPECT_EQ(text, formatted(*value));
        ++found;
    }
    EXPECT_EQ(5, found);
}

TEST(FormatDouble, RoundingUpToAPowerOfTenKeepsElevenDigits) {
    EXPECT_EQ(u"0.0010000000000 (", formatted(0.0009999999999999).substr(0, 17));
    EXPECT_EQ(u"1.0000000000 (", formatted(0.9999999999999).substr(0, 14));
    EXPECT_EQ(u"100000.00000 (", formatted(99999.9999999).substr(0, 14));
}

TEST(FormatDouble, ADigitBehindTheEleventhThatIsExactlyAHalfRoundsToEven) {
    EXPECT_EQ(u"12345678.062 (", formatted(12345678.0625).substr(0, 14));
    EXPECT_EQ(u"12345678.188 (", formatted(12345678.1875).substr(0, 14));
}

TEST(FormatDouble, KeepsTheSignInTheExactForm) {
    const std::u16string text = formatted(-1.0 / 3.0);
    EXPECT_EQ(u"-0.33333333333 (55555555U;", text.substr(0, 26));
    EXPECT_EQ(bits_of(-1.0 / 3.0), bits_of(parsed(text).value()));
}

TEST(FormatDouble, HugeNumberTakesTheExactForm) {
    EXPECT_EQ(u"1.0000000000e+300 (", formatted(1e300).substr(0, 19));
    EXPECT_EQ(u"1.7976931349e+308 (", formatted(std::numeric_limits<double>::max()).substr(0, 19));
    EXPECT_EQ(u"4.9406564584e-324 (", formatted(std::numeric_limits<double>::denorm_min()).substr(0, 19));
}

TEST(FormatDouble, InfinityAndNoNumberTakeTheExactForm) {
    EXPECT_EQ(u"inf (", formatted(infinity).substr(0, 5));
    EXPECT_EQ(u"-inf (", formatted(-infinity).substr(0, 6));
    EXPECT_EQ(u"nan (", formatted(std::numeric_limits<double>::quiet_NaN()).substr(0, 5));
}

TEST(FormatDouble, LeavesTheBitsOutWithoutMemory) {
    const FailingAllocation failing(0);
    EXPECT_EQ(u"0.33333333333", formatted(1.0 / 3.0));
    EXPECT_TRUE(FailingAllocation::was_hit());
}

TEST(FormatDouble, ShortFormAllocatesNothing) {
    const FailingAllocation failing(0);
    EXPECT_EQ(u"2.5", formatted(2.5));
    EXPECT_FALSE(FailingAllocation::was_hit());
}

TEST(ParseDouble, ReadsTheExactForm) {
    EXPECT_EQ(1.0 / 3.0, parsed(u"0.33333333333 (55555555U3_#T@)"));
    EXPECT_EQ(1e-9, parsed(u"1.0000000000e-09 (E=8FZ LN$3ZR^P)"));
    EXPECT_EQ(123456789.5, parsed(u"123456789.50 (    5C1OG4$1TP)"));
}

TEST(ParseDouble, EditedVisibleNumberVoidsTheExactBits) {
    EXPECT_EQ(0.33333333334, parsed(u"0.33333333334 (55555555U3_#T@)"));
    EXPECT_EQ(1.33333333333, parsed(u"1.33333333333 (55555555U3_#T@)"));
    EXPECT_EQ(-0.33333333333, parsed(u"-0.33333333333 (55555555U3_#T@)"));
    EXPECT_EQ(0.5, parsed(u"0.5 (55555555U3_#T@)"));
    EXPECT_EQ(5.0, parsed(u"5 (55555555U3_#T@)"));
    EXPECT_EQ(0.33333333333, parsed(u" 0.33333333333 (55555555U3_#T@)"));
    EXPECT_EQ(0.33333333333, parsed(u"0.333333333330 (55555555U3_#T@)"));
}

TEST(ParseDouble, EditOfEachVisibleDigitCounts) {
    const std::u16string text = u"0.33333333333 (55555555U3_#T@)";
    for (std::size_t place = 2; place < 13; ++place) {
        const std::optional<double> value = parsed(with_unit(text, place, u'7'));
        ASSERT_TRUE(value);
        EXPECT_NEAR(1.0 / 3.0 + 4 * std::pow(10.0, 1 - static_cast<int>(place)), *value, 1e-11);
    }
}

TEST(ParseDouble, EditThatIsNoNumberIsRefused) {
    EXPECT_FALSE(parsed(u"0.3333x (55555555U3_#T@)"));
    EXPECT_FALSE(parsed(u"third (55555555U3_#T@)"));
    EXPECT_FALSE(parsed(u"0.33333333333  (55555555U3_#T@)"));
    EXPECT_FALSE(parsed(u"0.5 1 (55555555U3_#T@)"));
    EXPECT_FALSE(parsed(u" (55555555U3_#T@)"));
    EXPECT_FALSE(parsed(u"(55555555U3_#T@)"));
    EXPECT_FALSE(parsed(u"  (55555555U3_#T@)"));
    EXPECT_FALSE(parsed(u"1e (55555555U3_#T@)"));
}

TEST(ParseDouble, BrokenArmourLeavesTheVisibleNumber) {
    EXPECT_EQ(0.33333333333, parsed(u"0.33333333333 (55555555U3_#S@)"));
    EXPECT_EQ(0.33333333333, parsed(u"0.33333333333 (45555555U3_#T@)"));
    EXPECT_EQ(0.33333333333, parsed(u"0.33333333333 (5555555aU3_#T@)"));
    EXPECT_EQ(0.33333333333, parsed(u"0.33333333333 (              )"));
    EXPECT_EQ(0.33333333333, parsed(std::u16string_view(u"0.33333333333 (55555555\0\0\0\0\0\0)", 30)));
}

TEST(ParseDouble, ExactFormNeedsItsExactShape) {
    EXPECT_FALSE(parsed(u"0.33333333333(55555555U3_#T@)"));   // no blank
    EXPECT_FALSE(parsed(u"0.33333333333\t(55555555U3_#T@)")); // another space
    EXPECT_FALSE(parsed(u"0.33333333333 (55555555U3_#T@) ")); // something behind
    EXPECT_FALSE(parsed(u"0.33333333333 (55555555U3_#T@"));   // not closed
    EXPECT_FALSE(parsed(u"0.33333333333 (55555555U3_#T)"));   // 13 units
    EXPECT_FALSE(parsed(u"0.33333333333 (55555555U3_#T@ )")); // 15 units
    EXPECT_FALSE(parsed(u"0.33333333333 [55555555U3_#T@)"));
}

TEST(ParseDouble, ParenthesisInsideTheArmourIsNoSeparator) {
    std::mt19937_64 random(9);
    int found = 0;
    while (found < 1000) {
        const auto value = std::bit_cast<double>(random());
        const std::u16string text = formatted(value);
        if (text.find(u'(') == text.rfind(u'(')) continue;
        expect_round_trip(value);
        ++found;
    }
}

TEST(ParseDouble, WithoutMemoryTheVisibleNumberCounts) {
    const FailingAllocation failing(0);
    EXPECT_EQ(0.33333333333, parsed(u"0.33333333333 (55555555U3_#T@)"));
    EXPECT_TRUE(FailingAllocation::was_hit());
}

TEST(ParseDouble, ReadsShortDecimals) {
    EXPECT_EQ(2.5, parsed(u"2.5"));
    EXPECT_EQ(-0.25, parsed(u"-0.25"));
    EXPECT_EQ(2.0005, parsed(u"2.0005"));
    EXPECT_EQ(0.125, parsed(u".125"));
    EXPECT_EQ(-0.5, parsed(u"-.5"));
    EXPECT_EQ(214748.3647, parsed(u"214748.3647"));
    EXPECT_EQ(-214748.3647, parsed(u"-214748.3647"));
    EXPECT_EQ(1.0, parsed(u"1"));
    EXPECT_EQ(-123456.0, parsed(u"-123456"));
}

TEST(ParseDouble, NumbersOutsideTheShortFormAreScanned) {
    EXPECT_EQ(5.0, parsed(u"5.0"));
    EXPECT_EQ(5.0, parsed(u"5."));
    EXPECT_EQ(1.5, parsed(u"1.50"));
    EXPECT_EQ(0.0, parsed(u"0"));
    EXPECT_EQ(7.0, parsed(u"007"));
    EXPECT_EQ(1234567.0, parsed(u"1234567"));
    EXPECT_EQ(214748.3648, parsed(u"214748.3648"));
    EXPECT_EQ(9999999.5, parsed(u"9999999.5"));
    EXPECT_EQ(1.00005, parsed(u"1.00005"));
    EXPECT_EQ(99999999999999999999.0, parsed(u"99999999999999999999"));
    EXPECT_EQ(1e10, parsed(u"1e10"));
    EXPECT_EQ(-1.5e-3, parsed(u"-1.5E-03"));
    EXPECT_EQ(2.5, parsed(u"+2.5"));
    EXPECT_EQ(2.5, parsed(u" 2.5"));
    EXPECT_EQ(2.5, parsed(u"\t\r\n2.5"));
    EXPECT_EQ(infinity, parsed(u"1e400"));
    EXPECT_EQ(0.0, parsed(u"1e-400"));
}

TEST(ParseDouble, NegativeZeroKeepsItsSign) {
    EXPECT_EQ(bits_of(-0.0), bits_of(parsed(u"-0.0").value()));
    EXPECT_EQ(bits_of(-0.0), bits_of(parsed(u"-0").value()));
    EXPECT_EQ(bits_of(0.0), bits_of(parsed(u"0.0").value()));
}

TEST(ParseDouble, WhatIsNotAllNumberIsRefused) {
    for (const char16_t* text :
         {u"",      u" ",   u"-",  u"+",  u".",   u"-.",  u"--5",   u"+-5", u"5 ",     u"5.0 ",    u"5x",
          u"1.2.3", u"1,5", u"e5", u"1e", u"1e+", u"abc", u"5 (x)", u"0x",  u"\u0665", u"5\u0665", u"- 5"}) {
        EXPECT_FALSE(parsed(text));
    }
    EXPECT_FALSE(parsed(std::u16string_view(u"5\0", 2)));
    EXPECT_FALSE(parsed(std::u16string_view(u"\0", 1)));
}

TEST(ParseDouble, OnlyDecimalFormsAreNumbers) {
    for (const char16_t* text : {u"inf", u"-inf", u"INFINITY", u"nan", u"nan(1)", u"0x10", u"0X1.8p3",
                                 u"0x.8", u"1.0x3", u"0x1 (55555555U3_#T@)"}) {
        EXPECT_FALSE(parsed(text));
    }
}

TEST(ParseDouble, ShortNumbersReadAsAGeneralScanReadsThem) {
    std::mt19937 random(5);
    constexpr std::string_view units = "0123456789.-";
    for (int run = 0; run < 300'000; ++run) {
        std::string text;
        for (std::size_t i = random() % 12 + 1; i > 0; --i)
            text += units[random() % units.size()];
        char* end = nullptr;
        const double scanned = std::strtod(text.c_str(), &end);
        const std::optional<double> value = parsed(pm::to_wide(text));
        ASSERT_EQ(*end == '\0' && end != text.c_str(), value.has_value()) << text;
        if (value) {
            ASSERT_EQ(bits_of(scanned), bits_of(*value)) << text;
        }
    }
}

TEST(DoubleText, NumbersOfFourDecimalsComeBackFromTheShortForm) {
    std::mt19937 random(1);
    for (int run = 0; run < 1'000'000; ++run) {
        const auto scaled = static_cast<std::int32_t>(random());
        const double value = scaled / 10000.0;
        char16_t buffer[pm::double_text_capacity];
        const std::u16string_view text(buffer, pm::format_double(value, buffer));
        const bool whole = std::abs(value) * 10000.0 == std::abs(static_cast<double>(scaled));
        ASSERT_EQ(whole, text.size() <= 12) << scaled;
        double read = 0;
        ASSERT_TRUE(pm::parse_double(text, read));
        ASSERT_EQ(bits_of(value), bits_of(read)) << scaled;
    }
}

TEST(DoubleText, AnyBitsComeBack) {
    std::mt19937_64 random(2);
    for (int run = 0; run < 1'000'000; ++run)
        expect_round_trip(std::bit_cast<double>(random()));
}

TEST(DoubleText, NumbersOfOrdinarySizeComeBack) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> size(-1e6, 1e6);
    for (int run = 0; run < 500'000; ++run)
        expect_round_trip(size(random));
}

TEST(DoubleText, DenormalsComeBack) {
    std::mt19937_64 random(6);
    for (int run = 0; run < 200'000; ++run)
        expect_round_trip(std::bit_cast<double>(random() >> (12 + run % 52)));
    expect_round_trip(std::numeric_limits<double>::denorm_min());
    expect_round_trip(-std::numeric_limits<double>::denorm_min());
}

TEST(DoubleText, EndsOfTheRangeComeBack) {
    for (const double value :
         {std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
          std::numeric_limits<double>::min(), std::numeric_limits<double>::epsilon(), infinity, -infinity,
          std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN(),
          std::bit_cast<double>(0x7FF8000000001234U), 99999999999.5, 1e15, 1e16, 1e17}) {
        expect_round_trip(value);
    }
}

TEST(DoubleText, NegativeZeroComesBackAsZero) {
    EXPECT_EQ(bits_of(0.0), bits_of(parsed(formatted(-0.0)).value()));
}

TEST(DoubleText, LocaleOfTheProcessChangesNothing) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_EQ(u"1234.5", formatted(1234.5));
    EXPECT_EQ(u"123456789.50 (    5C1OG4$1TP)", formatted(123456789.5));
    EXPECT_EQ(1234.56789, parsed(u"1234.56789"));
    EXPECT_FALSE(parsed(u"1234,5"));
    std::locale::global(before);
}

TEST(CompoundString, PacksTheStringsWithTheirTerminatorsAndOneMore) {
    EXPECT_EQ(u"414243005A0000", compound(u"ABC", u"Z"));
    EXPECT_EQ(u"000000", compound(u"", u""));
    EXPECT_EQ(u"00410000", compound(u"", u"A"));
    EXPECT_EQ(u"41000000", compound(u"A", u""));
}

TEST(CompoundString, PacksListsOfAnyLength) {
    ZT_String out;
    const char* list[] = {"a", "", "bc"};
    EXPECT_TRUE(drc_compound_str_from_list(list, 3, out));
    EXPECT_EQ(std::u16string(u"61000062630000"), out.text());
    EXPECT_TRUE(drc_compound_str_from_list(list, 1, out));
    EXPECT_EQ(std::u16string(u"610000"), out.text());
    EXPECT_TRUE(drc_compound_str_from_list(list, 0, out));
    EXPECT_EQ(std::u16string(u"00"), out.text());
    EXPECT_TRUE(drc_compound_str_from_list(nullptr, 0, out));
    EXPECT_EQ(std::u16string(u"00"), out.text());
    EXPECT_TRUE(drc_compound_str_from_list(list, -1, out));
    EXPECT_EQ(std::u16string(u"00"), out.text());
}

TEST(CompoundString, NullStringIsRefused) {
    ZT_String out(u"old");
    const char* list[] = {"a", nullptr};
    expect_thrown<PM_Memory_Exception>([&] { drc_compound_str_from_list(list, 2, out); }, no_memory,
                                       u".\\pmobj", u"strlist[idx]");
    expect_thrown<PM_Memory_Exception>([&] { drc_compound_str_from_list(nullptr, 2, out); }, no_memory,
                                       u".\\pmobj", u"strlist[idx]");
    expect_thrown<PM_Memory_Exception>([&] { build_compound_str_ex(nullptr, u"b", out); }, no_memory,
                                       u".\\pmobj", u"strlist[idx]");
    expect_thrown<PM_Memory_Exception>([&] { build_compound_str_ex(u"a", nullptr, out); }, no_memory,
                                       u".\\pmobj", u"strlist[idx]");
    EXPECT_EQ(std::u16string(u"old"), out.text());
}

TEST(CompoundString, ThrowsWithTheMarkerOfItsUnit) {
    ZT_String out;
    const auto e = pm::test::thrown_by([&] { build_compound_str_ex(nullptr, nullptr, out); });
    ASSERT_TRUE(e);
    EXPECT_EQ(std::u16string(u"$Workfile: pmobj $ $Revision: #1 $"), e->m_source);
    EXPECT_EQ(4, PM_Memory_Exception(u"", u"", u"").kind());
}

TEST(CompoundString, StringsAreInTheSystemCodePage) {
    EXPECT_EQ(u"80E400E93F0000", compound(u"\u20AC\u00E4", u"\u00E9\u4E00"));
    const CodePageSetting utf8(65001);
    EXPECT_EQ(u"E282AC00E4B8800000", compound(u"\u20AC", u"\u4E00"));
}

TEST(CompoundString, ComesApartAgain) {
    ZT_String a;
    ZT_String b;
    EXPECT_TRUE(extract_compound_str_ex(compound(u"first \u20AC", u"second").c_str(), a, b));
    EXPECT_EQ(std::u16string(u"first \u20AC"), a.text());
    EXPECT_EQ(std::u16string(u"second"), b.text());
}

TEST(CompoundString, EmptyFirstStringEndsTheExtraction) {
    ZT_String a(u"old a");
    ZT_String b(u"old b");
    EXPECT_FALSE(extract_compound_str_ex(compound(u"", u"").c_str(), a, b));
    EXPECT_FALSE(extract_compound_str_ex(compound(u"", u"x").c_str(), a, b));
    EXPECT_EQ(std::u16string(u"old a"), a.text());
    EXPECT_EQ(std::u16string(u"old b"), b.text());
}

TEST(CompoundString, EmptySecondStringLeavesTheFirstSet) {
    ZT_String a(u"old a");
    ZT_String b(u"old b");
    EXPECT_FALSE(extract_compound_str_ex(compound(u"x", u"").c_str(), a, b));
    EXPECT_EQ(std::u16string(u"x"), a.text());
    EXPECT_EQ(std::u16string(u"old b"), b.text());
}

TEST(CompoundString, CutTextIsReadToItsEnd) {
    ZT_String a;
    ZT_String b;
    EXPECT_FALSE(extract_compound_str_ex(u"4142", a, b));
    EXPECT_EQ(std::u16string(u"AB"), a.text());
    EXPECT_EQ(-1, b.length());
    EXPECT_TRUE(extract_compound_str_ex(u"41004243", a, b));
    EXPECT_EQ(std::u16string(u"A"), a.text());
    EXPECT_EQ(std::u16string(u"BC"), b.text());
}

TEST(CompoundString, WhatLiesBehindTheSecondStringIsIgnored) {
    ZT_String a;
    ZT_String b;
    EXPECT_TRUE(extract_compound_str_ex(u"41004200430000", a, b));
    EXPECT_EQ(std::u16string(u"A"), a.text());
    EXPECT_EQ(std::u16string(u"B"), b.text());
}

TEST(CompoundString, EmptyOrOddTextIsNoCompound) {
    ZT_String a(u"old");
    ZT_String b;
    EXPECT_FALSE(extract_compound_str_ex(u"", a, b));
    EXPECT_FALSE(extract_compound_str_ex(u"410", a, b));
    EXPECT_EQ(std::u16string(u"old"), a.text());
}

TEST(CompoundString, NullTextIsRefused) {
    ZT_String a;
    ZT_String b;
    expect_thrown<PM_Memory_Exception>([&] { extract_compound_str_ex(nullptr, a, b); }, no_memory,
                                       u".\\pmobj", u"input");
}

TEST(CompoundString, TargetMayHoldTheText) {
    ZT_String a(u"41004200");
    ZT_String b;
    EXPECT_TRUE(extract_compound_str_ex(a.text(), a, b));
    EXPECT_EQ(std::u16string(u"A"), a.text());
    EXPECT_EQ(std::u16string(u"B"), b.text());
}

TEST(CompoundString, EachFailingAllocationOfABuildIsTold) {
    const std::u16string expected[] = {u"strlist[idx]", u"strlist[idx]", u"compound_str", u"c_str"};
    const int failures = pm::test::fail_each_allocation([&](int place) {
        ZT_String out(u"old");
        if (place == 4) {
            EXPECT_TRUE(build_compound_str_ex(u"a", u"b", out));
            return;
        }
        expect_thrown<PM_Memory_Exception>([&] { build_compound_str_ex(u"a", u"b", out); }, no_memory,
                                           u".\\pmobj", expected[place]);
        EXPECT_EQ(std::u16string(u"old"), out.text());
    });
    EXPECT_EQ(4, failures);
}

TEST(CompoundString, EachFailingAllocationOfAnExtractionIsTold) {
    const std::u16string expected[] = {u"input", u"compound_str"};
    const int failures = pm::test::fail_each_allocation([&](int place) {
        ZT_String a;
        ZT_String b;
        if (place == 2) {
            EXPECT_TRUE(extract_compound_str_ex(u"41004200", a, b));
            return;
        }
        expect_thrown<PM_Memory_Exception>([&] { extract_compound_str_ex(u"41004200", a, b); }, no_memory,
                                           u".\\pmobj", expected[place]);
    });
    EXPECT_EQ(2, failures);
}
