#include "pdt/branch.h"

#include "base/text.h"

namespace pm {

Branch::Branch(PM_Object& target, std::u16string_view base, Texts texts) : m_target(target), m_path(base) {
    append(texts);
    m_root_length = m_place_length = m_path.size();
}

void Branch::append(Texts texts) {
    for (const std::u16string_view text : texts) {
        m_path += text;
    }
}

Branch Branch::below(Texts texts) const {
    return {m_target, std::u16string_view(m_path).substr(0, m_place_length), texts};
}

void Branch::enter(Texts texts) {
    m_path.resize(m_root_length);
    append(texts);
    m_place_length = m_path.size();
}

const char16_t* Branch::path(std::u16string_view item) {
    m_path.resize(m_place_length);
    m_path += item;
    return m_path.c_str();
}

void Branch::set_long(std::u16string_view item, std::int32_t value, int index) {
    m_target.SetProperty(path(item), value, index);
}

void Branch::set_double(std::u16string_view item, double value, int index) {
    m_target.SetProperty(path(item), value, index);
}

void Branch::set_bool(std::u16string_view item, bool value, int index) {
    m_target.SetProperty(path(item), value, index);
}

void Branch::set_string(std::u16string_view item, const char16_t* text, int index) {
    m_target.SetProperty(path(item), text, index);
}

void Branch::set_bytes(std::u16string_view item, std::span<const unsigned char> bytes, int index) {
    m_target.setVoidProperty(path(item), bytes.data(), static_cast<unsigned>(bytes.size()), index);
}

void Branch::set_cell(std::u16string_view item, char16_t* cell, CellForm form, int index) {
    switch (form) {
    case CellForm::text:
        return set_string(item, cell, index);
    case CellForm::name:
        normalize_name(cell);
        return set_string(item, cell, index);
    case CellForm::integer:
        return set_long(item, scan_long(cell), index);
    case CellForm::number:
        return set_double(item, cell_number(cell), index);
    case CellForm::narrow_number:
        return set_double(item, narrow_cell_number(cell), index);
    case CellForm::exact_yes:
        return set_bool(item, *cell == u'Y', index);
    case CellForm::any_case_yes:
        return set_bool(item, to_lower(*cell) == u'y', index);
    case CellForm::unless_u:
        return set_bool(item, *cell != u'U', index);
    }
}

bool Branch::set_present(const CellItem& item, const Row& row, ZT_Flags& flags, int index) {
    if (!row.has(item.if_set != 0 ? item.if_set : item.column)) return false;
    set_cell(item.item, row[item.column], item.form, index);
    mark(flags, item.marks);
    return true;
}

} // namespace pm
