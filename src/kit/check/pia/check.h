#pragma once

#include "check/findings.h"
#include "check/source_text.h"

namespace pm::kit {

// A PIA file or a section of a DPIA file, whole.
void check_pia(std::string_view content, const NarrowText& narrow, const Place& where, Findings& findings);

} // namespace pm::kit
