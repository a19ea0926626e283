// First byte: the form of the block, plain (even) or checked (odd). The rest: the block.

#include "base/allocator.h"
#include "codecs/zlib_block.h"
#include "cost.h"
#include "fuzz_support.h"
#include <pm/codec.h>
#include <vector>

namespace {

constexpr std::size_t most_memory = std::size_t{1} << 24;

void decode(const std::vector<unsigned char>& data, bool checked) {
    const pm::ZlibLayout& layout = checked ? pm::checked_layout : pm::plain_layout;
    const bool fits = pm_zlib_block_fits(data.data(), data.size(), checked);
    if (!pm::zlib_block_fits(data, layout)) {
        pm::fuzz::require(!fits);
        return;
    }
    const pm::fuzz::CostBound bound(pm::fuzz::linear_cost(data.size(), 4 * pm::most_expansion));
    // Of no size: the decoders must not need one.
    PM_zlib_Codec codec(data.data(), 0, nullptr);
    unsigned char* out = nullptr;
    std::uint32_t out_size = 0;
    if (!(checked ? codec.decodeCRC(out, out_size) : codec.decode(out, out_size))) return;
    const pm::fuzz::OwnedBlock owned(out);
    if (fits) bound.require_held();
    pm::fuzz::require(out[out_size] == 0);
    pm::fuzz::require(!fits || out_size <= pm::most_expansion * data.size());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pm::set_allocation_filter([](std::size_t asked) { return asked > most_memory; });
    // A copy of the very size, so that a read behind its end is seen.
    if (size > 0) decode({data + 1, data + size}, data[0] % 2 != 0);
    return 0;
}
