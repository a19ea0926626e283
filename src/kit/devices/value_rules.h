#pragma once

#include "devices/checker.h"

namespace pm::kit::devices {

// The rules of a map: a value against what matches a path of the description.
void check_value_rules(Checker& check, const std::vector<ValueRule>& rules);

} // namespace pm::kit::devices
