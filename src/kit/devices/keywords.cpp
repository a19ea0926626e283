#include "devices/keywords.h"
#include <array>
#include <span>

namespace pm::kit::devices {

namespace {

struct Bit {
    int value;
    std::string_view word;
};

constexpr std::array<std::string_view, 7> io_types{"None",  "Does_Own_IO", "File",   "System",
                                                   "RS232", "Parallel",    "Network"};
constexpr std::array<std::string_view, 18> line_types{"Solid",
                                                      "Dashed",
                                                      "Dotted",
                                                      "Dash_Dot",
                                                      "Short_Dash",
                                                      "Medium_Dash",
                                                      "Long_Dash",
                                                      "Short_Dash_X2",
                                                      "Medium_Dash_X2",
                                                      "Long_Dash_X2",
                                                      "Medium_Long_Dash",
                                                      "Medium_Dash_Short_Dash_Short_Dash",
                                                      "Long_Dash_Short_Dash",
                                                      "Long_Dash_Dot_Dot",
                                                      "Long_Dash_Dot",
                                                      "Medium_Dash_Dot_Short_Dash_Dot",
                                                      "Sparse_Dot",
                                                      "User_Defined"};
// One of them is spelled so.
constexpr std::array<std::string_view, 7> optimizations{
    "No Optimizations",
    "Endpoint Swap",
    "Pen Sorting",
    "Limited Motion Optimzation",
    "Full Motion Optimization",
    "Elimination of Overlapped Horizontal and Vertical Vectors",
    "Elimination of Overlapped Diagonal Vectors"};
constexpr std::array<std::string_view, 4> feeds{"None", "ManualSheet", "SheetFeeder", "RollFeeder"};
constexpr std::array<Bit, 12> handshakes{{{0x1, "fXIn"},
                                          {0x2, "fXOut"},
                                          {0x4, "Cts"},
                                          {0x8, "Rts_Disable"},
                                          {0x10, "Rts_Enable"},
                                          {0x20, "Rts_Handshake"},
                                          {0x40, "Rts_Toggle"},
                                          {0x80, "Dtr_Disable"},
                                          {0x100, "Dtr_Enable"},
                                          {0x200, "Dtr_Handshake"},
                                          {0x400, "Dsr"},
                                          {0x800, "Rlsd"}}};
constexpr std::array<Bit, 3> duplexing_modes{{{0x1, "None"}, {0x2, "Long"}, {0x4, "Short"}}};
constexpr std::array<Bit, 2> selection_methods{
    {{0x1, "MediaSizeByMediaSource"}, {0x2, "MediaSizeByMediaSize"}}};

std::string_view word(std::span<const std::string_view> words, int number) noexcept {
    return number >= 0 && static_cast<std::size_t>(number) < words.size()
               ? words[static_cast<std::size_t>(number)]
               : std::string_view();
}

std::string words(std::span<const Bit> table, int bits) {
    std::string text;
    for (const Bit& bit : table) {
        if ((bits & bit.value) == 0) continue;
        if (!text.empty()) text += " + ";
        text += bit.word;
    }
    return text;
}

} // namespace

std::string_view io_type_word(int type) noexcept {
    return word(io_types, type);
}
std::string_view line_type_word(int type) noexcept {
    return word(line_types, type);
}
std::string_view optimization_word(int level) noexcept {
    return word(optimizations, level);
}
std::string_view feed_word(int feed) noexcept {
    return word(feeds, feed);
}
std::string handshake_words(int bits) {
    return bits == 0 ? "None" : words(handshakes, bits);
}
std::string duplexing_words(int bits) {
    return words(duplexing_modes, bits);
}
std::string selection_words(int bits) {
    return words(selection_methods, bits);
}

} // namespace pm::kit::devices
