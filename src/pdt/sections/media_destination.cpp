#include "pdt/sections/media_destination.h"

#include "pdt/branch.h"
#include "pdt/record_rows.h"
#include <utility>

namespace pm {

// A destination, B text, C collating, D stapling, E cutting and F folding by default, G to J one name for the
// list of each of these.
void read_media_destination(PdtLoad& load, Rows& rows) {
    read_records(
        rows, 10, load.destinations,
        [&load](UC_Media_Destination& record, const Row& row) {
            mark(load.media_abilities, {MediaAbility::destinations, MediaAbility::destination_listed});
            record.default_collating.copy(row.name('C'));
            record.default_stapling.copy(row.name('D'));
            record.default_cutting.copy(row.name('E'));
            record.default_folding.copy(row.name('F'));
        },
        [](UC_Media_Destination& record, const Row& row) {
            append_name(record.collating, row, 'G');
            append_name(record.stapling, row, 'H');
            append_name(record.cutting, row, 'I');
            append_name(record.folding, row, 'J');
        });
}

namespace {

template<class Record>
struct Number {
    const char16_t* item;
    std::int32_t Record::*value;
};

// A kind of finishing step: what a destination has of it, and where that goes.
template<class Record, std::size_t count>
struct Kind {
    RecordList<Record> PdtLoad::*records;
    ZT_String UC_Media_Destination::*default_name;
    const char16_t* default_item;
    Marks default_marks;
    UC_Name_List UC_Media_Destination::*names;
    const char16_t* branch;
    Number<Record> numbers[count];
    Marks marks;
};

constexpr Kind<UC_Media_Collating, 1> collating = {
    .records = &PdtLoad::collating,
    .default_name = &UC_Media_Destination::default_collating,
    .default_item = u"\\default_collating",
    .default_marks = {MediaAbility::default_collating},
    .names = &UC_Media_Destination::collating,
    .branch = u"\\collating\\",
    .numbers = {{u"\\collating_type", &UC_Media_Collating::collating_type}},
    .marks = {MediaAbility::collating},
};
constexpr Kind<UC_Media_Stapling, 3> stapling = {
    .records = &PdtLoad::stapling,
    .default_name = &UC_Media_Destination::default_stapling,
    .default_item = u"\\default_stapling",
    .default_marks = {MediaAbility::default_stapling},
    .names = &UC_Media_Destination::stapling,
    .branch = u"\\stapling\\",
    .numbers = {{u"\\location", &UC_Media_Stapling::location},
                {u"\\when", &UC_Media_Stapling::when},
                {u"\\orientation", &UC_Media_Stapling::orientation}},
    .marks = {MediaAbility::stapling},
};
constexpr Kind<UC_Media_Folding, 2> folding = {
    .records = &PdtLoad::folding,
    .default_name = &UC_Media_Destination::default_folding,
    .default_item = u"\\default_folding",
    .default_marks = {MediaAbility::default_folding},
    .names = &UC_Media_Destination::folding,
    .branch = u"\\folding\\",
    .numbers = {{u"\\folding_type", &UC_Media_Folding::folding_type}, {u"\\when", &UC_Media_Folding::when}},
    .marks = {MediaAbility::folding},
};
constexpr Kind<UC_Media_Cutting, 1> cutting = {
    .records = &PdtLoad::cutting,
    .default_name = &UC_Media_Destination::default_cutting,
    .default_item = u"\\default_cutting",
    .default_marks = {MediaAbility::default_cutting},
    .names = &UC_Media_Destination::cutting,
    .branch = u"\\cutting\\",
    .numbers = {{u"\\when", &UC_Media_Cutting::when}},
    .marks = {}, // other than its siblings (kept)
};

// Writes below one destination what its references by name lead to.
struct Join {
    PdtLoad& load;
    const UC_Media_Destination& record;
    Branch& destination;

    // The record need not stand in the destination's own list.
    template<class Record, std::size_t count>
    void write_default(const Kind<Record, count>& kind) {
        const Record* found = (load.*kind.records).find_by_name((record.*kind.default_name).text());
        if (found == nullptr || found->name.length() <= 0) return;
        load.count_joined(1, {&found->name});
        destination.set_string(kind.default_item, found->name);
        mark(load.media_abilities, kind.default_marks);
    }

    template<class Record, std::size_t count>
    void write_list(const Kind<Record, count>& kind) {
        std::size_t nodes = 2; // of the kind, and of its first record
        for (const ZT_String& name : record.*kind.names) {
            const Record* found = (load.*kind.records).find_by_name(name.text());
            if (found == nullptr) continue;
            load.count_joined(std::exchange(nodes, 1) + 2 + count, {&found->localized_name});
            mark(load.media_abilities, kind.marks);
            write_record(kind, *found);
        }
    }

    template<class Record, std::size_t count>
    void write_record(const Kind<Record, count>& kind, const Record& found) {
        Branch branch = destination.below({kind.branch, found.name.text()});
        branch.set_long(u"\\caps_type", load.caps_type);
        branch.set_string(u"\\localized_name", found.localized_name);
        for (const Number<Record>& number : kind.numbers) {
            branch.set_long(number.item, found.*number.value);
        }
    }
};

} // namespace

void join_media_destinations(PdtLoad& load) {
    Branch destination(load, {u"\\media\\destination\\"});
    for (const UC_Media_Destination& record : load.destinations) {
        Join join{load, record, destination};
        destination.enter({record.name.text()});
        destination.set_string(u"\\localized_name", record.localized_name);
        destination.set_long(u"\\caps_type", load.caps_type);
        join.write_default(collating);
        join.write_default(stapling);
        join.write_default(folding);
        join.write_default(cutting);
        join.write_list(collating);
        join.write_list(stapling);
        join.write_list(folding);
        join.write_list(cutting);
    }
}

} // namespace pm
