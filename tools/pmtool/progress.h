#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace pmtool {

// Work that may take long: once the program has worked for some seconds a line on the terminal of standard
// error says what it is at and for how long it works, until this dies. Elsewhere nothing is shown.
class Progress {
public:
    explicit Progress(std::string_view what);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

private:
    void show();

    std::string m_what;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_done = false;
    std::thread m_thread;
};

} // namespace pmtool
