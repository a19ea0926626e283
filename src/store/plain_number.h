#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace pm {

// A number as its digits stand in bytes: a sign or none, digits, and a point with more digits or none.
class PlainNumber {
public:
    // Reads up to the first byte that doesn't belong; there is one.
    explicit PlainNumber(const char* text) : m_negative(*text == '-') {
        const char* const digits = text + (m_negative ? 1 : 0);
        m_end = read_digits(digits);
        m_whole = static_cast<std::size_t>(m_end - digits);
        if (*m_end != '.') return;
        m_point = true;
        const char* const behind = m_end + 1;
        m_end = read_digits(behind);
        m_decimals = static_cast<std::size_t>(m_end - behind);
    }

    const char* end() const { return m_end; }

    // These give false, with `out` untouched, for what they leave to the general reading of the same bytes.
    //
    // A number without a point.
    [[nodiscard]] bool as_long(std::int32_t& out) const {
        constexpr std::size_t most_digits = 10;
        if (m_point || m_whole < 1 || m_whole > most_digits) return false;
        const auto amount = static_cast<std::int64_t>(m_value);
        if (amount > most_long + (m_negative ? 1 : 0)) return false;
        out = static_cast<std::int32_t>(m_negative ? -amount : amount);
        return true;
    }
    // What format_double() writes of a number of at most four decimals.
    [[nodiscard]] bool as_short_double(double& out) const {
        constexpr std::size_t most_digits = 10;
        if (!m_point || m_whole + m_decimals > most_digits || m_decimals < 1 || m_decimals > 4) return false;
        if (m_decimals > 1 && m_end[-1] == '0') return false;
        const std::int64_t scaled = static_cast<std::int64_t>(m_value) * missing_decimals[m_decimals];
        if (scaled > most_long) return false;
        const double number = static_cast<double>(scaled) / 10000.0;
        if (number * 10000.0 != static_cast<double>(scaled)) return false;
        out = m_negative ? -number : number;
        return true;
    }
    // The same of any other: these are the eleven digits that are shown, `armour` the fourteen bytes with the
    // exact bits. Bits that would be shown with other digits count for nothing.
    [[nodiscard]] bool as_exact_double(const char* armour, double& out) const;

private:
    static constexpr std::int64_t missing_decimals[] = {10000, 1000, 100, 10, 1};
    static constexpr std::int64_t most_long = std::numeric_limits<std::int32_t>::max();

    // Behind those of m_value, which is of no use beyond 19 of them; gives where they end.
    const char* read_digits(const char* at) {
        std::uint64_t value = m_value;
        for (;; ++at) {
            const unsigned digit = static_cast<unsigned char>(*at) - unsigned{'0'};
            if (digit > 9) break;
            value = value * 10 + digit;
        }
        m_value = value;
        return at;
    }

    std::uint64_t m_value = 0;  // of all digits, without the point
    std::size_t m_whole = 0;    // digits in front of the point
    std::size_t m_decimals = 0; // and behind it
    bool m_negative;
    bool m_point = false;
    const char* m_end;
};

} // namespace pm
