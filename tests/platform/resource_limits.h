#pragma once

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <sys/resource.h>
#include <unistd.h>

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

// While one lives, the process may do no more than anybody, even if the system's administrator runs it.
class WithoutPrivileges {
public:
    WithoutPrivileges() : m_before(geteuid()) {
        if (m_before == 0 && seteuid(nobody) != 0) throw std::runtime_error("privileges can't be dropped");
    }
    ~WithoutPrivileges() {
        if (geteuid() != m_before && seteuid(m_before) != 0) std::abort();
    }
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    uid_t m_before;
};

} // namespace pm::test
