#include "check/folder.h"

#include "check/content.h"
#include "check/files.h"
#include "check/library_load.h"
#include "check/pdt/description.h"
#include <algorithm>
#include <pm/error_number.h>
#include <pm/inspect.h>
#include <pm/text.h>

namespace pm::kit {

namespace fs = std::filesystem;

namespace {

void say_unreadable(const fs::path& folder, const std::error_code& error, Findings& findings) {
    const bool denied = error == std::errc::permission_denied;
    findings.add({.rule = Rule::unreadable,
                  .place = {.file = name_of_path(folder), .section = {}},
                  .message = "The folder can't be read.",
                  .number = denied ? PM_ERR_ACCESS_DENIED : PM_ERR_STREAM_FAILED});
}

// As far as they can be listed.
std::vector<fs::directory_entry> entries_of(const fs::path& folder, Findings& findings) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        entries.push_back(*at);
    }
    if (error) say_unreadable(folder, error, findings);
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
    if (described && !options.section.empty()) say_no_sections(name, PM_Object::FILE_PDT, findings);
    if (described && options.section.empty()) check_description(name, findings);
    std::vector<fs::path> below;
    for (const fs::directory_entry& entry : entries_of(folder, findings)) {
        std::error_code error;
        if (entry.is_directory(error)) {
            if (!entry.is_symlink(error)) below.push_back(entry.path());
        } else if (entry.is_regular_file(error) &&
                   !(described && is_table_name(name_of_path(entry.path())))) {
            check_if_known(name_of_path(entry.path()), options, findings);
        } else if (!entry.is_symlink(error) && entry.status(error).type() == fs::file_type::none) {
            say_unreadable(name_of_path(entry.path()), PM_ERR_ACCESS_DENIED, findings);
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
