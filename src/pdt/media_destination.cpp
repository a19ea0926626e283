#include "pdt/record_rows.h"

// Columns: output, text, collating, stapling, cutting and folding by default, and one name for each list of
// these.
void PM_PDTFile::read_media_destination(PM_Object&, const char16_t*) {
    read_records(
        pm::Section::media_destination, 10, m_destinations,
        [this](UC_Media_Destination& record, const pm::Row& row) {
            mark(m_media_abilities, {8, 7});
            record.default_collating.copy(row.name('C'));
            record.default_stapling.copy(row.name('D'));
            record.default_cutting.copy(row.name('E'));
            record.default_folding.copy(row.name('F'));
        },
        [](UC_Media_Destination& record, const pm::Row& row) {
            append_name(record.collating, row, 'G');
            append_name(record.stapling, row, 'H');
            append_name(record.cutting, row, 'I');
            append_name(record.folding, row, 'J');
        });
}
