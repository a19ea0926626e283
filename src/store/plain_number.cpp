#include "store/plain_number.h"

#include "store/armour.h"
#include "store/value_text.h"
#include <cmath>
#include <limits>

namespace pm {

namespace {

constexpr std::int64_t most_long = std::numeric_limits<std::int32_t>::max();
constexpr double powers_of_ten[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};

// Reads digits behind those of `value`, which is of no use beyond 19 of them; gives where they end.
const char* read_digits(const char* at, std::uint64_t& value) {
    for (;; ++at) {
        const unsigned digit = static_cast<unsigned char>(*at) - unsigned{'0'};
        if (digit > 9) return at;
        value = value * 10 + digit;
    }
}

} // namespace

PlainNumber::PlainNumber(const char* text) {
    negative = *text == '-';
    const char* const digits = text + (negative ? 1 : 0);
    leading_zero = *digits == '0';
    end = read_digits(digits, value);
    whole = static_cast<std::size_t>(end - digits);
    if (*end != '.') return;
    point = true;
    const char* const behind = end + 1;
    end = read_digits(behind, value);
    decimals = static_cast<std::size_t>(end - behind);
}

bool PlainNumber::as_long(std::int32_t& out) const {
    constexpr std::size_t most_digits = 10;
    if (point || whole < 1 || whole > most_digits) return false;
    const auto amount = static_cast<std::int64_t>(value);
    if (amount > most_long + (negative ? 1 : 0)) return false;
    out = static_cast<std::int32_t>(negative ? -amount : amount);
    return true;
}

bool PlainNumber::as_short_double(double& out) const {
    constexpr std::uint64_t missing_decimals[] = {10000, 1000, 100, 10, 1};
    constexpr std::size_t most_digits = 10;
    if (!point || whole + decimals > most_digits || decimals < 1 || decimals > 4) return false;
    if (decimals > 1 && value % 10 == 0) return false;
    const std::uint64_t scaled = value * missing_decimals[decimals];
    if (scaled > most_long) return false;
    const double number = static_cast<double>(static_cast<std::int64_t>(scaled)) / 10000.0;
    if (number * 10000.0 != static_cast<double>(scaled)) return false;
    out = negative ? -number : number;
    return true;
}

bool PlainNumber::as_exact_double(const char* armour, double& out) const {
    if (!point || whole < 1 || (leading_zero && whole > 1) || whole + decimals > 15) return false;
    if (armour_is_refused()) {
        // The quotient of two exact numbers is rounded once.
        const double shown = static_cast<double>(value) / powers_of_ten[decimals];
        out = negative ? -shown : shown;
        return true;
    }
    double exact = 0;
    if (!read_armoured_double(armour, exact) || (exact < 0) != negative) return false;
    if (!shows_digits(std::abs(exact), value, decimals)) return false;
    out = exact;
    return true;
}

} // namespace pm
