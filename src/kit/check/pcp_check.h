#pragma once

#include "check/findings.h"
#include "check/source_text.h"

namespace pm::kit {

void check_pcp(std::string_view content, const NarrowText& narrow, const Place& where, Findings& findings);

} // namespace pm::kit
