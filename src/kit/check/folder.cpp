#include "check/folder.h"

#include "check/content.h"
#include "check/files.h"
#include "check/library_load.h"
#include "check/pdt/description.h"
#include <algorithm>
#include <pm/inspect.h>
#include <pm/text.h>

namespace pm::kit {

namespace fs = std::filesystem;

namespace {

std::vector<fs::directory_entry> entries_of(const fs::path& folder) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        entries.push_back(*at);
    }
    std::sort(entries.begin(), entries.end());
    return entries;
}

bool holds_description(const std::string& folder, const CheckOptions& options) {
    if (options.type && *options.type != PM_Object::FILE_PDT) return false;
    try {
        return find_string_file(file_name_to_utf16(folder)).has_value();
    } catch (const ZT_Exception& e) {
        if (tells_want_of_memory(e)) throw;
        return false;
    }
}

// The files of one folder, and the folders in it.
std::vector<fs::path> check_level(const fs::path& folder, const CheckOptions& options, Findings& findings) {
    const std::string name = name_of_path(folder);
    const bool described = holds_description(name, options);
    if (described) check_description(name, findings);
    std::vector<fs::path> below;
    for (const fs::directory_entry& entry : entries_of(folder)) {
        std::error_code error;
        if (entry.is_directory(error)) {
            if (!entry.is_symlink(error)) below.push_back(entry.path());
        } else if (entry.is_regular_file(error) &&
                   !(described && is_table_name(name_of_path(entry.path())))) {
            check_if_known(name_of_path(entry.path()), options, findings);
        }
    }
    return below;
}

} // namespace

void check_folder(std::string_view folder, const CheckOptions& options, Findings& findings) {
    std::vector<fs::path> waiting{path_of_name(folder)};
    while (!waiting.empty()) {
        const fs::path next = std::move(waiting.back());
        waiting.pop_back();
        const std::vector<fs::path> below = check_level(next, options, findings);
        waiting.insert(waiting.end(), below.rbegin(), below.rend());
    }
}

} // namespace pm::kit
