#pragma once

#include "check/findings.h"
#include <optional>
#include <string>
#include <string_view>

namespace pm::kit {

// The block of a compressed PIA file: rules damaged-compression, cut-file and trailing-data. Gives the body,
// if it decodes. `checked` tells the form of version 2.0; `header` is the size of the header line.
[[nodiscard]] std::optional<std::string> check_block(std::string_view file, std::size_t header, bool checked,
                                                     const Place& place, Findings& findings);

} // namespace pm::kit
