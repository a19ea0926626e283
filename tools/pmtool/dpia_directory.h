#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace pmtool {

struct DpiaDirectory {
    int version;
    std::uint32_t sections;
};

// The directory at the start of a DPIA file. Nothing if the bytes don't begin with a whole one; its sections
// may lie outside of them.
std::optional<DpiaDirectory> read_dpia_directory(std::string_view bytes);

} // namespace pmtool
