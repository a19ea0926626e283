#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace pm {

// A file open for reading and writing by this object alone: until it dies, another one on the same file, by
// whatever name, in this process or another, can't be had.
class LockedFile {
public:
    // Null if the file can't be opened for reading and writing, is no regular file, or is in use. `create`
    // makes it if it isn't there; one that is keeps its content.
    static std::unique_ptr<LockedFile> open(std::u16string_view name);
    static std::unique_ptr<LockedFile> create(std::u16string_view name);
    ~LockedFile();
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    // The whole content; nothing if it has more than `limit` bytes or can't be read.
    std::optional<std::vector<std::byte>> read(std::size_t limit) const;
    // Makes `content` the file's whole content. False if it can't be written; the file is as it was then if
    // there was no room for it.
    [[nodiscard]] bool replace(std::span<const std::byte> content);

private:
    LockedFile() = default;
    static std::unique_ptr<LockedFile> open(std::u16string_view name, bool create);

    std::intptr_t m_file = -1; // the system's handle, or -1
};

// The first bytes of a regular file, at most `count`. Nothing if they can't be read; locks don't matter.
std::optional<std::vector<std::byte>> first_bytes(std::u16string_view name, std::size_t count);

} // namespace pm
