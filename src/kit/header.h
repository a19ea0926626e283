#pragma once

#include <string>
#include <string_view>

namespace pm::kit {

// The first line of a PIA file that isn't blank.
struct Header {
    int version = 0;  // 1 or 2; 0 for another line
    std::string text; // what stands between the version and the first comma, in the file's own bytes
    std::string tag;  // what stands behind it
    bool compressed = false;
    std::size_t end = 0; // where the line behind it begins
};

[[nodiscard]] Header read_header(std::string_view bytes);

} // namespace pm::kit
