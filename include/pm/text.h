#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Text of programs, UTF-8, and text of the library, UTF-16 in name only: unpaired surrogates pass.
//
// UTF-8 here is the generalised one (WTF-8): an unpaired surrogate is the three bytes that its number gives,
// U+D800 is ED A0 80. So every wide text comes back as it was: to_utf16(to_utf8(x)) == x. The other way
// round every valid UTF-8 does.
//
//     std::printf("%s\n", pm::to_utf8(exception.m_detail).c_str());
//     object.deletePath(pm::to_utf16(path).c_str());
//
// All functions may throw std::bad_alloc and nothing else. None depends on the process's locale.

namespace pm {

// A text that a caller gives, of either width: a literal, a pointer, a string or a view, not owned and taken
// as it is. It is an argument's type; whoever keeps one keeps the text alive. Null counts as empty. A view
// may hold zeros; what a function makes of them it tells itself.
class TextView {
public:
    // An empty narrow text.
    constexpr TextView() noexcept : TextView(std::string_view()) {}
    // Zero-terminated.
    constexpr TextView(const char* utf8) noexcept
        : TextView(utf8 != nullptr ? std::string_view(utf8) : std::string_view()) {
        m_may_hold_zero = false;
    }
    constexpr TextView(const char16_t* wide) noexcept
        : TextView(wide != nullptr ? std::u16string_view(wide) : std::u16string_view(u"")) {
        m_may_hold_zero = false;
        m_is_terminated = true;
    }
    // As long as they are; a view needs no zero behind it.
    constexpr TextView(std::string_view utf8) noexcept : m_utf8(utf8.data()), m_size(utf8.size()) {}
    constexpr TextView(std::u16string_view wide) noexcept
        : m_wide(wide.data()), m_size(wide.size()), m_is_wide(true) {}
    constexpr TextView(const std::string& utf8) noexcept : TextView(std::string_view(utf8)) {}
    constexpr TextView(const std::u16string& wide) noexcept : TextView(std::u16string_view(wide)) {
        m_is_terminated = true;
    }

    // Which of the two it is: the other gives an empty text, and nothing is converted here. Both views point
    // to the caller's text and are valid as long as that.
    constexpr bool is_wide() const noexcept { return m_is_wide; }
    constexpr std::string_view utf8() const noexcept {
        return m_is_wide ? std::string_view() : std::string_view(m_utf8, m_size);
    }
    constexpr std::u16string_view wide() const noexcept {
        return m_is_wide ? std::u16string_view(m_wide, m_size) : std::u16string_view();
    }
    // In bytes or units, by is_wide(). As UTF-16 a text never takes more units than this.
    constexpr std::size_t size() const noexcept { return m_size; }
    // A wide text whose end is known to be marked by a zero, so that it can be handed on as it is.
    constexpr bool is_terminated() const noexcept { return m_is_terminated; }
    // Whether a zero stands in the text; its terminator doesn't count.
    constexpr bool holds_zero() const noexcept {
        if (!m_may_hold_zero) return false;
        return m_is_wide ? wide().find(u'\0') != std::u16string_view::npos
                         : utf8().find('\0') != std::string_view::npos;
    }

private:
    union {
        const char* m_utf8;
        const char16_t* m_wide;
    };
    std::size_t m_size;
    bool m_is_wide = false;
    bool m_is_terminated = false;
    bool m_may_hold_zero = true;
};

// Both give strings of the caller's own. Zeros are characters like others; no byte order mark is looked for
// or made.
//
// What isn't UTF-8 becomes U+FFFD, one for each broken sequence: a lead with the bytes that fit it, or a byte
// that fits nowhere. Overlong forms and numbers above U+10FFFF are broken; a surrogate in three bytes isn't.
[[nodiscard]] std::u16string to_utf16(std::string_view utf8);

// Never loses anything. A pair of surrogates is one sequence of four bytes.
[[nodiscard]] std::string to_utf8(std::u16string_view wide);

// The name of a file as the library takes it, from the bytes that the system gives: UTF-8, and each byte that
// isn't part of it as the lone unit U+DC80 to U+DCFF that stands for it. So every name can be given. The
// bytes of an encoded surrogate stand for themselves, too.
[[nodiscard]] std::u16string file_name_to_utf16(std::string_view bytes);

// The way back, for a name in a report or an exception: the bytes that the system knows the file by.
[[nodiscard]] std::string file_name_to_utf8(std::u16string_view wide);

} // namespace pm

#include <pm/detail/text.h>
