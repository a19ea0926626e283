#include "failure.h"

#include "system.h"
#include "text.h"
#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <pm/pm.h>

namespace pmtool {

namespace {

struct SystemError {
    int code;
    std::uint32_t number;
};

constexpr SystemError system_errors[] = {
    {EACCES, PM_ERR_ACCESS_DENIED},    {EPERM, PM_ERR_ACCESS_DENIED},       {EROFS, PM_ERR_ACCESS_DENIED},
    {EMFILE, PM_ERR_TOO_MANY_FILES},   {ENFILE, PM_ERR_TOO_MANY_FILES},     {ENOENT, PM_ERR_NO_SUCH_FILE},
    {ENOTDIR, PM_ERR_NO_SUCH_FILE},    {ENOMEM, PM_ERR_NO_MEMORY_FOR_FILE}, {ENOSPC, PM_ERR_DISK_FULL},
    {EISDIR, PM_ERR_IS_A_FOLDER},      {EAGAIN, PM_ERR_TRY_AGAIN},          {EBUSY, PM_ERR_TRY_AGAIN},
    {ETXTBSY, PM_ERR_TRY_AGAIN},       {EBADF, PM_ERR_FILE_NOT_OPEN},       {EEXIST, PM_ERR_FILE_EXISTS},
    {EINVAL, PM_ERR_INVALID_ARGUMENT}, {EXDEV, PM_ERR_OTHER_DRIVE},
};

} // namespace

std::string number_text(std::uint32_t number) {
    ZT_String text;
    if (!pm_error_text(number, text)) return fmt::format("error {}", number);
    return fmt::format("{} (error {})", shown(text.text()), number);
}

std::uint32_t number_of_system_error(int code) {
    const auto* found = std::ranges::find(system_errors, common_error(code), &SystemError::code);
    return found != std::ranges::end(system_errors) ? found->number : PM_ERR_STREAM_FAILED;
}

Failure no_such_path(const std::string& file, const std::string& path) {
    return Failure(fmt::format("{}: {}: there is no such property or node", file, printable(path)),
                   exit_negative);
}

Failure system_failure(const std::string& file, int code) {
    return Failure(fmt::format("{}: {}", file, number_text(number_of_system_error(code))));
}

} // namespace pmtool
