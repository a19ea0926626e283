#include "pdt/branch.h"

// Columns: size, format, text, orientation, name of the media description. A row is there when its name cell
// isn't empty as it stands: "" gives an entry with an empty name (kept: media types differ in this).
void PM_PDTFile::convert_media_size(PM_Object& object, const char16_t* base) {
    pm::SectionReader section = open_rows(pm::Section::media_size);
    Branch root(object, base, {});
    int index = 0;
    for (int number = pm::SectionReader::first_row; section.read_row(m_line); ++number) {
        const pm::Row row(m_line, 5);
        if (!row.has('A')) continue;
        mark(m_media_abilities, {6, 5});
        root.set_long(u"\\media\\size\\*\\caps_type", m_caps_type, index);
        root.set_string(u"\\media\\size\\*\\name", row.name('A'), index);
        root.set_string(u"\\media\\size\\*\\localized_name",
                        m_strings.localized(pm::Section::media_size, u'C', number), index);
        if (row.has('D')) {
            const bool landscape = *row['D'] == u'L';
            mark(m_media_abilities, {12});
            root.set_bool(u"\\media\\size\\*\\landscape_mode", landscape, index);
            m_landscape_seen |= landscape;
            m_portrait_seen |= *row['D'] == u'P';
        }
        root.set_string(u"\\media\\size\\*\\media_description_name", row.name('E'), index);
        ++index;
    }
}

// Columns: type, text, best resolution in x and in y, drying time.
void PM_PDTFile::convert_media_type(PM_Object& object, const char16_t* base) {
    static constexpr CellItem items[] = {
        {'C', 'C', u"\\media\\type\\*\\max_resolution_x", CellForm::number, {31}},
        {'C', 'D', u"\\media\\type\\*\\max_resolution_y", CellForm::number, {}},
        {'E', 'E', u"\\media\\type\\*\\drying_time", CellForm::integer, {30}},
    };
    pm::SectionReader section = open_rows(pm::Section::media_type);
    Branch root(object, base, {});
    int index = 0;
    for (int number = pm::SectionReader::first_row; section.read_row(m_line); ++number) {
        const pm::Row row(m_line, 5);
        const char16_t* name = row.name('A');
        if (*name == 0) continue;
        mark(m_media_abilities, {11, 10});
        root.set_string(u"\\media\\type\\*\\name", name, index);
        root.set_long(u"\\media\\type\\*\\caps_type", m_caps_type, index);
        root.set_string(u"\\media\\type\\*\\localized_name",
                        m_strings.localized(pm::Section::media_type, u'B', number), index);
        for (const CellItem& item : items) {
            root.set_present(item, row, m_media_abilities, index);
        }
        ++index;
    }
}
