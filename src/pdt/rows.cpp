#include "pdt/rows.h"

namespace pm {

Rows::Rows(PdtLoad& load, Section section)
    : m_load(load), m_section(section),
      m_reader(folder_of(load.string_file), section, SectionReader::heading_lines) {}

bool Rows::next() {
    ++m_number;
    return m_reader.read_row(m_load.line);
}

} // namespace pm
