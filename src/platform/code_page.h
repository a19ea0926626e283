#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pm {

// Code pages by their Windows numbers.
inline constexpr unsigned default_code_page = 0; // the system's narrow code page, as set by the caller
inline constexpr unsigned utf8_code_page = 65001;

// Conversion between narrow text in one code page and wide text. Neither direction fails. In a single-byte
// page every byte has a unit of its own and goes back to the same byte; a byte sequence of another page that
// has no meaning becomes U+FFFD. A unit without a counterpart becomes "?"; there is no best fit.
//
// Pages are constants: they are never destroyed, and any number of threads may use one at once.
class CodePage {
public:
    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;

    // Append the converted text. Pure ASCII touches no table.
    void decode(std::string_view narrow, std::u16string& wide) const;
    void encode(std::u16string_view wide, std::string& narrow) const;

    // Bytes of the character at the start of `text`, which is zero-terminated: at least 1, and never past
    // the terminator. 1 at the terminator itself.
    virtual std::size_t character_length(const char* text) const = 0;

    unsigned number() const { return m_number; }

protected:
    constexpr explicit CodePage(unsigned number) : m_number(number) {}
    constexpr ~CodePage() = default;
    virtual void decode_rest(std::string_view narrow, std::u16string& wide) const = 0;
    virtual void encode_rest(std::u16string_view wide, std::string& narrow) const = 0;

private:
    unsigned m_number;
};

// The code page of a number; 0 and a number that the machine can't convert give the system's narrow code
// page. Throws std::bad_alloc if there is no memory for a page's first use.
const CodePage& code_page(unsigned number);

bool code_page_known(unsigned number);
// That of the calling thread if it has one, or else of the process.
unsigned system_code_page();
// `number` must be known; 0 sets the system's own, or 1252 if that isn't known here.
void set_system_code_page(unsigned number);
// `number` must be known; 0 is that of the process again. Gives what the thread had before.
unsigned set_thread_code_page(unsigned number) noexcept;

std::u16string to_wide(std::string_view narrow, unsigned code_page_number = default_code_page);
std::string to_narrow(std::u16string_view wide, unsigned code_page_number = default_code_page);

} // namespace pm
