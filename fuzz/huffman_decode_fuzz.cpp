#include "codecs/huffman_block.h"
#include "cost.h"
#include "fuzz_support.h"
#include <pm/codec.h>
#include <vector>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of the very size, so that a read behind its end is seen.
    const std::vector<unsigned char> block(data, data + size);
    if (!pm_huffman_block_fits(block.data(), block.size())) return 0;
    // Of no size: the decoder must not need one.
    const pm::fuzz::CostBound bound(pm::fuzz::linear_cost(size, 64));
    PM_Huffman_Codec codec(block.data(), 0, nullptr);
    unsigned char* out = nullptr;
    std::uint32_t out_size = 0;
    if (!codec.decode(out, out_size)) return 0;
    const pm::fuzz::OwnedBlock owned(out);
    bound.require_held();
    // A symbol takes a bit at least.
    pm::fuzz::require(out_size <= 8 * (size - pm::huffman_bits));
    return 0;
}
