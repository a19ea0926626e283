#pragma once

#include "pdt/pmpdt.h"
#include <span>

// What one line of the section "Misc Non-Localizable Info" means. The section is a form: the number of a line
// tells its setting, whatever its label says.
struct PM_PDTFile::MiscRow {
    enum class Form {
        ignored,
        cell,         // writes the cell, and marks
        pen_count,    // writes a number, and marks if it is above 0
        keyword,      // writes the code of the cell's keyword, `miss` for an unknown one, and marks
        keyword_name, // the same after normalize_name
        keyword_list, // writes the codes of all keywords of the line bit by bit, unknown ones as 0, and marks
        yes,          // marks for "Y" as first character
        yes_kept,     // the same, and keeps where in the line the cell begins
        yes_at_kept,  // if there is a cell, marks for "Y" at the place that was kept
        linetypes,    // marks the keywords of two cells; writes the set if the line has a label
        owners        // gives the flags of all keywords of the line to `owner`; writes the set to an item
    };

    // The set of flags that a line marks.
    enum class Set {
        pens,
        start_strings,
        linetypes,
        media,
        res_color_mem,
        io,
        pen_owners,
        start_string_owners,
        res_color_mem_owners,
        io_owners,
        media_owners
    };

    Form form = Form::ignored;
    Set set = Set::pens;
    Marks marks = {};
    const char16_t* item = nullptr;
    CellForm cell_form = CellForm::text;
    pm::Keywords keywords = pm::Keywords::parity;
    std::int32_t miss = 0;
    int owner = 0;

    // All lines of the form; the first ones are the headings.
    static std::span<const MiscRow> all();
};
