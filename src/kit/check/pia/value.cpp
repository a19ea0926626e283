#include "check/pia/value.h"

#include "check/numbers.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/error_number.h>

namespace pm::kit {

namespace {

constexpr std::size_t longest_text = 4096; // units

// One value on its way: what is said of it.
class Reading {
public:
    Reading(std::string_view value, const SourceText& source) : m_value(value), m_source(source) {}

    PiaValue read();

private:
    void read_text();
    void read_boolean();
    void read_long();
    void read_double();
    void read_raw();
    void check_pairs(std::string_view digits);
    [[nodiscard]] PropType form() const;

    std::string shown() const { return m_source.quoted(m_value); }
    void remark(Rule rule, const char* at, std::string message, std::uint32_t number = 0) {
        m_result.remarks.push_back({rule, at, std::move(message), number});
    }
    void refuse(std::string message) {
        m_result.type = PROP_NONE;
        remark(Rule::bad_line, m_value.data(), std::move(message), PM_ERR_BAD_LINE);
    }

    std::string_view m_value;
    const SourceText& m_source;
    PiaValue m_result;
};

PropType Reading::form() const {
    const char first = m_value.front();
    if (first == '\\') return m_value.rfind('\\') > 0 ? PROP_VOID : PROP_NONE;
    if (first == '"') return PROP_STRING;
    if (is_letter(first)) {
        const bool known = starts_ignoring_case(m_value, "true") || starts_ignoring_case(m_value, "false");
        return known ? PROP_BOOL : PROP_NONE;
    }
    const std::string_view number = m_value.substr(first == '-' ? 1 : 0);
    const auto stop =
        std::find_if_not(number.begin(), number.end(), [](char c) { return is_digit(c) || is_blank(c); });
    if (stop == number.end()) return PROP_LONG;
    return *stop == '.' ? PROP_DOUBLE : PROP_NONE;
}

PiaValue Reading::read() {
    m_result.type = form();
    switch (m_result.type) {
    case PROP_STRING:
        read_text();
        break;
    case PROP_BOOL:
        read_boolean();
        break;
    case PROP_LONG:
        read_long();
        break;
    case PROP_DOUBLE:
        read_double();
        break;
    case PROP_VOID:
        read_raw();
        break;
    default:
        remark(Rule::unknown_type, m_value.data(), fmt::format("{} has the form of no type.", shown()),
               PM_ERR_UNKNOWN_VALUE);
    }
    return std::move(m_result);
}

void Reading::read_text() {
    const std::string_view text = m_value.substr(1);
    if (m_source.is_longer(text, longest_text)) {
        remark(Rule::cut_text, text.data(),
               fmt::format("The text has {} characters, and {} are kept.", m_source.units(text),
                           longest_text + 1));
    }
    if (text.ends_with('\r')) {
        remark(Rule::carriage_return, &text.back(),
               "The carriage return at the end of the line belongs to the text.");
    }
}

void Reading::read_boolean() {
    if (equals_ignoring_case(m_value, "true") || equals_ignoring_case(m_value, "false")) return;
    remark(Rule::odd_boolean, m_value.data(),
           fmt::format("{} reads as {}.", shown(), lower(m_value.front()) == 't' ? "TRUE" : "FALSE"));
}

void Reading::read_long() {
    const IntegerText number = read_integer(m_value, Signs::minus);
    const std::string_view rest = m_value.substr(number.length);
    if (number.length == 0) {
        remark(Rule::partial_number, m_value.data(),
               fmt::format("{} has no number and reads as 0.", shown()));
    } else if (!skip(rest, " \t").empty()) {
        remark(Rule::partial_number, skip(rest, " \t").data(),
               fmt::format("{} reads as {}.", shown(), number.value));
    } else if (number.held) {
        remark(Rule::lossy_value, m_value.data(),
               fmt::format("{} is beyond 32 bits and reads as {}.", shown(), number.value));
    }
}

void Reading::read_double() {
    const std::optional<ExactForm> exact = exact_form(m_value);
    if (exact && exact->bits_count) return;
    const std::string_view text = exact ? exact->number : m_value;
    const DecimalText number = read_decimal(text, Signs::minus);
    if (number.length == 0 || number.length != text.size()) {
        return refuse(fmt::format("{} is no number.", shown()));
    }
    if (exact) {
        remark(Rule::stale_bits, text.data() + text.size() + 1,
               fmt::format("The bits aren't those of {}, which counts.", m_source.utf8(text)));
    }
    const std::optional<std::string> loss = decimal_loss(text, number.value);
    if (loss) remark(Rule::lossy_value, m_value.data(), fmt::format("{} {}.", m_source.quoted(text), *loss));
}

void Reading::read_raw() {
    const std::string_view start = skip(m_value, " \\");
    const std::string_view digits = start.substr(0, start.find('\\'));
    const std::size_t units = m_source.units(digits);
    if (digits.empty()) return refuse("The raw data has no digits.");
    if (units % 2 != 0) return refuse(fmt::format("The raw data has an odd number of digits, {}.", units));
    if (digits.size() % 2 != 0) {
        m_result.ends_load = true;
        remark(Rule::bad_line, digits.data(),
               "The raw data has characters that are of an odd number of bytes.", PM_ERR_BAD_RAW_DATA);
        return;
    }
    check_pairs(digits);
    const std::string_view behind = start.substr(digits.size());
    if (!skip(behind, "\\ \t").empty()) {
        remark(Rule::ignored_text, skip(behind, "\\ \t").data(),
               fmt::format("{} behind the raw data isn't read.", m_source.quoted(skip(behind, "\\ \t"))));
    }
}

// Two digits a byte, in capitals but for the first one; anything else counts as something.
void Reading::check_pairs(std::string_view digits) {
    const auto is_capital = [](char c) { return is_digit(c) || (c >= 'A' && c <= 'F'); };
    for (std::size_t at = 0; at + 1 < digits.size(); at += 2) {
        const bool first = is_hex_digit(digits[at]);
        if (first && is_capital(digits[at + 1])) continue;
        remark(Rule::lossy_value, &digits[at + (first ? 1 : 0)],
               fmt::format("{} is no byte of two capital hexadecimal digits, and reads as another one.",
                           m_source.quoted(digits.substr(at, 2))));
        return;
    }
}

} // namespace

PiaValue read_pia_value(std::string_view value, const SourceText& source) {
    return Reading(value, source).read();
}

std::string_view type_words(PropType type) noexcept {
    constexpr std::string_view words[] = {"nothing", "a whole number", "a number",
                                          "a text",  "a truth value",  "raw data"};
    return words[static_cast<std::size_t>(type)];
}

} // namespace pm::kit
