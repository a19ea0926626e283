#include "pdt/string_table.h"

#include "base/text.h"
#include "filers/wide_text.h"
#include "pdt/failure.h"
#include "platform/code_page.h"
#include <algorithm>
#include <cstdlib>
#include <pm/error_number.h>

namespace pm {

namespace {

constexpr std::u16string_view key_start = u"DRFX_";

const CodePage& string_code_page() {
    const char* set = std::getenv("CODEP");
    std::u16string number;
    if (set != nullptr) append_ascii(number, set);
    return code_page(static_cast<unsigned>(scan_long(number)));
}

} // namespace

void StringTable::load_strings(LineReader& reader, const char16_t* file_name) {
    const CodePage& page = string_code_page();
    std::u16string wide(RowLine::capacity, u'\0');
    std::u16string decoded;
    for (;;) {
        const LineReader::Line line = reader.read_line(RowLine::capacity - 1);
        if (line.end == LineReader::End::too_long) throw_pdt_failure(PM_ERR_NOT_OPENED, file_name);
        if (line.end == LineReader::End::stream) return;
        const std::size_t plain = widen_plain(line.text, wide.data());
        if (plain == line.text.size()) {
            take_line({wide.data(), plain});
            continue;
        }
        decoded.clear();
        page.decode(line.text, decoded);
        take_line(decoded.c_str());
    }
}

void StringTable::take_line(std::u16string_view text) {
    text = skip_any(text, u" ");
    if (!text.starts_with(key_start)) return;
    const std::size_t open = text.find(u'"');
    const std::size_t close = open == text.npos ? text.npos : text.find(u'"', open + 1);
    if (close == text.npos) return;
    m_table.insert(intern(trim_end(text.substr(0, open), u" ")),
                   intern(text.substr(open + 1, close - open - 1)));
}

const char16_t* StringTable::intern(std::u16string_view text) {
    return m_strings.Add(PM_PathStrings::Key(text)).text();
}

bool StringTable::lookup_string(char16_t* out, std::size_t size, const char16_t* prefix, char16_t column,
                                int row) {
    m_key = prefix;
    m_key += column;
    append_decimal(m_key, row);
    const PM_PathStrings::Entry* key = m_strings.Find(PM_PathStrings::Key(m_key));
    const char16_t* const* found = key != nullptr ? m_table.find(key->text()) : nullptr;
    if (found == nullptr || size == 0) return false;
    const std::u16string_view text = view(*found).substr(0, size - 1);
    *std::copy(text.begin(), text.end(), out) = 0;
    return true;
}

} // namespace pm
