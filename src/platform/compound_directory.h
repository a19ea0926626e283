#pragma once

#include <cstddef>
#include <span>

namespace pm {

// Sets the elements of every storage in the format's order, as a red-black tree: a directory may come as one
// long list, which readers that go down it by recursion can't follow. Nothing else in the file changes.
// False, with the file untouched, if it isn't a compound file.
bool balance_compound_directory(std::span<std::byte> file);

} // namespace pm
