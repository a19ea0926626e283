#pragma once

#include <report/page.h>

// Dithering methods; their matrices as pictures, with what each makes of a ramp from black to white.
namespace pm::kit::report {

[[nodiscard]] bool has_dithering(const Node& description);
void write_dithering(Page& page, const Node& description);

} // namespace pm::kit::report
