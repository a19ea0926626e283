#pragma once

#include <cstdint>
#include <pm/export.h>
#include <pm/zt_string.h>

// The text of an error number, from the message library pmres9. False, with `out` untouched, if that
// library isn't there or doesn't know the number.
PM_API bool pm_error_text(std::uint32_t number, ZT_String& out);
