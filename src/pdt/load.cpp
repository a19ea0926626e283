#include "pdt/load.h"

#include "pdt/failure.h"
#include <algorithm>
#include <pm/error_number.h>

namespace pm {

PlaceCursor& PdtLoad::cursor() {
    if (!m_cursor) m_cursor.emplace(*object, base);
    return *m_cursor;
}

void PdtLoad::count_joined(std::size_t items) {
    if (items > join_limit - joined) throw_pdt_failure(PM_ERR_NOT_READ, string_file.c_str());
    joined += static_cast<std::uint32_t>(items);
}

void PdtLoad::count_joined(std::size_t items, std::initializer_list<const ZT_String*> texts) {
    constexpr int units_of_an_item = 32;
    for (const ZT_String* text : texts) {
        items += static_cast<std::size_t>(std::max(text->length(), 0) / units_of_an_item);
    }
    count_joined(items);
}

} // namespace pm
