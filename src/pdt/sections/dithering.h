#pragma once

#include "pdt/rows.h"

namespace pm {

// "Dithering Method", below \res_color_mem\dithering_list.
void convert_dithering_method(PdtLoad& load, Rows& rows);

} // namespace pm
