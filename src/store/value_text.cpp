#include "store/value_text.h"

#include "base/allocator.h"
#include "base/no_memory.h"
#include "base/text.h"
#include "base/widen.h"
#include "platform/code_page.h"
#include "store/armour.h"
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <pm/exception.h>
#include <span>

namespace {

constexpr const char16_t* place = u".\\pmobj";
constexpr const char16_t* source = u"$Workfile: pmobj $ $Revision: #1 $";

[[noreturn]] void throw_no_memory(const char16_t* what) {
    throw PM_Memory_Exception(place, what, source);
}

template<class T>
pm::Block<T> allocate_or_throw(std::size_t count, const char16_t* what) {
    pm::Block<T> block = pm::allocate_block<T>(count);
    if (!block) throw_no_memory(what);
    return block;
}

struct Payload {
    pm::Block<std::uint8_t> bytes; // null if the text is not armoured or there is no memory
    std::size_t size = 0;
};

Payload decode_armour(std::u16string_view text) {
    constexpr std::size_t shortest = 3;
    constexpr std::size_t excess = 2; // of a last group of two units
    if (text.size() < shortest || text.size() % pm::armour_group_units == 1) return {};
    if (!std::all_of(text.begin(), text.end(), pm::is_armour)) return {};

    const std::size_t size =
        text.size() * pm::armour_group_bytes / pm::armour_group_units - pm::armour_check_size;
    auto bytes = pm::allocate_block<std::uint8_t>(size + pm::armour_check_size + excess);
    if (!bytes) return {};
    std::uint8_t* out = bytes.get();
    for (std::size_t at = 0; at < text.size(); at += pm::armour_group_units, out += pm::armour_group_bytes) {
        pm::decode_armour_group(text.substr(at, pm::armour_group_units), out);
    }
    const unsigned stored = unsigned{bytes[size]} << 8U | bytes[size + 1];
    if (stored != pm::armour_check({bytes.get(), size})) return {};
    return {std::move(bytes), size};
}

// The text of a double: "0.33333333333 (55555555U3_#T@)" in the exact form.
constexpr std::size_t bracketed_units = pm::armoured_double_size + 2;
constexpr double decimals_scale = 10000.0;

// Writes " (", the armour and ")"; nothing without memory. Gives the end.
char* write_armour(double value, char* out) {
    if (pm::armour_is_refused()) return out;
    *out++ = ' ';
    *out++ = '(';
    out = pm::write_armoured_double(value, out);
    *out++ = ')';
    return out;
}

// `armoured` has the length of a double's armour. False without memory, too.
bool disarm_double(std::u16string_view armoured, double& out) {
    if (!std::all_of(armoured.begin(), armoured.end(), pm::is_armour)) return false;
    if (pm::armour_is_refused()) return false;
    char narrow[pm::armoured_double_size];
    std::transform(armoured.begin(), armoured.end(), narrow,
                   [](char16_t unit) { return static_cast<char>(unit); });
    return pm::read_armoured_double(narrow, out);
}

__extension__ using uint128 = unsigned __int128;

constexpr int digits_shown = 11;
constexpr std::uint64_t least_11_digits = 10'000'000'000;

constexpr std::array<std::uint64_t, 16> make_powers_of_five() {
    std::array<std::uint64_t, 16> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) {
        powers[i] = powers[i - 1] * 5;
    }
    return powers;
}
constexpr auto powers_of_five = make_powers_of_five();

constexpr double powers_of_ten[] = {1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

// value * 10^scale, rounded to an integer: exactly, halves to even. The value is from 1e-4 to below 1e11, the
// scale one of powers_of_five.
uint128 scaled_integer(double value, int scale) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    const std::uint64_t mantissa = (bits & 0xFFFFFFFFFFFFF) | 0x10000000000000;
    const int shift = 1075 - scale - static_cast<int>(bits >> 52); // always positive
    const uint128 product = static_cast<uint128>(mantissa) * powers_of_five[static_cast<std::size_t>(scale)];
    const uint128 whole = product >> shift;
    const uint128 half = uint128{1} << (shift - 1);
    const uint128 rest = product & ((uint128{1} << shift) - 1);
    return whole + (rest > half || (rest == half && (whole & 1) != 0) ? 1 : 0);
}

