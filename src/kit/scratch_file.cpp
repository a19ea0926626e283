#include "scratch_file.h"

#include "private_folder.h"
#include "stream_bytes.h"
#include <fstream>
#include <pm/kit/error.h>
#include <pm/text.h>
#include <system_error>

namespace pm::kit {

namespace {

namespace fs = std::filesystem;

fs::path make_folder() {
    fs::path folder = make_private_folder();
    if (folder.empty()) throw Error("there is no folder for temporary files that can be written");
    return folder;
}

} // namespace

fs::path system_path(std::string_view name) {
    return fs::path(std::u8string(name.begin(), name.end()));
}

std::string read_bytes(const fs::path& file, const std::string& shown_name) {
    std::ifstream stream(file, std::ios::binary);
    std::string bytes;
    if (!read_to_end(stream, bytes)) throw Error(shown_name + ": the file can't be read");
    return bytes;
}

ScratchFile::ScratchFile() : m_folder{make_folder()}, m_path(m_folder.path / "content") {
    const std::u8string name = m_path.u8string();
    m_name = file_name_to_utf16(std::string(name.begin(), name.end()));
}

ScratchFile::ScratchFile(std::string_view content) : ScratchFile() {
    std::ofstream stream(m_path, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    stream.close();
    if (!stream) throw Error("a temporary file can't be written");
}

ScratchFile::~ScratchFile() {
    std::error_code ignored; // nothing is left to do about it
    fs::remove(m_path, ignored);
}

ScratchFile::Folder::~Folder() {
    std::error_code ignored;
    fs::remove(path, ignored);
}

std::string ScratchFile::content() const {
    return read_bytes(m_path, "a temporary file");
}

} // namespace pm::kit
