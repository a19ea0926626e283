#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace pm {

namespace {

// The units that scans of numbers look at.
bool may_stand_in_number(char16_t unit) {
    return is_digit(unit) || unit == u'.' || to_lower(unit) == u'e' || unit == u'+' || unit == u'-';
}

std::size_t count_spaces(std::u16string_view text) {
    return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), is_space) - text.begin());
}

// What no text's length can outweigh.
constexpr std::int64_t exponent_limit = 1'000'000'000'000'000;

// `text` is empty or a letter, a sign or none, and digits.
std::int64_t scan_exponent(std::string_view text) {
    if (text.empty()) return 0;
    text.remove_prefix(text[1] == '+' ? 2 : 1);
    std::int64_t exponent = text[0] == '-' ? -exponent_limit : exponent_limit;
    std::from_chars(text.data(), text.data() + text.size(), exponent);
    return std::clamp(exponent, -exponent_limit, exponent_limit);
}

// from_chars leaves the value alone when it is out of range; the power of the first digit that counts tells
// on which side.
double out_of_range_value(std::string_view number) {
    const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
    const std::string_view digits = number.substr(0, mark);
    const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
    const auto digit = static_cast<std::int64_t>(digits.find_first_not_of("0."));
    return point - digit + scan_exponent(number.substr(mark)) > 0 ? HUGE_VAL : 0.0;
}

// The number at the start of `text`, which holds units of numbers only.
ScannedDouble scan_narrow_double(std::string_view text) {
    const bool negative = text.starts_with('-');
    const std::size_t sign = negative || text.starts_with('+') ? 1 : 0;
    const std::string_view number = text.substr(sign);
    double value = 0;
    if (number.starts_with('-')) return {};
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::invalid_argument) return {};
    const auto length = static_cast<std::size_t>(result.ptr - number.data());
    if (result.ec == std::errc::result_out_of_range) value = out_of_range_value(number.substr(0, length));
    return {negative ? -value : value, sign + length};
}

// A long number, put in so few digits that it still has its value. What stands behind the digits that count
// only tells whether the number lies above them.
class ShortenedNumber {
public:
    // `text` holds units of numbers only.
    explicit ShortenedNumber(std::u16string_view text) : m_rest(text) {
        m_negative = text.starts_with(u'-');
        if (m_negative || text.starts_with(u'+')) m_rest.remove_prefix(1);
        take_digits();
        if (m_any) take_exponent();
        m_length = m_any ? text.size() - m_rest.size() : 0;
    }

    ScannedDouble scan() {
        if (m_length == 0) return {};
        char* end = m_digits + m_count;
        if (m_above) *end++ = '1';
        if (end == m_digits) *end++ = '0';
        *end++ = 'e';
        end = std::to_chars(end, std::end(m_digits), m_above ? m_power - 1 : m_power).ptr;
        const double value = scan_narrow_double({m_digits, static_cast<std::size_t>(end - m_digits)}).value;
        return {m_negative ? -value : value, m_length};
    }

private:
    void take_digits() {
        bool point = false;
        for (; !m_rest.empty() && (is_digit(m_rest[0]) || (m_rest[0] == u'.' && !point));
             m_rest.remove_prefix(1)) {
            if (m_rest[0] == u'.') {
                point = true;
            } else {
                take_digit(static_cast<char>(m_rest[0]), point);
            }
        }
    }
    void take_digit(char digit, bool behind_point) {
        m_any = true;
        const bool counts = m_count > 0 || digit != '0';
        if (m_count < counted) {
            if (counts) m_digits[m_count++] = digit;
            if (behind_point) --m_power;
        } else {
            m_above = m_above || digit != '0';
            if (!behind_point) ++m_power;
        }
    }
    // An "e" without digits behind it isn't part of the number.
    void take_exponent() {
        if (m_rest.empty() || to_lower(m_rest[0]) != u'e') return;
        std::u16string_view digits = m_rest.substr(1);
        const bool negative = digits.starts_with(u'-');
        if (negative || digits.starts_with(u'+')) digits.remove_prefix(1);
        if (digits.empty() || !is_digit(digits[0])) return;
        std::int64_t exponent = 0;
        for (; !digits.empty() && is_digit(digits[0]); digits.remove_prefix(1)) {
            exponent = std::min(exponent * 10 + (digits[0] - u'0'), exponent_limit);
        }
        m_power += negative ? -exponent : exponent;
        m_rest = digits;
    }

