#pragma once

#include "pdt/rows.h"

namespace pm {

// "Line Type Capabilities", below \linetype.
void convert_linetype(PdtLoad& load, Rows& rows);
// "Raster Capability", below \RASTER.
void convert_raster(PdtLoad& load, Rows& rows);

} // namespace pm
