#pragma once

#include <cstdint>
#include <pm/error_handler.h>
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
    // and don't read the size of the data. `out` has one zero byte behind its `out_size` bytes. A stream
    // shorter than its stored length succeeds, the rest being zero.
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

    // Number 92 for data with fewer than two distinct byte values: they have no code.
    bool encode(unsigned char*& out, std::uint32_t& out_size);
    // Trusts its block and doesn't read the size of the data. Gives back what was encoded without its last
    // byte, which the format loses. Number 92 for a block whose table has fewer than two values.
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
