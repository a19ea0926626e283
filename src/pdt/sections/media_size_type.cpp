#include "pdt/sections/media_size_type.h"

#include "pdt/branch.h"

namespace pm {

namespace {

void write_orientation(PdtLoad& load, Branch& root, char16_t first_character, int index) {
    const bool landscape = first_character == u'L';
    mark(load.media_abilities, {MediaAbility::orientations});
    root.set_bool(u"\\media\\size\\*\\landscape_mode", landscape, index);
    load.landscape_seen |= landscape;
    load.portrait_seen |= first_character == u'P';
}

constexpr CellItem type_items[] = {
    {.column = 'C',
     .item = u"\\media\\type\\*\\max_resolution_x",
     .form = CellForm::number,
     .marks = {MediaAbility::max_resolution}},
    {.column = 'D', .item = u"\\media\\type\\*\\max_resolution_y", .form = CellForm::number, .if_set = 'C'},
    {.column = 'E',
     .item = u"\\media\\type\\*\\drying_time",
     .form = CellForm::integer,
     .marks = {MediaAbility::drying_time}},
};

} // namespace

// A size, B format, C text, D orientation, E name of the media description. A row is there when its name cell
// isn't empty as it stands: "" gives an entry with an empty name (kept: media types differ in this).
void convert_media_size(PdtLoad& load, Rows& rows) {
    Branch root(load, {});
    int index = 0;
    while (rows.next()) {
        const Row row = rows.fields(5);
        if (!row.has('A')) continue;
        mark(load.media_abilities, {MediaAbility::sizes, MediaAbility::size_listed});
        root.set_long(u"\\media\\size\\*\\caps_type", load.caps_type, index);
        root.set_string(u"\\media\\size\\*\\name", row.name('A'), index);
        root.set_string(u"\\media\\size\\*\\localized_name", rows.text(u'C'), index);
        if (row.has('D')) write_orientation(load, root, *row['D'], index);
        root.set_string(u"\\media\\size\\*\\media_description_name", row.name('E'), index);
        ++index;
    }
}

// A type, B text, C and D best resolution in x and in y, E drying time.
void convert_media_type(PdtLoad& load, Rows& rows) {
    Branch root(load, {});
    int index = 0;
    while (rows.next()) {
        const Row row = rows.fields(5);
        const char16_t* name = row.name('A');
        if (*name == 0) continue;
        mark(load.media_abilities, {MediaAbility::types, MediaAbility::type_listed});
        root.set_string(u"\\media\\type\\*\\name", name, index);
        root.set_long(u"\\media\\type\\*\\caps_type", load.caps_type, index);
        root.set_string(u"\\media\\type\\*\\localized_name", rows.text(u'B'), index);
        for (const CellItem& item : type_items) {
            root.set_present(item, row, load.media_abilities, index);
        }
        ++index;
    }
}

} // namespace pm
