#include "filers/pmfile.h"

#include "base/allocator.h"
#include "base/deliver.h"
#include "base/text.h"
#include "platform/files.h"
#include "store/tree_cursor.h"
#include <algorithm>
#include <cerrno>
#include <ios>
#include <pm/error_number.h>

namespace {

struct StreamErrorRow {
    int code;
    std::uint32_t number;
};

constexpr StreamErrorRow stream_errors[] = {
    {ENOENT, PM_ERR_NO_SUCH_FILE},       {E2BIG, PM_ERR_ARGUMENTS_TOO_LONG},
    {ENOEXEC, PM_ERR_NOT_EXECUTABLE},    {EBADF, PM_ERR_FILE_NOT_OPEN},
    {ECHILD, PM_ERR_NO_CHILD_PROCESS},   {EAGAIN, PM_ERR_TRY_AGAIN},
    {ENOMEM, PM_ERR_NO_MEMORY_FOR_FILE}, {EACCES, PM_ERR_ACCESS_DENIED},
    {EEXIST, PM_ERR_FILE_EXISTS},        {EXDEV, PM_ERR_OTHER_DRIVE},
    {EINVAL, PM_ERR_INVALID_ARGUMENT},   {EMFILE, PM_ERR_TOO_MANY_FILES},
    {ENOSPC, PM_ERR_DISK_FULL},          {EDOM, PM_ERR_OUT_OF_DOMAIN},
    {ERANGE, PM_ERR_RESULT_TOO_LARGE},   {EDEADLOCK, PM_ERR_DEADLOCK},
};

} // namespace

PM_File::~PM_File() = default;

void* PM_File::operator new(std::size_t size) noexcept {
    return pm::allocate(size);
}

void PM_File::operator delete(void* block) noexcept {
    pm::release(block);
}

int PM_File::report(const ZT_Exception& exception) {
    if (m_handler == nullptr) throw ZT_Exception(exception);
    const int answer = pm::deliver(*m_handler, exception);
    if (m_cursor != nullptr) m_cursor->look_again();
    if (answer == 0) throw ZT_Canceled_Error(exception);
    return answer;
}

void PM_File::set_data(PM_Object& target, const char16_t* path, const void* data, std::size_t size,
                       PropType type, int index) {
    target.setData(path, data, size, type, index, true);
}

void PM_File::set_long(PM_Object& target, const char16_t* path, std::int32_t value, int index) {
    target.SetProperty(path, value, index);
}

void PM_File::set_double(PM_Object& target, const char16_t* path, double value, int index) {
    target.SetProperty(path, value, index);
}

void PM_File::set_bool(PM_Object& target, const char16_t* path, bool value, int index) {
    target.SetProperty(path, value, index);
}

void PM_File::set_string(PM_Object& target, const char16_t* path, const char16_t* text, int index) {
    target.SetProperty(path, text, index);
}

void PM_File::copy_version(std::u16string_view text, char16_t* buffer, std::size_t size) {
    if (size == 0 || buffer == nullptr) return;
    const std::u16string_view kept = size == unchecked ? text : text.substr(0, size - 1);
    *std::copy(kept.begin(), kept.end(), buffer) = u'\0';
}

void PM_File::check_stream(const char16_t* place, const char16_t* name, const std::ios& stream,
                           const char16_t* source) {
    if (stream.rdstate() == std::ios::goodbit) return;
    throw PM_Severe(stream_error_number(errno), place, name, source);
}

void PM_File::open_file(std::unique_ptr<std::fstream>& owned, const char16_t* name, bool write,
                        const OpenPlaces& places) {
    if (!owned) {
        owned = std::make_unique<std::fstream>();
        m_stream = owned.get();
    }
    if (owned->is_open()) return;
    const std::u16string_view wide_name = pm::view(name);
    if (!write && !pm::file_exists(wide_name)) {
        throw PM_Severe(PM_ERR_NO_SUCH_FILE, places.missing, name, places.source);
    }
    owned->open(pm::native_file_name(wide_name),
                std::ios::binary | (write ? std::ios::out | std::ios::trunc : std::ios::in));
    check_stream(places.failed, name, *owned, places.source);
    m_filename = wide_name;
}

std::uint32_t PM_File::stream_error_number(int code) {
    const auto* row = std::find_if(std::begin(stream_errors), std::end(stream_errors),
                                   [code](const StreamErrorRow& each) { return each.code == code; });
    return row != std::end(stream_errors) ? row->number : PM_ERR_STREAM_FAILED;
}
