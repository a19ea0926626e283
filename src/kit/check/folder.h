#pragma once

#include "check/findings.h"
#include <string_view>

namespace pm::kit {

// Every file of a known kind in a folder and in those below it, in the order of names; links to folders
// aren't followed.
void check_folder(std::string_view folder, const CheckOptions& options, Findings& findings);

} // namespace pm::kit
