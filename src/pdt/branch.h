#pragma once

#include "pdt/abilities.h"
#include "pdt/load.h"
#include <span>
#include <string>

namespace pm {

// How a cell is stored.
enum class CellForm {
    text,          // as it stands
    name,          // after normalize_name
    integer,       // the integer at its start
    number,        // the number at its start
    narrow_number, // the same, rounded to 32 bits
    exact_yes,     // true for "Y" as first character
    any_case_yes,  // true for "Y" and "y"
    unless_u       // false for "U"
};

// A cell that is written to an item, and what is then marked, if it, or the cell that `if_set` names, isn't
// empty.
struct CellItem {
    char column;
    std::u16string_view item;
    CellForm form = CellForm::text;
    Marks marks = {};
    char if_set = 0;
};

// A place in the tree, and the writing of items below it. Places and items are path texts that are joined as
// they stand, in one buffer; an item with a "*" takes an index for it. What SetProperty raises passes.
class Branch {
public:
    using Texts = std::initializer_list<std::u16string_view>;

    // The place is `base` and `texts` behind it. A cursor, if there is one, has the same base and writes by a
    // shorter way.
    Branch(PM_Object& target, std::u16string_view base, Texts texts, PlaceCursor* cursor = nullptr);
    Branch(PdtLoad& load, Texts texts) : Branch(*load.object, load.base, texts, &load.cursor()) {}

    // A branch of its own, from this place with `texts` behind it.
    Branch below(Texts texts) const;
    // Moves to the place of the construction with `texts` behind it.
    void enter(Texts texts);

    void set_long(std::u16string_view item, std::int32_t value, int index = -1);
    void set_double(std::u16string_view item, double value, int index = -1);
    void set_bool(std::u16string_view item, bool value, int index = -1);
    void set_string(std::u16string_view item, const char16_t* text, int index = -1);
    void set_string(std::u16string_view item, const ZT_String& text, int index = -1) {
        set_string(item, text.text(), index);
    }
    void set_bytes(std::u16string_view item, std::span<const unsigned char> bytes, int index = -1);
    // The text form of the set.
    void set_flags(std::u16string_view item, const ZT_Flags& flags) {
        set_string(item, FlagAccess::text(flags));
    }
    void set_cell(std::u16string_view item, char16_t* cell, CellForm form, int index = -1);

    // Writes the item and marks what goes with it, and gives true, unless the cell that decides is empty.
    bool set_present(const CellItem& item, const Row& row, ZT_Flags& flags, int index = -1);

private:
    // Writes to the item: by `at(node, name)` where the cursor goes there, by `along(path)` elsewhere.
    template<class AtNode, class AlongPath>
    void write(std::u16string_view item, int index, AtNode at, AlongPath along);
    void append(Texts texts);

    PM_Object& m_target;
    PlaceCursor* m_cursor; // null or borrowed
    std::u16string m_path;
    std::size_t m_root_length;
    std::size_t m_place_length;
};

} // namespace pm
