#include "filers/pia_frame.h"

#include "base/little_endian.h"
#include "codecs/zlib_block.h"
#include <cstdint>

namespace pm {

namespace {

const ZlibLayout& layout_of(bool checked) {
    return checked ? checked_layout : plain_layout;
}

} // namespace

bool bound_pia_frame(std::span<unsigned char> file, bool checked) {
    const ZlibLayout& layout = layout_of(checked);
    const std::size_t tag = find_zlib_tag(file);
    if (tag == file.size()) return true;

    const std::span<unsigned char> block = file.subspan(tag);
    if (!zlib_stream_fits(block, layout)) return false;
    const std::uint64_t most = most_expansion * load_u32(&block[layout.stream_length]);
    if (load_u32(&block[layout.length]) > most) {
        store_u32(&block[layout.length], static_cast<std::uint32_t>(most));
    }
    return true;
}

PiaFrame pia_frame_of(std::span<const unsigned char> file, bool checked) {
    const ZlibLayout& layout = layout_of(checked);
    const std::size_t tag = find_zlib_tag(file);
    if (tag == file.size()) return {};
    const std::span<const unsigned char> block = file.subspan(tag);
    return {load_u32(&block[layout.length]),
            block.subspan(layout.stream, load_u32(&block[layout.stream_length]))};
}

} // namespace pm
