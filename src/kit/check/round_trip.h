#pragma once

#include "check/content.h"
#include <pm/tree.h>

namespace pm::kit {

// Rule round-trip: what is loaded, saved in the same format and loaded again is compared, property by
// property.
void check_round_trip(PM_Object::FileType type, const CheckedContent& content, const Place& where,
                      Findings& findings);

// The comparison by itself: of a tree and what came back of it.
void compare_trees(const Tree& loaded, const Tree& read_back, const Place& where, Findings& findings);

} // namespace pm::kit
