#pragma once

#include <span>

namespace pm {

// Checks the lengths of the zlib block in a file before the codec, which trusts them, reads it. False if the
// block goes beyond the file. A decoded length that no stream of this size can have is lowered to what it
// can, so that a claim takes no memory: what lies behind would be zero.
//
// The block is the one behind the first "pmzlibcodec" that stands in front of any zero byte; a file without
// it is left to the codec. `checked` tells which of the two block forms it has.
[[nodiscard]] bool bound_pia_frame(std::span<unsigned char> file, bool checked);

} // namespace pm
