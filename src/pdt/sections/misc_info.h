#pragma once

#include "pdt/rows.h"

namespace pm {

// "Misc Non-Localizable Info", a form of 68 lines: settings of all branches. Closes the sets of abilities
// that earlier tables marked, and joins the colour modes.
void convert_misc_info(PdtLoad& load, Rows& rows);

} // namespace pm
