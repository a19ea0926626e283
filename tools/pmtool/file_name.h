#pragma once

#include <string>
#include <string_view>

// Parts of a file's name, as bytes: a name needn't be valid text.
namespace pmtool {

// Behind the last separator of folders.
std::string_view base_name(std::string_view file);
// With its point and in lower case; empty if there is none.
std::string extension_of(std::string_view file);
// The base name without its extension.
std::string stem_of(std::string_view file);

} // namespace pmtool
