#pragma once

#include "support/temp_folder.h"
#include <cstdint>
#include <pm/inspect.h>
#include <pm_test_paths.h>
#include <string>
#include <vector>

namespace pm::test {

inline std::filesystem::path sample_path(const std::string& name) {
    return std::filesystem::path(PM_SAMPLES) / name;
}

inline std::string sample(const std::string& name) {
    return TempFolder::read_file(sample_path(name));
}

inline std::string word(std::uint32_t value) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) {
        bytes += static_cast<char>(value >> shift & 0xFF);
    }
    return bytes;
}

// An entry of a directory of version 2.0, of a section that isn't there.
inline std::string dpia_entry(const std::string& name, const std::string& info) {
    return word(static_cast<std::uint32_t>(name.size())) + name +
           word(static_cast<std::uint32_t>(info.size())) + info + word(0) + word(0);
}

inline const std::vector<std::string> sample_files = {
    "plotter.pia", "plotter-compressed.pia", "sections.dpia",     "office.pc2",
    "pens.pcp",    "three-plotters.cfg",     "dx4200/strings.pdt"};

} // namespace pm::test
