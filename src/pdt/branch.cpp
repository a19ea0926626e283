#include "pdt/branch.h"

#include "base/text.h"

PM_PDTFile::Branch::Branch(PM_Object& target, std::u16string_view base, Texts texts)
    : m_target(target), m_path(base) {
    append(texts);
    m_root_length = m_place_length = m_path.size();
}

void PM_PDTFile::Branch::append(Texts texts) {
    for (const std::u16string_view text : texts) {
        m_path += text;
    }
}

PM_PDTFile::Branch PM_PDTFile::Branch::below(Texts texts) const {
    return Branch(m_target, std::u16string_view(m_path).substr(0, m_place_length), texts);
}

void PM_PDTFile::Branch::enter(Texts texts) {
    m_path.resize(m_root_length);
    append(texts);
    m_place_length = m_path.size();
}

const char16_t* PM_PDTFile::Branch::path(std::u16string_view item) {
    m_path.resize(m_place_length);
    m_path += item;
    return m_path.c_str();
}

void PM_PDTFile::Branch::set_long(std::u16string_view item, std::int32_t value, int index) {
    PM_File::set_long(m_target, path(item), value, index);
}

void PM_PDTFile::Branch::set_double(std::u16string_view item, double value, int index) {
    PM_File::set_double(m_target, path(item), value, index);
}

void PM_PDTFile::Branch::set_bool(std::u16string_view item, bool value, int index) {
    PM_File::set_bool(m_target, path(item), value, index);
}

void PM_PDTFile::Branch::set_string(std::u16string_view item, const char16_t* text, int index) {
    PM_File::set_string(m_target, path(item), text, index);
}

void PM_PDTFile::Branch::set_typed_value(std::u16string_view item, const char16_t* text, int index,
                                         std::int32_t type) {
    PM_PDTFile::set_typed_value(m_target, path(item), text, index, type);
}

void PM_PDTFile::Branch::set_cell(std::u16string_view item, char16_t* cell, CellForm form, int index) {
    switch (form) {
    case CellForm::text:
        return set_string(item, cell, index);
    case CellForm::name:
        pm::normalize_name(cell);
        return set_string(item, cell, index);
    case CellForm::integer:
        return set_long(item, pm::scan_long(cell), index);
    case CellForm::number:
        return set_double(item, pm::cell_number(cell), index);
    case CellForm::narrow_number:
        return set_double(item, static_cast<float>(pm::cell_number(cell)), index);
    case CellForm::exact_yes:
        return set_bool(item, *cell == u'Y', index);
    case CellForm::any_case_yes:
        return set_bool(item, pm::to_lower(*cell) == u'y', index);
    case CellForm::unless_u:
        return set_bool(item, *cell != u'U', index);
    }
}

bool PM_PDTFile::Branch::set_present(const CellItem& item, const pm::Row& row, ZT_Flags& flags, int index) {
    if (!row.has(item.tested)) return false;
    set_cell(item.item, row[item.column], item.form, index);
    mark(flags, item.marks);
    return true;
}
