#pragma once

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pm::test {

// What became of work that ran in a process of its own.
struct ChildOutcome {
    int status = -1;             // what the work gave, from 0 to 255; -1 if it died
    std::size_t peak_memory = 0; // bytes that lay in real memory at once
};

// Runs the work in a child process that may take `address_space` bytes of addresses; 0 sets no limit.
inline ChildOutcome run_in_child(const std::function<int()>& work, rlim_t address_space = 0) {
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("no child process");
    if (child == 0) {
        const rlimit limit{address_space, address_space};
        if (address_space != 0 && setrlimit(RLIMIT_AS, &limit) != 0) _exit(255);
        int status = 254;
        try {
            status = work();
        } catch (...) {
        }
        _exit(status);
    }
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child) throw std::runtime_error("the child is lost");
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, static_cast<std::size_t>(usage.ru_maxrss) * 1024};
}

} // namespace pm::test
