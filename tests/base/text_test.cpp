#include "base/text.h"

#include "support/system.h"
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();

std::u16string wide(std::string_view ascii) {
    return {ascii.begin(), ascii.end()};
}

std::uint64_t bits_of(double value) {
    return std::bit_cast<std::uint64_t>(value);
}

// Expects what the C library's strtod makes of the text.
void expect_scanned_as_strtod(const std::string& text) {
    char* end = nullptr;
    const double expected = pm::test::c_number(text.c_str(), &end);
    const pm::ScannedDouble scanned = pm::scan_double_at(wide(text));
    ASSERT_EQ(static_cast<std::size_t>(end - text.c_str()), scanned.length) << text;
    ASSERT_EQ(std::isnan(expected), std::isnan(scanned.value)) << text;
    ASSERT_EQ(std::signbit(expected), std::signbit(scanned.value)) << text;
    if (!std::isnan(expected)) {
        ASSERT_EQ(bits_of(expected), bits_of(scanned.value)) << text;
    }
}

std::string printed(const char* format, int precision, double value) {
    std::array<char, 2048> text{};
    std::snprintf(text.data(), text.size(), format, precision, value);
    return std::isnan(value) ? pm::test::c_nan_text(value) : text.data();
}

// All digits of a number that is told in hexadecimal ones.
std::string exact_text(const char* hexadecimal) {
    std::array<char, 1200> text{};
    std::snprintf(text.data(), text.size(), "%.1150Lf", std::strtold(hexadecimal, nullptr));
    return text.data();
}

// "%#.*g" by its definition: some C libraries drop zeros of a number that rounds up to a power of ten.
std::string printed_significant(int digits, double value) {
    if (!std::isfinite(value)) return printed("%.*g", digits, value);
    const std::string scientific = printed("%.*e", digits - 1, value);
    const int exponent = std::atoi(scientific.c_str() + scientific.find('e') + 1);
    if (exponent < -4 || exponent >= digits) return printed("%#.*e", digits - 1, value);
    return printed("%#.*f", digits - 1 - exponent, value);
}

} // namespace

TEST(View, NullIsEmpty) {
    EXPECT_EQ(u"", pm::view(nullptr));
    EXPECT_EQ(u"abc", pm::view(u"abc"));
    EXPECT_EQ(std::u16string(), pm::or_empty(nullptr));
    EXPECT_EQ(std::u16string(u"abc"), pm::or_empty(u"abc"));
}

TEST(UnitClass, HoldsExactlyItsUnits) {
    std::u16string digits;
    std::u16string letters;
    std::u16string blanks;
    std::u16string spaces;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const auto wide_unit = static_cast<char16_t>(unit);
        if (pm::is_digit(wide_unit)) digits += wide_unit;
        if (pm::is_letter(wide_unit)) letters += wide_unit;
        if (pm::is_blank(wide_unit)) blanks += wide_unit;
        if (pm::is_space(wide_unit)) spaces += wide_unit;
    }
    EXPECT_EQ(u"0123456789", digits);
    EXPECT_EQ(u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz", letters);
    EXPECT_EQ(u"\t ", blanks);
    EXPECT_EQ(u"\t\n\v\f\r ", spaces);
}

TEST(UnitClass, LowercasesAsciiOnly) {
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const bool upper = unit >= 'A' && unit <= 'Z';
        EXPECT_EQ(unit + (upper ? 32U : 0U), pm::to_lower(static_cast<char16_t>(unit)));
    }
}

TEST(Comparison, TakesLettersOfBothCasesAsEqual) {
    EXPECT_TRUE(pm::equals_ignoring_case(u"Pen_9", u"pEN_9"));
    EXPECT_TRUE(pm::equals_ignoring_case(u"", u""));
    EXPECT_FALSE(pm::equals_ignoring_case(u"pen", u"pens"));
    EXPECT_FALSE(pm::equals_ignoring_case(u"@[`{", u"`{@["));
    EXPECT_FALSE(pm::equals_ignoring_case(u"\u00C4", u"\u00E4"));
}

TEST(Comparison, StartIgnoresCase) {
    EXPECT_TRUE(pm::starts_with_ignoring_case(u"VERSION 1", u"version"));
    EXPECT_TRUE(pm::starts_with_ignoring_case(u"version", u"version"));
    EXPECT_TRUE(pm::starts_with_ignoring_case(u"version", u""));
    EXPECT_FALSE(pm::starts_with_ignoring_case(u"versio", u"version"));
}

TEST(Trimming, DropsTheUnitsOfTheSet) {
    EXPECT_EQ(u"a b ", pm::skip_any(u" \t a b ", u" \t"));
    EXPECT_EQ(u"", pm::skip_any(u" \t ", u" \t"));
    EXPECT_EQ(u"", pm::skip_any(u"", u" \t"));
    EXPECT_EQ(u" a b", pm::trim_end(u" a b\t ", u" \t"));
    EXPECT_EQ(u"", pm::trim_end(u" \t ", u" \t"));
    EXPECT_EQ(u"", pm::trim_end(u"", u" \t"));
}

