#pragma once

#include <cstddef>
#include <cstdint>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/text.h>
#include <string>

// Texts and failures on the way from tree.h to PM_Object.
namespace pm::detail {

[[noreturn]] inline void raise(std::uint32_t number, const char16_t* detail) {
    throw PM_Warning(number, u"pm::Tree", detail, u"$Workfile: tree $ $Revision: #1 $");
}

// A text as PM_Object takes it: wide and zero-terminated. A text that is so already is used as it
// is, one that isn't long lies on the stack.
class Terminated {
public:
    // A text that holds a zero raises `number`; the detail, if none is given, is what stands before it.
    explicit Terminated(const TextView& text, std::uint32_t number = PM_ERR_BAD_PATH,
                        const char16_t* detail = nullptr) {
        if (text.is_terminated()) {
            m_text = text.wide().data();
            m_size = text.size();
        } else {
            char16_t* const units = text.size() < capacity ? m_units : allocate(text.size());
            m_size = put(text, units);
            units[m_size] = u'\0';
            m_text = units;
        }
        if (text.holds_zero()) raise(number, detail != nullptr ? detail : m_text);
    }
    // The name of a file, see file_name_to_utf16().
    static Terminated file_name(const TextView& text) { return Terminated(text, FileName()); }
    Terminated(const Terminated&) = delete;
    Terminated& operator=(const Terminated&) = delete;

    const char16_t* text() const noexcept { return m_text; }
    std::size_t size() const noexcept { return m_size; }

private:
    static constexpr std::size_t capacity = 512;
    struct FileName {};

    Terminated(const TextView& text, FileName)
        : m_long(text.is_wide() ? std::u16string(text.wide()) : file_name_to_utf16(text.utf8())),
          m_size(m_long.size()), m_text(m_long.c_str()) {
        if (text.holds_zero()) raise(PM_ERR_BAD_PATH, m_text);
    }

    char16_t* allocate(std::size_t size) {
        m_long.resize(size);
        return m_long.data();
    }

    static std::size_t put(const TextView& text, char16_t* units) noexcept {
        if (!text.is_wide()) return decode_utf8(text.utf8(), Malformed::replace, units);
        return text.wide().copy(units, text.size());
    }

    std::u16string m_long;
    std::size_t m_size = 0;
    const char16_t* m_text = nullptr;
    char16_t m_units[capacity];
};

} // namespace pm::detail
