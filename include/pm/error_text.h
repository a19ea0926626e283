#pragma once

#include <cstdint>
#include <pm/export.h>
#include <pm/zt_string.h>

// The text of an error number (error_number.h), from the message library pmres9: one line of English, without
// a full stop and without placeholders. False, with `out` untouched, if that library isn't there or doesn't
// know the number. Safe to call from several threads. Number 55 (PM_Memory_Exception).
//
// pm::error_text() of tree.h gives the same in UTF-8.
PM_API bool pm_error_text(std::uint32_t number, ZT_String& out);
