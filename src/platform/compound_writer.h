#pragma once

#include "platform/compound_tree.h"
#include <cstddef>
#include <optional>
#include <vector>

namespace pm {

// A compound file with this tree in it. Nothing if an element of the tree isn't sound, so that rewriting a
// broken file never loses what might be saved from it, or if the tree is more than such a file holds.
std::optional<std::vector<std::byte>> write_compound_file(const CompoundTree& tree);

} // namespace pm
