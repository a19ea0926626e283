#include "pdt/sections/meta.h"

#include "pdt/branch.h"

namespace pm {

// A setting, B whether there is a text: the text comes from the string file. Keys are counted by the rows
// that have a cell, not by lines (kept).
void convert_meta(PdtLoad& load, Rows& rows) {
    static constexpr const char16_t* items[] = {u"\\localized_model_name", u"\\localized_family_name",
                                                u"\\driver_tag_line"};
    Branch meta(load, {u"\\meta"});
    int number = SectionReader::first_row;
    for (const char16_t* item : items) {
        rows.next();
        if (rows.fields(2).has('B')) meta.set_string(item, rows.text(u'B', number++));
    }
}

} // namespace pm
