#pragma once

#include <filesystem>

namespace pm::kit {

// Makes a new folder that is the user's alone from its beginning, where the system has temporary files. An
// empty path if there is no place that can be written.
[[nodiscard]] std::filesystem::path make_private_folder();

} // namespace pm::kit
