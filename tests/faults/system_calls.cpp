#include "faults/system_calls.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace pm::test {

namespace {

// None of it takes memory, which may be failing too.
char folder[4096];
CallFault current;
std::uint64_t seen = 0;
bool hit = false;
int spared = 0;
int log_file = -1;

bool counts(std::string_view name) {
    return folder[0] != '\0' && name.starts_with(folder);
}

// The name of an open file.
class NameOf {
public:
    explicit NameOf(int file) {
        char link[40];
        std::snprintf(link, sizeof link, "/proc/self/fd/%d", file);
        const ssize_t size = folder[0] != '\0' ? readlink(link, m_name, sizeof m_name - 1) : -1;
        m_name[std::max<ssize_t>(size, 0)] = '\0';
    }
    const char* text() const { return m_name; }

private:
    char m_name[4096];
};

bool is_place(Call call, std::string_view name) {
    if ((current.calls & call) == 0 || spared != 0 || !counts(name)) return false;
    const std::uint64_t place = seen++;
    const bool is_it = place == current.place || (current.from_then_on && place > current.place);
    hit = hit || is_it;
    return is_it;
}

// Whether the call is to fail; errno is set then.
bool fails(Call call, std::string_view name) {
    if (!is_place(call, name) || current.code == 0) return false;
    errno = current.code;
    return true;
}

// How much of `size` a call is to do; 0: it fails.
std::size_t allowed(Call call, std::string_view name, std::size_t size) {
    if (!is_place(call, name)) return std::max<std::size_t>(size, 1);
    if (current.code == 0) return std::max<std::size_t>(size / 2, 1);
    errno = current.code;
    return 0;
}

template<class Function>
Function* next_of(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// --- the log

bool records(std::string_view name) {
    return log_file >= 0 && counts(name);
}

void put(std::string_view text) {
    (void)syscall(SYS_write, log_file, text.data(), text.size());
}

const char* below(const char* name) {
    const char* const rest = name + std::strlen(folder);
    return *rest == '/' ? rest + 1 : ".";
}

template<class... Texts>
void record(const char* what, const char* name, Texts... others) {
    if (!records(name)) return;
    const int code = errno;
    put(what);
    put(below(name));
    ((put(" "), put(others)), ...);
    put("\n");
    errno = code;
}

void record_size(const char* name, off_t size) {
    char digits[24];
    std::snprintf(digits, sizeof digits, "%lld", static_cast<long long>(size));
    record("truncate ", name, digits);
}

void record_write(const char* name, off_t offset, const void* data, ssize_t count) {
    if (count <= 0 || !records(name)) return;
    const int code = errno;
    char start[64];
    std::snprintf(start, sizeof start, " %lld ", static_cast<long long>(offset));
    put("write ");
    put(below(name));
    put(start);
    for (ssize_t at = 0; at < count; ++at) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<const unsigned char*>(data)[at]);
        put({digits, 2});
    }
    put("\n");
    errno = code;
}

bool is_there(const char* name) {
    struct stat attributes {};
    const int code = errno;
    const bool found = stat(name, &attributes) == 0;
    errno = code;
    return found;
}

void record_opening(const char* name, bool was_there, bool truncates) {
    if (!was_there) {
        record("create ", name);
    } else if (truncates) {
        record_size(name, 0);
    }
}

// --- the calls, under both of their names

int open_file(int (*next)(const char*, int, ...), const char* name, int flags, mode_t mode) {
    if (fails(call_open, name)) return -1;
    const bool was_there = is_there(name);
    const int file = next(name, flags, mode);
    if (file >= 0 && (flags & O_CREAT) != 0) record_opening(name, was_there, (flags & O_TRUNC) != 0);
    return file;
}

FILE* open_stream(FILE* (*next)(const char*, const char*), const char* name, const char* mode) {
    if (fails(call_open, name)) return nullptr;
    const bool was_there = is_there(name);
    FILE* const file = next(name, mode);
    if (file != nullptr && *mode == 'w') record_opening(name, was_there, true);
    return file;
}

int make_temporary(int (*next)(char*, int), char* name, int flags) {
    if (fails(call_open, name)) return -1;
    const int file = next(name, flags);
    if (file >= 0) record("create ", name);
    return file;
}

