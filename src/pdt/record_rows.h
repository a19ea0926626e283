#pragma once

#include "pdt/pmpdt.h"

// `named(record, row)` fills the record from a row with a name; its name and its text are filled already.
// `every(record, row)` then looks at each row, named or not.
template<class Record, class Named, class Every>
void PM_PDTFile::read_records(pm::Section section, int columns, SimpleListWithSearch<Record>& list,
                              Named named, Every every) {
    pm::SectionReader reader = open_rows(section);
    pm::PendingRecord<Record> pending(list);
    int number = pm::SectionReader::first_row;
    for (; reader.read_row(m_line); ++number) {
        const pm::Row row(m_line, columns);
        const char16_t* name = row.name('A');
        if (*name != 0) {
            pending.finish(number);
            pending.record().name.copy(name);
            pending.record().localized_name.copy(m_strings.localized(section, u'B', number));
            named(pending.record(), row);
        }
        every(pending.record(), row);
    }
    pending.finish(number);
}

template<class Record, class Named>
void PM_PDTFile::read_records(pm::Section section, int columns, SimpleListWithSearch<Record>& list,
                              Named named) {
    read_records(section, columns, list, named, [](Record&, const pm::Row&) {});
}
