#pragma once

#include "pdt/pmpdt.h"
#include <string>

// A place in the tree, and the writing of items below it. Places and items are path texts that are joined as
// they stand, in one buffer; an item with a "*" takes an index for it. What setData raises passes.
class PM_PDTFile::Branch {
public:
    using Texts = std::initializer_list<std::u16string_view>;

    // The place is `base` and `texts` behind it.
    Branch(PM_Object& target, std::u16string_view base, Texts texts);

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
    void set_cell(std::u16string_view item, char16_t* cell, CellForm form, int index = -1);
    void set_typed_value(std::u16string_view item, const char16_t* text, int index, std::int32_t type);

    // Writes the item and marks its abilities, and gives true, unless the tested cell is empty.
    bool set_present(const CellItem& item, const pm::Row& row, ZT_Flags& flags, int index = -1);

private:
    const char16_t* path(std::u16string_view item);
    void append(Texts texts);

    PM_Object& m_target;
    std::u16string m_path;
    std::size_t m_root_length;
    std::size_t m_place_length;
};
