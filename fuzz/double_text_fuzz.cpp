// First byte: whether a unit of the text has one byte (even) or two. The rest: a text that may be a number,
// and in its first eight bytes a number of its own.

#include "base/text.h"
#include "fuzz_support.h"
#include "store/value_text.h"
#include "wide_text.h"
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using pm::fuzz::require;

bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// The text of a number gives the same number, but for the sign of zero, which no text has.
void require_text_reads_back(double value) {
    char16_t wide[pm::double_text_capacity];
    const std::size_t length = pm::format_double(value, wide);
    require(length > 0 && length < pm::double_text_capacity);
    char narrow[pm::double_text_capacity];
    require(std::equal(wide, wide + length, narrow, pm::format_double(value, narrow)));
    double back = 0;
    require(pm::parse_double({wide, length}, back));
    require(same_bits(back, value == 0 ? 0.0 : value));
}

// What a scan takes is a number to the C library too, and the same one.
void require_scan_agrees(const std::u16string& text) {
    const pm::ScannedDouble scanned = pm::scan_double_at(text);
    require(scanned.length <= text.size());
    require(same_bits(pm::scan_double(text), scanned.value));
    if (scanned.length == 0) {
        require(same_bits(scanned.value, 0));
        return;
    }
    std::string taken;
    for (const char16_t unit : std::u16string_view(text).substr(0, scanned.length)) {
        require(unit < 0x80);
        taken += static_cast<char>(unit);
    }
    char* end = nullptr;
    require(same_bits(std::strtod(taken.c_str(), &end), scanned.value));
    require(*end == 0);
    double parsed = 0;
    if (scanned.length != text.size()) return;
    require(pm::parse_double(text, parsed) && same_bits(parsed, scanned.value));
}

void require_integers_stay_within(const std::u16string& text) {
    for (const int base : {0, 8, 10, 16}) {
        require(pm::scan_long_at(text, base).length <= text.size());
    }
    require(pm::scan_hexadecimal_at(text).length <= text.size());
    require(pm::scan_long(text) == pm::scan_long_at(text, 10).value);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::u16string text = pm::fuzz::wide_text(data + 1, size - 1, data[0] % 2 != 0);
    double value = 0;
    if (pm::parse_double(text, value)) require_text_reads_back(value);
    require_scan_agrees(text);
    require_integers_stay_within(text);
    if (size > sizeof value) {
        std::memcpy(&value, data + 1, sizeof value);
        require_text_reads_back(value);
    }
    return 0;
}
