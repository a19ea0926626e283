#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <pm/mem_obj.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace pm::fuzz {

// What holds whatever the input is.
inline void require(bool holds) {
    if (!holds) std::abort();
}

struct BlockReleaser {
    void operator()(unsigned char* block) const { PM_Mem_Obj::operator delete(block); }
};
// A block that the library handed out.
using OwnedBlock = std::unique_ptr<unsigned char, BlockReleaser>;

} // namespace pm::fuzz
