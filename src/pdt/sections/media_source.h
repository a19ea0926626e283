#pragma once

#include "pdt/rows.h"

namespace pm {

// "Media Source Entry": records.
void read_media_source_entry(PdtLoad& load, Rows& rows);
// "Media Source", below \media\source, each joined with the entries that it names.
void convert_media_source(PdtLoad& load, Rows& rows);

} // namespace pm
