#pragma once

#include "check/content.h"

namespace pm::kit {

// A compound file: its frame, its elements and their records.
void check_doc(const CheckedContent& content, const Place& where, Findings& findings);

} // namespace pm::kit
