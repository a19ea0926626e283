#include "filers/pia_frame.h"

#include "base/little_endian.h"
#include <algorithm>
#include <cstdint>
#include <string_view>

namespace pm {

namespace {

constexpr std::string_view tag = "pmzlibcodec";
constexpr std::size_t plain_header = 19;
constexpr std::size_t checked_header = 23;
constexpr std::size_t most_expansion = 1032;

} // namespace

std::size_t PiaFrame::written_size(std::size_t decoded_size) const {
    return std::min(decoded_size, most_expansion * stream.size());
}

std::optional<PiaFrame> find_pia_frame(std::span<const unsigned char> file, bool checked) {
    const auto end = std::find(file.begin(), file.end(), 0);
    const auto found = std::search(file.begin(), end, tag.begin(), tag.end());
    if (found == end) return std::nullopt;

    const auto block = file.subspan(static_cast<std::size_t>(found - file.begin()));
    const std::size_t header = checked ? checked_header : plain_header;
    if (block.size() < header) return std::nullopt;
    const std::size_t stream_size = read_le32(block.data() + header - sizeof(std::uint32_t));
    if (stream_size > block.size() - header) return std::nullopt;
    return PiaFrame{block.subspan(header, stream_size)};
}

} // namespace pm
