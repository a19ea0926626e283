#include "devices/number_words.h"
#include "keywords.h"

namespace pm::kit::devices {

namespace {

std::string_view word(keywords::Words words, int number) noexcept {
    return number >= 0 && static_cast<std::size_t>(number) < words.size()
               ? words[static_cast<std::size_t>(number)]
               : std::string_view();
}

// Of keywords such as "Cts = 0x4", each twice the one before, the first of which is 1.
std::string words(keywords::Words table, int bits) {
    std::string text;
    int bit = 1;
    for (const std::string_view keyword : table) {
        if ((bits & bit) != 0) {
            if (!text.empty()) text += " + ";
            text += keyword.substr(0, keyword.find(" = "));
        }
        bit <<= 1;
    }
    return text;
}

} // namespace

std::string_view io_type_word(int type) noexcept {
    return word(keywords::io_types, type);
}
std::string_view line_type_word(int type) noexcept {
    return word(keywords::line_types, type);
}
std::string_view optimization_word(int level) noexcept {
    return word(keywords::optimizations, level);
}
std::string_view feed_word(int feed) noexcept {
    return word(keywords::feeds, feed);
}
std::string handshake_words(int bits) {
    const auto none = keywords::handshakes.front();
    return bits == 0 ? std::string(none) : words(keywords::handshakes.subspan(1), bits);
}
std::string duplexing_words(int bits) {
    return words(keywords::duplexing_modes, bits);
}
std::string selection_words(int bits) {
    return words(keywords::selection_methods, bits);
}

} // namespace pm::kit::devices
