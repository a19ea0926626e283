#pragma once

#include "block.h"
#include <pm/kit/loss.h>
#include <span>

namespace pm::c {

// Losses as the interface has them.
ArrayBlock<pm9_loss> block_of(std::span<const kit::Loss> losses);

} // namespace pm::c
