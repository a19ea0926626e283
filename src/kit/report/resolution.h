#pragma once

#include <report/page.h>

// Colour modes with the resolutions of each, and memory areas.
namespace pm::kit::report {

[[nodiscard]] bool has_resolutions(const Node& description);
void write_resolutions(Page& page, const Node& description);

} // namespace pm::kit::report
