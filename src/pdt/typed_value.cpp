#include "pdt/typed_value.h"

namespace pm {

namespace {

unsigned digit_value(char16_t digit) {
    const std::size_t value = std::u16string_view(u"0123456789ABCDEF").find(digit);
    return value == std::u16string_view::npos ? 0 : static_cast<unsigned>(value);
}

} // namespace

std::vector<unsigned char> decode_raw_cell(std::u16string_view text) {
    std::vector<unsigned char> bytes;
    for (std::size_t pair = 2; pair + 1 < text.size(); pair += 2) {
        bytes.push_back(
            static_cast<unsigned char>(digit_value(text[pair]) * 16 + digit_value(text[pair + 1])));
    }
    return bytes;
}

void set_typed_value(Branch& branch, std::u16string_view item, char16_t* cell, int index, std::int32_t type) {
    switch (type) {
    case typed_string:
        return branch.set_cell(item, cell, CellForm::text, index);
    case typed_long:
        return branch.set_cell(item, cell, CellForm::integer, index);
    case typed_double:
        return branch.set_cell(item, cell, CellForm::number, index);
    case typed_bool:
        return branch.set_cell(item, cell, CellForm::exact_yes, index);
    case typed_raw:
        return branch.set_bytes(item, decode_raw_cell(cell), index);
    default:
        return;
    }
}

} // namespace pm
