#include "line_finder.h"

#include "failure.h"
#include "files.h"
#include "text.h"
#include <algorithm>

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
        return read_file(path);
    } catch (const Failure&) {
        return {};
    }
}

} // namespace

LineFinder::LineFinder(const std::string& path) {
    const std::string content = content_of(path);
    std::string_view rest = content;
    while (!rest.empty())
        m_lines.push_back(printable(ascii_part(take_line(rest))));
}

int LineFinder::find(const Report& report) {
    const std::string wanted = ascii_part(report.subject);
    const auto told = static_cast<std::size_t>(std::max(report.line, 1)) - 1;
    std::size_t line = m_next;
    if (report.line > 0 && told >= m_next && matches(told, report, wanted)) line = told;
    while (line < m_lines.size() && !matches(line, report, wanted))
        ++line;
    if (line == m_lines.size()) return report.line;
    m_next = line + 1;
    return static_cast<int>(m_next);
}

bool LineFinder::matches(std::size_t line, const Report& report, const std::string& wanted) const {
    if (line >= m_lines.size()) return false;
    return report.cut ? m_lines[line].starts_with(wanted) : m_lines[line] == wanted;
}

} // namespace pmtool
