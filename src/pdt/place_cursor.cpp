#include "pdt/place_cursor.h"

#include "base/text.h"
#include <algorithm>
#include <cstring>

namespace pm {

namespace {

// As ==, which goes unit by unit.
bool same_units(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
}

std::size_t same_start(std::u16string_view a, std::u16string_view b) {
    constexpr std::size_t step = 4;
    const std::size_t size = std::min(a.size(), b.size());
    std::size_t same = 0;
    while (same + step <= size &&
           std::memcmp(a.data() + same, b.data() + same, step * sizeof(char16_t)) == 0) {
        same += step;
    }
    while (same < size && a[same] == b[same]) {
        ++same;
    }
    return same;
}

} // namespace

PlaceCursor::PlaceCursor(PM_Object& object, std::u16string_view base)
    : m_cursor(object, base.substr(0, longest_path)), m_base_length(base.size()),
      m_base_is_plain(base.size() <= longest_path && base.find(u'*') == base.npos),
      m_base_ends(base.ends_with(u'\\')) {}

TreeCursor* PlaceCursor::go_to(std::u16string_view path, int index) {
    if (!m_base_is_plain || path.size() > longest_path) return nullptr;
    std::size_t name = path.size();
    for (; name > m_base_length; --name) {
        const char16_t unit = path[name - 1];
        if (unit > u'\\') continue; // most letters
        if (unit == u'\\') break;
        if (unit == u'*') return nullptr;
    }
    if (name == path.size()) return nullptr;
    const std::u16string_view nodes = path.substr(m_base_length, name - m_base_length);
    if (!stands_at(nodes, index)) {
        // Without a separator between them, the base's last name would go on.
        if (!m_base_ends && !nodes.starts_with(u'\\')) return nullptr;
        if (!resolve(nodes, index)) return nullptr;
        move_to(m_resolved);
    }
    m_name = path.substr(name);
    return &m_cursor;
}

bool PlaceCursor::stands_at(std::u16string_view nodes, int index) const {
    return index == m_index && !m_given.empty() && same_units(nodes, m_given);
}

// Stars in front of what differs from the last place are known.
bool PlaceCursor::resolve(std::u16string_view nodes, int index) {
    const std::size_t same = same_start(nodes, m_given);
    const std::size_t star = m_star < same ? m_star : nodes.find(u'*', same);
    if ((star == nodes.npos) != (index == no_index)) return false;
    m_resolved = nodes.substr(0, star);
    m_same = same;
    if (star != nodes.npos) {
        if (nodes.find(u'*', std::max(star + 1, same)) != nodes.npos) return false;
        append_decimal(m_resolved, index);
        if (star < same) m_same = index == m_index ? same - 1 + m_resolved.size() - star : star;
        m_resolved += nodes.substr(star + 1);
    }
    m_given = nodes;
    m_index = index;
    m_star = star;
    return true;
}

// Both places end in a separator: a component stays if that behind it is still the same.
void PlaceCursor::move_to(std::u16string_view nodes) {
    while (!m_ends.empty() && m_ends.back() >= m_same) {
        m_cursor.pop();
        m_ends.pop_back();
    }
    std::size_t at = m_ends.empty() ? 0 : m_ends.back();
    while ((at = nodes.find_first_not_of(u'\\', at)) != nodes.npos) {
        const std::size_t end = nodes.find(u'\\', at + 1);
        m_cursor.push(nodes.substr(at, end - at));
        m_ends.push_back(end);
        at = end;
    }
}

} // namespace pm