    static constexpr std::size_t counted = 800; // the middle between two doubles has 767 digits at most
    static constexpr std::size_t room_for_power = 32;

    std::u16string_view m_rest;
    bool m_negative = false;
    bool m_any = false;   // a digit, of whatever value
    bool m_above = false; // whether a digit behind those that count isn't 0
    std::int64_t m_power = 0;
    std::size_t m_count = 0;
    std::size_t m_length = 0;
    char m_digits[counted + room_for_power];
};

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

// The low 32 bits of an integer whose amount is held at the limit of its sign.
ScannedLong scan_integer_at(std::u16string_view text, int base, std::int64_t positive_limit,
                            std::int64_t negative_limit) {
    const std::size_t spaces = count_spaces(text);
    std::u16string_view rest = text.substr(spaces);
    const bool negative = !rest.empty() && rest[0] == u'-';
    if (!rest.empty() && (rest[0] == u'-' || rest[0] == u'+')) rest.remove_prefix(1);

    const int radix = effective_base(rest, base);
    if (radix == 16 && rest.size() > 2 && rest[0] == u'0' && to_lower(rest[1]) == u'x' &&
        digit_value(rest[2]) < 16) {
        rest.remove_prefix(2);
    }
    const std::int64_t limit = negative ? negative_limit : positive_limit;
    std::int64_t value = 0;
    std::size_t digits = 0;
    for (; digits < rest.size() && digit_value(rest[digits]) < radix; ++digits) {
        value = std::min(value * radix + digit_value(rest[digits]), limit);
    }
    if (digits == 0) return {};
    const auto taken = static_cast<std::size_t>(rest.data() + digits - text.data());
    return {static_cast<std::int32_t>(negative ? -value : value), taken};
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
    const std::size_t start = out.size();
    out.resize(start + ascii.size());
    std::copy(ascii.begin(), ascii.end(), out.begin() + static_cast<std::ptrdiff_t>(start));
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
    return scan_integer_at(text, base, std::numeric_limits<std::int32_t>::max(),
                           -std::int64_t{std::numeric_limits<std::int32_t>::min()});
}

ScannedLong scan_hexadecimal_at(std::u16string_view text) {
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max();
    return scan_integer_at(text, 16, most, most);
}

double scan_double(std::u16string_view text) {
    return scan_double_at(text).value;
}

ScannedDouble scan_double_at(std::u16string_view text) {
    constexpr std::size_t ordinary_length = 64;
    const std::size_t spaces = count_spaces(text);
    const std::u16string_view rest = text.substr(spaces);
    const auto* const end = std::find_if_not(rest.begin(), rest.end(), may_stand_in_number);
    const auto length = static_cast<std::size_t>(end - rest.begin());

    ScannedDouble scanned;
    if (length <= ordinary_length) {
        char narrow[ordinary_length];
        std::copy(rest.begin(), end, narrow);
        scanned = scan_narrow_double({narrow, length});
    } else {
        scanned = ShortenedNumber(rest.substr(0, length)).scan();
    }
    if (scanned.length != 0) scanned.length += spaces;
    return scanned;
}

std::string print_double(double value, std::chars_format format, int precision) {
    constexpr std::size_t ordinary_frame = 24;
    constexpr std::size_t longest_frame = std::numeric_limits<double>::max_exponent10 + 8;
    std::string text(static_cast<std::size_t>(precision) + ordinary_frame, '\0');
    auto result = std::to_chars(text.data(), text.data() + text.size(), value, format, precision);
    if (result.ec != std::errc()) {
        text.resize(static_cast<std::size_t>(precision) + longest_frame);
        result = std::to_chars(text.data(), text.data() + text.size(), value, format, precision);
    }
    text.resize(static_cast<std::size_t>(result.ptr - text.data()));
    return text;
}

std::string format_significant(double value, int digits) {
    std::string text = print_double(value, std::chars_format::scientific, digits - 1);
    if (!std::isfinite(value)) return text;
    const std::size_t mark = text.find('e');
    const auto exponent = static_cast<int>(scan_exponent(std::string_view(text).substr(mark)));
    if (exponent < -4 || exponent >= digits) {
        if (digits == 1) text.insert(mark, 1, '.');
        return text;
    }
    text = print_double(value, std::chars_format::fixed, digits - 1 - exponent);
    if (exponent == digits - 1) text += '.';
    return text;
}

} // namespace pm
