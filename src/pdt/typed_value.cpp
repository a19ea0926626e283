#include "pdt/typed_value.h"

#include "base/text.h"
#include "pdt/pmpdt.h"

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

} // namespace pm

void PM_PDTFile::set_typed_value(PM_Object& object, const char16_t* path, const char16_t* text, int index,
                                 std::int32_t type) {
    switch (type) {
    case pm::typed_string:
        return set_string(object, path, text, index);
    case pm::typed_long:
        return set_long(object, path, pm::scan_long(text), index);
    case pm::typed_double:
        return set_double(object, path, pm::cell_number(text), index);
    case pm::typed_bool:
        return set_bool(object, path, *text == u'Y', index);
    case pm::typed_raw: {
        const std::vector<unsigned char> bytes = pm::decode_raw_cell(text);
        return set_data(object, path, bytes.data(), bytes.size(), PROP_VOID, index);
    }
    default:
        return;
    }
}
