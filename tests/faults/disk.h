#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace pm::test {

// A change of a folder, as record_calls() writes it down.
struct DiskChange {
    std::string what; // "create", "truncate", "write", "sync", "name", "link", "unlink"
    std::string name;
    std::string other = {}; // of name and link
    std::size_t number = 0; // offset or size
    std::string bytes = {};
};
std::vector<DiskChange> disk_changes(std::string_view log);

// The files of a folder by their names.
using Folder = std::map<std::string, std::string>;

// What a power cut can leave of a folder, at any moment of these changes: each change that nothing has
// flushed may be on the disk or not, whatever is there of the others, and a write by its half. A sync of a
// file flushes what it holds, one of the folder its names.
std::set<Folder> after_power_cuts(const Folder& before, const std::vector<DiskChange>& changes);
// What a cut leaves of a disk that keeps the order.
std::set<Folder> after_ordered_cuts(const Folder& before, const std::vector<DiskChange>& changes);

} // namespace pm::test
