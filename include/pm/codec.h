#pragma once

#include <cstddef>
#include <cstdint>
#include <pm/error_handler.h>
#include <pm/export.h>
#include <pm/mem_obj.h>

namespace pm {
class FreqTrie;
struct ZlibLayout;
} // namespace pm

// Compresses one block of bytes into a self-describing block, and back, with zlib (RFC 1950).
//
// The codec borrows its input and owns nothing. Each operation gives true with a new block in `out`, which
// the caller releases with PM_Mem_Obj::operator delete(out), and its length in `out_size`. On false the
// failure has been told to the handler, if there is one, and `out` and `out_size` are void; no exception
// leaves a codec. Numbers: 55 no memory, 92 no tag, 93 to 95 deflate, 96 to 98 inflate.
class PM_API PM_zlib_Codec : public PM_Mem_Obj {
public:
    // `data` must outlive the codec. `handler` may be null.
    PM_zlib_Codec(const unsigned char* data, std::uint32_t size, ZT_Error_Handler* handler) noexcept;
    ~PM_zlib_Codec() override;

    // A plain block: "pmzlibcodec", the length of the data, the length of the stream, the stream.
    bool encode(unsigned char*& out, std::uint32_t& out_size);
    // A checked block: the Adler-32 of the stream stands in front of the two lengths.
    bool encodeCRC(unsigned char*& out, std::uint32_t& out_size);

    // Decoders look for the tag in the data taken as a zero-terminated text, trust the lengths behind it
    // and don't read the size of the data: ask pm_zlib_block_fits() about data from outside. `out` has one
    // zero byte behind its `out_size` bytes. A stream shorter than its stored length succeeds, the rest
    // being zero.
    bool decode(unsigned char*& out, std::uint32_t& out_size);
    bool decodeCRC(unsigned char*& out, std::uint32_t& out_size);

private:
    void encode_block(const pm::ZlibLayout& layout, unsigned char*& out, std::uint32_t& out_size) const;
    void decode_block(const pm::ZlibLayout& layout, unsigned char*& out, std::uint32_t& out_size) const;

    const unsigned char* m_input;
    std::uint32_t m_input_size;
    ZT_Error_Handler* m_handler;
};

// Compresses one block of bytes with a static Huffman code whose frequency table stands in the block.
//
// Shape, ownership and failures as PM_zlib_Codec; numbers: 55 no memory, 90 and 91 a broken code, 92 no
// tag or no usable table. One object serves one call.
class PM_API PM_Huffman_Codec : public PM_Mem_Obj {
public:
    PM_Huffman_Codec(const unsigned char* data, std::uint32_t size, ZT_Error_Handler* handler) noexcept;
    ~PM_Huffman_Codec() override;
    PM_Huffman_Codec(const PM_Huffman_Codec&) = delete;
    PM_Huffman_Codec& operator=(const PM_Huffman_Codec&) = delete;

    // Number 92 for data with fewer than two distinct byte values: they have no code. Null data has none.
    bool encode(unsigned char*& out, std::uint32_t& out_size);
    // Trusts its block and doesn't read the size of the data: ask pm_huffman_block_fits() about data from
    // outside. Gives back what was encoded without its last byte, which the format loses. Number 92 for a
    // block whose table has fewer than two values.
    bool decode(unsigned char*& out, std::uint32_t& out_size);

private:
    void encode_block(unsigned char*& out, std::uint32_t& out_size);
    void decode_block(unsigned char*& out, std::uint32_t& out_size);
    void make_counters();
    void make_trie();
    void release_tables() noexcept;

    const unsigned char* m_input;
    std::uint32_t m_input_size;
    std::uint32_t* m_freq_table = nullptr;
    pm::FreqTrie* m_freq_trie = nullptr;
    ZT_Error_Handler* m_handler;
};

// The decoders above know no size and trust the words in their block. What comes from outside is looked at
// first: the operations below read `size` bytes at `data` at most, null being no bytes, raise nothing and
// take no memory.
enum PM_Block_Frame : std::int32_t {
    PM_BLOCK_FITS,     // there is a block, and it lies inside the bytes
    PM_BLOCK_MISSING,  // no tag where the decoder looks for it: it would fail with number 92, or run on
    PM_BLOCK_CUT,      // the block's header, or the stream or bits that it tells, goes beyond the bytes
    PM_BLOCK_TOO_LARGE // the block tells of more data than a stream of its length can hold
};

// The frame of a zlib block, `checked` as encodeCRC() writes it or plain. Text may stand in front of the
// block as for the decoders. Deflate expands a byte to 1032 at most (RFC 1951: 258 bytes of a match take two
// bits), so that a block that fits costs memory in proportion to its size. The stream itself isn't looked at.
PM_API PM_Block_Frame pm_zlib_block_frame(const void* data, std::size_t size, bool checked);
// The frame of a Huffman block, which begins with the data; never PM_BLOCK_TOO_LARGE, since each code takes a
// bit at least. A table with fewer than two values is left to decode(), which refuses it with number 92.
PM_API PM_Block_Frame pm_huffman_block_frame(const void* data, std::size_t size);

// Whether a decoder can be let loose on the data: decode(), or decodeCRC() if `checked`, then stays inside
// the `size` bytes and its memory in proportion to them, whether it succeeds or not.
PM_API bool pm_zlib_block_fits(const void* data, std::size_t size, bool checked);
PM_API bool pm_huffman_block_fits(const void* data, std::size_t size);
