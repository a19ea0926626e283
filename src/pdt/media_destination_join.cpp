#include "pdt/branch.h"

#include "base/text.h"
#include "pdt/record_rows.h"

// Columns: staple, text, location, when, orientation.
void PM_PDTFile::read_media_stapling(PM_Object&, const char16_t*) {
    read_records(pm::Section::media_stapling, 5, m_stapling,
                 [](UC_Media_Stapling& record, const pm::Row& row) {
                     record.location = pm::lookup_enum_or(pm::Keywords::stapling_location, row['C'], 0);
                     record.when = pm::lookup_enum_or(pm::Keywords::stapling_time, row['D'], -1);
                     record.orientation = pm::scan_long(row['E']);
                 });
}

// Writes below one destination what its references by name lead to.
class PM_PDTFile::DestinationJoin {
public:
    DestinationJoin(PM_PDTFile& pdt, Branch& destination) : m_pdt(pdt), m_destination(destination) {}

    // The record need not stand in the destination's own list.
    template<class Record>
    void write_default(const char16_t* item, const SimpleListWithSearch<Record>& records,
                       const ZT_String& name, const Marks& marks) {
        const Record* record = records.find_by_name(name.text());
        if (record == nullptr || record->name.length() <= 0) return;
        m_pdt.count_joined(1);
        m_destination.set_string(item, record->name);
        mark(m_pdt.m_media_abilities, marks);
    }

    template<class Record>
    struct Number {
        const char16_t* item;
        std::int32_t Record::*value;
    };
    template<class Record>
    void write_list(const char16_t* kind, const SimpleListWithSearch<Record>& records,
                    const UC_Name_List& names, std::initializer_list<Number<Record>> numbers,
                    const Marks& marks) {
        auto items = static_cast<std::uint32_t>(4 + numbers.size()); // with the node of the kind
        for (const ZT_String& name : names) {
            const Record* record = records.find_by_name(name.text());
            if (record == nullptr) continue;
            m_pdt.count_joined(items);
            items = static_cast<std::uint32_t>(3 + numbers.size());
            mark(m_pdt.m_media_abilities, marks);
            Branch branch = m_destination.below({kind, record->name.text()});
            branch.set_long(u"\\caps_type", m_pdt.m_caps_type);
            branch.set_string(u"\\localized_name", record->localized_name);
            for (const Number<Record>& number : numbers) {
                branch.set_long(number.item, record->*number.value);
            }
        }
    }

private:
    PM_PDTFile& m_pdt;
    Branch& m_destination;
};

void PM_PDTFile::convert_media_destination(PM_Object& object, const char16_t* base) {
    Branch destination(object, base, {u"\\media\\destination\\"});
    DestinationJoin join(*this, destination);
    for (const UC_Media_Destination& record : m_destinations) {
        destination.enter({record.name.text()});
        destination.set_string(u"\\localized_name", record.localized_name);
        destination.set_long(u"\\caps_type", m_caps_type);
        join.write_default(u"\\default_collating", m_collating, record.default_collating, {19});
        join.write_default(u"\\default_stapling", m_stapling, record.default_stapling, {18});
        join.write_default(u"\\default_folding", m_folding, record.default_folding, {20});
        join.write_default(u"\\default_cutting", m_cutting, record.default_cutting, {21});
        join.write_list(u"\\collating\\", m_collating, record.collating,
                        {{u"\\collating_type", &UC_Media_Collating::collating_type}}, {36});
        join.write_list(u"\\stapling\\", m_stapling, record.stapling,
                        {{u"\\location", &UC_Media_Stapling::location},
                         {u"\\when", &UC_Media_Stapling::when},
                         {u"\\orientation", &UC_Media_Stapling::orientation}},
                        {35});
        join.write_list(
            u"\\folding\\", m_folding, record.folding,
            {{u"\\folding_type", &UC_Media_Folding::folding_type}, {u"\\when", &UC_Media_Folding::when}},
            {37});
        // Cutting marks nothing (kept: other than its siblings).
        join.write_list(u"\\cutting\\", m_cutting, record.cutting, {{u"\\when", &UC_Media_Cutting::when}},
                        {});
    }
}
