#pragma once

#include <report/page.h>

// Sizes of media drawn to scale with their printable areas, types of media, and what counts for all of them.
namespace pm::kit::report {

[[nodiscard]] bool has_media(const Node& description);
void write_media(Page& page, const Node& description);

} // namespace pm::kit::report
