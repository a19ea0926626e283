#pragma once

// What text.h declares; included by it.

#include <cstddef>
#include <pm/detail/utf.h>
#include <pm/text.h>
#include <string>
#include <string_view>

namespace pm {

inline std::u16string to_utf16(std::string_view utf8) {
    std::u16string wide(utf8.size(), u'\0');
    wide.resize(detail::decode_utf8(utf8, detail::Malformed::replace, wide.data()));
    return wide;
}

inline std::string to_utf8(std::u16string_view wide) {
    std::string utf8(wide.size(), '\0');
    std::size_t at = 0;
    for (; at < wide.size() && wide[at] < 0x80; ++at) {
        utf8[at] = static_cast<char>(wide[at]);
    }
    if (at == wide.size()) return utf8;
    utf8.resize(at);
    while (at < wide.size()) {
        detail::append_utf8(detail::next_code_point(wide, at), utf8);
    }
    return utf8;
}

inline std::u16string file_name_to_utf16(std::string_view bytes) {
    std::u16string wide(bytes.size(), u'\0');
    wide.resize(detail::decode_utf8(bytes, detail::Malformed::escape, wide.data()));
    return wide;
}

inline std::string file_name_to_utf8(std::u16string_view wide) {
    std::string bytes;
    bytes.reserve(wide.size());
    for (std::size_t at = 0; at < wide.size();) {
        const char32_t code_point = detail::next_code_point(wide, at);
        if (code_point >= 0xDC80 && code_point <= 0xDCFF) {
            bytes += static_cast<char>(code_point & 0xFF);
        } else {
            detail::append_utf8(code_point, bytes);
        }
    }
    return bytes;
}

} // namespace pm
