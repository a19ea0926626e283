#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <sys/inotify.h>
#include <unistd.h>
#include <vector>

namespace pm::test {

// What happens to the entries of a folder, as "made a folder", "made a file" and "changed the rights".
class FolderWatch {
public:
    explicit FolderWatch(const std::filesystem::path& folder) : m_events(inotify_init1(IN_NONBLOCK)) {
        if (inotify_add_watch(m_events, folder.c_str(), IN_CREATE | IN_ATTRIB) < 0) {
            throw std::runtime_error("can't watch");
        }
    }
    ~FolderWatch() { close(m_events); }
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    std::vector<std::string> seen() const {
        std::vector<std::string> seen;
        alignas(inotify_event) char events[1 << 14];
        const ssize_t size = read(m_events, events, sizeof events);
        for (ssize_t at = 0; at < size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(events + at);
            seen.emplace_back(name_of(event->mask));
            at += static_cast<ssize_t>(sizeof *event + event->len);
        }
        return seen;
    }

private:
    static const char* name_of(std::uint32_t mask) {
        if ((mask & IN_ATTRIB) != 0) return "changed the rights";
        return (mask & IN_ISDIR) != 0 ? "made a folder" : "made a file";
    }

    int m_events;
};

} // namespace pm::test
