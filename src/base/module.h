#pragma once

#include <cstdint>

namespace pm {

inline constexpr std::uint32_t process_end = 0;
inline constexpr std::uint32_t process_start = 1;

// Called with the module's own handle when the library starts and ends: opens and closes the message
// library. Other reasons do nothing. Always 1.
int module_entry(std::uint64_t module, std::uint32_t reason);

} // namespace pm
