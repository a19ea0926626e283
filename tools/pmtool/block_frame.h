#pragma once

#include <string>
#include <string_view>

namespace pmtool {

// What is wrong with the frame of a block against the size of the data, empty if nothing is. Decoders trust
// the lengths in a block, so that only sound frames may be given to them.
std::string zlib_frame_trouble(std::string_view data, bool checked);
std::string huffman_frame_trouble(std::string_view data, bool checked);

} // namespace pmtool
