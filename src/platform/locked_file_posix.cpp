#include "platform/locked_file.h"

#include "platform/files.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pm {

namespace {

constexpr mode_t new_file_mode = 0666;

class Descriptor {
public:
    // Not blocking, so that a pipe of that name doesn't hold us up.
    Descriptor(std::u16string_view name, int flags)
        : m_descriptor(
              ::open(native_file_name(name).c_str(), flags | O_CLOEXEC | O_NONBLOCK, new_file_mode)) {}
    ~Descriptor() {
        if (m_descriptor >= 0) close(m_descriptor);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int get() const { return m_descriptor; }
    bool is_regular_file() const {
        struct stat attributes {};
        return m_descriptor >= 0 && fstat(m_descriptor, &attributes) == 0 && S_ISREG(attributes.st_mode);
    }
    int release() {
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return descriptor;
    }

private:
    int m_descriptor;
};

// As much as there is, up to `count`.
std::optional<std::vector<std::byte>> read_up_to(int descriptor, std::size_t count) {
    std::vector<std::byte> bytes(count);
    std::size_t done = 0;
    while (done < count) {
        const ssize_t got = pread(descriptor, bytes.data() + done, count - done, static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    bytes.resize(done);
    return bytes;
}

bool write_all(int descriptor, std::span<const std::byte> bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t put =
            pwrite(descriptor, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

// Finds out that the disk is full before anything is overwritten.
bool reserve(int descriptor, std::size_t size) {
    struct stat before {};
    if (fstat(descriptor, &before) != 0) return false;
    const int error = posix_fallocate(descriptor, 0, static_cast<off_t>(size));
    const bool reserved = error == 0 || error == EOPNOTSUPP || error == EINVAL;
    if (!reserved && ftruncate(descriptor, before.st_size) != 0) return false;
    return reserved;
}

int descriptor_of(std::intptr_t file) {
    return static_cast<int>(file);
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
    Descriptor file(name, create ? O_RDWR | O_CREAT : O_RDWR);
    if (!file.is_regular_file() || flock(file.get(), LOCK_EX | LOCK_NB) != 0) return nullptr;
    locked->m_file = file.release();
    return locked;
}

LockedFile::~LockedFile() {
    if (m_file < 0) return;
    flock(descriptor_of(m_file), LOCK_UN); // a child process may have a copy of the descriptor
    close(descriptor_of(m_file));
}

std::optional<std::vector<std::byte>> LockedFile::read(std::size_t limit) const {
    const int descriptor = descriptor_of(m_file);
    struct stat attributes {};
    if (fstat(descriptor, &attributes) != 0) return std::nullopt;
    const auto size = static_cast<std::size_t>(attributes.st_size);
    return size <= limit ? read_up_to(descriptor, size) : std::nullopt;
}

bool LockedFile::replace(std::span<const std::byte> content) {
    const int descriptor = descriptor_of(m_file);
    return reserve(descriptor, content.size()) && write_all(descriptor, content) &&
           ftruncate(descriptor, static_cast<off_t>(content.size())) == 0;
}

std::optional<std::vector<std::byte>> first_bytes(std::u16string_view name, std::size_t count) {
    const Descriptor file(name, O_RDONLY);
    return file.is_regular_file() ? read_up_to(file.get(), count) : std::nullopt;
}

} // namespace pm
