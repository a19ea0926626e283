#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <string>
#include <time.h>
#include <vector>

namespace pm::bench {

// The seconds of a clock of the system: CLOCK_MONOTONIC, or CLOCK_THREAD_CPUTIME_ID for the time that this
// thread had a processor, which other programs of the machine don't add to.
inline double seconds_of(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Nanoseconds that the work takes.
template<class Work>
double time_of(Work&& work, clockid_t clock = CLOCK_THREAD_CPUTIME_ID) {
    const double start = seconds_of(clock);
    work();
    return (seconds_of(clock) - start) * 1e9;
}

inline double median(std::vector<double> samples) {
    if (samples.empty()) return 0;
    const auto middle = samples.begin() + static_cast<std::ptrdiff_t>(samples.size() / 2);
    std::nth_element(samples.begin(), middle, samples.end());
    return *middle;
}

// How long something is measured: whole rounds until the time is up, at least `least` and at most `most`.
class Budget {
public:
    explicit Budget(double seconds, std::size_t least = 3, std::size_t most = 101)
        : m_seconds(seconds), m_least(least), m_most(most) {}

    bool another_round() {
        if (m_rounds >= m_most) return false;
        if (m_rounds >= m_least && seconds_of(CLOCK_MONOTONIC) > m_start + m_seconds) return false;
        ++m_rounds;
        return true;
    }
    std::size_t rounds() const { return m_rounds; }

private:
    double m_seconds;
    std::size_t m_least;
    std::size_t m_most;
    std::size_t m_rounds = 0;
    double m_start = seconds_of(CLOCK_MONOTONIC);
};

// Keeps a value from being optimised away.
template<class Value>
void keep(const Value& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

// One of several works that are compared: they run by turns, so that what disturbs the machine hits all
// alike.
struct Task {
    std::string name;
    double per = 1; // units in one run, such as properties
    std::function<void()> work;
    std::function<void()> clean = [] {}; // behind each run, not timed
    std::vector<double> samples{};
};

inline void run_by_turns(std::vector<Task>& tasks, double seconds, clockid_t clock) {
    for (Task& task : tasks) { // once to get warm
        task.work();
        task.clean();
    }
    for (Budget budget(seconds); budget.another_round();) {
        for (Task& task : tasks) {
            task.samples.push_back(time_of(task.work, clock));
            task.clean();
        }
    }
}

} // namespace pm::bench
