#include "store/plain_number.h"

#include "store/armour.h"
#include "store/value_text.h"
#include <cmath>
#include <iterator>

namespace pm {

bool PlainNumber::as_exact_double(const char* armour, double& out) const {
    constexpr double powers_of_ten[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};
    if (!m_point || m_whole < 1 || m_whole + m_decimals > std::size(powers_of_ten)) return false;
    const bool leading_zero = *(m_end - m_decimals - 1 - m_whole) == '0';
    if (leading_zero && m_whole > 1) return false;
    if (armour_is_refused()) {
        // The quotient of two exact numbers is rounded once.
        const double shown = static_cast<double>(m_value) / powers_of_ten[m_decimals];
        out = m_negative ? -shown : shown;
        return true;
    }
    double exact = 0;
    if (!read_armoured_double(armour, exact) || (exact < 0) != m_negative) return false;
    if (!shows_digits(std::abs(exact), m_value, m_decimals)) return false;
    out = exact;
    return true;
}

} // namespace pm
