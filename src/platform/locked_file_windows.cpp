#include "platform/locked_file.h"

#include "platform/files.h"
#include <algorithm>
#include <bit>
#include <windows.h>

namespace pm {

namespace {

constexpr DWORD shared_by_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t largest_step = std::size_t{1} << 30U; // of one call of the system

class File {
public:
    File(std::u16string_view name, DWORD access, DWORD sharing, DWORD disposition)
        : m_file(CreateFileW(native_file_name(name).c_str(), access, sharing, nullptr, disposition,
                             FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~File() {
        if (m_file != INVALID_HANDLE_VALUE) CloseHandle(m_file);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    HANDLE get() const { return m_file; }
    // No folder, pipe or console.
    bool is_regular_file() const {
        return m_file != INVALID_HANDLE_VALUE && GetFileType(m_file) == FILE_TYPE_DISK;
    }
    HANDLE release() {
        HANDLE file = m_file;
        m_file = INVALID_HANDLE_VALUE;
        return file;
    }

private:
    HANDLE m_file;
};

HANDLE handle_of(std::intptr_t file) {
    return std::bit_cast<HANDLE>(file);
}

bool move_to(HANDLE file, std::size_t place) {
    LARGE_INTEGER target{};
    target.QuadPart = static_cast<LONGLONG>(place);
    return SetFilePointerEx(file, target, nullptr, FILE_BEGIN) != FALSE;
}

std::optional<std::size_t> size_of(HANDLE file) {
    LARGE_INTEGER size{};
    if (GetFileSizeEx(file, &size) == FALSE) return std::nullopt;
    return static_cast<std::size_t>(size.QuadPart);
}

bool set_size(HANDLE file, std::size_t size) {
    return move_to(file, size) && SetEndOfFile(file) != FALSE;
}

// As much as there is, up to `count`.
std::optional<std::vector<std::byte>> read_up_to(HANDLE file, std::size_t count) {
    std::vector<std::byte> bytes(count);
    if (!move_to(file, 0)) return std::nullopt;
    std::size_t done = 0;
    while (done < count) {
        DWORD got = 0;
        const auto step = static_cast<DWORD>(std::min(count - done, largest_step));
        if (ReadFile(file, bytes.data() + done, step, &got, nullptr) == FALSE) return std::nullopt;
        if (got == 0) break;
        done += got;
    }
    bytes.resize(done);
    return bytes;
}

bool write_all(HANDLE file, std::span<const std::byte> bytes) {
    if (!move_to(file, 0)) return false;
    std::size_t done = 0;
    while (done < bytes.size()) {
        DWORD put = 0;
        const auto step = static_cast<DWORD>(std::min(bytes.size() - done, largest_step));
        if (WriteFile(file, bytes.data() + done, step, &put, nullptr) == FALSE || put == 0) return false;
        done += put;
    }
    return true;
}

// Finds out that the disk is full before anything is overwritten.
bool reserve(HANDLE file, std::size_t size) {
    const std::optional<std::size_t> before = size_of(file);
    return before && (size <= *before || set_size(file, size));
}

} // namespace

std::unique_ptr<LockedFile> LockedFile::open(std::u16string_view name) {
    return open(name, false);
}

std::unique_ptr<LockedFile> LockedFile::create(std::u16string_view name) {
    return open(name, true);
}

std::unique_ptr<LockedFile> LockedFile::open(std::u16string_view name, bool create) {
    std::unique_ptr<LockedFile> locked(new LockedFile);
    // Others may read. Whoever opens the file to write, as another of these does, is refused.
    File file(name, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, create ? OPEN_ALWAYS : OPEN_EXISTING);
    if (!file.is_regular_file()) return nullptr;
    locked->m_file = std::bit_cast<std::intptr_t>(file.release());
    return locked;
}

LockedFile::~LockedFile() {
    if (m_file != -1) CloseHandle(handle_of(m_file));
}

std::optional<std::vector<std::byte>> LockedFile::read(std::size_t limit) const {
    const std::optional<std::size_t> size = size_of(handle_of(m_file));
    return size && *size <= limit ? read_up_to(handle_of(m_file), *size) : std::nullopt;
}

bool LockedFile::replace(std::span<const std::byte> content) {
    HANDLE file = handle_of(m_file);
    return reserve(file, content.size()) && write_all(file, content) && set_size(file, content.size());
}

std::optional<std::vector<std::byte>> first_bytes(std::u16string_view name, std::size_t count) {
    const File file(name, GENERIC_READ, shared_by_all, OPEN_EXISTING);
    return file.is_regular_file() ? read_up_to(file.get(), count) : std::nullopt;
}

} // namespace pm
