#pragma once

#include <cstdlib>
#include <ctime>
#include <exception>
#include <functional>
#include <gtest/gtest.h>
#include <pthread.h>
#include <stdexcept>

namespace pm::test {

// Whether the tests run at their full size, which takes minutes.
inline bool full_size() {
    const char* const torture = std::getenv("PM_TORTURE");
    return torture != nullptr && *torture != '\0';
}

inline std::size_t scaled(std::size_t small, std::size_t full) {
    return full_size() ? full : small;
}

// Runs the work in a thread with a stack of 256 KB; what it throws comes out.
inline void run_on_small_stack(const std::function<void()>& work) {
    constexpr std::size_t stack_size = 256 * 1024;
    struct State {
        const std::function<void()>& work;
        std::exception_ptr thrown;
    } state{work, nullptr};
    const auto run = [](void* argument) -> void* {
        auto& running = *static_cast<State*>(argument);
        try {
            running.work();
        } catch (...) {
            running.thrown = std::current_exception();
        }
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_t thread{};
    pthread_attr_init(&attributes);
    const bool started = pthread_attr_setstacksize(&attributes, stack_size) == 0 &&
                         pthread_create(&thread, &attributes, run, &state) == 0;
    pthread_attr_destroy(&attributes);
    if (!started) throw std::runtime_error("no thread with a small stack");
    pthread_join(thread, nullptr);
    if (state.thrown) std::rethrow_exception(state.thrown);
}

// Seconds of the processor that the work takes, on a small stack.
inline double seconds_of(const std::function<void()>& work) {
    double seconds = 0;
    run_on_small_stack([&] {
        const auto now = [] {
            std::timespec time{};
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
            return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
        };
        const double start = now();
        work();
        seconds = now() - start;
    });
    return seconds;
}

// Runs the work at an eighth of the size and at the size itself. Four times what is linear may pass, for the
// caches and for whoever runs beside; what is quadratic would take twice that.
inline void expect_linear(std::size_t size, const std::function<void(std::size_t size)>& work) {
    constexpr std::size_t part = 8;
    constexpr double slack = 4;
    constexpr double unmeasurable = 0.25;
    const double small = seconds_of([&] { work(size / part); });
    const double large = seconds_of([&] { work(size); });
    EXPECT_LE(large, slack * part * small + unmeasurable)
        << size / part << " took " << small << " s, " << size << " took " << large << " s";
    testing::Test::RecordProperty("seconds", std::to_string(large));
}

} // namespace pm::test
