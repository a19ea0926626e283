#pragma once

#include "pdt/rows.h"

namespace pm {

// "Misc Localizable Information", below \meta.
void convert_meta(PdtLoad& load, Rows& rows);

} // namespace pm