TEST(Decimal, WritesTheWholeRange) {
    EXPECT_EQ(u"0", pm::to_decimal(0));
    EXPECT_EQ(u"-2147483648", pm::to_decimal(lowest));
    EXPECT_EQ(u"9223372036854775807", pm::to_decimal(std::numeric_limits<std::int64_t>::max()));
    EXPECT_EQ(u"-9223372036854775808", pm::to_decimal(std::numeric_limits<std::int64_t>::min()));
}

TEST(Decimal, Appends) {
    std::u16string text = u"n=";
    pm::append_decimal(text, -12);
    pm::append_ascii(text, "; end");
    EXPECT_EQ(u"n=-12; end", text);
}

TEST(ScanLong, ReadsTheNumberAtTheStart) {
    EXPECT_EQ(12, pm::scan_long(u"12"));
    EXPECT_EQ(-12, pm::scan_long(u" \t\r\n\v\f-12abc"));
    EXPECT_EQ(12, pm::scan_long(u"+12.9"));
    EXPECT_EQ(9, pm::scan_long(u"009"));
    EXPECT_EQ(0, pm::scan_long(u"0x10"));
}

TEST(ScanLong, GivesZeroForNoNumber) {
    for (const char16_t* text : {u"", u" ", u"abc", u"-", u"+", u"- 1", u"--1", u".5", u"\u0665"}) {
        EXPECT_EQ(0, pm::scan_long(text));
        EXPECT_EQ(0U, pm::scan_long_at(text, 10).length);
    }
}

TEST(ScanLong, IsHeldAtTheEndsOfTheRange) {
    EXPECT_EQ(highest, pm::scan_long(u"2147483647"));
    EXPECT_EQ(highest, pm::scan_long(u"2147483648"));
    EXPECT_EQ(lowest, pm::scan_long(u"-2147483648"));
    EXPECT_EQ(lowest, pm::scan_long(u"-2147483649"));
    EXPECT_EQ(highest, pm::scan_long(std::u16string(5000, u'9')));
    EXPECT_EQ(lowest, pm::scan_long(u"-" + std::u16string(5000, u'9')));
    EXPECT_EQ(7, pm::scan_long(std::u16string(5000, u'0') + u"7"));
}

TEST(ScanLong, TellsHowMuchItTook) {
    EXPECT_EQ(5U, pm::scan_long_at(u"  -12 ", 10).length);
    EXPECT_EQ(30U, pm::scan_long_at(std::u16string(30, u'9') + u"x", 10).length);
}

TEST(ScanLong, KnowsThePrefixesOfItsBase) {
    const auto expect = [](std::int32_t value, std::size_t length, const char16_t* text, int base) {
        const pm::ScannedLong scanned = pm::scan_long_at(text, base);
        EXPECT_EQ(value, scanned.value);
        EXPECT_EQ(length, scanned.length);
    };
    expect(255, 4, u"0xFF", 0);
    expect(255, 4, u"0XfF", 16);
    expect(-255, 3, u"-ffg", 16);
    expect(8, 3, u"010", 0);
    expect(10, 3, u"010", 10);
    expect(0, 1, u"09", 0);
    expect(9, 1, u"9", 0);
    expect(0, 1, u"0x", 0);
    expect(0, 1, u"0xg", 16);
    expect(35, 1, u"z", 36);
    expect(highest, 10, u"0xFFFFFFFF", 0);
    expect(lowest, 11, u"-0xFFFFFFFF", 0);
}

TEST(ScanHexadecimal, TakesAllBitsOfAnUnsignedNumber) {
    const auto expect = [](std::int32_t value, std::size_t length, std::u16string_view text) {
        const pm::ScannedLong scanned = pm::scan_hexadecimal_at(text);
        EXPECT_EQ(value, scanned.value);
        EXPECT_EQ(length, scanned.length);
    };
    expect(0x1a7f, 4, u"1a7f");
    expect(0x1a7f, 7, u" 0X1A7Fg");
    expect(-1, 8, u"ffffffff");
    expect(lowest, 8, u"80000000");
    expect(-1, 2, u"-1");
    expect(-1, 9, u"123456789");
    expect(1, 5001, std::u16string(5000, u'0') + u"1");
    expect(0, 0, u"g");
    expect(0, 0, u"");
}

