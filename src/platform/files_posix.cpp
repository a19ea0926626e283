#include "platform/files.h"

#include "platform/utf8.h"
#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

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

bool file_exists(std::u16string_view name) {
    struct stat attributes {};
    return stat(native_file_name(name).c_str(), &attributes) == 0;
}

std::u16string make_temp_file() {
    constexpr std::size_t folder_limit = 256;
    const char* set = std::getenv("TMPDIR");
    std::string name = set != nullptr && *set != '\0' ? set : "/tmp";
    if (wide_file_name(name).size() >= folder_limit) return {};
    name += "/XXXXXX";
    const int code = errno;
    const int file = mkstemp(name.data());
    if (file < 0) {
        errno = code; // no failure: callers do without
        return {};
    }
    close(file);
    return wide_file_name(name);
}

void delete_file(std::u16string_view name) {
    unlink(native_file_name(name).c_str());
}

} // namespace pm
