#pragma once

#include <string_view>

namespace pm {

// The number of the narrow code page that the system itself uses for the user, or 0 if it has no number here.
// On POSIX systems that of the locale of the environment; a locale of plain ASCII has none.
unsigned native_code_page();

} // namespace pm