TEST(ScanDouble, ReadsTheFormsOfTheCLibrary) {
    for (const char* text : {"0",
                             "-0",
                             "1",
                             "+1.5",
                             "-1.5e3x",
                             " \t\r\n\v\f2.5",
                             ".5",
                             "5.",
                             "-.5e-2",
                             "1e5",
                             "1E+05",
                             "1e",
                             "1e+",
                             "1e-x",
                             "1.2.3",
                             "1,5",
                             "",
                             " ",
                             "-",
                             "+",
                             ".",
                             "-.",
                             "e5",
                             "--1",
                             "+-1",
                             "-+1",
                             "- 1",
                             "abc",
                             "1_0",
                             "(1)",
                             "2.2250738585072011e-308",
                             "2.2250738585072014e-308",
                             "4.9406564584124654e-324",
                             "2.4703282292062327e-324",
                             "2.4703282292062328e-324",
                             "1.7976931348623157e308",
                             "1.7976931348623159e308",
                             "9007199254740993",
                             "1e22",
                             "1e23"}) {
        expect_scanned_as_strtod(text);
    }
}

TEST(ScanDouble, KnowsDecimalFormsOnly) {
    for (const char16_t* text : {u"inf", u"-INF", u"infinity", u"Informal", u"nan", u"NaN", u"nan(12)"}) {
        EXPECT_EQ(0U, pm::scan_double_at(text).length);
        EXPECT_EQ(0.0, pm::scan_double(text));
    }
    const pm::ScannedDouble zero = pm::scan_double_at(u"0x10");
    EXPECT_EQ(0.0, zero.value);
    EXPECT_EQ(1U, zero.length);
    const pm::ScannedDouble negative = pm::scan_double_at(u" -0X1.8p3");
    EXPECT_EQ(bits_of(-0.0), bits_of(negative.value));
    EXPECT_EQ(3U, negative.length);
}

TEST(ScanDouble, GivesZeroForNoNumber) {
    EXPECT_EQ(0.0, pm::scan_double(u"x"));
    EXPECT_EQ(0U, pm::scan_double_at(u"x").length);
    EXPECT_EQ(0U, pm::scan_double_at(u" \u0665").length);
    EXPECT_EQ(0U, pm::scan_double_at(u"\u66315").length);
}

TEST(ScanDouble, StopsAtAUnitOutsideAscii) {
    EXPECT_EQ(15.0, pm::scan_double(u"15\u0135"));
    EXPECT_EQ(2U, pm::scan_double_at(u"15\u0135").length);
    EXPECT_EQ(2U, pm::scan_double_at(std::u16string_view(u"15\0"
                                                         u"7",
                                                         4))
                      .length);
}

TEST(ScanDouble, OverflowIsInfiniteAndUnderflowZero) {
    EXPECT_EQ(infinity, pm::scan_double(u"1e400"));
    EXPECT_EQ(-infinity, pm::scan_double(u"-1e400"));
    EXPECT_EQ(bits_of(0.0), bits_of(pm::scan_double(u"1e-400")));
    EXPECT_EQ(bits_of(-0.0), bits_of(pm::scan_double(u"-1e-400")));
    EXPECT_EQ(infinity, pm::scan_double(u"1e99999999999999999999999"));
    EXPECT_EQ(0.0, pm::scan_double(u"1e-99999999999999999999999"));
    EXPECT_EQ(0.0, pm::scan_double(u"0e99999999999999999999999"));
}

TEST(ScanDouble, ReadsLongDigitTexts) {
    const std::string nines(2000, '9');
    const std::string zeros(1500, '0');
    for (const std::string& text :
         {nines, nines + "e-2000", nines + "e-2400", nines + "." + nines, "0." + nines, zeros + "1.5",
          "0." + zeros + "1", "0." + zeros + "1e1500", "0." + zeros + "123456789e1600",
          "-" + zeros + zeros + "12.25", "1." + zeros + "1", "9007199254740993." + zeros,
          "9007199254740993." + zeros + "1", "1e" + zeros + "5", "1e-" + zeros + "5"}) {
        expect_scanned_as_strtod(text);
    }
}

TEST(ScanDouble, AgreesWithTheCLibraryOnRandomTexts) {
    std::mt19937 random(11);
    constexpr std::string_view units = "00123456789..eE+-pPaAiI ";
    for (int run = 0; run < 300'000; ++run) {
        std::string text;
        for (std::size_t i = random() % 16; i > 0; --i) {
            text += units[random() % units.size()];
        }
        expect_scanned_as_strtod(text);
    }
}

TEST(ScanDouble, AgreesWithTheCLibraryOnLongTextsOfAnyShape) {
    std::mt19937 random(13);
    const auto digits = [&](std::size_t count) {
        std::string text;
        while (text.size() < count) {
            text.append(random() % 60, random() % 3 == 0 ? '0' : static_cast<char>('0' + random() % 10));
        }
        return text.substr(0, count);
    };
    constexpr std::string_view ends[] = {
        "", "e", "e-", "e+12", "E-900", "e900", ".", "-", "e99999999999999999999"};
    for (int run = 0; run < 20'000; ++run) {
        std::string text = run % 2 == 0 ? "-" : "";
        text += digits(random() % 1200);
        if (run % 3 != 0) text += '.' + digits(random() % 1200);
        if (run % 5 == 0) text += "e" + std::to_string(static_cast<int>(random() % 3000) - 1500);
        expect_scanned_as_strtod(text.append(ends[random() % std::size(ends)]));
    }
}

