#include "check/files.h"

#include "stream_bytes.h"
#include <atomic>
#include <chrono>
#include <fmt/format.h>
#include <fstream>
#include <pm/error_number.h>
#include <random>

namespace pm::kit {

namespace fs = std::filesystem;

namespace {

std::uint32_t number_of(const fs::path& path) {
    std::error_code error;
    const bool missing = fs::status(path, error).type() == fs::file_type::not_found;
    return missing ? PM_ERR_NO_SUCH_FILE : PM_ERR_ACCESS_DENIED;
}

} // namespace

fs::path path_of_name(std::string_view name) {
    return fs::path(std::u8string(name.begin(), name.end()));
}

std::string name_of_path(const fs::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

FileBytes read_bytes(std::string_view name) {
    const fs::path path = path_of_name(name);
    std::error_code error;
    if (fs::is_directory(path, error)) return {{}, PM_ERR_IS_A_FOLDER};
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return {{}, number_of(path)};
    FileBytes file;
    if (!read_to_end(stream, file.bytes)) file.failure = PM_ERR_STREAM_FAILED;
    return file;
}

ContentFile::ContentFile(std::string_view content) {
    static std::atomic<unsigned> count = 0;
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    if (error) return;
    std::random_device random;
    const fs::path path = folder / fmt::format("pm-check-{:08x}{:08x}-{}", random(), random(), ++count);
    std::ofstream stream(path, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    m_name = name_of_path(path);
    if (stream) return;
    fs::remove(path, error);
    m_name.clear();
}

ContentFile::~ContentFile() {
    std::error_code error;
    if (!m_name.empty()) fs::remove(path_of_name(m_name), error);
}

} // namespace pm::kit
