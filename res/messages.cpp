#include "messages.h"

#include <algorithm>
#include <pm/error_number.h>

namespace pmres {

namespace {

struct Message {
    std::uint32_t number;
    const char16_t* text;
};

// Made from messages.txt.
constexpr Message table[] = {
#include "message_rows.inc"
};

constexpr bool every_number_has_a_text() {
    std::uint32_t number = PM_ERR_FIRST;
    return std::ranges::all_of(table, [&](const Message& each) { return each.number == number++; }) &&
           number == PM_ERR_LAST + 1;
}
static_assert(every_number_has_a_text());

} // namespace

const char16_t* find_message(std::uint32_t number) {
    return number >= PM_ERR_FIRST && number <= PM_ERR_LAST ? table[number - PM_ERR_FIRST].text : nullptr;
}

} // namespace pmres
