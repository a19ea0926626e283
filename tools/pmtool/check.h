#pragma once

#include "source.h"
#include <string>
#include <vector>

namespace pmtool {

// Reads all parts of a file and goes on behind what is bad: a line of text for everything that is, in the
// order of the file, each once. Failure if the file can't be read at all.
std::vector<std::string> find_bad_lines(const Source& source);

} // namespace pmtool
