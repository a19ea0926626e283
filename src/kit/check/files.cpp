#include "check/files.h"

#include "stream_bytes.h"
#include <fstream>
#include <pm/error_number.h>
#include <pm/kit/error.h>

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

FileBytes read_found_bytes(std::string_view name) {
    std::error_code error;
    if (fs::is_other(fs::status(path_of_name(name), error))) return {{}, PM_ERR_NOT_OPENED};
    return read_bytes(name);
}

std::unique_ptr<ScratchFile> scratch_file_of(std::string_view content) {
    try {
        return std::make_unique<ScratchFile>(content);
    } catch (const Error&) {
        return nullptr;
    }
}

} // namespace pm::kit
