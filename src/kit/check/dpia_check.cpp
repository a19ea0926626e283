#include "check/dpia_check.h"

#include "check/narrow_text.h"
#include "check/pia/check.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/kit/file.h>
#include <pm/kit/stored.h>
#include <pm/text.h>
#include <unordered_map>

namespace pm::kit {

namespace {

constexpr unsigned utf8 = 65001;
constexpr std::size_t longest_text = 4096; // units
constexpr std::uint32_t version_1 = 0x00010000;
constexpr std::uint32_t version_2 = 0x00020000;

struct Entry {
    std::string_view name; // as it is stored
    std::string shown;
    bool has_info = false;    // that isn't empty
    std::uint64_t offset = 0; // in the file
    std::uint64_t size = 0;
    [[nodiscard]] std::uint64_t end() const { return offset + size; }
};

// Words and texts from the front of a file.
class Cursor {
public:
    explicit Cursor(std::string_view bytes) : m_bytes(bytes) {}

    bool word(std::uint32_t& out) {
        if (m_bytes.size() - m_at < 4) return false;
        out = 0;
        for (std::size_t byte = 4; byte-- > 0;) {
            out = out << 8 | static_cast<unsigned char>(m_bytes[m_at + byte]);
        }
        m_at += 4;
        return true;
    }
    bool text(std::string_view& out) {
        std::uint32_t length = 0;
        if (!word(length) || length > m_bytes.size() - m_at) return false;
        out = m_bytes.substr(m_at, length);
        m_at += length;
        return true;
    }
    [[nodiscard]] std::size_t at() const { return m_at; }
    [[nodiscard]] std::size_t left() const { return m_bytes.size() - m_at; }

private:
    std::string_view m_bytes;
    std::size_t m_at = 0;
};

class DirectoryCheck {
public:
    DirectoryCheck(std::string_view content, const Place& where, Findings& findings)
        : m_content(content), m_cursor(content), m_where(where), m_findings(findings), m_narrow(utf8) {}

    void run(const std::string& section);

private:
    bool read_head();
    bool read_entries();
    bool read_entry(Entry& entry);
    void check_text(std::string_view text, std::string_view what, const std::string& section);
    void check_name(const Entry& entry);
    void check_names();
    void check_ranges();
    void check_neighbours();
    void check_sections(const std::string& wanted);
    [[nodiscard]] std::string_view bytes_of(const Entry& entry) const {
        return m_content.substr(entry.offset, entry.size);
    }
    [[nodiscard]] bool is_inside(const Entry& entry) const { return entry.end() <= m_content.size(); }
    // Of what is there of a section that the end of the file cuts.
    [[nodiscard]] std::uint64_t end_of(const Entry& entry) const {
        return std::min<std::uint64_t>(entry.end(), m_content.size());
    }
    void say(Rule rule, std::string message, const std::string& section = {}, std::uint32_t number = 0,
             std::optional<Severity> severity = {}) {
        m_findings.add({.rule = rule,
                        .place = {.file = m_where.file, .section = section},
                        .message = std::move(message),
                        .number = number,
                        .severity = severity});
    }

