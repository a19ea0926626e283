#include "check/pdt/description.h"

#include "check/files.h"
#include "check/library_load.h"
#include "check/numbers.h"
#include "check/pdt/cells.h"
#include "check/pdt/strings.h"
#include "check/pdt/table.h"
#include <charconv>
#include <cstdlib>
#include <deque>
#include <fmt/format.h>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/inspect.h>
#include <pm/kit/file.h>
#include <pm/text.h>

namespace pm::kit {

namespace {

constexpr std::string_view ending = ".pdt";

// The code page of the string file, which the environment may name.
unsigned string_code_page() {
    const char* const named = std::getenv("CODEP");
    const std::string_view text = named != nullptr ? named : "";
    unsigned code_page = 0;
    std::from_chars(text.data(), text.data() + text.size(), code_page);
    return code_page;
}

// The system's own where the machine can't convert it.
NarrowText string_narrow() {
    try {
        const ScopedCodePage scope(string_code_page());
        return NarrowText(pm_system_code_page());
    } catch (const PM_Error&) {
        return NarrowText(pm_system_code_page());
    }
}

class Description {
public:
    Description(std::string string_file, Findings& findings)
        : m_string_file(std::move(string_file)), m_folder(path_of_name(m_string_file).parent_path()),
          m_findings(findings), m_narrow(pm_system_code_page()) {}

    // All of it, or one file of it.
    void check(const std::string& only);

private:
    struct File {
        std::string name;
        std::string content;
        std::optional<TableFile> table;
    };

    void read_tables(const std::string& only);
    void check_tables(StringFile& strings, const std::string& only);
    void check_load();

    std::string m_string_file;
    std::filesystem::path m_folder;
    Findings& m_findings;
    NarrowText m_narrow;
    std::deque<File> m_files;
    DescriptionNames m_names;
};

// A table that isn't there is told of when the whole description is asked for.
void Description::read_tables(const std::string& only) {
    for (const Table& table : description_tables()) {
        const std::filesystem::path path =
            m_folder / path_of_name(std::string(table.name) + std::string(ending));
        FileBytes read = read_found_bytes(name_of_path(path));
        if (read.failure != 0) {
            if (!only.empty()) continue;
            m_findings.add({.rule = Rule::missing_table,
                            .place = {.file = name_of_path(path), .section = {}},
                            .message = "The table isn't there, or can't be read.",
                            .number = read.failure});
            continue;
        }
        File& file = m_files.emplace_back();
        file.name = path.filename() == path_of_name(only).filename() ? only : name_of_path(path);
        file.content = std::move(read.bytes);
        file.table.emplace(&table, file.content, m_narrow, Place{.file = file.name, .section = {}});
        if (!file.content.empty()) m_names.emplace(table.name, names_of(*file.table));
    }
}

void Description::check_tables(StringFile& strings, const std::string& only) {
    CheckOptions all;
    for (File& file : m_files) {
        const std::size_t first = m_findings.count();
        Findings ignored(all);
        Findings& findings = only.empty() || only == file.name ? m_findings : ignored;
        file.table->check(findings);
        check_cells(*file.table, m_names, findings);
        strings.check_texts(*file.table, findings);
        m_findings.sort_from(first);
    }
}

// What the library says beside: of the string file, since it reads that by name.
void Description::check_load() {
    const std::size_t first = m_findings.count();
    Tree tree;
    std::vector<Heard> heard = hear_of(tree, [&](Tree& target) {
        target.load(file_name_to_utf16(m_string_file), {.type = PM_Object::FILE_PDT});
    });
    std::erase_if(heard, [&](const Heard& each) { return m_findings.has_number(each.number); });
    add_unfound(heard, {}, {.file = m_string_file, .section = {}}, first, m_findings);
}

void Description::check(const std::string& only) {
    const FileBytes read = read_bytes(m_string_file);
    Findings ignored({});
    const bool whole = only.empty();
    read_tables(only);
    const NarrowText narrow = string_narrow();
    StringFile strings(read.bytes, narrow, {.file = m_string_file, .section = {}});
    strings.check(whole ? m_findings : ignored);
    check_tables(strings, only);
    if (!whole) return;
    strings.check_unused(m_findings);
    check_load();
}

std::string base_name(std::string_view file) {
    const std::size_t separator = file.find_last_of("/\\");
    std::string_view name = file.substr(separator == std::string_view::npos ? 0 : separator + 1);
    if (is_table_name(name)) name.remove_suffix(ending.size());
    return std::string(name);
}

std::optional<std::string> string_file_in(const std::filesystem::path& folder) {
    try {
        const auto found = find_string_file(file_name_to_utf16(folder.empty() ? "." : name_of_path(folder)));
        if (found) return file_name_to_utf8(*found);
    } catch (const ZT_Exception& e) {
        if (tells_want_of_memory(e)) throw;
        // a file there can't be read
    }
    return std::nullopt;
}

// A file by itself: by its lines alone.
void check_alone(const CheckedContent& content, const NarrowText& narrow, Findings& findings) {
    const std::size_t first = findings.count();
    const Place where{.file = content.name, .section = {}};
    const Table* const table = find_table(base_name(content.name));
    if (table == nullptr && content.bytes.find("DRFX_") != std::string_view::npos) {
        StringFile(content.bytes, narrow, where).check(findings);
    } else {
        TableFile file(table, content.bytes, narrow, where);
        file.check(findings);
        check_cells(file, {}, findings);
    }
    findings.sort_from(first);
}

} // namespace

bool is_table_name(std::string_view file) {
    return file.size() >= ending.size() &&
           equals_ignoring_case(file.substr(file.size() - ending.size()), ending);
}

void check_description(std::string_view folder, Findings& findings) {
    const std::optional<std::string> strings = string_file_in(path_of_name(folder));
    if (strings) Description(*strings, findings).check({});
}

void check_table_file(const CheckedContent& content, const NarrowText& narrow, Findings& findings) {
    const std::filesystem::path path = path_of_name(content.file);
    const bool table = find_table(base_name(content.name)) != nullptr;
    if (content.file.empty()) return check_alone(content, narrow, findings);
    if (!table && content.bytes.find("DRFX_") != std::string_view::npos) {
        return Description(content.file, findings).check({});
    }
    const std::optional<std::string> strings = string_file_in(path.parent_path());
    if (!table || !strings) return check_alone(content, narrow, findings);
    Description(*strings, findings).check(content.file);
}

} // namespace pm::kit
