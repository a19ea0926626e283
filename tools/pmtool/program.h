#pragma once

#include <string>
#include <vector>

namespace pmtool {

// The program: runs a command line, whose first word is the program's name. The exit code.
int run_program(const std::vector<std::string>& words);

} // namespace pmtool