char* write_digits(std::uint64_t value, char* out, int count) {
    for (char* at = out + count; at != out; value /= 10) {
        *--at = static_cast<char>('0' + value % 10);
    }
    return out + count;
}

// "%#.11g" of a number from 1e-4 to below 1e11, which is written without an exponent.
char* write_11_fixed(double value, char* out) {
    const auto* const above = std::upper_bound(std::begin(powers_of_ten), std::end(powers_of_ten), value);
    int exponent = static_cast<int>(above - std::begin(powers_of_ten)) - 4;
    const auto digits_at = [value](int at) {
        return static_cast<std::uint64_t>(scaled_integer(value, digits_shown - 1 - at));
    };
    std::uint64_t digits = digits_at(exponent);
    // A power of ten that no double is may be one off, and rounding may add a digit.
    if (digits < least_11_digits) digits = digits_at(--exponent);
    if (digits >= 10 * least_11_digits) digits = digits_at(++exponent);
    if (exponent < 0) {
        *out++ = '0';
        *out++ = '.';
        out = std::fill_n(out, -exponent - 1, '0');
        return write_digits(digits, out, digits_shown);
    }
    char all[digits_shown];
    write_digits(digits, all, digits_shown);
    out = std::copy_n(all, exponent + 1, out);
    *out++ = '.';
    return std::copy(all + exponent + 1, all + digits_shown, out);
}

bool is_fixed(double magnitude) {
    return magnitude >= 1e-4 && magnitude < 9.9999e10;
}

// "%#.11g"; gives the end.
char* write_11_digits(double value, char* out) {
    const double magnitude = std::abs(value);
    if (is_fixed(magnitude)) {
        if (value < 0) *out++ = '-';
        return write_11_fixed(magnitude, out);
    }
    const std::string text = pm::format_11_digits(value);
    return std::copy(text.begin(), text.end(), out);
}

bool same_ascii(std::u16string_view text, std::string_view ascii) {
    return std::equal(text.begin(), text.end(), ascii.begin(), ascii.end(),
                      [](char16_t unit, char c) { return unit == static_cast<unsigned char>(c); });
}

bool has_short_form(double magnitude) {
    const double scaled = magnitude * decimals_scale;
    return scaled <= std::numeric_limits<std::int32_t>::max() && scaled / decimals_scale == magnitude &&
           static_cast<double>(static_cast<std::int32_t>(scaled)) == scaled;
}

char* write_short_form(double magnitude, char* out) {
    const auto scaled = static_cast<std::int32_t>(magnitude * decimals_scale);
    char* end = std::to_chars(out, out + pm::double_text_capacity, scaled / 10000).ptr;
    *end++ = '.';
    int decimals = scaled % 10000;
    do {
        *end++ = static_cast<char>('0' + decimals / 1000);
        decimals = decimals % 1000 * 10;
    } while (decimals != 0);
    return end;
}

char* write_exact_form(double value, char* out) {
    return write_armour(value, write_11_digits(value, out));
}

// The place of the blank in front of an armoured text, or npos.
std::size_t find_armour(std::u16string_view text) {
    if (text.size() < bracketed_units + 2 || text.back() != u')') return std::u16string_view::npos;
    const std::size_t blank = text.size() - bracketed_units - 1;
    return text.substr(blank, 2) == u" (" ? blank : std::u16string_view::npos;
}

bool parse_exact_form(std::u16string_view text, std::size_t blank, double& out) {
    if (blank == std::u16string_view::npos) return false;
    double value = 0;
    if (!disarm_double(text.substr(blank + 2, pm::armoured_double_size), value)) return false;
    char visible[pm::double_text_capacity];
    const std::string_view told(visible, static_cast<std::size_t>(write_11_digits(value, visible) - visible));
    if (!same_ascii(text.substr(0, blank), told)) return false;
    out = value;
    return true;
}

// The decimal digits of `text`, none of which may be anything else, behind those in `value`.
bool append_digits(std::u16string_view text, std::int64_t& value) {
    for (const char16_t unit : text) {
        if (!pm::is_digit(unit)) return false;
        value = value * 10 + (unit - u'0');
    }
    return value <= std::numeric_limits<std::int32_t>::max();
}

