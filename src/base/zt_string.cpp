#include <pm/zt_string.h>

#include "base/text.h"
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <utility>

namespace {

// One conversion of a format text, such as "%-08.3lf".
struct Conversion {
    std::string flags = "%"; // as they stand
    bool width_from_argument = false;
    bool precision_from_argument = false;
    int width = 0;
    int precision = -1; // negative: none
    int longs = 0;
    char16_t letter = 0; // 0 if the text ends before it

    bool has(char flag) const { return flags.find(flag) != std::string::npos; }
    bool is_one_of(std::u16string_view letters) const {
        return letter != 0 && letters.find(letter) != letters.npos;
    }
    void set_width(int given);
};

// Wider than any text of use, and small enough to add up.
constexpr int widest = 1'000'000;

void Conversion::set_width(int given) {
    if (given < 0) flags += '-';
    width = given < 0 ? -std::max(given, -widest) : std::min(given, widest);
}

int take_number(const char16_t*& at) {
    int number = 0;
    for (; pm::is_digit(*at); ++at) {
        number = std::min(number * 10 + (*at - u'0'), widest);
    }
    return number;
}

bool take_star(const char16_t*& at) {
    const bool star = *at == u'*';
    if (star) ++at;
    return star;
}

// `at` stands behind the "%", and then behind the conversion.
Conversion take_conversion(const char16_t*& at) {
    Conversion conversion;
    for (; *at != 0 && std::u16string_view(u"-+ #0").find(*at) != std::u16string_view::npos; ++at) {
        conversion.flags += static_cast<char>(*at);
    }
    conversion.width_from_argument = take_star(at);
    if (!conversion.width_from_argument) conversion.width = take_number(at);
    if (*at == u'.') {
        conversion.precision_from_argument = take_star(++at);
        if (!conversion.precision_from_argument) conversion.precision = take_number(at);
    }
    for (; *at == u'l'; ++at) {
        ++conversion.longs;
    }
    if (*at != 0) conversion.letter = *at++;
    return conversion;
}

void append_padded(std::u16string& out, const Conversion& conversion, std::u16string_view text) {
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t blanks = width > text.size() ? width - text.size() : 0;
    if (!conversion.has('-')) out.append(blanks, u' ');
    out.append(text);
    if (conversion.has('-')) out.append(blanks, u' ');
}

void append_text(std::u16string& out, const Conversion& conversion, const char16_t* text) {
    const std::size_t limit =
        conversion.precision < 0 ? std::u16string_view::npos : static_cast<std::size_t>(conversion.precision);
    append_padded(out, conversion, pm::view(text).substr(0, limit));
}

// `value` has the bits of the argument.
void append_integer(std::u16string& out, const Conversion& conversion, long long value) {
    if (!conversion.is_one_of(u"di")) {
        if (conversion.longs == 0) value = static_cast<unsigned>(value);
        if (conversion.longs == 1) value = static_cast<long long>(static_cast<unsigned long>(value));
    }
    const std::string format = conversion.flags + "*.*ll" + static_cast<char>(conversion.letter);
    const int size = std::snprintf(nullptr, 0, format.c_str(), conversion.width, conversion.precision, value);
    std::string text(static_cast<std::size_t>(size) + 1, '\0');
    std::snprintf(text.data(), text.size(), format.c_str(), conversion.width, conversion.precision, value);
    text.pop_back();
    pm::append_ascii(out, text);
}

std::string format_magnitude(const Conversion& conversion, double value) {
    const int precision = conversion.precision < 0 ? 6 : conversion.precision;
    if (conversion.is_one_of(u"gG")) {
        return conversion.has('#') ? pm::format_significant(value, std::max(precision, 1))
                                   : pm::print_double(value, std::chars_format::general, precision);
    }
    const bool fixed = conversion.is_one_of(u"fF");
    std::string text =
        pm::print_double(value, fixed ? std::chars_format::fixed : std::chars_format::scientific, precision);
    if (conversion.has('#') && precision == 0 && std::isfinite(value)) {
        text.insert(std::min(text.find('e'), text.size()), 1, '.');
    }
    return text;
}

// The point is that of the C locale, whatever the process's locale is.
void append_double(std::u16string& out, const Conversion& conversion, double value) {
    std::string text = std::signbit(value) ? "-" : conversion.has('+') ? "+" : conversion.has(' ') ? " " : "";
    const std::size_t sign = text.size();
    text += format_magnitude(conversion, std::abs(value));
    if (conversion.is_one_of(u"FEG")) {
        for (char& c : text) {
            if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        }
    }
    const auto width = static_cast<std::size_t>(conversion.width);
    if (conversion.has('0') && !conversion.has('-') && std::isfinite(value) && text.size() < width) {
        text.insert(sign, width - text.size(), '0');
    }
    append_padded(out, conversion, std::u16string(text.begin(), text.end()));
}

} // namespace

