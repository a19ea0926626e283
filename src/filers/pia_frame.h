#pragma once

#include <cstddef>

namespace pm {

// Zero bytes that bound_pia_frame() and the codec need behind a file.
inline constexpr std::size_t pia_frame_padding = 32;

// Corrects the lengths of the zlib block in a file before the codec, which trusts them, reads it: the stream
// ends where the file does, and decodes to no more than a stream of its length can. A true length stays. The
// block is the one behind the first "pmzlibcodec" that stands in front of any zero byte; a file without it
// is left alone. `checked` tells which of the two block forms it has.
//
// `pia_frame_padding` zero bytes stand behind the `size` bytes; they may be changed.
void bound_pia_frame(unsigned char* file, std::size_t size, bool checked);

} // namespace pm
