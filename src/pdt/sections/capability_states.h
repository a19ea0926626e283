#pragma once

#include "pdt/load.h"

namespace pm {

// What every description ends with: the user flags of each branch, none set, and the version of the toolkit.
void write_capability_states(PdtLoad& load);

} // namespace pm