bool parse_short_integer(std::u16string_view digits, std::int64_t& value) {
    constexpr std::size_t longest = 6;
    if (digits.empty() || digits.size() > longest || digits.front() == u'0') return false;
    return append_digits(digits, value);
}

// The number times 10000.
bool parse_short_decimal(std::u16string_view digits, std::size_t dot, std::int64_t& value) {
    constexpr std::size_t longest = 11;
    constexpr std::int64_t missing_decimals[] = {10000, 1000, 100, 10, 1};
    const std::size_t decimals = digits.size() - dot - 1;
    if (digits.size() > longest || decimals < 1 || decimals > 4) return false;
    if (digits.back() == u'0' && decimals != 1) return false;
    if (!append_digits(digits.substr(0, dot), value) || !append_digits(digits.substr(dot + 1), value)) {
        return false;
    }
    value *= missing_decimals[decimals];
    return value <= std::numeric_limits<std::int32_t>::max();
}

// Reads what write_short_form() makes, and little else, without a general scan.
bool parse_short_form(std::u16string_view text, double& out) {
    const bool negative = !text.empty() && text.front() == u'-';
    const std::u16string_view digits = text.substr(negative ? 1 : 0);
    const std::size_t dot = digits.find(u'.');
    std::int64_t whole = 0;
    double value = 0;
    if (dot == std::u16string_view::npos) {
        if (!parse_short_integer(digits, whole)) return false;
        value = static_cast<double>(whole);
    } else {
        if (!parse_short_decimal(digits, dot, whole)) return false;
        value = static_cast<double>(whole) / decimals_scale;
        if (value * decimals_scale != static_cast<double>(whole)) return false;
    }
    out = negative ? -value : value;
    return true;
}

bool scan_whole(std::u16string_view text, std::size_t blank, double& out) {
    const pm::ScannedDouble scanned = pm::scan_double_at(text);
    if (scanned.length == 0) return false;
    if (scanned.length != text.size() && scanned.length != blank) return false;
    out = scanned.value;
    return true;
}

