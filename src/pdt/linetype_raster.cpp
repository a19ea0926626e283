#include "pdt/branch.h"

namespace {

constexpr std::int32_t unknown_text = -1;

} // namespace

// Columns: line type, width. A line type is a bit of the capabilities, four to a flag, and the index of its
// width. An unknown one has the code -1: no flag has that number, and the width goes to index -1 (kept:
// the miss stands in the tree).
void PM_PDTFile::convert_linetype(PM_Object& object, const char16_t* base) {
    pm::SectionReader section = open_rows(pm::Section::line_type_capabilities);
    Branch linetype(object, base, {u"\\linetype"});
    ZT_Linetype_Linefont_Caps capabilities;
    while (section.read_row(m_line)) {
        const pm::Row row(m_line, 2);
        if (!row.has('A')) continue;
        const std::int32_t font = pm::lookup_enum_or(pm::Keywords::linetype, row.name('A'), unknown_text);
        const int flag = font >> 2;
        capabilities.set_flag(flag, capabilities.get_flag(flag) | 1 << (font & 3));
        linetype.set_cell(u"\\font\\*\\width", row['B'], CellForm::narrow_number, font);
    }
    linetype.set_string(u"\\capabilities", capabilities.get_flags());
}

// Columns: ability, orientation. Each cell of a row counts for itself. Orientations are numbers and yet are
// combined bit by bit; an unknown one sets all bits (kept: readers of the item take it so).
void PM_PDTFile::convert_raster(PM_Object& object, const char16_t* base) {
    pm::SectionReader section = open_rows(pm::Section::raster_capability);
    ZT_Raster_Abilities abilities;
    std::int32_t orientation = 0;
    while (section.read_row(m_line)) {
        const pm::Row row(m_line, 2);
        mark(abilities, {pm::lookup_enum_or(pm::Keywords::raster_ability, row.name('A'), unknown_text)});
        if (row.has('B')) {
            orientation |= pm::lookup_enum_or(pm::Keywords::raster_orientation, row['B'], unknown_text);
        }
    }
    Branch raster(object, base, {u"\\RASTER"});
    raster.set_string(u"\\abilities", abilities.get_flags());
    raster.set_long(u"\\orientation_prefs", orientation);
}
