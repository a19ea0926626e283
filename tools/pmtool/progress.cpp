#include "progress.h"

#include "system.h"
#include "text.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fmt/format.h>
#include <pm/kit/stored.h>

namespace pmtool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int quiet_seconds = 2;

// When the first work began: what takes long may be many short pieces.
Clock::time_point start() {
    static const Clock::time_point time = Clock::now();
    return time;
}

} // namespace

Progress::Progress(std::string_view what) : m_what(pm::kit::printable_text(what)) {
    if (!is_terminal(Stream::err)) return;
    (void)start();
    const SignalDelay delay; // signals are for the thread that works
    m_thread = std::thread([this] { show(); });
}

Progress::~Progress() {
    if (!m_thread.joinable()) return;
    {
        const std::lock_guard lock(m_mutex);
        m_done = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void Progress::show() {
    std::unique_lock lock(m_mutex);
    bool is_shown = false;
    const auto worked = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start());
    auto next = std::max<std::chrono::seconds>(worked, std::chrono::seconds(quiet_seconds - 1));
    while (!m_changed.wait_until(lock, start() + ++next, [this] { return m_done; })) {
        print_error(fmt::format("\r{} ... {} s", m_what, next.count()));
        std::fflush(stderr);
        is_shown = true;
    }
    if (is_shown) print_error("\r\x1B[K");
}

} // namespace pmtool