    std::string_view m_content;
    Cursor m_cursor;
    const Place& m_where;
    Findings& m_findings;
    NarrowText m_narrow;
    bool m_has_info = false;
    std::uint32_t m_count = 0;
    std::vector<Entry> m_entries;
    std::uint64_t m_data = 0; // where the directory ends
};

bool DirectoryCheck::read_head() {
    std::uint32_t version = 0;
    if (!m_cursor.word(version) || !m_cursor.word(m_count)) {
        say(Rule::cut_file, "The file ends within its directory.", {}, PM_ERR_STREAM_FAILED);
        return false;
    }
    m_has_info = version == version_2;
    if (version != version_1 && version != version_2) {
        say(Rule::bad_header, fmt::format("The version {:08X} isn't known, and reads as 1.0.", version), {},
            PM_ERR_UNKNOWN_VERSION);
    }
    if (m_count >= 0x80000000U) {
        say(Rule::bad_header,
            fmt::format("The directory tells of {:08X} sections, which counts as none.", m_count));
        return false;
    }
    if (m_count <= m_cursor.left() / (m_has_info ? 16 : 12)) return true;
    say(Rule::cut_file,
        fmt::format("The directory tells of {} sections, more than the file has room for.", m_count), {},
        PM_ERR_STREAM_FAILED);
    return false;
}

bool DirectoryCheck::read_entry(Entry& entry) {
    std::string_view info;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
    if (!m_cursor.text(entry.name) || (m_has_info && !m_cursor.text(info)) || !m_cursor.word(offset) ||
        !m_cursor.word(size)) {
        return false;
    }
    entry.shown = to_utf8(to_utf16(entry.name.substr(0, entry.name.find('\0'))));
    entry.has_info = !info.empty() && info.front() != '\0';
    entry.offset = offset;
    entry.size = size;
    check_text(entry.name, "name", entry.shown);
    check_text(info, "info text", entry.shown);
    return true;
}

bool DirectoryCheck::read_entries() {
    for (std::uint32_t index = 0; index < m_count; ++index) {
        Entry entry;
        if (!read_entry(entry)) {
            say(Rule::cut_file, fmt::format("The file ends within entry {} of its directory.", index), {},
                PM_ERR_STREAM_FAILED);
            return false;
        }
        m_entries.push_back(std::move(entry));
    }
    m_data = m_cursor.at();
    for (Entry& entry : m_entries) {
        entry.offset += m_data;
    }
    return true;
}

void DirectoryCheck::check_text(std::string_view text, std::string_view what, const std::string& section) {
    if (text.find('\0') != std::string_view::npos) {
        say(Rule::ignored_text, fmt::format("What stands behind a zero byte in the {} isn't read.", what),
            section);
    }
    if (text.size() > longest_text && to_utf16(text).size() > longest_text) {
        say(Rule::cut_text, fmt::format("The {} has more than {} characters.", what, longest_text), section);
    }
    if (!is_utf8(text)) {
        say(Rule::undecodable_byte, fmt::format("The {} isn't UTF-8.", what), section);
    } else if (!is_ascii(text)) {
        say(Rule::odd_name,
            fmt::format("The {} goes beyond ASCII, and a save writes a wrong length of it.", what), section,
            0, Severity::note);
    }
}

// What a save takes for a path or a pattern.
void DirectoryCheck::check_name(const Entry& entry) {
    if (entry.shown.find('\\') != std::string::npos) {
        say(Rule::odd_name, "A save can't write a section under a name with a \"\\\".", entry.shown);
    }
    if (entry.has_info && entry.shown.find('*') != std::string::npos) {
        say(Rule::odd_name, "A save loses the info text of a section with a \"*\" in its name.", entry.shown,
            0, Severity::note);
    }
}

void DirectoryCheck::check_names() {
    std::unordered_map<std::string_view, std::size_t> first;
    for (std::size_t index = 0; index < m_entries.size(); ++index) {
        const Entry& entry = m_entries[index];
        if (entry.shown.empty()) say(Rule::odd_name, fmt::format("Section {} has no name.", index));
        check_name(entry);
        const auto [known, is_new] = first.try_emplace(entry.shown, index);
        if (is_new) continue;
        say(Rule::repeated_name,
            fmt::format("Section {} has the name of section {}, which is the one that is loaded.", index,
                        known->second),
            entry.shown);
    }
}

void DirectoryCheck::check_ranges() {
    for (const Entry& entry : m_entries) {
        if (is_inside(entry)) continue;
        say(Rule::directory_range,
            fmt::format("The section ends at byte {}, and the file at {}.", entry.end(), m_content.size()),
            entry.shown, PM_ERR_STREAM_FAILED);
    }
}

void DirectoryCheck::check_neighbours() {
    std::vector<const Entry*> there;
    for (const Entry& entry : m_entries) {
        if (entry.offset < end_of(entry)) there.push_back(&entry);
    }
    std::stable_sort(there.begin(), there.end(),
                     [](const Entry* a, const Entry* b) { return a->offset < b->offset; });
    std::uint64_t end = m_data;
    const Entry* last = nullptr;
    for (const Entry* entry : there) {
        if (last != nullptr && entry->offset < end) {
            say(Rule::directory_overlap,
                fmt::format("The section shares {} bytes with {}.",
                            std::min(end, end_of(*entry)) - entry->offset, in_quotes(last->shown)),
                entry->shown);
        } else if (entry->offset > end) {
            say(Rule::directory_gap,
                fmt::format("{} bytes in front of the section belong to none.", entry->offset - end),
                entry->shown);
        }
        if (end_of(*entry) > end) {
            end = end_of(*entry);
            last = entry;
        }
    }
    if (end < m_content.size()) {
        say(Rule::trailing_data,
            fmt::format("{} bytes behind the last section aren't read.", m_content.size() - end));
    }
}

void DirectoryCheck::check_sections(const std::string& wanted) {
    const ScopedCodePage scope(utf8);
    std::uint64_t left = m_content.size(); // sections may share bytes, again and again
    bool found = false;
    for (const Entry& entry : m_entries) {
        if (!wanted.empty() && entry.shown != wanted) continue;
        found = true;
        if (!is_inside(entry) || entry.size > left) continue;
        left -= entry.size;
        check_pia(bytes_of(entry), m_narrow, {.file = m_where.file, .section = entry.shown}, m_findings);
        if (!wanted.empty()) return;
    }
    if (found || wanted.empty()) return;
    std::vector<std::string> names;
    for (const Entry& entry : m_entries) {
        names.push_back(printable_text(entry.shown));
    }
    say(Rule::unreadable,
        fmt::format("There is no section {}; there are: {}.", in_quotes(wanted),
                    names.empty() ? "none" : fmt::format("{}", fmt::join(names, ", "))),
        wanted, PM_ERR_NO_SUCH_SECTION);
}

void DirectoryCheck::run(const std::string& section) {
    if (!read_head() || !read_entries()) return;
    check_names();
    check_ranges();
    check_neighbours();
    check_sections(section);
}

} // namespace

void check_dpia(std::string_view content, const std::string& section, const Place& where,
                Findings& findings) {
    DirectoryCheck(content, where, findings).run(section);
}

} // namespace pm::kit
