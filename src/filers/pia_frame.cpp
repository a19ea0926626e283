#include "filers/pia_frame.h"

#include "base/little_endian.h"
#include "codecs/zlib_block.h"
#include <algorithm>
#include <cstdint>

namespace pm {

namespace {

constexpr std::uint64_t most_expansion = 1032; // of deflate, bytes for a byte

} // namespace

bool bound_pia_frame(std::span<unsigned char> file, bool checked) {
    const ZlibLayout& layout = checked ? checked_layout : plain_layout;
    const auto text_end = std::find(file.begin(), file.end(), 0);
    const auto tag = std::search(file.begin(), text_end, zlib_tag.begin(), zlib_tag.end());
    if (tag == text_end) return true;

    const auto block = file.subspan(static_cast<std::size_t>(tag - file.begin()));
    if (block.size() < layout.stream) return false;
    const std::uint64_t stream_length = load_u32(&block[layout.stream_length]);
    if (stream_length > block.size() - layout.stream) return false;
    const std::uint64_t most = most_expansion * stream_length;
    if (load_u32(&block[layout.length]) > most) {
        store_u32(&block[layout.length], static_cast<std::uint32_t>(most));
    }
    return true;
}

} // namespace pm
