#pragma once

#include "pdt/rows.h"

namespace pm {

// "Media Description", below \media\description, and the groups of the sizes of the same numbers.
void convert_media_description(PdtLoad& load, Rows& rows);

} // namespace pm
