#pragma once

#include "content.h"

#include <nlohmann/json_fwd.hpp>

namespace pm::bench {

// Measures all peers with one content by turns. Times are nanoseconds a property, heap is bytes a property. A
// peer whose tree reads back wrong is given with "failed" in place of figures.
nlohmann::ordered_json measure_cell(ContentShape shape, std::size_t count, double seconds);

} // namespace pm::bench
