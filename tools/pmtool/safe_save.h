#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace pmtool {

// Puts `bytes` in the place of `target`, whole or not at all.
//
// They are written beside the target, flushed to the disk and put in its place in one step; the target stays
// untouched when anything fails. A symbolic link stays and what it points to is replaced. The file keeps
// mode, owner, group, access lists and extended attributes where the system lets it; a new file has the
// rights that any new file gets. With a suffix the old file stays beside it under its name and that. A target
// that is no regular file (a device, a pipe that is being read) is written to; "-" is standard output.
//
// Failure tells the target as it was given. Who changes a file holds its FileLock (system.h) meanwhile.
void save_safely(const std::string& target, std::string_view bytes,
                 const std::optional<std::string>& backup_suffix = std::nullopt);

// Fails where save_safely() would because of the target: before work that would be for nothing.
void require_target(const std::string& target);

} // namespace pmtool
