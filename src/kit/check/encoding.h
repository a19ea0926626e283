#pragma once

#include "check/findings.h"
#include "check/source_text.h"

namespace pm::kit {

// What there is to say of a text's bytes beyond ASCII: rules mixed-encoding and undecodable-byte.
void check_encoding(std::string_view content, const NarrowText& narrow, const Place& where,
                    std::uint64_t first_line, Findings& findings);

} // namespace pm::kit
