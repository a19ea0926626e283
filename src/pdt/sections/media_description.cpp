#include "pdt/sections/media_description.h"

#include "pdt/branch.h"
#include "pdt/enum_tables.h"

namespace pm {

namespace {

constexpr CellItem items[] = {
    {.column = 'E',
     .item = u"\\media\\description\\*\\dimensional",
     .form = CellForm::unless_u,
     .marks = {MediaAbility::dimensional}},
    {.column = 'H',
     .item = u"\\media\\description\\*\\printable_area",
     .form = CellForm::number,
     .marks = {MediaAbility::printable_area}},
    {.column = 'M',
     .item = u"\\media\\description\\*\\media_bounds_urx",
     .form = CellForm::number,
     .marks = {MediaAbility::media_bounds}},
    {.column = 'N',
     .item = u"\\media\\description\\*\\media_bounds_ury",
     .form = CellForm::number,
     .if_set = 'M'},
    {.column = 'O',
     .item = u"\\media\\description\\*\\printable_bounds_llx",
     .form = CellForm::number,
     .marks = {MediaAbility::printable_bounds}},
    {.column = 'P',
     .item = u"\\media\\description\\*\\printable_bounds_lly",
     .form = CellForm::number,
     .if_set = 'O'},
    {.column = 'Q',
     .item = u"\\media\\description\\*\\printable_bounds_urx",
     .form = CellForm::number,
     .if_set = 'O'},
    {.column = 'R',
     .item = u"\\media\\description\\*\\printable_bounds_ury",
     .form = CellForm::number,
     .if_set = 'O'},
};

} // namespace

// A area, B text, C group, D units, E dimensional, F and G long and short side, H printable part, I to L
// margins, M and N width and height, O to R left, bottom, right and top of the printable area. Rows without a
// name leave no gap.
void convert_media_description(PdtLoad& load, Rows& rows) {
    Branch root(load, {});
    int index = 0;
    while (rows.next()) {
        const Row row = rows.fields(18);
        const char16_t* name = row.name('A');
        if (*name == 0) continue;
        mark(load.media_abilities, {MediaAbility::descriptions});
        root.set_long(u"\\media\\description\\*\\caps_type", load.caps_type, index);
        root.set_string(u"\\media\\description\\*\\name", name, index);
        if (row.has('C')) {
            // The group lands on the media size of the same index (kept).
            mark(load.media_abilities, {MediaAbility::media_group});
            root.set_long(u"\\media\\size\\*\\media_group",
                          lookup_enum_or(keywords::media_group, row['C'], 0), index);
        }
        for (const CellItem& item : items) {
            root.set_present(item, row, load.media_abilities, index);
        }
        ++index;
    }
}

} // namespace pm
