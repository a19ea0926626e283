#pragma once

#include "platform/code_page.h"

namespace pm {

// The page of one or two bytes a character with this number, or null if there is none or the system can't
// convert it. Its first use asks the system for all characters; after that no conversion calls the system.
// Throws std::bad_alloc if the system has no memory for that; the next use tries again.
const CodePage* find_double_byte_page(unsigned number);

} // namespace pm
