#pragma once

#include "scratch_file.h"
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace pm::kit {

// Names are the bytes that the system knows a file by, UTF-8 where it has wide names.
[[nodiscard]] std::filesystem::path path_of_name(std::string_view name);
[[nodiscard]] std::string name_of_path(const std::filesystem::path& path);

// A file's content, or why there is none as a number of the library.
struct FileBytes {
    std::string bytes;
    std::uint32_t failure = 0;
};
[[nodiscard]] FileBytes read_bytes(std::string_view name);
// The same of a file that nobody named: a pipe or a device can't be opened.
[[nodiscard]] FileBytes read_found_bytes(std::string_view name);

// Content in a file, for what the library reads by name alone. Nothing if there is no place for it.
[[nodiscard]] std::unique_ptr<ScratchFile> scratch_file_of(std::string_view content);

} // namespace pm::kit
