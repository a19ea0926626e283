#pragma once

#include "base/allocator.h"
#include "codecs/inflate_reader.h"
#include "filers/line_reader.h"
#include <cstddef>
#include <optional>
#include <pm/error_handler.h>

namespace pm {

// A whole file in one block with a zero byte behind; no block without memory.
struct FileBlock {
    Block<unsigned char> bytes;
    std::size_t size = 0;
};

// The body of a compressed file. One that may expand to more than `largest_held` bytes is expanded twice, a
// first time to know that it is whole, and never held.
class CompressedBody {
public:
    static constexpr std::size_t largest_held = std::size_t{16} << 20;

    // `checked` tells which of the two block forms the file has.
    CompressedBody(FileBlock file, bool checked) : m_file(std::move(file)), m_checked(checked) {}

    // Points the reader at the body's text, which belongs to this object. False for a body that doesn't
    // decode; the handler, which may be null, has then heard of the codec's number, unless the block goes
    // beyond the file.
    [[nodiscard]] bool attach_to(LineReader& reader, ZT_Error_Handler* handler);

private:
    bool attach_held(LineReader& reader, ZT_Error_Handler* handler);
    bool attach_expanding(LineReader& reader, ZT_Error_Handler* handler);

    FileBlock m_file;
    bool m_checked;
    Block<unsigned char> m_text;
    std::optional<InflateReader> m_source;
};

} // namespace pm
