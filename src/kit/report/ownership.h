#pragma once

#include <report/page.h>

// Whose settings are whose, and what the device can do: the digits of a description as words.
namespace pm::kit::report {

[[nodiscard]] bool has_ownership(const Node& description);
void write_ownership(Page& page, const Node& description);

} // namespace pm::kit::report
