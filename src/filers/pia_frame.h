#pragma once

#include <cstdint>
#include <span>

namespace pm {

// Checks the lengths of the zlib block in a file before the codec, which trusts them, reads it. False if the
// block goes beyond the file. A decoded length that no stream of this size can have is lowered to what it
// can, so that a claim takes no memory: what lies behind would be zero.
//
// The block is the one behind the first "pmzlibcodec" that stands in front of any zero byte; a file without
// it is left to the codec. `checked` tells which of the two block forms it has.
[[nodiscard]] bool bound_pia_frame(std::span<unsigned char> file, bool checked);

// The block of a file that was bounded.
struct PiaFrame {
    std::uint32_t length = 0; // what the stream may expand to; 0 for a file without a block
    std::span<const unsigned char> stream;
};
PiaFrame pia_frame_of(std::span<const unsigned char> file, bool checked);

} // namespace pm
