#include "pdt/sections/media_source.h"

#include "pdt/branch.h"
#include "pdt/enum_tables.h"
#include "pdt/record_rows.h"
#include <utility>

namespace pm {

namespace {

void take_number(PdtLoad& load, const Row& row, char column, int ability, float& number) {
    if (!row.has(column)) return;
    mark(load.media_abilities, {ability});
    number = narrow_cell_number(row[column]);
}

class Sources {
public:
    explicit Sources(PdtLoad& load) : m_load(load), m_source(load, {u"\\media\\source\\"}) {}

    void begin(const Row& row, const char16_t* text);
    void add_entry(const UC_Media_Source_Entry& record);

private:
    void write_sizes(Branch& entry, const UC_Name_List& names);

    PdtLoad& m_load;
    Branch m_source;
    bool m_first_entry = true;
};

void Sources::begin(const Row& row, const char16_t* text) {
    m_source.enter({row['A']});
    m_first_entry = true;
    mark(m_load.media_abilities, {MediaAbility::sources, MediaAbility::source_listed});
    m_source.set_long(u"\\caps_type", m_load.caps_type);
    m_source.set_string(u"\\localized_name", text);
    m_source.set_string(u"\\default_entry", row.name('E'));
    const std::uint32_t feed = lookup_enum(keywords::feed, row['C']);
    if (feed == unknown_keyword) return;
    m_source.set_long(u"\\feed", static_cast<std::int32_t>(feed));
    mark(m_load.media_abilities, {MediaAbility::feed});
}

void Sources::add_entry(const UC_Media_Source_Entry& record) {
    constexpr std::size_t properties = 5;
    m_load.count_joined((std::exchange(m_first_entry, false) ? 2 : 1) + properties,
                        {&record.default_size, &record.localized_name});
    Branch entry = m_source.below({u"\\entry\\", record.name.text()});
    entry.set_string(u"\\default_size", record.default_size);
    entry.set_double(u"\\width", record.width);
    entry.set_double(u"\\frame_height", record.frame_height);
    entry.set_string(u"\\localized_name", record.localized_name);
    entry.set_long(u"\\caps_type", m_load.caps_type);
    mark(m_load.media_abilities, {MediaAbility::joined_entries});
    write_sizes(entry, record.size_names);
}

void Sources::write_sizes(Branch& entry, const UC_Name_List& names) {
    int index = 0;
    for (const ZT_String& name : names) {
        m_load.count_joined((index == 0 ? 2 : 1) + 2, {&name});
        entry.set_string(u"\\size_names\\*\\name", name, index);
        entry.set_long(u"\\size_names\\*\\caps_type", m_load.caps_type, index);
        ++index;
    }
}

} // namespace

// A entry, B text, C size by default, D width, E frame height, F one name for the list of sizes. Width and
// height of an entry without its own are those of the entry before (kept).
void read_media_source_entry(PdtLoad& load, Rows& rows) {
    read_records(
        rows, 6, load.source_entries,
        [&load](UC_Media_Source_Entry& record, const Row& row) {
            mark(load.media_abilities, {MediaAbility::source_entries});
            record.default_size.copy(row.name('C'));
            take_number(load, row, 'D', MediaAbility::entry_width, record.width);
            take_number(load, row, 'E', MediaAbility::entry_frame_height, record.frame_height);
        },
        [](UC_Media_Source_Entry& record, const Row& row) { append_name(record.size_names, row, 'F'); });
}

// A source, B text, C feed, D name of an entry, E entry by default. A row without a source adds its entry to
// the source above it.
void convert_media_source(PdtLoad& load, Rows& rows) {
    Sources sources(load);
    while (rows.next()) {
        const Row row = rows.fields(5);
        if (*row.name('A') != 0) sources.begin(row, rows.text(u'B'));
        if (!row.has('D')) continue;
        const UC_Media_Source_Entry* entry = load.source_entries.find_by_name(row.name('D'));
        if (entry != nullptr && entry->name.length() > 0) sources.add_entry(*entry);
    }
}

} // namespace pm
