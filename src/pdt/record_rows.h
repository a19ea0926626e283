#pragma once

#include "pdt/rows.h"

namespace pm {

// How the rows of a section become the records of a list: a record is appended when the next named row is
// met, or the rows end. Only the row number tells whether there is one to append, so that a section whose
// first data row has no name gets a record with an empty name (kept: list lengths count it).
template<class Record>
class PendingRecord {
public:
    explicit PendingRecord(SimpleListWithSearch<Record>& list) : m_list(list) {}

    // At a row with a name, or behind the last row: appends a copy of the record unless `number` is that of
    // the first row, and empties the record's name lists. Other fields stay until a row overwrites them.
    void finish(int number) {
        if (number <= SectionReader::first_row) return;
        m_list.append(m_record);
        if constexpr (requires(Record & record) { record.clear_lists(); }) m_record.clear_lists();
    }

    Record& record() { return m_record; }

private:
    SimpleListWithSearch<Record>& m_list;
    Record m_record;
};

// Fills a list. `named(record, row)` fills the record from a row with a name; its name and its text, that of
// column B, are filled already. `every(record, row)` then looks at each row, named or not.
template<class Record, class Named, class Every>
void read_records(Rows& rows, int columns, SimpleListWithSearch<Record>& list, Named named, Every every) {
    PendingRecord<Record> pending(list);
    while (rows.next()) {
        const Row row = rows.fields(columns);
        const char16_t* name = row.name('A');
        if (*name != 0) {
            pending.finish(rows.number());
            pending.record().name.copy(name);
            pending.record().localized_name.copy(rows.text(u'B'));
            named(pending.record(), row);
        }
        every(pending.record(), row);
    }
    pending.finish(rows.number());
}

template<class Record, class Named>
void read_records(Rows& rows, int columns, SimpleListWithSearch<Record>& list, Named named) {
    read_records(rows, columns, list, named, [](Record&, const Row&) {});
}

// Appends the cell as a name, unless the cell is empty.
inline void append_name(UC_Name_List& list, const Row& row, char column) {
    if (row.has(column)) list.append(ZT_String(row.name(column)));
}

} // namespace pm
