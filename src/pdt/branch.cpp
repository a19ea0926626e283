#include "pdt/branch.h"

#include "base/text.h"

namespace pm {

Branch::Branch(PM_Object& target, std::u16string_view base, Texts texts, PlaceCursor* cursor)
    : m_target(target), m_cursor(cursor), m_path(base) {
    append(texts);
    m_root_length = m_place_length = m_path.size();
}

void Branch::append(Texts texts) {
    for (const std::u16string_view text : texts) {
        m_path += text;
    }
}

Branch Branch::below(Texts texts) const {
    return {m_target, std::u16string_view(m_path).substr(0, m_place_length), texts, m_cursor};
}

void Branch::enter(Texts texts) {
    m_path.resize(m_root_length);
    append(texts);
    m_place_length = m_path.size();
}

template<class AtNode, class AlongPath>
void Branch::write(std::u16string_view item, int index, AtNode at, AlongPath along) {
    m_path.resize(m_place_length);
    m_path += item;
    TreeCursor* const node = m_cursor != nullptr ? m_cursor->go_to(m_path, index) : nullptr;
    if (node != nullptr) {
        at(*node, m_cursor->name());
    } else {
        along(m_path.c_str());
    }
}

void Branch::set_long(std::u16string_view item, std::int32_t value, int index) {
    write(
        item, index, [&](TreeCursor& node, const TreeCursor::Name& name) { node.set_long(name, value); },
        [&](const char16_t* path) { m_target.SetProperty(path, value, index); });
}

void Branch::set_double(std::u16string_view item, double value, int index) {
    write(
        item, index, [&](TreeCursor& node, const TreeCursor::Name& name) { node.set_double(name, value); },
        [&](const char16_t* path) { m_target.SetProperty(path, value, index); });
}

void Branch::set_bool(std::u16string_view item, bool value, int index) {
    write(
        item, index, [&](TreeCursor& node, const TreeCursor::Name& name) { node.set_bool(name, value); },
        [&](const char16_t* path) { m_target.SetProperty(path, value, index); });
}

void Branch::set_string(std::u16string_view item, const char16_t* text, int index) {
    const char16_t* const stored = or_empty(text);
    write(
        item, index, [&](TreeCursor& node, const TreeCursor::Name& name) { node.set_string(name, stored); },
        [&](const char16_t* path) { m_target.SetProperty(path, stored, index); });
}

void Branch::set_bytes(std::u16string_view item, std::span<const unsigned char> bytes, int index) {
    write(
        item, index,
        [&](TreeCursor& node, const TreeCursor::Name& name) {
            node.set_data(name, bytes.data(), bytes.size(), PROP_VOID);
        },
        [&](const char16_t* path) {
            m_target.setVoidProperty(path, bytes.data(), static_cast<unsigned>(bytes.size()), index);
        });
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
