#pragma once

#include "base/allocator.h"
#include "platform/code_page.h"
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace pm {

// Widens bytes up to the first that is zero or not of ASCII; gives how many. There is room for all, and none
// of it behind those is kept.
std::size_t widen_plain(std::string_view narrow, char16_t* to);

// Wide text made from narrow pieces in one block, however long it gets: the text is held once. The block is
// kept when the text is cleared.
class WideText {
public:
    explicit WideText(const CodePage& page) : m_page(&page) {}

    // The operations that take memory give false without it.
    [[nodiscard]] bool reserve(std::size_t units);
    // Takes the whole text in place of the old one, up to its first zero byte.
    [[nodiscard]] bool assign(std::string_view narrow);
    // The same piece by piece: a character may lie in two of them. end() has the text whole.
    [[nodiscard]] bool append(std::string_view piece);
    [[nodiscard]] bool end();
    void clear();

    // Zero-terminated; valid until the next change.
    std::u16string_view view() const { return {m_units.get(), m_size}; }
    void truncate(std::size_t size);

    // Hands the block out; the text is then empty.
    Block<char16_t> take();
    // The block's bytes in place of the text, to be overwritten from the start; shrunk to the first `size`.
    unsigned char* bytes() { return reinterpret_cast<unsigned char*>(m_units.get()); }
    void shrink(std::size_t size);

private:
    bool append_decoded(std::string_view narrow);
    std::size_t whole_characters() const;

    const CodePage* m_page;
    Block<char16_t> m_units;
    std::size_t m_capacity = 0; // units, the terminator's included
    std::size_t m_size = 0;
    bool m_ended = false;  // a zero byte was met
    std::string m_pending; // pieces from the start of a character on
    std::u16string m_scratch;
};

} // namespace pm
