#include "block_frame.h"

#include "failure.h"
#include "little_endian.h"
#include <cstdint>
#include <pm/error_number.h>

namespace pmtool {

namespace {

constexpr std::string_view zlib_tag = "pmzlibcodec";
constexpr std::size_t plain_lengths = 11;
constexpr std::size_t checked_lengths = 15;
constexpr std::size_t words = 8;
// No deflate stream expands further.
constexpr std::uint64_t most_expansion = 1032;

constexpr std::string_view huffman_tag = "pmhuffcodec";
constexpr std::size_t huffman_bit_count = 1035;
constexpr std::size_t huffman_bits = 1039;

const char* const too_short = "the block is longer than the file";

} // namespace

std::string zlib_frame_trouble(std::string_view data, bool checked) {
    // The decoder looks for the tag as in a text, which ends at the first zero.
    const std::size_t start = data.substr(0, data.find('\0')).find(zlib_tag);
    if (start == std::string_view::npos) return number_text(PM_ERR_NO_BLOCK);
    const std::string_view block = data.substr(start);
    const std::size_t lengths = checked ? checked_lengths : plain_lengths;
    if (block.size() < lengths + words) return too_short;
    const std::uint64_t length = little_endian(block, lengths);
    const std::uint64_t stream = little_endian(block, lengths + 4);
    if (stream > block.size() - lengths - words) return too_short;
    if (length > stream * most_expansion) return "the block announces more data than it can hold";
    return {};
}

std::string huffman_frame_trouble(std::string_view data, bool) {
    if (!data.starts_with(huffman_tag)) return number_text(PM_ERR_NO_BLOCK);
    if (data.size() < huffman_bits) return too_short;
    const std::uint64_t bits = little_endian(data, huffman_bit_count);
    if (bits / 8 + 1 > data.size() - huffman_bits) return too_short;
    return {};
}

} // namespace pmtool
