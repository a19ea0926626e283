#pragma once

#include <report/page.h>

// The way of the media: sources with what they can be loaded with, the device, outputs with their finishing.
namespace pm::kit::report {

[[nodiscard]] bool has_flow(const Node& description);
void write_flow(Page& page, const Node& description);

} // namespace pm::kit::report
