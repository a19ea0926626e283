#pragma once

#include <pm/pm_c.h>
#include <pm/tree.h>

// Reports on their way to a caller in C.
namespace pm::c {

// With texts that are those of `report`.
pm9_report report_of(const Report& report);

// Asks a function of the caller's at each report; nothing for null.
OnReport asking(pm9_on_report on_report, void* context);

} // namespace pm::c
