#pragma once

#include "platform/code_page.h"

namespace pm {

// The page of one byte a character with this number, or null. These pages are data of the library, and so the
// same on every system.
const CodePage* find_single_byte_page(unsigned number);

} // namespace pm
