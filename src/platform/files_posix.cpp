#include "platform/files.h"

#include "platform/utf8.h"
#include <sys/stat.h>

namespace pm {

std::filesystem::path native_file_name(std::u16string_view name) {
    std::string bytes;
    encode_name(name, bytes);
    return bytes;
}

std::u16string wide_file_name(const std::filesystem::path& name) {
    std::u16string wide;
    decode_name(name.native(), wide);
    return wide;
}

std::size_t folder_length(std::u16string_view name) {
    return name.find_last_of(u"\\/") + 1;
}

bool is_special_file(const std::filesystem::path& name) {
    std::error_code error;
    return std::filesystem::is_other(std::filesystem::status(name, error));
}

bool file_exists(std::u16string_view name) {
    struct stat attributes {};
    return stat(native_file_name(name).c_str(), &attributes) == 0;
}

} // namespace pm
