#pragma once

#include <cstddef>
#include <cstdint>
#include <pm/export.h>

// Base of the objects shared with the sibling libraries. Made and released with the library's allocator,
// so that an object made by one module can be deleted by another.
class PM_API ZT_Object {
public:
    virtual ~ZT_Object();

    // Throws std::bad_alloc when there is no memory.
    static void* operator new(std::size_t size);
    static void operator delete(void* block) noexcept;
};

// Owned, zero-terminated wide text, as the functions of value_text.h and error_text.h give it. Units are 16
// bits on every platform; the text is UTF-16 in name only, so that unpaired surrogates pass through
// untouched.
//
// Copies are deep. A string that was moved from is as one that was never set. Whatever makes a text throws
// std::bad_alloc for want of memory.
//
//     ZT_String text;
//     if (pm_error_text(exception.m_number, text)) show(text.text());
class PM_API ZT_String {
public:
    // A string that was never set: length() is -1, text() is the empty text.
    ZT_String() noexcept = default;
    // A null text counts as an empty one.
    ZT_String(const char16_t* text);
    ZT_String(const ZT_String& other);
    ZT_String(ZT_String&& other) noexcept;
    ZT_String& operator=(const ZT_String& other);
    ZT_String& operator=(ZT_String&& other) noexcept;
    ~ZT_String();

    // Replace the content. Without memory the old one stays. The argument may lie inside this string.
    void copy(const char16_t* text);
    void copy(const ZT_String& other);

    // Concatenation, with a new string as result; operands that were never set count as empty.
    ZT_String operator+(const char16_t* tail) const;
    ZT_String operator+(const ZT_String& tail) const;

    // Replaces the content by formatted text. Conversions: %s (const char16_t*), %c (int), %d %i %u %x %X
    // and %o (int; with "l" or "ll" long and long long), %f %e %g (double) and %%, each with the flags,
    // width and precision of printf, * included. Numbers come out by the C locale's rules.
    void Format(const char16_t* format, ...);

    // Never null; valid until the string changes or dies.
    const char16_t* text() const noexcept { return m_text ? m_text : u""; }
    // Units without the terminator; -1 if the string was never set.
    std::int32_t length() const noexcept { return m_length; }

private:
    void assign(const char16_t* text, std::size_t length);

    char16_t* m_text = nullptr;
    std::int32_t m_length = -1;
};
