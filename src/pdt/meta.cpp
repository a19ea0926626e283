#include "pdt/branch.h"

// Columns: setting, text. The cell only tells that there is a text: what is written comes from the string
// file. Keys are counted by the rows that have a cell, not by lines (kept: files depend on it).
void PM_PDTFile::convert_meta(PM_Object& object, const char16_t* base) {
    static constexpr const char16_t* items[] = {u"\\localized_model_name", u"\\localized_family_name",
                                                u"\\driver_tag_line"};
    pm::SectionReader section = open_rows(pm::Section::misc_localizable_info);
    Branch meta(object, base, {u"\\meta"});
    int number = pm::SectionReader::first_row;
    for (const char16_t* item : items) {
        section.read_row(m_line);
        const pm::Row row(m_line, 2);
        if (!row.has('B')) continue;
        meta.set_string(item, m_strings.localized(pm::Section::misc_localizable_info, u'B', number));
        ++number;
    }
}
