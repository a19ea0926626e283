#pragma once

#include <csignal>
#include <stdexcept>
#include <sys/resource.h>

namespace pm::test {

// While one lives, no file grows beyond `size` bytes: to the writer as if the disk were full.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &m_before);
        rlimit limit = m_before;
        limit.rlim_cur = size;
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("no limit can be set");
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int);
};

} // namespace pm::test
