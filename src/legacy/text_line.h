#pragma once

#include "filers/line_reader.h"
#include <cstddef>
#include <istream>
#include <string>

namespace pm {

// The longest line of the older text formats, in bytes without its line feed.
inline constexpr std::size_t text_line_limit = 1023;

// A line of the older text formats: widened from the system's code page, without one carriage return at its
// end, the blanks and tabs in front and the blanks behind.
struct TextLine {
    std::u16string text;
    bool last = false;     // the stream ended, or failed, in this line
    bool too_long = false; // longer than the limit; `text` is its start

    bool empty_or_comment() const { return !too_long && (text.empty() || text.front() == u';'); }
};

// Reads the next line, however long it is, into `line`.
void read_text_line(LineReader& reader, TextLine& line);

// Throws PM_Severe with `place` and `name` if the stream failed; its end is no failure. Number 64 for errno
// ENOMEM, 61 for EACCES, 66 for any other.
void check_text_stream(const std::ios& stream, const char16_t* place, const char16_t* name,
                       const char16_t* source);

// Throws PM_Severe, number 56, if there is no stream.
void require_text_stream(const std::ios* stream, const char16_t* place, const char16_t* name,
                         const char16_t* source);

} // namespace pm
