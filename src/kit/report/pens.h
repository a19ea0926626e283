#pragma once

#include <report/page.h>

// Pens and line types, drawn.
namespace pm::kit::report {

[[nodiscard]] bool has_pens(const Node& description);
void write_pens(Page& page, const Node& description);

} // namespace pm::kit::report
