#include <pm/zt_string.h>

#include "base/text.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <utility>

namespace {

// One conversion of a format text: its letters, and what of it the argument list still holds.
struct Conversion {
    std::string narrow = "%";
    bool left = false;
    int width = 0;
    int precision = -1;
    int longs = 0;
    char16_t letter = 0;
};

int take_number(const char16_t*& at, std::va_list* arguments) {
    if (*at == u'*') {
        ++at;
        return va_arg(*arguments, int);
    }
    int number = 0;
    for (; pm::is_digit(*at); ++at)
        number = number * 10 + (*at - u'0');
    return number;
}

Conversion take_conversion(const char16_t*& at, std::va_list* arguments) {
    Conversion conversion;
    for (; *at != 0 && std::u16string_view(u"-+ #0").find(*at) != std::u16string_view::npos; ++at) {
        conversion.left = conversion.left || *at == u'-';
        conversion.narrow += static_cast<char>(*at);
    }
    conversion.width = take_number(at, arguments);
    if (conversion.width < 0) {
        conversion.left = true;
        conversion.width = -conversion.width;
        conversion.narrow += '-';
    }
    if (*at == u'.') conversion.precision = take_number(++at, arguments);
    for (; *at == u'l'; ++at)
        ++conversion.longs;
    if (*at != 0) conversion.letter = *at++;
    return conversion;
}

template<class Value>
void append_number(std::u16string& out, const Conversion& conversion, const char* length, Value value) {
    std::string format = conversion.narrow;
    if (conversion.width > 0) format += std::to_string(conversion.width);
    if (conversion.precision >= 0) format += '.' + std::to_string(conversion.precision);
    format += length;
    format += static_cast<char>(conversion.letter);
    const int size = std::snprintf(nullptr, 0, format.c_str(), value);
    std::string text(static_cast<std::size_t>(std::max(size, 0)) + 1, '\0');
    std::snprintf(text.data(), text.size(), format.c_str(), value);
    text.pop_back();
    pm::append_ascii(out, text);
}

void append_padded(std::u16string& out, const Conversion& conversion, std::u16string_view text) {
    const auto width = static_cast<std::size_t>(conversion.width);
    const std::size_t blanks = width > text.size() ? width - text.size() : 0;
    if (!conversion.left) out.append(blanks, u' ');
    out.append(text);
    if (conversion.left) out.append(blanks, u' ');
}

// snprintf writes the process locale's point; texts of this library always have ".".
void append_double(std::u16string& out, const Conversion& conversion, double value) {
    std::u16string text;
    append_number(text, conversion, "", value);
    const auto comma = std::find_if(text.begin(), text.end(), [](char16_t unit) {
        return !pm::is_digit(unit) && !pm::is_letter(unit) &&
               std::u16string_view(u"+- .").find(unit) == std::u16string_view::npos;
    });
    if (comma != text.end()) *comma = u'.';
    out += text;
}

void append_integer(std::u16string& out, const Conversion& conversion, std::va_list* arguments) {
    if (conversion.longs == 0) {
        append_number(out, conversion, "", va_arg(*arguments, int));
    } else if (conversion.longs == 1) {
        append_number(out, conversion, "l", va_arg(*arguments, long));
    } else {
        append_number(out, conversion, "ll", va_arg(*arguments, long long));
    }
}

void append_conversion(std::u16string& out, const Conversion& conversion, std::va_list* arguments) {
    const auto limit = static_cast<std::size_t>(std::max(conversion.precision, -1));
    switch (conversion.letter) {
    case u's':
        append_padded(out, conversion, pm::view(va_arg(*arguments, const char16_t*)).substr(0, limit));
        break;
    case u'c': {
        const auto unit = static_cast<char16_t>(va_arg(*arguments, int));
        append_padded(out, conversion, {&unit, 1});
        break;
    }
    case u'd':
    case u'i':
    case u'u':
    case u'x':
    case u'X':
    case u'o':
        append_integer(out, conversion, arguments);
        break;
    case u'f':
    case u'e':
    case u'g':
    case u'F':
    case u'E':
    case u'G':
        append_double(out, conversion, va_arg(*arguments, double));
        break;
    default:
        if (conversion.letter != 0) out += conversion.letter;
    }
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
    copy(other);
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
        ++at;
        append_conversion(out, take_conversion(at, &arguments), &arguments);
    }
    va_end(arguments);
    copy(out.c_str());
}
