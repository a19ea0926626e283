#include "pdt/record_rows.h"

// Finishing steps: name, text and what the step does, and when. An unknown text is 0, but for collating,
// where the end mark of the table stands (kept: files depend on it).

void PM_PDTFile::read_media_collating(PM_Object&, const char16_t*) {
    read_records(
        pm::Section::media_collating, 3, m_collating, [](UC_Media_Collating& record, const pm::Row& row) {
            record.collating_type =
                pm::lookup_enum_or(pm::Keywords::collating_type, row['C'], std::int32_t{pm::unknown_keyword});
        });
}

void PM_PDTFile::read_media_cutting(PM_Object&, const char16_t*) {
    read_records(pm::Section::media_cutting, 3, m_cutting, [](UC_Media_Cutting& record, const pm::Row& row) {
        record.when = pm::lookup_enum_or(pm::Keywords::cutting_time, row['C'], 0);
    });
}

void PM_PDTFile::read_media_folding(PM_Object&, const char16_t*) {
    read_records(pm::Section::media_folding, 4, m_folding, [](UC_Media_Folding& record, const pm::Row& row) {
        record.folding_type = pm::lookup_enum_or(pm::Keywords::folding_type, row['C'], 0);
        record.when = pm::lookup_enum_or(pm::Keywords::folding_time, row['D'], 0);
    });
}
