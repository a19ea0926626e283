#pragma once

#include <pm/pm_c.h>
#include <pm/value.h>

// Values on the way between pm9_value and pm::Value.
namespace pm::c {

inline constexpr pm9_access default_access{sizeof(pm9_access), -1, 0};

// PM_ERR_INVALID_ARGUMENT, detail "type", for a type that isn't known.
Value value_of(const pm9_value& given);

// Fills all of `out`.
void hand_out_value(const Value& value, pm9_value& out);

} // namespace pm::c
