#pragma once

#include <report/page.h>

// The settings that only this device has.
namespace pm::kit::report {

[[nodiscard]] bool has_custom(const Node& description);
void write_custom(Page& page, const Node& description);

} // namespace pm::kit::report
