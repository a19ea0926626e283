#include "base/little_endian.h"
#include "codecs/codec_failure.h"
#include "codecs/zlib_block.h"
#include <algorithm>
#include <cstring>
#include <limits>
#include <pm/codec.h>
#include <pm/error_number.h>
#include <zlib.h>

namespace pm {

namespace {

constexpr int window_bits = 15;
constexpr int memory_level = 8;

// A zlib stream that is ended once: by finish(), which tells a failure, or by the destructor, which doesn't.
class ZlibStream {
public:
    using End = int (*)(z_streamp);

    ZlibStream(End end, PM_Error_Number stop) : m_end(end), m_stop(stop) {}
    ~ZlibStream() {
        if (m_started) m_end(&m_state);
    }
    ZlibStream(const ZlibStream&) = delete;
    ZlibStream& operator=(const ZlibStream&) = delete;

    template<class Start>
    void start(Start start, PM_Error_Number failure) {
        if (start(&m_state) != Z_OK) throw_codec_failure(failure);
        m_started = true;
    }
    // Gives the bytes written to `out`.
    std::uint32_t run(int (*step)(z_streamp, int), const unsigned char* in, std::uint32_t in_size,
                      unsigned char* out, std::uint32_t out_size, PM_Error_Number failure) {
        m_state.next_in = const_cast<unsigned char*>(in); // zlib doesn't write there
        m_state.avail_in = in_size;
        m_state.next_out = out;
        m_state.avail_out = out_size;
        if (step(&m_state, Z_FINISH) != Z_STREAM_END) throw_codec_failure(failure);
        return out_size - m_state.avail_out;
    }
    void finish() {
        m_started = false;
        if (m_end(&m_state) != Z_OK) throw_codec_failure(m_stop);
    }

private:
    z_stream m_state{};
    End m_end;
    PM_Error_Number m_stop;
    bool m_started = false;
};

// Room for the stream. Single precision and both wrap-arounds at 32 bits are kept: the sizes at which
// encoding fails depend on them.
std::uint32_t stream_bound(std::uint32_t size) {
    const float padded = static_cast<float>(size + 12U);
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(padded * 1.1f));
}

std::uint32_t block_size(std::size_t header, std::uint32_t stream_length) {
    if (stream_length > std::numeric_limits<std::uint32_t>::max() - header) {
        throw_codec_failure(PM_ERR_DEFLATE);
    }
    return static_cast<std::uint32_t>(header + stream_length);
}

void write_block(unsigned char* out, const ZlibLayout& layout, std::uint32_t length,
                 std::span<const unsigned char> stream) {
    std::copy(zlib_tag.begin(), zlib_tag.end(), out);
    if (layout.length != checksum_offset) store_u32(out + checksum_offset, zlib_checksum(stream));
    store_u32(out + layout.length, length);
    store_u32(out + layout.stream_length, static_cast<std::uint32_t>(stream.size()));
    std::copy(stream.begin(), stream.end(), out + layout.stream);
}

// Reads nothing behind the tag or the first zero byte: `data` need not end with one.
const unsigned char* find_tag(const unsigned char* data) {
    for (; data != nullptr && *data != 0; ++data) {
        if (std::strncmp(reinterpret_cast<const char*>(data), zlib_tag.data(), zlib_tag.size()) == 0) {
            return data;
        }
    }
    throw_codec_failure(PM_ERR_NO_BLOCK);
}

} // namespace

std::uint32_t zlib_checksum(std::span<const unsigned char> stream) {
    constexpr std::uint32_t modulus = 65521;
    constexpr std::size_t run = 5552; // bytes after which the sums may leave 32 bits
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    while (!stream.empty()) {
        const auto part = stream.first(std::min(run, stream.size()));
        for (const unsigned char byte : part) {
            a += byte;
            b += a;
        }
        a %= modulus;
        b %= modulus;
        stream = stream.subspan(part.size());
    }
    return b << 16 | a;
}

