#pragma once

#include "platform/code_page.h"
#include <string>

namespace pm::test {

inline std::string every_byte(unsigned first, unsigned last) {
    std::string bytes;
    for (unsigned byte = first; byte <= last; ++byte) {
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

// The characters of a narrow text by their lengths.
inline std::string character_lengths(unsigned code_page_number, const char* text) {
    const CodePage& page = code_page(code_page_number);
    std::string all;
    for (; *text != '\0'; text += page.character_length(text)) {
        all += static_cast<char>('0' + page.character_length(text));
    }
    return all;
}

} // namespace pm::test