ZT_String::ZT_String(const char16_t* text) {
    copy(text);
}

ZT_String::ZT_String(const ZT_String& other) {
    copy(other);
}

ZT_String::ZT_String(ZT_String&& other) noexcept
    : m_text(std::exchange(other.m_text, nullptr)), m_length(std::exchange(other.m_length, -1)) {}

ZT_String& ZT_String::operator=(const ZT_String& other) {
    if (this != &other) copy(other);
    return *this;
}

ZT_String& ZT_String::operator=(ZT_String&& other) noexcept {
    std::swap(m_text, other.m_text);
    std::swap(m_length, other.m_length);
    return *this;
}

ZT_String::~ZT_String() {
    delete[] m_text;
}

void ZT_String::copy(const char16_t* text) {
    const std::u16string_view whole = pm::view(text);
    assign(whole.data(), whole.size());
}

void ZT_String::copy(const ZT_String& other) {
    if (this == &other) return;
    if (other.m_length < 0) {
        *this = ZT_String();
        return;
    }
    assign(other.m_text, static_cast<std::size_t>(other.m_length));
}

void ZT_String::assign(const char16_t* text, std::size_t length) {
    auto block = std::make_unique<char16_t[]>(length + 1);
    std::copy_n(text, length, block.get());
    delete[] std::exchange(m_text, block.release());
    m_length = static_cast<std::int32_t>(length);
}

ZT_String ZT_String::operator+(const char16_t* tail) const {
    std::u16string whole(text());
    whole += pm::view(tail);
    return ZT_String(whole.c_str());
}

ZT_String ZT_String::operator+(const ZT_String& tail) const {
    return *this + tail.text();
}

void ZT_String::Format(const char16_t* format, ...) {
    std::u16string out;
    std::va_list arguments;
    va_start(arguments, format);
    for (const char16_t* at = pm::or_empty(format); *at != 0;) {
        if (*at != u'%') {
            out += *at++;
            continue;
        }
        Conversion conversion = take_conversion(++at);
        if (conversion.width_from_argument) conversion.set_width(va_arg(arguments, int));
        if (conversion.precision_from_argument) {
            conversion.precision = std::min(va_arg(arguments, int), widest);
        }
        if (conversion.letter == u's') {
            append_text(out, conversion, va_arg(arguments, const char16_t*));
        } else if (conversion.letter == u'c') {
            const auto unit = static_cast<char16_t>(va_arg(arguments, int));
            append_padded(out, conversion, {&unit, 1});
        } else if (conversion.is_one_of(u"diuxXo")) {
            const long long value = conversion.longs == 0   ? va_arg(arguments, int)
                                    : conversion.longs == 1 ? va_arg(arguments, long)
                                                            : va_arg(arguments, long long);
            append_integer(out, conversion, value);
        } else if (conversion.is_one_of(u"fFeEgG")) {
            append_double(out, conversion, va_arg(arguments, double));
        } else if (conversion.letter != 0) {
            out += conversion.letter;
        }
    }
    va_end(arguments);
    copy(out.c_str());
}
