#include "base/little_endian.h"
#include "codecs/huffman_block.h"
#include "codecs/zlib_block.h"
#include <algorithm>
#include <pm/codec.h>

namespace {

using Bytes = std::span<const unsigned char>;

Bytes bytes_at(const void* data, std::size_t size) {
    return {static_cast<const unsigned char*>(data), data != nullptr ? size : 0};
}

bool begins_with(Bytes data, std::string_view tag) {
    return data.size() >= tag.size() && std::equal(tag.begin(), tag.end(), data.begin());
}

} // namespace

PM_Block_Frame pm_zlib_block_frame(const void* data, std::size_t size, bool checked) {
    const Bytes bytes = bytes_at(data, size);
    const std::size_t tag = pm::find_zlib_tag(bytes);
    if (tag == bytes.size()) return PM_BLOCK_MISSING;
    const Bytes block = bytes.subspan(tag);
    const pm::ZlibLayout& layout = checked ? pm::checked_layout : pm::plain_layout;
    if (!pm::zlib_stream_fits(block, layout)) return PM_BLOCK_CUT;
    const std::uint64_t most = pm::most_expansion * pm::load_u32(&block[layout.stream_length]);
    return pm::load_u32(&block[layout.length]) <= most ? PM_BLOCK_FITS : PM_BLOCK_TOO_LARGE;
}

PM_Block_Frame pm_huffman_block_frame(const void* data, std::size_t size) {
    const Bytes block = bytes_at(data, size);
    if (!begins_with(block, pm::huffman_tag)) return PM_BLOCK_MISSING;
    return pm::huffman_block_fits(block) ? PM_BLOCK_FITS : PM_BLOCK_CUT;
}

bool pm_zlib_block_fits(const void* data, std::size_t size, bool checked) {
    return pm_zlib_block_frame(data, size, checked) == PM_BLOCK_FITS;
}

bool pm_huffman_block_fits(const void* data, std::size_t size) {
    return pm_huffman_block_frame(data, size) == PM_BLOCK_FITS;
}
