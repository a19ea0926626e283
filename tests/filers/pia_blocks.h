#pragma once

#include <stdexcept>
#include <string>
#include <zlib.h>

namespace pm::test {

// Blocks as they stand in compressed files, made without the library's codec.

inline std::string word(std::uint32_t value) {
    std::string bytes;
    for (int byte = 0; byte < 4; ++byte)
        bytes += static_cast<char>(value >> (8 * byte));
    return bytes;
}

inline std::string deflated(const std::string& text, int level = 9) {
    const auto text_size = static_cast<uLong>(text.size());
    uLongf size = compressBound(text_size);
    std::string stream(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(stream.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
                  text_size, level) != Z_OK) {
        throw std::runtime_error("zlib refuses");
    }
    stream.resize(size);
    return stream;
}

struct Block {
    bool checked = true;
    std::uint32_t check = 0;
    std::uint32_t length = 0;
    std::uint32_t stream_length = 0;
    std::string stream;

    std::string bytes() const {
        return "pmzlibcodec" + (checked ? word(check) : "") + word(length) + word(stream_length) + stream;
    }
};

inline Block block_of(const std::string& text, bool checked = true, int level = 9) {
    Block block;
    block.checked = checked;
    block.stream = deflated(text, level);
    block.length = static_cast<std::uint32_t>(text.size());
    block.stream_length = static_cast<std::uint32_t>(block.stream.size());
    block.check = static_cast<std::uint32_t>(
        adler32(1, reinterpret_cast<const Bytef*>(block.stream.data()), block.stream_length));
    return block;
}

} // namespace pm::test
