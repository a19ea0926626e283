#pragma once

#include <string_view>
#include <vector>

namespace pmtool {

// The plotter numbers in the section lines of a CFG file, rising, each once.
std::vector<int> plotter_numbers(std::string_view text);

} // namespace pmtool
