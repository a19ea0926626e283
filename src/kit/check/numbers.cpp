#include "check/numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fmt/format.h>
#include <limits>
#include <memory>
#include <pm/value_text.h>

namespace pm::kit {

namespace {

constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();

std::size_t count_white(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), is_white);
    return static_cast<std::size_t>(end - text.begin());
}

unsigned digit_value(char c) {
    return is_digit(c) ? static_cast<unsigned>(c - '0') : static_cast<unsigned>(lower(c) - 'a') + 10;
}

// What a prefix says of the digits behind it, and how long it is.
struct Radix {
    unsigned radix = 10;
    std::size_t prefix = 0;
};

Radix radix_of(std::string_view text, Base base) {
    const bool zero = text.starts_with('0');
    const bool x = zero && text.size() > 2 && lower(text[1]) == 'x' && is_hex_digit(text[2]);
    if (base == Base::decimal) return {};
    if (x) return {16, 2};
    if (base == Base::hexadecimal) return {16, 0};
    return zero ? Radix{8, 0} : Radix{};
}

// The digits that count, without zeros at both ends.
std::string significant_digits(std::string_view text) {
    std::string digits;
    for (const char c : text) {
        if (lower(c) == 'e') break;
        if (is_digit(c)) digits += c;
    }
    digits.erase(0, std::min(digits.find_first_not_of('0'), digits.size()));
    while (digits.ends_with('0')) {
        digits.pop_back();
    }
    return digits;
}

constexpr std::size_t always_exact = 15; // digits that every double holds
constexpr std::size_t ever_exact = 800;  // no double has more

bool holds_digits(double value, const std::string& digits) {
    if (digits.size() <= always_exact) return true;
    if (digits.size() > ever_exact) return false;
    std::string text(ever_exact + 32, '\0');
    const auto end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                   std::chars_format::scientific, static_cast<int>(digits.size()) - 1);
    text.resize(static_cast<std::size_t>(end.ptr - text.data()));
    return significant_digits(text) == digits;
}

std::size_t length_of_decimal(std::string_view text, Signs signs) {
    std::size_t at = 0;
    const auto digits = [&] {
        const std::size_t first = at;
        while (at < text.size() && is_digit(text[at])) {
            ++at;
        }
        return at - first;
    };
    if (at < text.size() && (text[at] == '-' || (signs == Signs::both && text[at] == '+'))) ++at;
    std::size_t count = digits();
    if (at < text.size() && text[at] == '.') {
        ++at;
        count += digits();
    }
    if (count == 0) return 0;
    const std::size_t mantissa = at;
    if (at == text.size() || lower(text[at]) != 'e') return mantissa;
    ++at;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
    return digits() > 0 ? at : mantissa;
}

// Of a text that is a number and whose value has no double: whether it is beyond all of them.
bool is_huge(std::string_view text) {
    const std::size_t e = text.find_first_of("eE");
    const std::string_view exponent = e < text.size() ? text.substr(e + 1) : std::string_view();
    return !exponent.starts_with('-');
}

} // namespace

bool equals_ignoring_case(std::string_view a, std::string_view b) noexcept {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

bool starts_ignoring_case(std::string_view text, std::string_view start) noexcept {
    return equals_ignoring_case(text.substr(0, start.size()), start);
}

std::string lowered(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), lower);
    return out;
}

std::string_view skip(std::string_view text, std::string_view set) noexcept {
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

std::string_view cut_end(std::string_view text, std::string_view set) noexcept {
    const std::size_t last = text.find_last_not_of(set);
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

IntegerText read_integer(std::string_view text, Signs signs, Base base) noexcept {
    std::size_t at = count_white(text);
    const bool negative = at < text.size() && text[at] == '-';
    if (negative || (at < text.size() && signs == Signs::both && text[at] == '+')) ++at;
    const Radix radix = radix_of(text.substr(at), base);
    at += radix.prefix;
    const std::size_t first = at;
    const std::int64_t end = base == Base::hexadecimal ? std::numeric_limits<std::uint32_t>::max()
                             : negative                ? most + 1
                                                       : most;
    std::int64_t value = 0;
    bool held = false;
    for (; at < text.size() && is_hex_digit(text[at]) && digit_value(text[at]) < radix.radix; ++at) {
        value = value * radix.radix + digit_value(text[at]);
        held = held || value > end;
        value = std::min(value, end);
    }
    if (at == first) return {};
    return {static_cast<std::int32_t>(static_cast<std::uint32_t>(negative ? -value : value)), at, held};
}

DecimalText read_decimal(std::string_view text, Signs signs) noexcept {
    const std::size_t start = count_white(text);
    const std::size_t length = length_of_decimal(text.substr(start), signs);
    if (length == 0) return {};
    std::string_view number = text.substr(start, length);
    if (number.starts_with('+')) number.remove_prefix(1);
    double value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        value = is_huge(number) ? std::numeric_limits<double>::infinity() : 0.0;
        if (number.starts_with('-')) value = -value;
    }
    return {value, start + length};
}

std::optional<std::string> decimal_loss(std::string_view text, double value) {
    const std::string digits = significant_digits(text);
    if (digits.empty()) return std::nullopt;
    if (std::isinf(value)) return "is beyond all numbers and reads as infinite";
    if (value == 0) return "is too close to zero and reads as 0";
    if (holds_digits(value, digits)) return std::nullopt;
    return fmt::format("has more digits than a number holds and reads as {}", value);
}

std::optional<ExactForm> exact_form(std::string_view value) {
    constexpr std::size_t armour = 14;
    constexpr std::size_t form = armour + 3; // with the blank and the parentheses
    if (value.size() <= form || !value.ends_with(')')) return std::nullopt;
    const std::string_view end = value.substr(value.size() - form);
    if (!end.starts_with(" (")) return std::nullopt;
    const std::string_view number = value.substr(0, value.size() - form);
    const std::string_view code = end.substr(2, armour);
    char* bytes = nullptr;
    unsigned size = 0;
    if (stringtobinary(std::u16string(code.begin(), code.end()).c_str(), &bytes, &size) == 0) {
        return ExactForm{number};
    }
    const std::unique_ptr<char, decltype(&std::free)> owned(bytes, &std::free);
    double exact = 0;
    if (size != sizeof exact) return ExactForm{number};
    std::memcpy(&exact, bytes, sizeof exact);
    return ExactForm{number, fmt::format("{:#.11g}", exact) == number};
}

} // namespace pm::kit
