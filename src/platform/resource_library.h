#pragma once

#include <cstdint>

namespace pm {

// The message library: the one in the folder that this library was loaded from, or in pm9/ below that, or
// else the one that the system finds by the bare name. So each of several installed versions has its own. 0
// on failure.
std::uint64_t open_resource_library();
void close_resource_library(std::uint64_t handle);
// The text of a number in an open message library, or null.
const char16_t* resource_text(std::uint64_t handle, std::uint32_t number);

} // namespace pm
