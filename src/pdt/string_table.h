#pragma once

#include "base/hash_table.h"
#include "filers/line_reader.h"
#include "pdt/section_reader.h"
#include "store/pmpmgr.h"
#include <array>

namespace pm {

// The translated texts of a device description, from its string file: lines of the form
//
//     DRFX_MEDIA_SIZE_B17   "the text"
//
// The key names a cell of a table by the table's prefix, the column and the line. All other lines are
// passed over, and so is a key without both quotes. Of two lines with one key the later one counts.
class StringTable {
public:
    static constexpr std::size_t text_capacity = 256;

    // Reads from where `reader` stands, in the code page that the environment variable "CODEP" names in
    // decimal, the system's without one. A last line without line end doesn't count. A line of 2048 bytes
    // or more is number 56 with `file_name`, which may be null.
    void load_strings(LineReader& reader, const char16_t* file_name);

    // Copies the text of a cell, cut to `size` units with its terminator. False, with `out` untouched, if
    // there is none.
    bool lookup_string(char16_t* out, std::size_t size, const char16_t* prefix, char16_t column, int row);

    // The text of a cell or, if there is none, of the cell before it that had one (kept: rows of a section
    // need not all be translated). Valid until the next call.
    const char16_t* localized(Section section, char16_t column, int row) {
        lookup_string(m_localized.data(), m_localized.size(), section_key_prefix(section), column, row);
        return m_localized.data();
    }
    const char16_t* localized() const { return m_localized.data(); }

private:
    void take_line(std::u16string_view text);
    const char16_t* intern(std::u16string_view text);

    PM_PathStrings m_strings; // keys and values
    ZT_Hash_Table<const char16_t*, const char16_t*> m_table;
    std::array<char16_t, text_capacity> m_localized{};
    std::u16string m_key;
};

} // namespace pm