ssize_t read_at(ssize_t (*next)(int, void*, std::size_t, off_t), int file, void* to, std::size_t size,
                off_t offset) {
    const NameOf name(file);
    const std::size_t count = allowed(call_read, name.text(), size);
    return count == 0 ? -1 : next(file, to, std::min(count, size), offset);
}

ssize_t write_at(ssize_t (*next)(int, const void*, std::size_t, off_t), int file, const void* from,
                 std::size_t size, off_t offset) {
    const NameOf name(file);
    const std::size_t count = allowed(call_write, name.text(), size);
    if (count == 0) return -1;
    const ssize_t done = next(file, from, std::min(count, size), offset);
    record_write(name.text(), offset, from, done);
    return done;
}

int resize(int (*next)(int, off_t), int file, off_t size) {
    const NameOf name(file);
    if (fails(call_size, name.text())) return -1;
    const int result = next(file, size);
    if (result == 0) record_size(name.text(), size);
    return result;
}

// Gives an error number, and makes the file larger only.
int reserve(int (*next)(int, off_t, off_t), int file, off_t offset, off_t size) {
    const NameOf name(file);
    if (fails(call_size, name.text())) return errno;
    struct stat before {};
    fstat(file, &before);
    const int result = next(file, offset, size);
    if (result == 0 && before.st_size < offset + size) record_size(name.text(), offset + size);
    return result;
}

mode_t mode_of(int flags, va_list list) {
    return (flags & O_CREAT) != 0 ? static_cast<mode_t>(va_arg(list, int)) : 0;
}

} // namespace

void set_call_folder(const char* name) {
    std::snprintf(folder, sizeof folder, "%s", name != nullptr ? name : "");
}

void set_call_fault(const CallFault& fault) {
    current = fault;
    seen = 0;
    hit = false;
}

bool call_fault_hit() {
    return hit;
}

CallsSpared::CallsSpared() {
    ++spared;
}

CallsSpared::~CallsSpared() {
    --spared;
}

void record_calls(const char* log) {
    if (log_file >= 0) syscall(SYS_close, log_file);
    log_file = -1;
    if (log == nullptr) return;
    constexpr int flags = O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC;
    log_file = static_cast<int>(syscall(SYS_openat, AT_FDCWD, log, flags, 0666));
}

} // namespace pm::test

