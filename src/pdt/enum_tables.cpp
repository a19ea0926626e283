#include "pdt/enum_tables.h"

#include <algorithm>

namespace pm {

std::uint32_t lookup_enum(KeywordTable table, std::u16string_view text) {
    const auto row = std::find_if(table.begin(), table.end(),
                                  [text](const Keyword& keyword) { return keyword.text == text; });
    return row != table.end() ? row->code : unknown_keyword;
}

std::int32_t lookup_enum_or(KeywordTable table, std::u16string_view text, std::int32_t miss) {
    const std::uint32_t code = lookup_enum(table, text);
    return code == unknown_keyword ? miss : static_cast<std::int32_t>(code);
}

} // namespace pm
