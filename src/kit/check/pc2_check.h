#pragma once

#include "check/findings.h"
#include "check/source_text.h"
#include <string>

namespace pm::kit {

void check_pc2(std::string_view content, const NarrowText& narrow, const Place& where, Findings& findings);
// All plotters, or one by number; sections for all belong to each.
void check_cfg(std::string_view content, const NarrowText& narrow, const std::string& plotter,
               const Place& where, Findings& findings);

} // namespace pm::kit
