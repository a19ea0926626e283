#include "store/plain_number.h"

#include "store/value_text.h"
#include "support/allocation_failures.h"
#include <bit>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <random>
#include <string>

namespace {

using pm::PlainNumber;

std::string lines_text(std::string text) {
    return text + '\n' + std::string(16, '\0');
}

std::optional<std::int32_t> long_of(const std::string& text) {
    const std::string line = lines_text(text);
    const PlainNumber number(line.c_str());
    std::int32_t value = 0;
    return number.end() == line.c_str() + text.size() && number.as_long(value) ? std::optional(value)
                                                                               : std::nullopt;
}

std::optional<double> short_double_of(const std::string& text) {
    const std::string line = lines_text(text);
    const PlainNumber number(line.c_str());
    double value = 0;
    const bool read = number.end() == line.c_str() + text.size() && number.as_short_double(value);
    return read ? std::optional(value) : std::nullopt;
}

// Of a text as format_double() writes it.
std::optional<double> exact_double_of(const std::string& text) {
    const std::string line = lines_text(text);
    const PlainNumber number(line.c_str());
    double value = 0;
    const std::string_view behind(number.end(),
                                  static_cast<std::size_t>(line.c_str() + text.size() - number.end()));
    const bool armoured = behind.size() == 17 && behind.starts_with(" (") && behind.ends_with(')');
    const bool read = armoured && number.as_exact_double(number.end() + 2, value);
    return read ? std::optional(value) : std::nullopt;
}

std::string formatted(double value) {
    char text[pm::double_text_capacity];
    return {text, pm::format_double(value, text)};
}

std::optional<double> parsed(const std::string& text) {
    const std::u16string wide(text.begin(), text.end());
    double value = 0;
    return pm::parse_double(wide, value) ? std::optional(value) : std::nullopt;
}

void expect_same_bits(double expected, std::optional<double> value, const std::string& text) {
    ASSERT_TRUE(value) << text;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(expected), std::bit_cast<std::uint64_t>(*value)) << text;
}

TEST(PlainNumber, ReadsIntegers) {
    EXPECT_EQ(0, long_of("0"));
    EXPECT_EQ(7, long_of("007"));
    EXPECT_EQ(-12, long_of("-12"));
    EXPECT_EQ(2147483647, long_of("2147483647"));
    EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), long_of("-2147483648"));
}

TEST(PlainNumber, LeavesOtherIntegersToOthers) {
    for (const char* text : {"", "-", "--1", "+1", "2147483648", "-2147483649", "00000000001",
                             "18446744073709551617", "1.", "1.5", ".5", " 1", "1 ", "a"})
        EXPECT_FALSE(long_of(text)) << text;
}

TEST(PlainNumber, ReadsShortDoubles) {
    EXPECT_EQ(2.5, short_double_of("2.5"));
    EXPECT_EQ(0.0, short_double_of("0.0"));
    EXPECT_EQ(-0.0001, short_double_of("-0.0001"));
    EXPECT_EQ(214748.3647, short_double_of("214748.3647"));
    expect_same_bits(-0.0, short_double_of("-0.0"), "-0.0");
}

TEST(PlainNumber, LeavesOtherShortDoublesToOthers) {
    for (const char* text :
         {"", "-", ".", "1", "1.", "1.50", "1.00000", "1.23456", "214748.3648", "1234567.1234", "1.2.3",
          "1.5e1", "99999999999999999999.5", "1844674407370955161.7"})
        EXPECT_FALSE(short_double_of(text)) << text;
}

TEST(PlainNumber, ReadsDoublesOfExactBits) {
    EXPECT_EQ(1.0 / 3.0, exact_double_of("0.33333333333 (55555555U3_#T@)"));
    EXPECT_EQ(123456789.5, exact_double_of("123456789.50 (    5C1OG4$1TP)"));
    EXPECT_EQ(formatted(-1.0 / 3.0), formatted(exact_double_of(formatted(-1.0 / 3.0)).value()));
}

TEST(PlainNumber, LeavesOtherShapesOfExactDoublesToOthers) {
    for (const char* text : {"0.33333333334 (55555555U3_#T@)", "00.33333333333 (55555555U3_#T@)",
                             "0.333333333333 (55555555U3_#T@)", "0.3333333333 (55555555U3_#T@)",
                             "-0.33333333333 (55555555U3_#T@)", ".33333333333 (55555555U3_#T@)",
                             "0.33333333333 (55555555U3_#S@)", "0.33333333333 (5555555aU3_#T@)",
                             "0.33333333333 (5555555\xB5U3_#T@)", "3.3333333333 (55555555U3_#T@)",
                             "33333333333 (55555555U3_#T@)", "0.33333333333 (55555555U3_#T`)"})
        EXPECT_FALSE(exact_double_of(text)) << text;
}

TEST(PlainNumber, ReadsWhatIsWrittenAsTheGeneralReadingDoes) {
    std::mt19937_64 random(3);
    int exact = 0;
    for (int run = 0; run < 100'000; ++run) {
        // From 2^-20 to 2^40, a sixteenth of them close to a power of ten.
        double value = std::bit_cast<double>((random() & 0x800FFFFFFFFFFFFF) | (1003 + random() % 61) << 52);
        if (run % 16 == 0)
            value = std::pow(10.0, static_cast<int>(random() % 16) - 4) *
                    (1 - 1e-11 * static_cast<double>(random() % 20));
        const std::string text = formatted(value);
        const std::optional<double> read =
            text.ends_with(')') ? exact_double_of(text) : short_double_of(text);
        if (!read) continue;
        ++exact;
        expect_same_bits(value, read, text);
    }
    EXPECT_GT(exact, 70'000);
}

TEST(PlainNumber, EditedNumbersAreReadAsTheGeneralReadingDoesOrNotAtAll) {
    std::mt19937_64 random(4);
    int read_edited = 0;
    for (int run = 0; run < 100'000; ++run) {
        std::string text =
            formatted(static_cast<double>(random() % 1'000'000'000) / (run % 2 == 0 ? 1e4 : 7e3));
        text[random() % text.size()] = static_cast<char>(' ' + random() % 96);
        const std::optional<double> read =
            text.ends_with(')') ? exact_double_of(text) : short_double_of(text);
        if (!read) continue;
        ++read_edited;
        expect_same_bits(parsed(text).value(), read, text);
    }
    EXPECT_GT(read_edited, 5'000);
}

TEST(PlainNumber, WithoutMemoryTheVisibleNumberCounts) {
    for (const std::string text : {"0.33333333333 (55555555U3_#T@)", "123456789.50 (    5C1OG4$1TP)"}) {
        const pm::test::FailingAllocation failing(0);
        const double value = exact_double_of(text).value();
        EXPECT_TRUE(pm::test::FailingAllocation::was_hit());
        expect_same_bits(std::stod(text), value, text);
    }
}

} // namespace
