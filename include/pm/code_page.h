#pragma once

#include <pm/export.h>

// The system's narrow code page, which narrow texts in files and strings are taken to be in: a number with
// its Windows meaning. It is 1252 until the caller sets another, whatever the system's own is; 65001 is
// UTF-8. The setting is process-wide, counts for operations that begin after it, and may be read and set by
// several threads at once.
//
// Known are 437, 720, 737, 775, 850, 852, 855, 857, 858, 860 to 866, 869, 874, 932, 936, 949, 950, 1250 to
// 1258, 20127, 20866, 21866, 28591 to 28599, 28603, 28605 and 65001. In those of one byte a character every
// byte goes in and out again as it was: one that the page doesn't define is the private-use character or
// control that Windows takes it for.
//
// 0 sets the system's own code page: that of the locale of LC_ALL, LC_CTYPE or LANG on POSIX systems, and
// 1252 where that is unknown or plain ASCII. pm_system_code_page() then gives the number found, not 0.
//
// Throws PM_Error number 78, place u"pm_set_system_code_page()", detail the number in decimal, if the
// machine can't convert that code page, and PM_Memory_Exception number 55, of the same place and without a
// detail, if there is no memory for its first use; the setting then stays.
PM_API void pm_set_system_code_page(unsigned code_page);

// The same for what the calling thread does alone, in place of the system's; 0 ends that. Gives what the
// thread had before, which is 0 or a number to set again. Throws as pm_set_system_code_page(), with its own
// name as the place.
PM_API unsigned pm_set_thread_code_page(unsigned code_page);

// What counts for the calling thread: its own, or else the system's. Never 0. All these functions may be
// called from any thread.
PM_API unsigned pm_system_code_page();