TEST(ScanDouble, LongTextBesideTheMiddleOfTwoNumbersIsRoundedRightly) {
    for (const char* middle : {"0x1p-1075", "0x1.00000000000008p0", "0x1.fffffffffffff8p-1022"}) {
        const std::string exact = exact_text(middle);
        expect_scanned_as_strtod(exact);
        expect_scanned_as_strtod(exact + std::string(300, '0') + "1");
        expect_scanned_as_strtod(exact + "e0");
    }
}

// Not every C library rounds this one rightly.
TEST(ScanDouble, LongTextBesideTheMiddleOfTheSmallestNumbersIsRoundedRightly) {
    const std::string exact = exact_text("0x1.8p-1074");
    for (const std::string& text : {exact, exact + std::string(300, '0') + "1", exact + "e0"}) {
        const pm::ScannedDouble scanned = pm::scan_double_at(wide(text));
        EXPECT_EQ(2U, bits_of(scanned.value)) << text;
        EXPECT_EQ(text.size(), scanned.length);
    }
}

TEST(ScanDouble, AgreesWithTheCLibraryOnRandomNumbers) {
    std::mt19937_64 random(12);
    for (int run = 0; run < 200'000; ++run) {
        const auto number = std::bit_cast<double>(random());
        if (!std::isfinite(number)) continue;
        expect_scanned_as_strtod(printed("%.*e", static_cast<int>(random() % 30), number));
    }
}

TEST(Format11Digits, KeepsZerosAndPoint) {
    EXPECT_EQ("0.0000000000", pm::format_11_digits(0));
    EXPECT_EQ("-0.0000000000", pm::format_11_digits(-0.0));
    EXPECT_EQ("1.0000000000", pm::format_11_digits(1));
    EXPECT_EQ("0.00010000000000", pm::format_11_digits(1e-4));
    EXPECT_EQ("1.0000000000e-05", pm::format_11_digits(1e-5));
    EXPECT_EQ("12345678901.", pm::format_11_digits(12345678901.0));
    EXPECT_EQ("1.0000000000e+11", pm::format_11_digits(99999999999.5));
    EXPECT_EQ("1.2345678901e+100", pm::format_11_digits(1.2345678901e100));
    EXPECT_EQ("inf", pm::format_11_digits(infinity));
    EXPECT_EQ("-inf", pm::format_11_digits(-infinity));
    EXPECT_EQ("nan", pm::format_11_digits(std::numeric_limits<double>::quiet_NaN()));
}

TEST(Format11Digits, AgreesWithTheCLibrary) {
    std::mt19937_64 random(13);
    for (int run = 0; run < 200'000; ++run) {
        const auto any = std::bit_cast<double>(random());
        ASSERT_EQ(printed_significant(11, any), pm::format_11_digits(any));
        const double ordinary =
            std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 100) - 90);
        ASSERT_EQ(printed_significant(11, ordinary), pm::format_11_digits(ordinary));
    }
}

TEST(FormatSignificant, AgreesWithTheCLibraryForAnyNumberOfDigits) {
    std::mt19937_64 random(14);
    for (int run = 0; run < 50'000; ++run) {
        const auto value = std::bit_cast<double>(random());
        const int digits = 1 + static_cast<int>(random() % 40);
        ASSERT_EQ(printed_significant(digits, value), pm::format_significant(value, digits));
        const double small = static_cast<double>(random() % 2'000'000) / 100;
        ASSERT_EQ(printed_significant(digits, small), pm::format_significant(small, digits));
    }
}

TEST(PrintDouble, AgreesWithTheCLibrary) {
    std::mt19937_64 random(15);
    for (int run = 0; run < 20'000; ++run) {
        const auto value = std::bit_cast<double>(random());
        const int precision = static_cast<int>(random() % 60);
        ASSERT_EQ(printed("%.*f", precision, value),
                  pm::print_double(value, std::chars_format::fixed, precision));
        ASSERT_EQ(printed("%.*e", precision, value),
                  pm::print_double(value, std::chars_format::scientific, precision));
        ASSERT_EQ(printed("%.*g", precision, value),
                  pm::print_double(value, std::chars_format::general, precision));
    }
    EXPECT_EQ(printed("%.*f", 1100, 4.9406564584124654e-324),
              pm::print_double(4.9406564584124654e-324, std::chars_format::fixed, 1100));
}
