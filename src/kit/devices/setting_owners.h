#pragma once

#include "devices/settings.h"
#include <string_view>
#include <utility>

namespace pm::kit::devices {

// The description's text of owners that a setting has a digit in, and which; empty for a setting without one.
[[nodiscard]] std::pair<std::string_view, int> owner_of(const Setting& setting) noexcept;

} // namespace pm::kit::devices
