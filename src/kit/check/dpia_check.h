#pragma once

#include "check/findings.h"
#include <string>
#include <string_view>

namespace pm::kit {

// The directory of a DPIA file and its sections, or the one of a name.
void check_dpia(std::string_view content, const std::string& section, const Place& where, Findings& findings);

} // namespace pm::kit
