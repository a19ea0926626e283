#pragma once

#include "commands.h"
#include <string>

namespace pmtool {

// All verbs and what they have in common, in lines of at most 80 columns.
std::string help_text(const Commands& commands);
// One verb.
std::string help_text(const Commands& commands, const VerbEntry& entry);

} // namespace pmtool
