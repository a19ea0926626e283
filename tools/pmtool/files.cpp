#include "files.h"

#include "failure.h"
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>

namespace pmtool {

namespace {

struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

File open_file(const std::string& path, const char* mode) {
    File file(std::fopen(path.c_str(), mode));
    if (file == nullptr) throw system_failure(path, errno);
    return file;
}

} // namespace

bool is_folder(const std::string& path) {
    struct stat attributes {};
    return stat(path.c_str(), &attributes) == 0 && S_ISDIR(attributes.st_mode);
}

std::string read_file(const std::string& path) {
    const File file = open_file(path, "rb");
    std::string content;
    char block[1 << 16];
    std::size_t count = 0;
    while ((count = std::fread(block, 1, sizeof block, file.get())) > 0) {
        content.append(block, count);
    }
    if (std::ferror(file.get()) != 0) throw system_failure(path, errno);
    return content;
}

void write_file(const std::string& path, const void* data, std::size_t size) {
    File file = open_file(path, "wb");
    const bool written = std::fwrite(data, 1, size, file.get()) == size;
    if (std::fclose(file.release()) != 0 || !written) throw system_failure(path, errno);
}

} // namespace pmtool