std::size_t find_zlib_tag(std::span<const unsigned char> data) {
    const auto end = std::find(data.begin(), data.end(), static_cast<unsigned char>(0));
    const auto tag = std::search(data.begin(), end, zlib_tag.begin(), zlib_tag.end());
    return tag == end ? data.size() : static_cast<std::size_t>(tag - data.begin());
}

bool zlib_stream_fits(std::span<const unsigned char> block, const ZlibLayout& layout) {
    return block.size() >= layout.stream &&
           block.size() - layout.stream >= load_u32(block.data() + layout.stream_length);
}

bool zlib_block_fits(std::span<const unsigned char> data, const ZlibLayout& layout) {
    const std::size_t tag = find_zlib_tag(data);
    if (tag < data.size()) return zlib_stream_fits(data.subspan(tag), layout);
    // The search for the tag ends at a zero byte.
    return std::find(data.begin(), data.end(), static_cast<unsigned char>(0)) != data.end();
}

} // namespace pm

PM_zlib_Codec::PM_zlib_Codec(const unsigned char* data, std::uint32_t size,
                             ZT_Error_Handler* handler) noexcept
    : m_input(data), m_input_size(size), m_handler(handler) {}

PM_zlib_Codec::~PM_zlib_Codec() = default;

bool PM_zlib_Codec::encode(unsigned char*& out, std::uint32_t& out_size) {
    return pm::run_guarded(m_handler, [&] { encode_block(pm::plain_layout, out, out_size); });
}

bool PM_zlib_Codec::encodeCRC(unsigned char*& out, std::uint32_t& out_size) {
    return pm::run_guarded(m_handler, [&] { encode_block(pm::checked_layout, out, out_size); });
}

bool PM_zlib_Codec::decode(unsigned char*& out, std::uint32_t& out_size) {
    return pm::run_guarded(m_handler, [&] { decode_block(pm::plain_layout, out, out_size); });
}

bool PM_zlib_Codec::decodeCRC(unsigned char*& out, std::uint32_t& out_size) {
    return pm::run_guarded(m_handler, [&] { decode_block(pm::checked_layout, out, out_size); });
}

void PM_zlib_Codec::encode_block(const pm::ZlibLayout& layout, unsigned char*& out,
                                 std::uint32_t& out_size) const {
    pm::ZlibStream stream(deflateEnd, PM_ERR_DEFLATE_END);
    stream.start(
        [](z_streamp state) {
            return deflateInit2(state, Z_BEST_COMPRESSION, Z_DEFLATED, pm::window_bits, pm::memory_level,
                                Z_DEFAULT_STRATEGY);
        },
        PM_ERR_DEFLATE_START);
    const std::uint32_t bound = pm::stream_bound(m_input_size);
    out_size = bound;
    const auto working = pm::checked(pm::allocate_block<unsigned char>(bound), u"zout");
    const std::uint32_t length =
        stream.run(deflate, m_input, m_input_size, working.get(), bound, PM_ERR_DEFLATE);
    stream.finish();
    out_size = pm::block_size(layout.stream, length);
    auto block = pm::checked(pm::allocate_block<unsigned char>(out_size), u"output");
    pm::write_block(block.get(), layout, m_input_size, {working.get(), length});
    out = block.release();
}

void PM_zlib_Codec::decode_block(const pm::ZlibLayout& layout, unsigned char*& out,
                                 std::uint32_t& out_size) const {
    const unsigned char* block = pm::find_tag(m_input);
    const std::uint32_t length = pm::load_u32(block + layout.length);
    // Zeroed: a stream may end before the length that its block claims, and that costs no real memory.
    auto data = pm::checked(
        pm::Block<unsigned char>(static_cast<unsigned char*>(pm::allocate_zeroed(std::size_t{length} + 1))),
        u"output");
    pm::ZlibStream stream(inflateEnd, PM_ERR_INFLATE_END);
    stream.start([](z_streamp state) { return inflateInit(state); }, PM_ERR_INFLATE_START);
    stream.run(inflate, block + layout.stream, pm::load_u32(block + layout.stream_length), data.get(), length,
               PM_ERR_INFLATE);
    stream.finish();
    out = data.release();
    out_size = length;
}
