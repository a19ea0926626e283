#pragma once

#include <optional>
#include <pm/node.h>
#include <string>
#include <string_view>

namespace pm::kit::devices {

// A value as findings have it: numbers by the shortest text that reads back, those that are rounded to 32
// bits by the shortest of 32 bits, bytes in hexadecimal.
[[nodiscard]] std::string value_text(const Value& value);
[[nodiscard]] std::string number_text(double number);
[[nodiscard]] std::string size_text(double x, double y); // "600 x 300"

// Numbers and truth values; nothing for all else.
[[nodiscard]] std::optional<double> number_of(const Value& value);

// "a b " as a description names it: "a_b".
[[nodiscard]] std::string description_name(std::string_view text);

// Descriptions hold numbers rounded to 32 bits: compared as such, but two integers as they are.
enum class Precision { rounded, exact };
[[nodiscard]] Precision precision_of(const Value& left, const Value& right) noexcept;
[[nodiscard]] bool is_above(double number, double limit, Precision precision = Precision::rounded) noexcept;
[[nodiscard]] bool is_same(double left, double right, Precision precision = Precision::rounded) noexcept;

// Lengths in millimetres are the same, or above, beyond a twentieth.
[[nodiscard]] bool is_longer(double length, double limit) noexcept;
[[nodiscard]] bool is_same_length(double left, double right) noexcept;

// A double as an integer of 32 bits; nothing if it is none.
[[nodiscard]] std::optional<int> integer_of(std::optional<double> number) noexcept;

} // namespace pm::kit::devices
