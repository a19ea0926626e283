#pragma once

#include "pdt/rows.h"

namespace pm {

// "Memory Area": records, and items below \res_color_mem\mem_area_list.
void convert_memory_area(PdtLoad& load, Rows& rows);
// "Resolution" and "Resolution Color Memory": records.
void read_resolution(PdtLoad& load, Rows& rows);
void read_resolution_color_memory(PdtLoad& load, Rows& rows);
// Joins the colour modes with their resolutions and memory areas, below \res_color_mem\rcm_list.
void publish_res_color_mem(PdtLoad& load);

} // namespace pm
