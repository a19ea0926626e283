#pragma once

#include <filesystem>
#include <string>

namespace pm::test {

// A command that replaces the first of its first word in a file by its second. Without words it fails.
inline const std::string replacing_editor =
    '"' + std::filesystem::absolute(PM_REPLACING_EDITOR).make_preferred().string() + '"';

} // namespace pm::test
