#pragma once

#include "devices/checker.h"

namespace pm::kit::devices {

// The rules of a map: a value against what matches a path of the description.
void check_value_rule(Checker& check, const ValueRule& rule);

} // namespace pm::kit::devices
