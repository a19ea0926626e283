#include "safe_save.h"

#include "failure.h"
#include "files.h"
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace pmtool {

namespace {

constexpr mode_t new_file_mode = 0666;
constexpr mode_t permission_bits = 07777;

// A new, empty file that is removed unless it was released.
class ScratchFile {
public:
    // `shown` is the name that failures are told about.
    ScratchFile(const std::filesystem::path& folder, const std::string& shown)
        : m_name((folder / ".pmtool-XXXXXX").string()) {
        const int file = mkstemp(m_name.data());
        if (file < 0) throw system_failure(shown, errno);
        close(file);
    }
    ~ScratchFile() {
        if (!m_name.empty()) unlink(m_name.c_str());
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& name() const { return m_name; }
    void release() { m_name.clear(); }

private:
    std::string m_name;
};

// The file at the end of a chain of links, even if it doesn't exist yet.
std::filesystem::path follow_links(const std::string& target) {
    constexpr int most_links = 40;
    std::filesystem::path path = target;
    std::error_code error;
    for (int i = 0; i < most_links && std::filesystem::is_symlink(path, error); ++i) {
        path = path.parent_path() / std::filesystem::read_symlink(path, error);
    }
    return path;
}

std::optional<struct stat> attributes_of(const std::string& path) {
    struct stat attributes {};
    if (stat(path.c_str(), &attributes) != 0) return std::nullopt;
    return attributes;
}

mode_t mode_of_new_file() {
    const mode_t mask = umask(0);
    umask(mask);
    return new_file_mode & ~mask;
}

void take_over(const std::string& scratch, const std::optional<struct stat>& old) {
    // Only root may give a file away: a new owner is no failure.
    if (old && chown(scratch.c_str(), old->st_uid, old->st_gid) != 0) errno = 0;
    chmod(scratch.c_str(), old ? old->st_mode & permission_bits : mode_of_new_file());
}

void replace_file(const std::filesystem::path& path, const std::optional<struct stat>& old,
                  const std::string& target, const std::function<void(const std::string&)>& write) {
    if (old && access(path.c_str(), W_OK) != 0) throw system_failure(target, errno);
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
    ScratchFile scratch(folder, target);
    write(scratch.name());
    take_over(scratch.name(), old);
    if (std::rename(scratch.name().c_str(), path.c_str()) != 0) throw system_failure(target, errno);
    scratch.release();
}

void fill_special_file(const std::string& target, const std::function<void(const std::string&)>& write) {
    const ScratchFile scratch(std::filesystem::temp_directory_path(), target);
    write(scratch.name());
    const std::string content = read_file(scratch.name());
    write_file(target, content.data(), content.size());
}

} // namespace

void save_safely(const std::string& target, const std::function<void(const std::string&)>& write) {
    const std::optional<struct stat> old = attributes_of(target);
    if (old && S_ISDIR(old->st_mode)) throw system_failure(target, EISDIR);
    if (old && !S_ISREG(old->st_mode)) return fill_special_file(target, write);
    replace_file(follow_links(target), old, target, write);
}

} // namespace pmtool
