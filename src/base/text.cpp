#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace pm {

namespace {

// The longest number text that is scanned; what lies behind can't change a 64-bit float's value by more
// than a unit in the last place, as no written form of one is that long.
constexpr std::size_t number_limit = 1024;

struct Narrowed {
    char text[number_limit];
    std::size_t length = 0;
    const char* begin() const { return text; }
    const char* end() const { return text + length; }
};

void narrow_ascii(std::u16string_view text, Narrowed& out) {
    for (char16_t unit : text.substr(0, number_limit)) {
        if (unit == 0 || unit >= 0x80) return;
        out.text[out.length++] = static_cast<char>(unit);
    }
}

std::size_t count_spaces(std::u16string_view text) {
    return static_cast<std::size_t>(
        std::find_if_not(text.begin(), text.end(), [](char16_t unit) { return is_space(unit); }) -
        text.begin());
}

bool has_hex_prefix(const char* text, const char* end) {
    return end - text > 2 && text[0] == '0' && (text[1] | 0x20) == 'x' &&
           std::isxdigit(static_cast<unsigned char>(text[2])) != 0;
}

// from_chars leaves the value alone when it is out of range; the decimal exponent tells on which side.
double out_of_range_value(const char* text, const char* end) {
    const char* exponent = std::find_if(text, end, [](char c) { return c == 'e' || c == 'E'; });
    const char* point = std::find(text, exponent, '.');
    const char* digit = std::find_if(text, exponent, [](char c) { return c >= '1' && c <= '9'; });
    long written = 0;
    if (exponent != end) {
        const char* first = exponent + 1 != end && exponent[1] == '+' ? exponent + 2 : exponent + 1;
        const auto result = std::from_chars(first, end, written);
        if (result.ec == std::errc::result_out_of_range) written = *first == '-' ? -1'000'000 : 1'000'000;
    }
    const long magnitude = digit < point ? point - digit : point - digit + 1;
    return written + magnitude > 0 ? HUGE_VAL : 0.0;
}

// An unsigned number at `first`; gives the place behind it, or `first` if there is none.
const char* scan_unsigned_double(const char* first, const char* last, double& value) {
    const bool hex = has_hex_prefix(first, last);
    const char* digits = hex ? first + 2 : first;
    const auto format = hex ? std::chars_format::hex : std::chars_format::general;
    if (digits != last && *digits == '-') return first;
    const auto result = std::from_chars(digits, last, value, format);
    if (result.ec == std::errc::invalid_argument) return first;
    if (result.ec == std::errc::result_out_of_range) value = out_of_range_value(digits, result.ptr);
    return result.ptr;
}

int effective_base(std::u16string_view digits, int base) {
    const bool zero = !digits.empty() && digits[0] == u'0';
    if (base != 0) return base;
    if (zero && digits.size() > 1 && to_lower(digits[1]) == u'x') return 16;
    return zero ? 8 : 10;
}

int digit_value(char16_t unit) {
    if (is_digit(unit)) return unit - u'0';
    return is_letter(unit) ? to_lower(unit) - u'a' + 10 : std::numeric_limits<int>::max();
}

} // namespace

bool equals_ignoring_case(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char16_t x, char16_t y) {
               return to_lower(x) == to_lower(y);
           });
}

bool starts_with_ignoring_case(std::u16string_view text, std::u16string_view start) {
    return equals_ignoring_case(text.substr(0, start.size()), start);
}

std::u16string_view skip_any(std::u16string_view text, std::u16string_view set) {
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

std::u16string_view trim_end(std::u16string_view text, std::u16string_view set) {
    return text.substr(0, text.find_last_not_of(set) + 1);
}

void append_ascii(std::u16string& out, std::string_view ascii) {
    out.append(ascii.begin(), ascii.end());
}

void append_decimal(std::u16string& out, std::int64_t value) {
    char digits[24];
    append_ascii(out, {digits, std::to_chars(digits, std::end(digits), value).ptr});
}

std::u16string to_decimal(std::int64_t value) {
    std::u16string text;
    append_decimal(text, value);
    return text;
}

std::int32_t scan_long(std::u16string_view text) {
    return scan_long_at(text, 10).value;
}

ScannedLong scan_long_at(std::u16string_view text, int base) {
    const std::size_t spaces = count_spaces(text);
    std::u16string_view rest = text.substr(spaces);
    const bool negative = !rest.empty() && rest[0] == u'-';
    if (!rest.empty() && (rest[0] == u'-' || rest[0] == u'+')) rest.remove_prefix(1);

    const int radix = effective_base(rest, base);
    if (radix == 16 && rest.size() > 2 && rest[0] == u'0' && to_lower(rest[1]) == u'x' &&
        digit_value(rest[2]) < 16) {
        rest.remove_prefix(2);
    }
    const std::int64_t limit = negative ? -std::int64_t{std::numeric_limits<std::int32_t>::min()}
                                        : std::int64_t{std::numeric_limits<std::int32_t>::max()};
    std::int64_t value = 0;
    std::size_t digits = 0;
    for (; digits < rest.size() && digit_value(rest[digits]) < radix; ++digits) {
        value = std::min(value * radix + digit_value(rest[digits]), limit);
    }
    if (digits == 0) return {};
    const auto taken = static_cast<std::size_t>(rest.data() + digits - text.data());
    return {static_cast<std::int32_t>(negative ? -value : value), taken};
}

double scan_double(std::u16string_view text) {
    return scan_double_at(text).value;
}

ScannedDouble scan_double_at(std::u16string_view text) {
    const std::size_t spaces = count_spaces(text);
    Narrowed narrow;
    narrow_ascii(text.substr(spaces), narrow);

    const char* first = narrow.begin();
    const bool negative = first != narrow.end() && *first == '-';
    if (first != narrow.end() && (*first == '-' || *first == '+')) ++first;
    double value = 0;
    const char* last = scan_unsigned_double(first, narrow.end(), value);
    if (last == first) return {};
    return {negative ? -value : value, spaces + static_cast<std::size_t>(last - narrow.begin())};
}

std::string format_11_digits(double value) {
    constexpr int digits = 11;
    char text[64];
    if (!std::isfinite(value)) return {text, std::to_chars(text, std::end(text), value).ptr};

    const auto scientific =
        std::to_chars(text, std::end(text), value, std::chars_format::scientific, digits - 1);
    const char* mark =
        std::find(static_cast<const char*>(text), static_cast<const char*>(scientific.ptr), 'e');
    int exponent = 0;
    std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, scientific.ptr, exponent);
    if (exponent < -4 || exponent >= digits) return {text, scientific.ptr};

    const int decimals = digits - 1 - exponent;
    std::string fixed(text,
                      std::to_chars(text, std::end(text), value, std::chars_format::fixed, decimals).ptr);
    if (decimals == 0) fixed += '.';
    return fixed;
}

} // namespace pm
