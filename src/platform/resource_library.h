#pragma once

#include <cstdint>
#include <string_view>

namespace pm {

// The message library: the one in the folder that this library was loaded from, or in pm9/ below that, or
// else the one that the system finds by the bare name. So each of several installed versions has its own. 0
// on failure.
std::uint64_t open_resource_library();
void close_resource_library(std::uint64_t handle);
// The text of a number in an open message library, which keeps it; empty if it has none. No zero ends it.
std::u16string_view resource_text(std::uint64_t handle, std::uint32_t number);

// Whether the message library may be opened when this library starts, and closed when it ends. Where the
// system's loader holds its lock at those times it is opened when it is first asked for, and stays open.
bool resource_library_lives_with_module();

} // namespace pm
