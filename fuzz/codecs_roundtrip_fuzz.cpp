// First byte modulo 3: plain zlib block, checked zlib block, Huffman block. The rest: the data.

#include "fuzz_support.h"
#include <algorithm>
#include <pm/codec.h>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using pm::fuzz::OwnedBlock;
using pm::fuzz::require;

template<class Codec>
using Operation = bool (Codec::*)(unsigned char*&, std::uint32_t&);

template<class Codec>
bool run(Operation<Codec> operation, const Bytes& data, Bytes& result) {
    Codec codec(data.data(), static_cast<std::uint32_t>(data.size()), nullptr);
    unsigned char* out = nullptr;
    std::uint32_t size = 0;
    if (!(codec.*operation)(out, size)) return false;
    const OwnedBlock owned(out);
    result.assign(out, out + size);
    return true;
}

void zlib_there_and_back(const Bytes& data, bool checked) {
    Bytes block;
    Bytes back;
    require(run(checked ? &PM_zlib_Codec::encodeCRC : &PM_zlib_Codec::encode, data, block));
    require(pm_zlib_block_fits(block.data(), block.size(), checked));
    require(run(checked ? &PM_zlib_Codec::decodeCRC : &PM_zlib_Codec::decode, block, back));
    require(back == data);
}

void huffman_there_and_back(const Bytes& data) {
    const bool one_value = std::equal(data.begin() + !data.empty(), data.end(), data.begin());
    Bytes block;
    Bytes back;
    require(run(&PM_Huffman_Codec::encode, data, block) == !one_value);
    if (one_value) return;
    require(pm_huffman_block_fits(block.data(), block.size()));
    require(run(&PM_Huffman_Codec::decode, block, back));
    back.push_back(data.back()); // the byte that the format loses
    require(back == data);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const Bytes rest(data + 1, data + size);
    if (data[0] % 3 == 2) {
        huffman_there_and_back(rest);
    } else {
        zlib_there_and_back(rest, data[0] % 3 == 1);
    }
    return 0;
}
