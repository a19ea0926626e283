#include "store/working_path.h"

#include <algorithm>

namespace pm {

bool WorkingPath::append(std::u16string_view text) {
    if (text.size() > capacity - m_length) return false;
    *std::copy(text.begin(), text.end(), m_text + m_length) = u'\0';
    m_length += text.size();
    return true;
}

bool WorkingPath::push(std::u16string_view name) {
    const std::size_t separator = ends_in_separator() ? 0 : 1;
    if (name.size() + separator > capacity - m_length) return false;
    return append(std::u16string_view(u"\\").substr(0, separator)) && append(name);
}

bool WorkingPath::pop() {
    const std::size_t cut = std::u16string_view(m_text, m_length).rfind(u'\\');
    if (cut == std::u16string_view::npos) return false;
    truncate(cut);
    return true;
}

void WorkingPath::truncate(std::size_t length) {
    m_length = length;
    m_text[length] = u'\0';
}

} // namespace pm
