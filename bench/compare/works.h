#pragma once

#include <nlohmann/json_fwd.hpp>

namespace pm::bench {

// Measures the library's other works and, by turns with each group, what they can't be faster than: an array
// of groups, each with the nanoseconds of its tasks. Each group gets about `seconds`.
nlohmann::ordered_json measure_works(double seconds, bool quick);

} // namespace pm::bench
