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

std::size_t folder_length(std::u16string_view name) {
    const std::size_t folder = name.find_last_of(u"\\/") + 1;
    const bool is_on_drive = name.size() > 1 && name[1] == u':';
    return folder == 0 && is_on_drive ? 2 : folder;
}

bool is_special_file(const std::filesystem::path& name) {
    std::error_code error;
    return std::filesystem::is_other(std::filesystem::status(name, error));
}

bool file_exists(std::u16string_view name) {
    return GetFileAttributesW(native_file_name(name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

} // namespace pm