extern "C" {

using namespace pm::test;

int open(const char* name, int flags, ...) {
    static const auto next = next_of<int(const char*, int, ...)>("open");
    va_list list;
    va_start(list, flags);
    const mode_t mode = mode_of(flags, list);
    va_end(list);
    return open_file(next, name, flags, mode);
}

int open64(const char* name, int flags, ...) {
    static const auto next = next_of<int(const char*, int, ...)>("open64");
    va_list list;
    va_start(list, flags);
    const mode_t mode = mode_of(flags, list);
    va_end(list);
    return open_file(next, name, flags, mode);
}

FILE* fopen(const char* name, const char* mode) {
    static const auto next = next_of<FILE*(const char*, const char*)>("fopen");
    return open_stream(next, name, mode);
}

FILE* fopen64(const char* name, const char* mode) {
    static const auto next = next_of<FILE*(const char*, const char*)>("fopen64");
    return open_stream(next, name, mode);
}

int mkostemp(char* name, int flags) {
    static const auto next = next_of<int(char*, int)>("mkostemp");
    return make_temporary(next, name, flags);
}

int mkstemp(char* name) {
    static const auto next = next_of<int(char*, int)>("mkostemp");
    return make_temporary(next, name, 0);
}

ssize_t read(int file, void* to, std::size_t size) {
    static const auto next = next_of<ssize_t(int, void*, std::size_t)>("read");
    const NameOf name(file);
    const std::size_t count = allowed(call_read, name.text(), size);
    return count == 0 ? -1 : next(file, to, std::min(count, size));
}

ssize_t pread(int file, void* to, std::size_t size, off_t offset) {
    static const auto next = next_of<ssize_t(int, void*, std::size_t, off_t)>("pread");
    return read_at(next, file, to, size, offset);
}

ssize_t pread64(int file, void* to, std::size_t size, off_t offset) {
    static const auto next = next_of<ssize_t(int, void*, std::size_t, off_t)>("pread64");
    return read_at(next, file, to, size, offset);
}

ssize_t write(int file, const void* from, std::size_t size) {
    static const auto next = next_of<ssize_t(int, const void*, std::size_t)>("write");
    const NameOf name(file);
    const std::size_t count = allowed(call_write, name.text(), size);
    if (count == 0) return -1;
    const off_t offset = records(name.text()) ? lseek(file, 0, SEEK_CUR) : 0;
    const ssize_t done = next(file, from, std::min(count, size));
    record_write(name.text(), offset, from, done);
    return done;
}

// Piece by piece, so that each piece may fail.
ssize_t writev(int file, const iovec* pieces, int count) {
    ssize_t done = 0;
    for (int at = 0; at < count; ++at) {
        if (pieces[at].iov_len == 0) continue;
        const ssize_t put = write(file, pieces[at].iov_base, pieces[at].iov_len);
        if (put < 0) return done > 0 ? done : put;
        done += put;
        if (static_cast<std::size_t>(put) < pieces[at].iov_len) return done;
    }
    return done;
}

ssize_t pwrite(int file, const void* from, std::size_t size, off_t offset) {
    static const auto next = next_of<ssize_t(int, const void*, std::size_t, off_t)>("pwrite");
    return write_at(next, file, from, size, offset);
}

ssize_t pwrite64(int file, const void* from, std::size_t size, off_t offset) {
    static const auto next = next_of<ssize_t(int, const void*, std::size_t, off_t)>("pwrite64");
    return write_at(next, file, from, size, offset);
}

// What the checked copies of a hardened program call in their place.
int __open_2(const char* name, int flags) {
    return open(name, flags);
}

int __open64_2(const char* name, int flags) {
    return open64(name, flags);
}

ssize_t __read_chk(int file, void* to, std::size_t size, std::size_t room) {
    return size <= room ? read(file, to, size) : (std::abort(), -1);
}

ssize_t __pread_chk(int file, void* to, std::size_t size, off_t offset, std::size_t room) {
    return size <= room ? pread(file, to, size, offset) : (std::abort(), -1);
}

ssize_t __pread64_chk(int file, void* to, std::size_t size, off_t offset, std::size_t room) {
    return size <= room ? pread64(file, to, size, offset) : (std::abort(), -1);
}

int ftruncate(int file, off_t size) noexcept {
    static const auto next = next_of<int(int, off_t)>("ftruncate");
    return resize(next, file, size);
}

int ftruncate64(int file, off_t size) noexcept {
    static const auto next = next_of<int(int, off_t)>("ftruncate64");
    return resize(next, file, size);
}

int posix_fallocate(int file, off_t offset, off_t size) {
    static const auto next = next_of<int(int, off_t, off_t)>("posix_fallocate");
    return reserve(next, file, offset, size);
}

int posix_fallocate64(int file, off_t offset, off_t size) {
    static const auto next = next_of<int(int, off_t, off_t)>("posix_fallocate64");
    return reserve(next, file, offset, size);
}

int fsync(int file) {
    static const auto next = next_of<int(int)>("fsync");
    const NameOf name(file);
    if (fails(call_sync, name.text())) return -1;
    const int result = next(file);
    if (result == 0) record("sync ", name.text());
    return result;
}

int rename(const char* from, const char* to) noexcept {
    static const auto next = next_of<int(const char*, const char*)>("rename");
    if (fails(call_name, from)) return -1;
    const int result = next(from, to);
    if (result == 0) record("name ", from, below(to));
    return result;
}

int link(const char* from, const char* to) noexcept {
    static const auto next = next_of<int(const char*, const char*)>("link");
    if (fails(call_name, from)) return -1;
    const int result = next(from, to);
    if (result == 0) record("link ", from, below(to));
    return result;
}

int unlink(const char* name) noexcept {
    static const auto next = next_of<int(const char*)>("unlink");
    const int result = next(name);
    if (result == 0) record("unlink ", name);
    return result;
}
}
