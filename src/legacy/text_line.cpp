#include "legacy/text_line.h"

#include "base/text.h"
#include "platform/code_page.h"
#include <cerrno>
#include <pm/error_number.h>
#include <pm/exception.h>

namespace pm {

namespace {

std::uint32_t stream_error_number(int code) {
    switch (code) {
    case ENOMEM:
        return PM_ERR_NO_MEMORY_FOR_FILE;
    case EACCES:
        return PM_ERR_ACCESS_DENIED;
    default:
        return PM_ERR_NOT_READ;
    }
}

void trim(std::u16string& text) {
    if (text.ends_with(u'\r')) text.pop_back();
    text.resize(trim_end(text, u" ").size());
    text.erase(0, text.size() - skip_any(text, u" \t").size());
}

} // namespace

void read_text_line(LineReader& reader, TextLine& line) {
    LineReader::Line piece = reader.read_line(text_line_limit);
    line.too_long = piece.end == LineReader::End::too_long;
    line.text.clear();
    code_page(default_code_page).decode(piece.text.substr(0, piece.text.find('\0')), line.text);
    trim(line.text);

    while (piece.end == LineReader::End::too_long) {
        piece = reader.read_line(text_line_limit);
    }
    line.last = piece.end == LineReader::End::stream;
}

void check_text_stream(const std::ios& stream, const char16_t* place, const char16_t* name,
                       const char16_t* source) {
    if (stream.fail()) throw PM_Severe(stream_error_number(errno), place, name, source);
}

void require_text_stream(const std::ios* stream, const char16_t* place, const char16_t* name,
                         const char16_t* source) {
    if (stream == nullptr) throw PM_Severe(PM_ERR_NOT_OPENED, place, name, source);
}

} // namespace pm
