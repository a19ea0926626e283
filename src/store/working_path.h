#pragma once

#include <cstddef>
#include <string_view>

namespace pm {

// The place in the tree at which a filer writes: a path text of at most 1023 units that grows and shrinks
// by components.
class WorkingPath {
public:
    static constexpr std::size_t capacity = 1023;

    // `base` has at most `capacity` units; an empty one counts as "\".
    explicit WorkingPath(std::u16string_view base) { append(base.empty() ? u"\\" : base); }

    // Append text as it stands, or as a component: with a "\" in front unless the path ends in one. False,
    // with nothing done, if the result is longer than the capacity.
    bool append(std::u16string_view text);
    bool push(std::u16string_view name);
    // Cuts the path at its last "\"; false, with nothing done, if it has none.
    bool pop();
    // Back to a length that it had before.
    void truncate(std::size_t length);

    bool ends_in_separator() const { return m_length > 0 && m_text[m_length - 1] == u'\\'; }
    const char16_t* text() const { return m_text; }
    std::size_t length() const { return m_length; }

private:
    char16_t m_text[capacity + 1] = {};
    std::size_t m_length = 0;
};

} // namespace pm
