#pragma once

#include "pdt/rows.h"

namespace pm {

// "Media Collating", "Media Cutting", "Media Folding" and "Media Stapling": records of finishing steps, which
// the destinations refer to.
void read_media_collating(PdtLoad& load, Rows& rows);
void read_media_cutting(PdtLoad& load, Rows& rows);
void read_media_folding(PdtLoad& load, Rows& rows);
void read_media_stapling(PdtLoad& load, Rows& rows);

} // namespace pm
