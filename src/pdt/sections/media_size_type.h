#pragma once

#include "pdt/rows.h"

namespace pm {

// "Media Size", below \media\size.
void convert_media_size(PdtLoad& load, Rows& rows);
// "Media Type", below \media\type.
void convert_media_type(PdtLoad& load, Rows& rows);

} // namespace pm
