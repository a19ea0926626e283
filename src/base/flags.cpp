#include "base/flags.h"

#include <algorithm>

namespace {

constexpr std::u16string_view digits = u"0123456789ABCDEF";

char16_t digit_of(int value) {
    return digits[static_cast<unsigned>(value) & 15U];
}

} // namespace

ZT_Flags::ZT_Flags(int count) : m_digits(static_cast<std::size_t>(std::max(count, 0)), u'0') {}

ZT_Flags::~ZT_Flags() = default;

void ZT_Flags::set_flag(int index, int value) {
    if (has(index)) m_digits[static_cast<std::size_t>(index)] = digit_of(value);
}

int ZT_Flags::get_flag(int index) const {
    return has(index) ? static_cast<int>(digits.find(m_digits[static_cast<std::size_t>(index)])) : 0;
}

void ZT_Flags::set_flags(int value) {
    std::fill(m_digits.begin(), m_digits.end(), digit_of(value));
}
