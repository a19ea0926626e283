#include "verbs/check_defaults.h"

#include "failure.h"
#include "formats.h"
#include "system.h"
#include <algorithm>
#include <filesystem>
#include <fmt/format.h>
#include <iterator>
#include <pm/kit/stored.h>
#include <system_error>

namespace pmtool {

namespace {

namespace fs = std::filesystem;
namespace kit = pm::kit;

using DefaultFindings = std::vector<DefaultFinding>;

// Calls `action` with the name of each section and a tree of what it holds, if any holds a description.
template<class Action>
void for_each_section(const Source& source, Action action) {
    const pm::Tree& tree = source.content.tree;
    if (!source.content.by_section || !kit::find_description(tree)) return;
    for (const kit::Section& section : source.content.sections) {
        const auto node = tree.node('\\' + section.node);
        if (!node) continue;
        pm::Tree part;
        kit::copy(*node, part, "\\");
        action(section.name, part);
    }
}

void add_findings(const pm::Tree& tree, const std::string& file, const std::string& section,
                  DefaultFindings& findings) {
    if (!kit::find_description(tree)) return;
    for (kit::Finding& finding : kit::check_description(tree)) {
        findings.push_back({file, section, std::move(finding)});
    }
}

void add_findings_of_file(const SourceOptions& options, const std::optional<std::string>& content,
                          DefaultFindings& findings) {
    try {
        const Source source = read_source(options, content, Damage::keep);
        if (!source.content.by_section) {
            return add_findings(source.content.tree, options.file, options.section, findings);
        }
        for_each_section(source, [&](const std::string& name, const pm::Tree& part) {
            add_findings(part, options.file, name, findings);
        });
    } catch (const Failure&) { // the check of the file tells it
    }
}

// The format that a file or folder is read as; nothing if it isn't known.
const Format* format_read(const std::string& file, const std::string& from) {
    try {
        return from.empty() ? identify(file, true).format : &format_named(from);
    } catch (const Mistake&) {
        throw;
    } catch (const Failure&) {
        return nullptr;
    }
}

std::string name_of(const fs::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

// As far as it can be listed.
std::vector<fs::directory_entry> entries_of(const fs::path& folder) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
        entries.push_back(*at);
    }
    std::ranges::sort(entries);
    return entries;
}

// A table by itself describes nothing: the folder does.
void add_findings_of_entry(const std::string& name, bool is_folder, const SourceOptions& options,
                           DefaultFindings& findings) {
    const Format* const format = format_read(name, options.from);
    if (format == nullptr || format->is_json() || format->is(PM_Object::FILE_PDT) != is_folder) return;
    add_findings_of_file({.file = name, .from = options.from, .section = options.section}, std::nullopt,
                         findings);
}

// The folders below, the first one last.
std::vector<fs::path> add_findings_of_level(const fs::path& folder, const SourceOptions& options,
                                            DefaultFindings& findings) {
    add_findings_of_entry(name_of(folder), true, options, findings);
    std::vector<fs::path> below;
    for (const fs::directory_entry& entry : entries_of(folder)) {
        std::error_code error;
        if (entry.is_regular_file(error)) {
            add_findings_of_entry(name_of(entry.path()), false, options, findings);
        } else if (entry.is_directory(error) && !entry.is_symlink(error)) {
            below.push_back(entry.path());
        }
    }
    std::ranges::reverse(below);
    return below;
}

void add_findings_of_folder(const std::string& folder, const SourceOptions& options,
                            DefaultFindings& findings) {
    std::vector<fs::path> waiting{fs::path(std::u8string(folder.begin(), folder.end()))};
    while (!waiting.empty()) {
        const fs::path next = std::move(waiting.back());
        waiting.pop_back();
        std::ranges::move(add_findings_of_level(next, options, findings), std::back_inserter(waiting));
    }
}

} // namespace

DefaultFindings findings_of_defaults(const SourceOptions& options,
                                     const std::optional<std::string>& content) {
    DefaultFindings findings;
    if (content || kind_of(options.file) != FileKind::folder) {
        add_findings_of_file(options, content, findings);
    } else {
        add_findings_of_folder(options.file, options, findings);
    }
    return findings;
}

void require_one_description(const Source& source) {
    std::vector<std::string> sections;
    for_each_section(source, [&](const std::string& name, const pm::Tree& part) {
        if (kit::find_description(part)) sections.push_back(name);
    });
    if (sections.size() < 2) return;
    throw Failure(fmt::format("{}: the file describes several devices; write one to a file of its own with "
                              "pmtool extract ({})",
                              source.file, fmt::join(sections, ", ")));
}

} // namespace pmtool
