#pragma once

#include <string>
#include <string_view>

namespace pm {

// File names are wide inside the library; these are the calls that take them to the system.

// The name as the system's calls take it.
std::string native_file_name(std::u16string_view name);
// Whether the file's attributes can be read.
bool file_exists(std::u16string_view name);
// A new, empty file of a unique name in the system's folder of temporary files, readable by its owner only.
// Empty if there is none to be had, or if that folder's name has 256 units or more or is no UTF-8.
std::u16string make_temp_file();
void delete_file(std::u16string_view name);

} // namespace pm
