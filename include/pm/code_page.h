#pragma once

#include <pm/export.h>

// The system's narrow code page, which narrow texts in files and strings are taken to be in: a number with
// its Windows meaning. 1252 until the caller sets another; 65001 is UTF-8. The setting is process-wide and
// counts for operations that begin after it.
//
// Throws PM_Error number 78, place u"pm_set_system_code_page()", detail the number in decimal, if the
// machine can't convert that code page; the setting then stays. 0 sets 1252.
PM_API void pm_set_system_code_page(unsigned code_page);
PM_API unsigned pm_system_code_page();
