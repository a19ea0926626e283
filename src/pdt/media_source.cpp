#include "pdt/branch.h"

#include "base/text.h"
#include "pdt/record_rows.h"

// Columns: what is loaded, text, size by default, width, frame height, and one name for the list of sizes.
// Width and height of an entry without its own are those of the entry before (kept: files depend on it).
void PM_PDTFile::read_media_source_entry(PM_Object&, const char16_t*) {
    read_records(
        pm::Section::media_source_entry, 6, m_source_entries,
        [this](UC_Media_Source_Entry& record, const pm::Row& row) {
            mark(m_media_abilities, {3});
            record.default_size.copy(row.name('C'));
            if (row.has('D')) {
                mark(m_media_abilities, {48});
                record.width = static_cast<float>(pm::cell_number(row['D']));
            }
            if (row.has('E')) {
                mark(m_media_abilities, {49});
                record.frame_height = static_cast<float>(pm::cell_number(row['E']));
            }
        },
        [](UC_Media_Source_Entry& record, const pm::Row& row) { append_name(record.size_names, row, 'F'); });
}

void PM_PDTFile::write_source_entry(const Branch& source, const UC_Media_Source_Entry& record, bool first) {
    count_joined(first ? 7 : 6);
    Branch entry = source.below({u"\\entry\\", record.name.text()});
    entry.set_string(u"\\default_size", record.default_size);
    entry.set_double(u"\\width", record.width);
    entry.set_double(u"\\frame_height", record.frame_height);
    entry.set_string(u"\\localized_name", record.localized_name);
    entry.set_long(u"\\caps_type", m_caps_type);
    mark(m_media_abilities, {4});
    int index = 0;
    for (const ZT_String& name : record.size_names) {
        count_joined(index == 0 ? 4 : 3);
        entry.set_string(u"\\size_names\\*\\name", name, index);
        entry.set_long(u"\\size_names\\*\\caps_type", m_caps_type, index);
        ++index;
    }
}

// Columns: source, text, feed, name of an entry, entry by default. A row without a source adds an entry to
// the source above it.
void PM_PDTFile::convert_media_source(PM_Object& object, const char16_t* base) {
    pm::SectionReader section = open_rows(pm::Section::media_source);
    Branch source(object, base, {u"\\media\\source\\"});
    bool first_entry = true;
    for (int number = pm::SectionReader::first_row; section.read_row(m_line); ++number) {
        const pm::Row row(m_line, 5);
        const char16_t* name = row.name('A');
        if (*name != 0) {
            source.enter({name});
            first_entry = true;
            mark(m_media_abilities, {2, 1});
            source.set_long(u"\\caps_type", m_caps_type);
            source.set_string(u"\\localized_name",
                              m_strings.localized(pm::Section::media_source, u'B', number));
            source.set_string(u"\\default_entry", row.name('E'));
            const std::int32_t feed = pm::lookup_enum_or(pm::Keywords::feed, row['C'], -1);
            if (row.has('C') && feed != -1) {
                source.set_long(u"\\feed", feed);
                mark(m_media_abilities, {32});
            }
        }
        if (!row.has('D')) continue;
        const UC_Media_Source_Entry* entry = m_source_entries.find_by_name(row.name('D'));
        if (entry == nullptr || entry->name.length() <= 0) continue;
        write_source_entry(source, *entry, std::exchange(first_entry, false));
    }
}
