#pragma once

#include <functional>
#include <string>

namespace pmtool {

// Calls `write` with the name of a new file beside `target` and then puts that file in the target's place.
//
// The target stays untouched when `write` throws or anything else fails. It keeps its mode and, where the
// system lets it, its owner; a new file has the mode that any new file gets. A symbolic link stays and what
// it points to is replaced. A target that is no regular file (a device, a pipe) is written to once the
// whole result is there.
void save_safely(const std::string& target, const std::function<void(const std::string&)>& write);

} // namespace pmtool
