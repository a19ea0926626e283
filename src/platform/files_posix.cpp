#include "platform/files.h"

#include "platform/code_page.h"
#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

namespace pm {

std::string native_file_name(std::u16string_view name) {
    return to_narrow(name, utf8_code_page);
}

bool file_exists(std::u16string_view name) {
    struct stat attributes {};
    return stat(native_file_name(name).c_str(), &attributes) == 0;
}

std::u16string make_temp_file() {
    constexpr std::size_t folder_limit = 256;
    const char* set = std::getenv("TMPDIR");
    std::string name = set != nullptr && *set != '\0' ? set : "/tmp";
    const std::u16string folder = to_wide(name, utf8_code_page);
    if (folder.size() >= folder_limit || native_file_name(folder) != name) return {};
    name += "/XXXXXX";
    const int code = errno;
    const int file = mkstemp(name.data());
    if (file < 0) {
        errno = code; // no failure: callers do without
        return {};
    }
    close(file);
    return to_wide(name, utf8_code_page);
}

void delete_file(std::u16string_view name) {
    unlink(native_file_name(name).c_str());
}

} // namespace pm
