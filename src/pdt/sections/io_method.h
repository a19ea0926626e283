#pragma once

#include "pdt/rows.h"

namespace pm {

// "Protocol ": records that the methods of output refer to.
void read_protocol(PdtLoad& load, Rows& rows);
// "IO Method", below \io\method.
void convert_io_method(PdtLoad& load, Rows& rows);

} // namespace pm
