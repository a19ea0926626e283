#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace pm {

// File names are wide inside the library; these are the calls that take them to the system and back. Where
// the system's names are bytes they are taken for UTF-8, and a unit from U+DC80 to U+DCFF that stands alone
// for the byte 80 to FF, so that every name can be given and shown.

// The name as the system's calls take it.
std::filesystem::path native_file_name(std::u16string_view name);
// The other way: a name of the system's as wide text. native_file_name() gives the same name back.
std::u16string wide_file_name(const std::filesystem::path& name);
// Units of the drive and folder in front of a file's name, with what ends them: "\", "/" or, where there are
// drives, the ":" behind one's letter.
std::size_t folder_length(std::u16string_view name);
// Whether it is a pipe, a device or the like, at the end of links too: such a thing may have no end, or
// block.
bool is_special_file(const std::filesystem::path& name);
// Whether the file's attributes can be read.
bool file_exists(std::u16string_view name);

} // namespace pm
