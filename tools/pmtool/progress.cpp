#include "progress.h"

#include "system.h"
#include <chrono>
#include <cstdio>
#include <fmt/format.h>

namespace pmtool {

namespace {

constexpr int quiet_seconds = 2;

} // namespace

Progress::Progress(std::string what) : m_what(std::move(what)) {
    if (!is_terminal(Stream::err)) return;
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
    for (int seconds = 1; !m_changed.wait_for(lock, std::chrono::seconds(1), [this] { return m_done; });
         ++seconds) {
        if (seconds < quiet_seconds) continue;
        fmt::print(stderr, "\r{} ... {} s", m_what, seconds);
        std::fflush(stderr);
        is_shown = true;
    }
    if (is_shown) fmt::print(stderr, "\r\x1B[K");
}

} // namespace pmtool
