#pragma once

#include <cstddef>
#include <pm/kit/edit.h>
#include <span>

namespace pm::kit {

// Each move to the end of a list walks along it. Does a long run of them in front of `edits`, all of one
// node's properties or all of its children, by making the list anew. How many edits that were; 0 for what has
// to be done one by one.
std::size_t do_end_moves(Tree& tree, std::span<const Edit> edits);

} // namespace pm::kit
