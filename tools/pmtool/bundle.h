#pragma once

#include "source.h"
#include <string>
#include <vector>

namespace pmtool {

struct BundlePart {
    std::string name;
    std::string info;
    Source source;
};

// Writes a DPIA file with a section for each part; the file is untouched on failure. Names and infos must be
// ASCII, as no reader gets others back, and a name can't hold a backslash or an asterisk.
void write_bundle(const std::string& file, const std::vector<BundlePart>& parts);

} // namespace pmtool
