#include "filers/compressed_body.h"

#include "codecs/codec_failure.h"
#include "filers/pia_frame.h"
#include <pm/codec.h>
#include <span>
#include <string_view>

namespace pm {

namespace {

// Raises what the stream's end, or its failure, raises.
void read_to_end(InflateReader& source) {
    char scratch[32768];
    while (source.read(scratch) == sizeof scratch) {
    }
}

} // namespace

bool CompressedBody::attach_to(LineReader& reader, ZT_Error_Handler* handler) {
    const std::span<unsigned char> file(m_file.bytes.get(), m_file.size);
    if (!bound_pia_frame(file, m_checked)) return false;
    const bool held = pia_frame_of(file, m_checked).length <= largest_held;
    return held ? attach_held(reader, handler) : attach_expanding(reader, handler);
}

bool CompressedBody::attach_held(LineReader& reader, ZT_Error_Handler* handler) {
    PM_zlib_Codec codec(m_file.bytes.get(), static_cast<std::uint32_t>(m_file.size), handler);
    unsigned char* text = nullptr;
    std::uint32_t size = 0;
    if (!(m_checked ? codec.decodeCRC(text, size) : codec.decode(text, size))) return false;
    m_text.reset(text);
    m_file = {};
    reader.attach(std::string_view(reinterpret_cast<const char*>(text), size));
    return true;
}

bool CompressedBody::attach_expanding(LineReader& reader, ZT_Error_Handler* handler) {
    const PiaFrame frame = pia_frame_of({m_file.bytes.get(), m_file.size}, m_checked);
    const bool whole = run_guarded(handler, [&] {
        m_source.emplace(frame.stream, frame.length);
        read_to_end(*m_source);
        m_source->rewind();
    });
    if (whole) reader.attach(*m_source);
    return whole;
}

} // namespace pm
