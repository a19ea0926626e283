#pragma once

#include <string>

namespace pmtool {

bool is_folder(const std::string& path);

// The whole file. Failure if it isn't there, can't be read or is a folder.
std::string read_file(const std::string& path);

// Replaces the content of an existing file or makes it.
void write_file(const std::string& path, const void* data, std::size_t size);

} // namespace pmtool
