#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace pm {

// The buffer of the current line of a table: 2048 units, terminators behind the line. Rows are parsed in
// place in it.
class RowLine {
public:
    static constexpr std::size_t capacity = 2048;

    // Takes at most 2047 units.
    void assign(std::u16string_view text);
    // The same for text of ASCII without zero bytes; false, with anything in the line, for other text.
    [[nodiscard]] bool assign_plain(std::string_view text);

    char16_t* data() { return m_units.data(); }
    std::u16string_view text() const { return m_units.data(); }

    // The next field from `position` (0 for the first), ended in place. A field runs to the next tab; "//"
    // ends its text early, and blanks before it, but the search for the tab goes on behind. A field that
    // begins with "//" is empty, and the next one begins with the second "/" (kept).
    // Fields past the end of the line are empty, however many are read.
    char16_t* next_field(std::size_t& position);

private:
    // The first tab, "/" or terminator.
    std::size_t find_stop(std::size_t from) const;
    void end_at_comment(std::size_t slash);
    void end_at(std::size_t length);

    std::array<char16_t, capacity> m_units{};
    std::size_t m_used = 0;
};

// In place: cuts trailing blanks, then one double quote at the end and one at the start, and makes each
// blank that is left a "_".
void normalize_name(char16_t* text);

// The number at the start of a cell, behind white space: decimal, with an optional sign, point and exponent.
// 0 for none, and "inf", "nan" and "0x" begin none.
double cell_number(std::u16string_view cell);
inline float narrow_cell_number(std::u16string_view cell) {
    return static_cast<float>(cell_number(cell));
}

// The fields of the line by their columns, "A" being the first.
class Row {
public:
    static constexpr int most_columns = 26;

    // Takes the first `columns` fields.
    Row(RowLine& line, int columns);

    char16_t* operator[](char column) const { return m_fields[static_cast<std::size_t>(column - 'A')]; }
    bool has(char column) const { return *(*this)[column] != 0; }
    // The field as a name.
    const char16_t* name(char column) const {
        normalize_name((*this)[column]);
        return (*this)[column];
    }

    // The field behind the last one taken.
    char16_t* next() { return m_line.next_field(m_position); }
    // Whether every field that is still to be taken lies past the end of the buffer.
    bool exhausted() const { return m_position + 1 >= RowLine::capacity; }

private:
    RowLine& m_line;
    std::size_t m_position = 0;
    std::array<char16_t*, most_columns> m_fields;
};

} // namespace pm
