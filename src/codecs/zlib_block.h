#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace pm {

inline constexpr std::string_view zlib_tag = "pmzlibcodec";

// Offsets from the tag; all words are unsigned, 32 bits, little-endian.
struct ZlibLayout {
    std::size_t length; // of the uncompressed data
    std::size_t stream_length;
    std::size_t stream;
};
inline constexpr ZlibLayout plain_layout{11, 15, 19};
inline constexpr ZlibLayout checked_layout{15, 19, 23};
inline constexpr std::size_t checksum_offset = 11; // checked form only

// Of deflate, bytes for a byte: no stream expands further.
inline constexpr std::uint64_t most_expansion = 1032;

// The checksum of a checked block: Adler-32.
std::uint32_t zlib_checksum(std::span<const unsigned char> stream);

// Where the first tag in front of any zero byte begins; the size of the data if there is none.
std::size_t find_zlib_tag(std::span<const unsigned char> data);

// Whether the header of this form and the stream that it tells lie inside a block, which begins with its tag.
bool zlib_stream_fits(std::span<const unsigned char> block, const ZlibLayout& layout);

// Whether the decoder of this form stays inside `data`, whatever it makes of it. The decoders know no size:
// ask this before giving them bytes from outside.
bool zlib_block_fits(std::span<const unsigned char> data, const ZlibLayout& layout);

} // namespace pm
