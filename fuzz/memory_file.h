#pragma once

#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace pm::fuzz {

// A file that lives in memory and still has a name.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& content) : m_file(memfd_create("input", MFD_CLOEXEC)) {
        if (m_file < 0 ||
            write(m_file, content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
            throw std::runtime_error("no file in memory");
        }
        for (const char c : "/proc/self/fd/" + std::to_string(m_file))
            m_name += static_cast<char16_t>(c);
    }
    ~MemoryFile() { close(m_file); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const char16_t* name() const { return m_name.c_str(); }

private:
    int m_file;
    std::u16string m_name;
};

} // namespace pm::fuzz
