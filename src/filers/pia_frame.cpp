#include "filers/pia_frame.h"

#include "base/little_endian.h"
#include "codecs/zlib_block.h"
#include <cstdint>

namespace pm {

bool bound_pia_frame(std::span<unsigned char> file, bool checked) {
    const ZlibLayout& layout = checked ? checked_layout : plain_layout;
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

} // namespace pm
