#include "faults/disk.h"

#include <cstdint>
#include <sstream>
#include <stdexcept>

namespace pm::test {

namespace {

std::string bytes_of(std::string_view hex) {
    std::string bytes;
    for (std::size_t at = 0; at + 1 < hex.size(); at += 2) {
        bytes += static_cast<char>(std::stoi(std::string(hex.substr(at, 2)), nullptr, 16));
    }
    return bytes;
}

// A change with the file that it is about, whatever that is called by then.
struct Step {
    DiskChange change;
    int file = -1;
};

bool is_of_names(const DiskChange& change) {
    return change.what == "create" || change.what == "name" || change.what == "link" ||
           change.what == "unlink";
}

struct Disk {
    std::map<std::string, int> names;
    std::map<int, std::string> contents;

    void apply(const Step& step, bool half = false) {
        const DiskChange& change = step.change;
        if (change.what == "write") {
            write(contents[step.file], change, half ? change.bytes.size() / 2 : change.bytes.size());
        } else if (change.what == "truncate") {
            contents[step.file].resize(change.number);
        } else if (change.what == "create") {
            names[change.name] = step.file;
        } else if (change.what == "unlink") {
            names.erase(change.name);
        } else if (change.what == "link" || change.what == "name") {
            names[change.other] = step.file;
            if (change.what == "name") names.erase(change.name);
        }
    }

    static void write(std::string& content, const DiskChange& change, std::size_t count) {
        if (content.size() < change.number + count) content.resize(change.number + count);
        content.replace(change.number, count, change.bytes, 0, count);
    }

    Folder folder() const {
        Folder files;
        for (const auto& [name, file] : names) {
            const auto found = contents.find(file);
            files[name] = found != contents.end() ? found->second : "";
        }
        return files;
    }
};

Disk disk_of(const Folder& before) {
    Disk disk;
    for (const auto& [name, content] : before) {
        const int file = static_cast<int>(disk.names.size());
        disk.names[name] = file;
        disk.contents[file] = content;
    }
    return disk;
}

std::vector<Step> steps_of(Disk disk, const std::vector<DiskChange>& changes) {
    std::vector<Step> steps;
    int next = static_cast<int>(disk.names.size());
    for (const DiskChange& change : changes) {
        Step step{change};
        if (change.what == "create") {
            step.file = next++;
        } else if (change.name != ".") {
            step.file = disk.names.at(change.name);
        }
        disk.apply(step);
        steps.push_back(step);
    }
    return steps;
}

bool flushes(const Step& sync, const Step& earlier) {
    if (sync.change.what != "sync") return false;
    if (sync.change.name == ".") return is_of_names(earlier.change);
    return !is_of_names(earlier.change) && sync.file == earlier.file;
}

// Which of the first `end` steps may be missing.
std::vector<std::size_t> unflushed(const std::vector<Step>& steps, std::size_t end) {
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at < end; ++at) {
        if (steps[at].change.what == "sync") continue;
        bool flushed = false;
        for (std::size_t later = at + 1; later < end; ++later) {
            flushed = flushed || flushes(steps[later], steps[at]);
        }
        if (!flushed) open.push_back(at);
    }
    return open;
}

// The state in which of the open steps those whose bit is set are done, and of the last write one half.
Folder state_of(Disk disk, const std::vector<Step>& steps, std::size_t end,
                const std::vector<std::size_t>& open, std::uint64_t done, bool half) {
    std::size_t next = 0;
    std::size_t last_write = end;
    for (const std::size_t at : open) {
        if (steps[at].change.what == "write") last_write = at;
    }
    for (std::size_t at = 0; at < end; ++at) {
        bool is_done = true;
        if (next < open.size() && open[next] == at) {
            is_done = (done >> next & 1U) != 0;
            ++next;
        }
        if (is_done) disk.apply(steps[at], half && at == last_write);
    }
    return disk.folder();
}

} // namespace

std::vector<DiskChange> disk_changes(std::string_view log) {
    std::vector<DiskChange> changes;
    std::istringstream lines{std::string(log)};
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        DiskChange change;
        words >> change.what >> change.name;
        if (change.what == "name" || change.what == "link") words >> change.other;
        if (change.what == "truncate" || change.what == "write") words >> change.number;
        std::string hex;
        if (change.what == "write") words >> hex;
        change.bytes = bytes_of(hex);
        if (!words && !words.eof()) throw std::runtime_error("not a change: " + line);
        changes.push_back(change);
    }
    return changes;
}

std::set<Folder> after_power_cuts(const Folder& before, const std::vector<DiskChange>& changes) {
    constexpr std::size_t most_open = 16;
    const Disk disk = disk_of(before);
    const std::vector<Step> steps = steps_of(disk, changes);
    std::set<Folder> states;
    for (std::size_t end = 0; end <= steps.size(); ++end) {
        const std::vector<std::size_t> open = unflushed(steps, end);
        if (open.size() > most_open) throw std::runtime_error("too many changes at once");
        for (std::uint64_t done = 0; done < std::uint64_t{1} << open.size(); ++done) {
            states.insert(state_of(disk, steps, end, open, done, false));
            states.insert(state_of(disk, steps, end, open, done, true));
        }
    }
    return states;
}

std::set<Folder> after_ordered_cuts(const Folder& before, const std::vector<DiskChange>& changes) {
    Disk disk = disk_of(before);
    const std::vector<Step> steps = steps_of(disk, changes);
    std::set<Folder> states{disk.folder()};
    for (const Step& step : steps) {
        Disk half = disk;
        half.apply(step, true);
        states.insert(half.folder());
        disk.apply(step);
        states.insert(disk.folder());
    }
    return states;
}

} // namespace pm::test
