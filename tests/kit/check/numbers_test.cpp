#include "check/numbers.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using namespace pm::kit;

constexpr double infinite = std::numeric_limits<double>::infinity();

TEST(CheckedInteger, IsReadUpToWhatIsNoDigitOfItsBase) {
    const struct {
        std::string_view text;
        Signs signs;
        Base base;
        std::int32_t value;
        std::size_t length;
        bool held;
    } rows[] = {
        {"12", Signs::minus, Base::decimal, 12, 2, false},
        {"", Signs::minus, Base::decimal, 0, 0, false},
        {" \t", Signs::both, Base::decimal, 0, 0, false},
        {"+5", Signs::both, Base::decimal, 5, 2, false},
        {"+5", Signs::minus, Base::decimal, 0, 0, false},
        {"-5", Signs::minus, Base::decimal, -5, 2, false},
        {"2147483647", Signs::minus, Base::decimal, 2147483647, 10, false},
        {"2147483648", Signs::minus, Base::decimal, 2147483647, 10, true},
        {"-2147483648", Signs::minus, Base::decimal, std::numeric_limits<std::int32_t>::min(), 11, false},
        {"-2147483649", Signs::minus, Base::decimal, std::numeric_limits<std::int32_t>::min(), 11, true},
        {"12ab", Signs::minus, Base::decimal, 12, 2, false},
        {"0x1F", Signs::minus, Base::decimal, 0, 1, false},
        {"0x1Fg", Signs::minus, Base::by_prefix, 31, 4, false},
        {"0x", Signs::minus, Base::by_prefix, 0, 1, false},
        {"0xg", Signs::minus, Base::by_prefix, 0, 1, false},
        {"0178", Signs::minus, Base::by_prefix, 15, 3, false},
        {"19", Signs::minus, Base::by_prefix, 19, 2, false},
        {"fF", Signs::minus, Base::hexadecimal, 255, 2, false},
        {"0XfF", Signs::minus, Base::hexadecimal, 255, 4, false},
        {"FFFFFFFF", Signs::minus, Base::hexadecimal, -1, 8, false},
        {"100000000", Signs::minus, Base::hexadecimal, -1, 9, true},
        {"-1", Signs::minus, Base::hexadecimal, -1, 2, false},
    };
    for (const auto& row : rows) {
        const IntegerText read = read_integer(row.text, row.signs, row.base);
        EXPECT_EQ(row.value, read.value) << row.text;
        EXPECT_EQ(row.length, read.length) << row.text;
        EXPECT_EQ(row.held, read.held) << row.text;
    }
}

TEST(CheckedDecimal, IsReadUpToWhatIsNoPartOfIt) {
    const std::string beyond = "1" + std::string(400, '0');
    const struct {
        std::string_view text;
        Signs signs;
        double value;
        std::size_t length;
    } rows[] = {
        {"1.5", Signs::minus, 1.5, 3},
        {"", Signs::minus, 0, 0},
        {" 1.5x", Signs::minus, 1.5, 4},
        {"-", Signs::minus, 0, 0},
        {"+1.5", Signs::minus, 0, 0},
        {"+1.5", Signs::both, 1.5, 4},
        {"-.5", Signs::both, -0.5, 3},
        {".", Signs::minus, 0, 0},
        {"5.", Signs::minus, 5, 2},
        {"1e", Signs::minus, 1, 1},
        {"1e+", Signs::minus, 1, 1},
        {"1e+2", Signs::minus, 100, 4},
        {"1E-2", Signs::minus, 0.01, 4},
        {"1e2", Signs::minus, 100, 3},
        {"1ex", Signs::minus, 1, 1},
        {"1e400", Signs::minus, infinite, 5},
        {"-1e400", Signs::minus, -infinite, 6},
        {beyond, Signs::minus, infinite, 401},
        {"1e-400", Signs::minus, 0, 6},
    };
    for (const auto& row : rows) {
        const DecimalText read = read_decimal(row.text, row.signs);
        EXPECT_EQ(row.value, read.value) << row.text;
        EXPECT_EQ(row.length, read.length) << row.text;
    }
    EXPECT_TRUE(std::signbit(read_decimal("-1e-400", Signs::minus).value));
}

TEST(CheckedDecimal, LossIsToldInWords) {
    const struct {
        std::string text;
        double value;
        std::optional<std::string> loss;
    } rows[] = {
        {"0.00", 0, std::nullopt},
        {"0.5", 0.5, std::nullopt},
        {"1e400", infinite, "is beyond all numbers and reads as infinite"},
        {"1e-400", 0, "is too close to zero and reads as 0"},
        {"0.1000000000000000055511151231257827021181583404541015625", 0.1, std::nullopt},
        {"0.12345678901234567890", 0.12345678901234568,
         "has more digits than a number holds and reads as 0.12345678901234568"},
        {"0." + std::string(800, '3'), 1.0 / 3,
         "has more digits than a number holds and reads as 0.3333333333333333"},
        {"0." + std::string(801, '3'), 1.0 / 3,
         "has more digits than a number holds and reads as 0.3333333333333333"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.loss, decimal_loss(row.text, row.value)) << row.text;
    }
}

TEST(ExactNumber, IsANumberWithItsBits) {
    const struct {
        std::string_view value;
        std::optional<std::string_view> number;
        bool bits_count;
    } rows[] = {
        {"0.33333333333 (55555555U3_#T@)", "0.33333333333", true},
        {"0.5 (55555555U3_#T@)", "0.5", false},
        {"0.5 (55555555U3_#T!)", "0.5", false}, // a wrong check value
        {"0.5 [55555555U3_#T@)", std::nullopt, false},
        {"0.5 (55555555U3_#T@]", std::nullopt, false},
        {" (55555555U3_#T@)", std::nullopt, false},
    };
    for (const auto& row : rows) {
        const std::optional<ExactForm> exact = exact_form(row.value);
        ASSERT_EQ(row.number.has_value(), exact.has_value()) << row.value;
        if (!exact) continue;
        EXPECT_EQ(*row.number, exact->number);
        EXPECT_EQ(row.bits_count, exact->bits_count) << row.value;
    }
}

} // namespace
