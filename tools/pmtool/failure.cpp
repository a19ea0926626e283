#include "failure.h"

#include "text.h"
#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <pm/pm.h>

namespace pmtool {

namespace {

struct SystemError {
    int code;
    std::uint32_t number;
};

constexpr std::uint32_t any_other = 82;

constexpr SystemError system_errors[] = {
    {EACCES, 61},  {EPERM, 61},   {EROFS, 61},  {EMFILE, 62}, {ENFILE, 62}, {ENOENT, 63},
    {ENOTDIR, 63}, {ENOMEM, 64},  {ENOSPC, 65}, {EDQUOT, 65}, {EISDIR, 68}, {EAGAIN, 72},
    {EBUSY, 72},   {ETXTBSY, 72}, {EBADF, 73},  {EEXIST, 77}, {EINVAL, 78}, {EXDEV, 81},
};

} // namespace

std::string number_text(std::uint32_t number) {
    ZT_String text;
    if (!pm_error_text(number, text)) return fmt::format("error {}", number);
    return fmt::format("{} (error {})", to_utf8(text.text()), number);
}

std::uint32_t number_of_system_error(int code) {
    const auto* found = std::ranges::find(system_errors, code, &SystemError::code);
    return found != std::ranges::end(system_errors) ? found->number : any_other;
}

Failure system_failure(const std::string& file, int code) {
    return Failure(fmt::format("{}: {}", file, number_text(number_of_system_error(code))));
}

} // namespace pmtool
