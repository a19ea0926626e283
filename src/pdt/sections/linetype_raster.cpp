#include "pdt/sections/linetype_raster.h"

#include "pdt/branch.h"
#include "pdt/enum_tables.h"

namespace pm {

namespace {

constexpr std::int32_t unknown_text = -1; // no set has a flag of that number

// Four line types to a flag.
void add_font(ZT_Linetype_Linefont_Caps& capabilities, std::int32_t font) {
    const int flag = font >> 2;
    const int bit = 1 << (font & 3);
    FlagAccess::set(capabilities, flag, FlagAccess::get(capabilities, flag) | bit);
}

} // namespace

// A line type, B width. The number of a line type is its bit of the capabilities and the index of its width.
// The width of an unknown one goes to index -1 (kept: the miss stands in the tree).
void convert_linetype(PdtLoad& load, Rows& rows) {
    Branch linetype(load, {u"\\linetype"});
    ZT_Linetype_Linefont_Caps capabilities;
    while (rows.next()) {
        const Row row = rows.fields(2);
        if (!row.has('A')) continue;
        const std::int32_t font = lookup_enum_or(keywords::linetype, row.name('A'), unknown_text);
        add_font(capabilities, font);
        linetype.set_cell(u"\\font\\*\\width", row['B'], CellForm::narrow_number, font);
    }
    linetype.set_flags(u"\\capabilities", capabilities);
}

// A ability, B orientation: each cell counts for itself. Orientations are numbers and yet are combined bit by
// bit; an unknown one sets all bits (kept: readers of the item take it so).
void convert_raster(PdtLoad& load, Rows& rows) {
    ZT_Raster_Abilities abilities;
    std::int32_t orientation = 0;
    while (rows.next()) {
        const Row row = rows.fields(2);
        mark(abilities, {lookup_enum_or(keywords::raster_ability, row.name('A'), unknown_text)});
        if (row.has('B')) {
            orientation |= lookup_enum_or(keywords::raster_orientation, row['B'], unknown_text);
        }
    }
    Branch raster(load, {u"\\RASTER"});
    raster.set_flags(u"\\abilities", abilities);
    raster.set_long(u"\\orientation_prefs", orientation);
}

} // namespace pm
