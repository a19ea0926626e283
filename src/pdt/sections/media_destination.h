#pragma once

#include "pdt/rows.h"

namespace pm {

// "Media Destination": records.
void read_media_destination(PdtLoad& load, Rows& rows);
// Joins each destination with its finishing steps, below \media\destination.
void join_media_destinations(PdtLoad& load);

} // namespace pm
