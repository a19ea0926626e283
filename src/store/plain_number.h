#pragma once

#include <cstddef>
#include <cstdint>

namespace pm {

// A number as its digits stand in bytes: a sign or none, digits, and a point with more digits or none.
struct PlainNumber {
    // Reads up to the first byte that doesn't belong; there is one.
    explicit PlainNumber(const char* text);

    // These give false, with `out` untouched, for what they leave to the general reading of the same bytes.
    //
    // A number without a point.
    [[nodiscard]] bool as_long(std::int32_t& out) const;
    // What format_double() writes of a number of at most four decimals.
    [[nodiscard]] bool as_short_double(double& out) const;
    // The same of any other: these are the eleven digits that are shown, `armour` the fourteen bytes with the
    // exact bits. Bits that would be shown with other digits count for nothing.
    [[nodiscard]] bool as_exact_double(const char* armour, double& out) const;

    std::uint64_t value = 0;  // of all digits, without the point
    std::size_t whole = 0;    // digits in front of the point
    std::size_t decimals = 0; // and behind it
    bool negative = false;
    bool leading_zero = false;
    bool point = false;
    const char* end;
};

} // namespace pm
