#include "platform/compound_names.h"

#include "platform/compound_upper_case.h"
#include <algorithm>

namespace pm {

namespace {

constexpr auto unit_allowed = [](char16_t unit) {
    return unit != u'/' && unit != u'\\' && unit != u':' && unit != u'!' && unit != u'\0';
};

constexpr bool rows_ascend() {
    for (std::size_t row = 1; row < upper_case_rows.size(); ++row) {
        if (upper_case_rows[row].first <= upper_case_rows[row - 1].last) return false;
    }
    return true;
}
static_assert(rows_ascend());

char16_t upper_case(char16_t unit) {
    constexpr char16_t first_beyond_ascii = 0x80;
    if (unit < first_beyond_ascii) {
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
    }
    const auto next =
        std::upper_bound(upper_case_rows.begin(), upper_case_rows.end(), unit,
                         [](char16_t each, const UpperCaseRow& row) { return each < row.first; });
    const UpperCaseRow& row = *(next - 1);
    const int distance = unit - row.first;
    const bool mapped = unit <= row.last && distance % row.step == 0;
    return mapped ? static_cast<char16_t>(row.upper + distance) : unit;
}

} // namespace

bool compound_name_allowed(std::u16string_view name) {
    return !name.empty() && name.size() <= CompoundName::most_units &&
           std::all_of(name.begin(), name.end(), unit_allowed);
}

std::u16string compound_name_key(std::u16string_view name) {
    std::u16string key(name);
    std::transform(key.begin(), key.end(), key.begin(), upper_case);
    return key;
}

CompoundName CompoundName::key_of(std::u16string_view name) {
    CompoundName key;
    std::transform(name.begin(), name.end(), key.resize(name.size()), upper_case);
    return key;
}

} // namespace pm
