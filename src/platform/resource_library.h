#pragma once

#include <cstdint>

namespace pm {

// The message library, opened by its bare name through the system's normal search. 0 on failure.
std::uint64_t open_resource_library();
void close_resource_library(std::uint64_t handle);
// The text of a number in an open message library, or null.
const char16_t* resource_text(std::uint64_t handle, std::uint32_t number);

} // namespace pm
