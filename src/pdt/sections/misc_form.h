#pragma once

#include "pdt/branch.h"
#include "pdt/enum_tables.h"
#include "pdt/rows.h"

namespace pm {

struct FormLine;

// One reading of the section "Misc Non-Localizable Info": a form, in which the number of a line tells its
// setting, whatever its label says. The sets of flags that live for the reading, and the handling of lines.
class MiscForm {
public:
    MiscForm(PdtLoad& form_load, Rows& form_rows) : load(form_load), root(form_load, {}), rows(form_rows) {}

    // Reads the lines one after the other and handles those that the table has.
    void read(std::span<const FormLine> lines, int last_line);

    PdtLoad& load;
    Branch root;
    Rows& rows;
    std::size_t kept_place = 0; // in the line

    ZT_PhysPens_Abilities pens;
    ZT_InitTerm_Abilities start_strings;
    UC_Linetype_Abilities linetypes;
    ZT_PhysPen_UI_Owner pen_owners;
    ZT_InitTerm_UI_Owner start_string_owners;
    ZT_ResColorMem_UI_Owner color_owners;
    ZT_IO_UI_Owner io_owners;
    ZT_Media_UI_Owner media_owners;
};

// What a line means: how it is handled, and the set of flags that it marks.
struct FormLine {
    int number;
    void (*handle)(MiscForm& form, const FormLine& line, Row& row);
    const char16_t* item = nullptr;
    CellForm form = CellForm::text;
    ZT_Flags& (*set)(MiscForm& form) = nullptr;
    Marks marks = {};
    KeywordTable keywords = {};
    std::int32_t miss = 0; // for an unknown keyword
    int owner = 0;
};

// Sets for FormLine: those of the form and those of the load.
template<auto flags>
ZT_Flags& own_set(MiscForm& form) {
    return form.*flags;
}
template<auto flags>
ZT_Flags& shared_set(MiscForm& form) {
    return form.load.*flags;
}

// Handlers for FormLine. But for the last three, an empty column B leaves everything alone.

// Writes the cell, and marks.
void write_cell(MiscForm& form, const FormLine& line, Row& row);
// Writes a number, and marks if it is above 0.
void write_count(MiscForm& form, const FormLine& line, Row& row);
// Writes the code of the cell's keyword, and marks.
void write_keyword(MiscForm& form, const FormLine& line, Row& row);
// The same after normalize_name.
void write_keyword_name(MiscForm& form, const FormLine& line, Row& row);
// Writes the codes of all keywords up to the first empty cell, bit by bit, and marks.
void write_keyword_list(MiscForm& form, const FormLine& line, Row& row);
// Marks for "Y" as first character.
void mark_yes(MiscForm& form, const FormLine& line, Row& row);
// The same, and keeps where in the line the cell begins.
void mark_yes_and_keep(MiscForm& form, const FormLine& line, Row& row);
// Marks for "Y" at the place that was kept. The line's own cell only tells whether to look (kept).
void mark_yes_at_kept(MiscForm& form, const FormLine& line, Row& row);
// Marks the keywords of columns B and C; writes the set if the line has a label: here, and only here, a label
// counts (kept).
void mark_keywords(MiscForm& form, const FormLine& line, Row& row);
// Gives the flags of all keywords up to the first empty cell to the owner; writes the set if there is an
// item.
void set_owners(MiscForm& form, const FormLine& line, Row& row);

} // namespace pm
