#include "pdt/row.h"

#include "base/text.h"
#include <algorithm>

namespace pm {

void RowLine::assign(std::u16string_view text) {
    const std::u16string_view kept = text.substr(0, capacity - 1);
    char16_t* end = std::copy(kept.begin(), kept.end(), m_units.data());
    if (kept.size() < m_used) std::fill(end, m_units.data() + m_used, u'\0');
    m_used = kept.size();
}

void RowLine::end_at_comment(std::size_t slash) {
    m_units[slash] = 0;
    while (slash > 0 && m_units[slash - 1] == u' ') {
        m_units[--slash] = 0;
    }
}

std::size_t RowLine::find_stop(std::size_t from) const {
    while (m_units[from] != 0 && m_units[from] != u'\t' && m_units[from] != u'/') {
        ++from;
    }
    return from;
}

char16_t* RowLine::next_field(std::size_t& position) {
    if (m_units[position] == 0 && position + 1 < capacity) ++position;
    const std::size_t start = position;
    std::size_t scan = start;
    while (m_units[position] != 0) {
        const std::size_t found = find_stop(scan);
        if (m_units[found] != u'/') {
            m_units[found] = 0;
            position = found;
        } else if (m_units[found + 1] == u'/') {
            end_at_comment(found);
            scan = found + 2;
        } else {
            scan = found + 1;
        }
    }
    return m_units.data() + start;
}

void normalize_name(char16_t* text) {
    std::size_t length = std::u16string_view(text).size();
    while (length > 0 && text[length - 1] == u' ') {
        --length;
    }
    if (length > 0 && text[length - 1] == u'"') --length;
    text[length] = 0;
    if (*text == u'"') {
        std::copy(text + 1, text + length + 1, text);
        --length;
    }
    std::replace(text, text + length, u' ', u'_');
}

double cell_number(std::u16string_view cell) {
    constexpr std::u16string_view units = u" \t\n\v\f\r+-.0123456789eE";
    return scan_double(cell.substr(0, cell.find_first_not_of(units)));
}

Row::Row(RowLine& line, int columns) : m_line(line) {
    std::generate_n(m_fields.begin(), columns, [this] { return next(); });
}

} // namespace pm
