#pragma once

#include <string>
#include <string_view>

namespace pm::kit::devices {

// The words that stand for a description's numbers; empty for a number that has none. Of bits the words of
// all that are set, with " + " between.
[[nodiscard]] std::string_view io_type_word(int type) noexcept;
[[nodiscard]] std::string_view line_type_word(int type) noexcept;
[[nodiscard]] std::string_view optimization_word(int level) noexcept;
[[nodiscard]] std::string_view feed_word(int feed) noexcept;
[[nodiscard]] std::string handshake_words(int bits);
[[nodiscard]] std::string duplexing_words(int bits);
[[nodiscard]] std::string selection_words(int bits);

} // namespace pm::kit::devices
