#include "platform/files.h"

#include <windows.h>

namespace pm {

// Names are wide here, and go to the system and back unit by unit.
std::filesystem::path native_file_name(std::u16string_view name) {
    return std::wstring(name.begin(), name.end());
}

std::u16string wide_file_name(const std::filesystem::path& name) {
    return {name.native().begin(), name.native().end()};
}

bool file_exists(std::u16string_view name) {
    return GetFileAttributesW(native_file_name(name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace pm
