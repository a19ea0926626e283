#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

// The words for what descriptions and configurations keep as numbers and digits.
namespace pm::kit::report {

// What a number stands for; of the second group each bit stands for something.
enum class Code {
    io_type,
    parity,
    data_bits,
    stop_bits,
    dithering_type,
    renderer,
    media_group,
    feed,
    collating_type,
    stapling_location,
    stapling_time,
    folding_type,
    finishing_time, // of folding and cutting
    raster_orientation,
    color_system,
    optimization,
    line_type,
    data_type, // of a custom capability

    handshake_bit,
    status_bit,
    selection_bit,
    duplexing_bit
};

// "Network"; "unknown (9)" for a number that stands for nothing.
[[nodiscard]] std::string word(Code code, long number);
// A word for each bit that is set, one "unknown (0x...)" for those that stand for nothing; the word of 0 for
// 0.
[[nodiscard]] std::vector<std::string> words(Code code, long bits);
// The numbers that stand for something, rising.
[[nodiscard]] std::vector<long> numbers(Code code);
// ", " between.
[[nodiscard]] std::string joined(const std::vector<std::string>& words);

// A branch of a description with digits for what the device can do and for whose settings are whose.
struct Area {
    std::string_view node;
    std::string_view title;
    std::string_view abilities_item; // a digit each, 0 or marked
    std::span<const std::string_view>
        abilities; // what the digits tell, in order; empty where nothing is known
    std::span<const std::string_view> settings; // of `ui_owner`, a digit each
};
[[nodiscard]] std::span<const Area> areas();

// What the digits of `\io\method\<type>\abilities` tell.
[[nodiscard]] std::span<const std::string_view> method_abilities();

} // namespace pm::kit::report