// Null for a null text, and without memory.
pm::Block<char> narrow_copy(const char16_t* text) {
    if (text == nullptr) return nullptr;
    try {
        const std::string narrow = pm::to_narrow(text);
        pm::Block<char> copy = pm::allocate_block<char>(narrow.size() + 1);
        if (copy) std::copy_n(narrow.c_str(), narrow.size() + 1, copy.get());
        return copy;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

// What a character counts as a hexadecimal digit; letters must be uppercase. The upper half of the characters
// counts as negative and so lies below '9'.
int hex_digit_value(char digit) {
    const int code = static_cast<unsigned char>(digit);
    return code > '9' && code < 0x80 ? code - ('A' - 10) : code - '0';
}

std::size_t compound_size(std::span<const char* const> list) {
    std::size_t size = list.size() + 1;
    for (const char* text : list) {
        if (text == nullptr) throw_no_memory(u"strlist[idx]");
        size += std::strlen(text);
    }
    return size;
}

void take(std::string_view narrow, ZT_String& out) {
    pm::telling_no_memory(place, u"c_str", source, [&] { out.copy(pm::to_wide(narrow).c_str()); });
}

void write_hex(std::span<const std::uint8_t> bytes, char* out) {
    constexpr const char* digits = "0123456789ABCDEF";
    for (const std::uint8_t byte : bytes) {
        *out++ = digits[byte >> 4];
        *out++ = digits[byte & 0xF];
    }
    *out = '\0';
}

void read_hex(std::string_view text, char* out) {
    for (std::size_t at = 0; at + 1 < text.size(); at += 2) {
        *out++ = static_cast<char>(16 * hex_digit_value(text[at]) + hex_digit_value(text[at + 1]));
    }
}

} // namespace

bool pm_bin_to_hex(const void* data, char* out, int size) {
    if (data == nullptr || out == nullptr || size <= 0) return false;
    write_hex({static_cast<const std::uint8_t*>(data), static_cast<std::size_t>(size)}, out);
    return true;
}

bool pm_hex_to_bin(const char* text, void* out) {
    if (text == nullptr || out == nullptr) return false;
    const std::string_view digits(text);
    if (digits.empty() || digits.size() % 2 != 0) return false;
    read_hex(digits, static_cast<char*>(out));
    return true;
}

int stringtobinary(const char16_t* text, char** out, unsigned* size) {
    if (out == nullptr || size == nullptr) return 0;
    Payload payload = decode_armour(pm::view(text));
    if (!payload.bytes) return 0;
    *out = reinterpret_cast<char*>(payload.bytes.release());
    *size = static_cast<unsigned>(payload.size);
    return 1;
}

bool drc_compound_str_from_list(const char** list, int count, ZT_String& out) {
    if (list == nullptr && count > 0) throw_no_memory(u"strlist[idx]");
    const std::span<const char* const> strings(list, static_cast<std::size_t>(std::max(count, 0)));
    const std::size_t size = compound_size(strings);
    const auto compound = allocate_or_throw<std::uint8_t>(size, u"compound_str");
    std::uint8_t* end = compound.get();
    for (const char* text : strings) {
        end = std::copy_n(text, std::strlen(text) + 1, end);
    }
    *end = 0;

    const auto hex = allocate_or_throw<char>(2 * size + 1, u"c_str");
    write_hex({compound.get(), size}, hex.get());
    take(hex.get(), out);
    return true;
}

bool build_compound_str_ex(const char16_t* a, const char16_t* b, ZT_String& out) {
    const pm::Block<char> narrow_a = narrow_copy(a);
    const pm::Block<char> narrow_b = narrow_copy(b);
    const char* list[] = {narrow_a.get(), narrow_b.get()};
    return drc_compound_str_from_list(list, static_cast<int>(std::size(list)), out);
}

bool extract_compound_str_ex(const char16_t* text, ZT_String& a, ZT_String& b) {
    const pm::Block<char> narrow = narrow_copy(text);
    if (!narrow) throw_no_memory(u"input");
    const std::string_view hex(narrow.get());
    const auto compound = allocate_or_throw<char>(hex.size() / 2 + 1, u"compound_str");
    if (hex.empty() || hex.size() % 2 != 0) return false;
    read_hex(hex, compound.get());
    compound[hex.size() / 2] = '\0';

    std::string_view rest(compound.get(), hex.size() / 2);
    for (ZT_String* target : {&a, &b}) {
        const std::string_view string = rest.substr(0, rest.find('\0'));
        if (string.empty()) return false;
        take(string, *target);
        rest.remove_prefix(std::min(string.size() + 1, rest.size()));
    }
    return true;
}

namespace pm {

char* format_double(double value, char* out) {
    const bool negative = value < 0;
    const double magnitude = negative ? -value : value;
    if (!has_short_form(magnitude)) return write_exact_form(value, out);
    if (negative) *out++ = '-';
    return write_short_form(magnitude, out);
}

std::size_t format_double(double value, char16_t* buffer) {
    char text[double_text_capacity] = {};
    const char* const end = format_double(value, text);
    for (std::size_t at = 0; at < double_text_capacity; at += 8) {
        widen_eight(text + at, buffer + at);
    }
    return static_cast<std::size_t>(end - text);
}

bool parse_double(std::u16string_view text, double& out) {
    const std::size_t blank = find_armour(text);
    return parse_exact_form(text, blank, out) || parse_short_form(text, out) || scan_whole(text, blank, out);
}

bool shows_digits(double magnitude, std::uint64_t digits, std::size_t decimals) {
    // Ten digits and a zero are also what the next power of ten down gives, rounded up.
    if (digits <= least_11_digits || digits >= 10 * least_11_digits) return false;
    if (!is_fixed(magnitude) || decimals >= powers_of_five.size()) return false;
    return scaled_integer(magnitude, static_cast<int>(decimals)) == digits;
}

bool hex_to_bytes(std::u16string_view digits, unsigned char* out) {
    if (std::any_of(digits.begin(), digits.end(), [](char16_t unit) { return unit >= 0x80; })) return false;
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
        const int high = hex_digit_value(static_cast<char>(digits[at]));
        const int low = hex_digit_value(static_cast<char>(digits[at + 1]));
        *out++ = static_cast<unsigned char>(16 * high + low);
    }
    return true;
}

} // namespace pm
