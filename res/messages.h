#pragma once

#include <cstdint>

namespace pmres {

// The text of a number, or null.
const char16_t* find_message(std::uint32_t number);

} // namespace pmres
