#pragma once

#include "platform/compound_format.h"
#include "platform/compound_tree.h"
#include <cstddef>
#include <optional>
#include <vector>

namespace pm {

// A compound file of version 3 with this tree in it. Nothing if a part of the tree couldn't be taken from the
// file it comes from, so that rewriting a broken file never loses what might be saved from it, or if the
// file would be larger than `limit`.
std::optional<std::vector<std::byte>> write_compound_file(const CompoundTree& tree,
                                                          std::size_t limit = compound::largest_file);

} // namespace pm
