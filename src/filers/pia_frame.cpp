#include "filers/pia_frame.h"

#include "codecs/little_endian.h"
#include "codecs/zlib_block.h"
#include <algorithm>
#include <cstdint>

namespace pm {

namespace {

constexpr std::uint64_t most_expansion = 1032; // of deflate, bytes for a byte

void lower_to(unsigned char* word, std::uint64_t most) {
    if (load_u32(word) > most) store_u32(word, static_cast<std::uint32_t>(most));
}

} // namespace

static_assert(checked_layout.stream <= pia_frame_padding);

void bound_pia_frame(unsigned char* file, std::size_t size, bool checked) {
    unsigned char* const text_end = std::find(file, file + size, 0);
    unsigned char* const block = std::search(file, text_end, zlib_tag.begin(), zlib_tag.end());
    if (block == text_end) return;

    const ZlibLayout& layout = checked ? checked_layout : plain_layout;
    const auto block_size = static_cast<std::size_t>(file + size - block);
    lower_to(block + layout.stream_length, block_size - std::min(block_size, layout.stream));
    lower_to(block + layout.length, most_expansion * load_u32(block + layout.stream_length));
}

} // namespace pm
