#include "check/source_text.h"

#include <algorithm>
#include <pm/text.h>

namespace pm::kit {

SourceText::SourceText(std::string_view content, const NarrowText& narrow, Place where,
                       std::uint64_t first_line)
    : m_content(content), m_narrow(narrow), m_where(std::move(where)), m_scanned(content),
      m_utf8(narrow.is_unicode() || is_utf8(content)), m_next_line(first_line) {
    if (m_utf8 || !narrow.has_double_bytes()) return;
    m_masked = narrow.masked(content);
    m_scanned = m_masked;
}

bool SourceText::next_line(SourceLine& line) {
    if (m_at >= m_scanned.size()) return false;
    const std::size_t end = std::min(m_scanned.find('\n', m_at), m_scanned.size());
    line = {m_scanned.substr(m_at, end - m_at), m_next_line++, end < m_scanned.size()};
    m_at = end + 1;
    return true;
}

Place SourceText::place(const SourceLine& line) const {
    Place place = m_where;
    place.line = line.number;
    return place;
}

Place SourceText::place(const SourceLine& line, const char* at) const {
    Place place = this->place(line);
    const auto offset = static_cast<std::size_t>(at - line.text.data());
    place.column = static_cast<std::uint32_t>(characters(line.text.substr(0, offset)) + 1);
    return place;
}

std::size_t SourceText::characters(std::string_view part) const {
    const auto continues = [this](char c) {
        if (m_utf8) return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
        return !m_masked.empty() && c == NarrowText::trail;
    };
    return part.size() - static_cast<std::size_t>(std::count_if(part.begin(), part.end(), continues));
}

std::string SourceText::utf8(std::string_view part) const {
    if (is_ascii(part)) return std::string(part);
    const std::string_view original =
        m_masked.empty()
            ? part
            : m_content.substr(static_cast<std::size_t>(part.data() - m_masked.data()), part.size());
    return m_utf8 ? to_utf8(to_utf16(original)) : to_utf8(m_narrow.decode(original));
}

std::size_t SourceText::units(std::string_view part) const {
    if (m_narrow.is_unicode()) return to_utf16(part).size();
    return m_masked.empty() ? part.size() : characters(part);
}

} // namespace pm::kit
