#include "safe_save.h"

#include "failure.h"
#include "system.h"
#include <cerrno>
#include <cstdio>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <system_error>

namespace pmtool {

namespace {

// The folder that the file lies in; of a link, where it points to.
std::string folder_of(const std::string& path) {
    const std::size_t end = path.find_last_of(folder_separators());
    if (end == std::string::npos) return ".";
    if (path[end] == ':') return path.substr(0, end + 1) + '.'; // where a drive is in just then
    return end == 0 ? path.substr(0, 1) : path.substr(0, end);
}

void require_folder(const std::string& target, const std::string& path) {
    const std::string folder = folder_of(path);
    const FileKind kind = kind_of(folder);
    if (kind == FileKind::folder) return;
    throw Failure(fmt::format("{}: the folder {} {} (error {}); make it first", target, folder,
                              kind == FileKind::missing ? "doesn't exist" : "is a file",
                              PM_ERR_NO_SUCH_FILE));
}

// Whether a whole new file comes in its place; whatever else is there is written to as it is.
bool is_replaced(const std::string& path) {
    return kind_of(path) == FileKind::regular && !is_open_file(path);
}

Failure target_failure(const std::string& target, const std::string& path, int code) {
    const bool file_may = is_replaced(path);
    if (code == ENXIO) return Failure(fmt::format("{}: nobody reads from this pipe", target));
    if (code == EACCES && file_may) {
        return Failure(fmt::format("{}: a file can't be made beside it in the folder {}: {}", target,
                                   folder_of(path), number_text(PM_ERR_ACCESS_DENIED)));
    }
    return system_failure(target, code);
}

void write_output(std::string_view bytes) {
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
    if (!written || std::fflush(stdout) != 0) throw system_failure("standard output", errno);
}

void replace_file(const std::string& path, std::string_view bytes,
                  const std::optional<std::string>& backup_suffix) {
    ScratchFile scratch(path);
    scratch.write(bytes);
    scratch.keep_attributes();
    scratch.replace_target(backup_suffix);
}

} // namespace

void require_target(const std::string& target) {
    if (target == "-") return;
    try {
        const std::string path = follow_links(target);
        const FileKind kind = kind_of(path);
        if (kind == FileKind::folder) throw system_failure(target, EISDIR);
        if (kind == FileKind::missing) require_folder(target, path);
        if (is_replaced(path)) require_writable(path);
    } catch (const std::system_error& e) {
        throw system_failure(target, e.code().value());
    }
}

void save_safely(const std::string& target, std::string_view bytes,
                 const std::optional<std::string>& backup_suffix) {
    if (target == "-") return write_output(bytes);
    require_target(target);
    std::string path = target;
    try {
        path = follow_links(target);
        if (kind_of(path) == FileKind::special || is_open_file(path)) return write_special(path, bytes);
        replace_file(path, bytes, backup_suffix);
    } catch (const std::system_error& e) {
        throw target_failure(target, path, e.code().value());
    }
}

} // namespace pmtool
