#include "pdt/sections/finishing.h"

#include "base/text.h"
#include "pdt/enum_tables.h"
#include "pdt/record_rows.h"

namespace pm {

// In all four tables A is the name and B the text. What an unknown text gives differs (kept: the numbers
// reach the tree).

// C type.
void read_media_collating(PdtLoad& load, Rows& rows) {
    constexpr std::int32_t unknown = unknown_keyword;
    read_records(rows, 3, load.collating, [](UC_Media_Collating& record, const Row& row) {
        record.collating_type = lookup_enum_or(keywords::collating_type, row['C'], unknown);
    });
}

// C time.
void read_media_cutting(PdtLoad& load, Rows& rows) {
    read_records(rows, 3, load.cutting, [](UC_Media_Cutting& record, const Row& row) {
        record.when = lookup_enum_or(keywords::cutting_time, row['C'], 0);
    });
}

// C type, D time.
void read_media_folding(PdtLoad& load, Rows& rows) {
    read_records(rows, 4, load.folding, [](UC_Media_Folding& record, const Row& row) {
        record.folding_type = lookup_enum_or(keywords::folding_type, row['C'], 0);
        record.when = lookup_enum_or(keywords::folding_time, row['D'], 0);
    });
}

// C location, D time, E orientation.
void read_media_stapling(PdtLoad& load, Rows& rows) {
    read_records(rows, 5, load.stapling, [](UC_Media_Stapling& record, const Row& row) {
        record.location = lookup_enum_or(keywords::stapling_location, row['C'], 0);
        record.when = lookup_enum_or(keywords::stapling_time, row['D'], -1);
        record.orientation = scan_long(row['E']);
    });
}

} // namespace pm
