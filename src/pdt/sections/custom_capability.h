#pragma once

#include "pdt/rows.h"

namespace pm {

// "Custom Capability", below \custom_name.
void convert_custom_capability(PdtLoad& load, Rows& rows);

} // namespace pm
