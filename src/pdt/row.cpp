#include "pdt/row.h"

#include "base/text.h"
#include "filers/wide_text.h"
#include <algorithm>

namespace pm {

void RowLine::assign(std::u16string_view text) {
    const std::u16string_view kept = text.substr(0, capacity - 1);
    std::copy(kept.begin(), kept.end(), m_units.data());
    end_at(kept.size());
}

bool RowLine::assign_plain(std::string_view text) {
    const std::string_view kept = text.substr(0, capacity - 1);
    const std::size_t plain = widen_plain(kept, m_units.data());
    end_at(plain);
    return plain == kept.size();
}

void RowLine::end_at(std::size_t length) {
    if (length < m_used) std::fill(m_units.data() + length, m_units.data() + m_used, u'\0');
    m_used = length;
}

void RowLine::end_at_comment(std::size_t slash) {
    m_units[slash] = 0;
    while (slash > 0 && m_units[slash - 1] == u' ') {
        m_units[--slash] = 0;
    }
}

std::size_t RowLine::find_stop(std::size_t from) const {
    for (;; ++from) {
        while (m_units[from] > u'/') { // digits and letters
            ++from;
        }
        if (m_units[from] == 0 || m_units[from] == u'\t' || m_units[from] == u'/') return from;
    }
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
    return scan_double(cell);
}

Row::Row(RowLine& line, int columns) : m_line(line) {
    std::generate_n(m_fields.begin(), columns, [this] { return next(); });
}

} // namespace pm
