#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace pm::bench {

using Clock = std::chrono::steady_clock;

inline double nanoseconds_since(Clock::time_point start) {
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

template<class Work>
double time_of(Work&& work) {
    const Clock::time_point start = Clock::now();
    work();
    return nanoseconds_since(start);
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
        if (m_rounds >= m_least && nanoseconds_since(m_start) > m_seconds * 1e9) return false;
        ++m_rounds;
        return true;
    }
    std::size_t rounds() const { return m_rounds; }

private:
    double m_seconds;
    std::size_t m_least;
    std::size_t m_most;
    std::size_t m_rounds = 0;
    Clock::time_point m_start = Clock::now();
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

inline void run_by_turns(std::vector<Task>& tasks, double seconds) {
    for (Budget budget(seconds); budget.another_round();) {
        for (Task& task : tasks) {
            task.samples.push_back(time_of(task.work));
            task.clean();
        }
    }
}

} // namespace pm::bench
