#pragma once

#include "pdt/load.h"
#include "pdt/section_reader.h"

namespace pm {

// The data rows of a section, one after the other, in the line of the load.
class Rows {
public:
    // Opens the section's table beside the string file and passes over its headings. Numbers: those of
    // SectionReader.
    Rows(PdtLoad& load, Section section);

    // Goes to the next row. False at the end of the table; the line then holds what stood behind the last
    // line end.
    bool next();
    // The first fields of the row. Takes them once.
    Row fields(int columns) { return Row(m_load.line, columns); }
    // Of the row, by the lines of the table.
    int number() const { return m_number; }
    bool at_first() const { return m_number == SectionReader::first_row; }
    // The translation of the row's cell, or the last one of a cell that had one. Valid until the next call.
    const char16_t* text(char16_t column) { return text(column, m_number); }
    const char16_t* text(char16_t column, int number) {
        return m_load.strings.localized(m_section, column, number);
    }

private:
    PdtLoad& m_load;
    Section m_section;
    SectionReader m_reader;
    int m_number = SectionReader::first_row - 1;
};

} // namespace pm
