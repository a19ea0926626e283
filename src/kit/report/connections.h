#pragma once

#include <report/page.h>

// Ways of output: timeouts, baud rates, protocols, handshakes.
namespace pm::kit::report {

[[nodiscard]] bool has_connections(const Node& description);
void write_connections(Page& page, const Node& description);

} // namespace pm::kit::report
