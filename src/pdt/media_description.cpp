#include "pdt/branch.h"

// Columns: area, text, group, units, dimensional, long and short side, printable part, four margins, width,
// height, and the printable area's left, bottom, right and top. Each row with a name is an entry; rows
// without one leave no gap.
void PM_PDTFile::convert_media_description(PM_Object& object, const char16_t* base) {
    static constexpr CellItem items[] = {
        {'E', 'E', u"\\media\\description\\*\\dimensional", CellForm::unless_u, {17}},
        {'H', 'H', u"\\media\\description\\*\\printable_area", CellForm::number, {16}},
        {'M', 'M', u"\\media\\description\\*\\media_bounds_urx", CellForm::number, {14}},
        {'M', 'N', u"\\media\\description\\*\\media_bounds_ury", CellForm::number, {}},
        {'O', 'O', u"\\media\\description\\*\\printable_bounds_llx", CellForm::number, {15}},
        {'O', 'P', u"\\media\\description\\*\\printable_bounds_lly", CellForm::number, {}},
        {'O', 'Q', u"\\media\\description\\*\\printable_bounds_urx", CellForm::number, {}},
        {'O', 'R', u"\\media\\description\\*\\printable_bounds_ury", CellForm::number, {}},
    };
    pm::SectionReader section = open_rows(pm::Section::media_description);
    Branch root(object, base, {});
    int index = 0;
    while (section.read_row(m_line)) {
        const pm::Row row(m_line, 18);
        const char16_t* name = row.name('A');
        if (*name == 0) continue;
        mark(m_media_abilities, {9});
        root.set_long(u"\\media\\description\\*\\caps_type", m_caps_type, index);
        root.set_string(u"\\media\\description\\*\\name", name, index);
        if (row.has('C')) {
            // The group lands on the media size of the same index (kept: files depend on it).
            mark(m_media_abilities, {33});
            root.set_long(u"\\media\\size\\*\\media_group",
                          pm::lookup_enum_or(pm::Keywords::media_group, row['C'], 0), index);
        }
        for (const CellItem& item : items) {
            root.set_present(item, row, m_media_abilities, index);
        }
        ++index;
    }
}
