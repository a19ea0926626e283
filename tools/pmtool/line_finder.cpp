#include "line_finder.h"

#include "system.h"
#include "text.h"
#include <algorithm>
#include <system_error>

namespace pmtool {

namespace {

// The part of a line that is the same in any code page.
std::string ascii_part(std::string_view line) {
    std::string part;
    std::ranges::copy_if(trim(line), std::back_inserter(part),
                         [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return part;
}

std::string content_of(const std::string& path) {
    try {
        return read_whole(path);
    } catch (const std::system_error&) {
        return {};
    }
}

bool counts_all_lines(PM_Object::FileType type) {
    return type == PM_Object::FILE_PC2 || type == PM_Object::FILE_CFG || type == PM_Object::FILE_PCP;
}

// The number of the first line that is neither blank nor a comment.
int version_line(std::string_view content) {
    for (int line = 1; !content.empty(); ++line) {
        std::string_view text = take_line(content);
        text = trim(text.substr(0, text.find('\0')));
        if (!text.empty() && text.front() != ';') return line;
    }
    return 0;
}

} // namespace

LineFinder::LineFinder(std::string_view content, PM_Object::FileType type)
    : m_all_counted(counts_all_lines(type)),
      m_uncounted(type == PM_Object::FILE_PC2 ? version_line(content) : 0) {
    while (!content.empty()) {
        m_lines.push_back(printable(ascii_part(take_line(content))));
    }
}

LineFinder LineFinder::of_file(const std::string& path, PM_Object::FileType type) {
    return {content_of(path), type};
}

int LineFinder::find(const Report& report) {
    if (m_all_counted && report.line > 0) return report.line + m_uncounted;
    const int line = find_text(report);
    return line > 0 ? line : report.line;
}

std::size_t LineFinder::lines_behind(int line) const {
    const auto at = std::min(static_cast<std::size_t>(std::max(line, 0)), m_lines.size());
    return m_lines.size() - at -
           static_cast<std::size_t>(
               std::count(m_lines.begin() + static_cast<std::ptrdiff_t>(at), m_lines.end(), std::string()));
}

int LineFinder::find_text(const Report& report) {
    const std::string wanted = ascii_part(report.subject);
    const auto told = static_cast<std::size_t>(std::max(report.line, 1)) - 1;
    std::size_t line = m_next;
    if (report.line > 0 && told >= m_next && matches(told, report, wanted)) line = told;
    while (line < m_lines.size() && !matches(line, report, wanted)) {
        ++line;
    }
    if (line == m_lines.size()) return 0;
    m_next = line + 1;
    return static_cast<int>(m_next);
}

bool LineFinder::matches(std::size_t line, const Report& report, const std::string& wanted) const {
    if (line >= m_lines.size()) return false;
    if (report.cut) return m_lines[line].starts_with(wanted);
    if (m_lines[line] == wanted) return true;
    // A line that opens a node is told as far as its brace and the blanks in front.
    const std::size_t brace = m_lines[line].find('{');
    return brace != std::string::npos && trim(std::string_view(m_lines[line]).substr(0, brace)) == wanted;
}

} // namespace pmtool
