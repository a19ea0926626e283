#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace pm {

// The lengths of a zlib block that stands in a file, checked against the file's real size: the codec trusts
// them.
struct PiaFrame {
    std::span<const unsigned char> stream;

    // Bytes of a decoded block of the given size that the stream can have written: deflate expands at most
    // 1032 to 1. What lies behind them is zero.
    std::size_t written_size(std::size_t decoded_size) const;
};

// The frame behind the first "pmzlibcodec" of a zero-terminated file; nothing if there is none or if it
// doesn't fit into the file. `checked` tells which of the two block forms it has.
std::optional<PiaFrame> find_pia_frame(std::span<const unsigned char> file, bool checked);

} // namespace pm
