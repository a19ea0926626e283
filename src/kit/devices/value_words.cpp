#include "devices/value_words.h"
#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace pm::kit::devices {

namespace {

constexpr double length_tolerance = 0.05;

std::string hex_text(const Bytes& bytes) {
    std::string text;
    for (const std::byte byte : bytes) {
        text += fmt::format("{:02X}", static_cast<unsigned>(byte));
    }
    return text;
}

bool is_rounded(double number) noexcept {
    return std::abs(number) <= double{std::numeric_limits<float>::max()} &&
           static_cast<double>(static_cast<float>(number)) == number;
}

} // namespace

std::string number_text(double number) {
    return is_rounded(number) ? fmt::format("{}", static_cast<float>(number)) : fmt::format("{}", number);
}

std::string size_text(double x, double y) {
    return number_text(x) + " x " + number_text(y);
}

std::string value_text(const Value& value) {
    switch (type_of(value)) {
    case PROP_LONG:
        return std::to_string(std::get<std::int32_t>(value));
    case PROP_DOUBLE:
        return number_text(std::get<double>(value));
    case PROP_STRING:
        return std::get<std::string>(value);
    case PROP_BOOL:
        return std::get<bool>(value) ? "true" : "false";
    case PROP_VOID:
        return hex_text(std::get<Bytes>(value));
    case PROP_NONE:
        break;
    }
    return {};
}

std::optional<double> number_of(const Value& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* truth = std::get_if<bool>(&value)) return *truth ? 1.0 : 0.0;
    return std::nullopt;
}

std::string description_name(std::string_view text) {
    std::string name(text.substr(0, text.find_last_not_of(' ') + 1));
    std::ranges::replace(name, ' ', '_');
    return name;
}

Precision precision_of(const Value& left, const Value& right) noexcept {
    return type_of(left) == PROP_LONG && type_of(right) == PROP_LONG ? Precision::exact : Precision::rounded;
}

bool is_above(double number, double limit, Precision precision) noexcept {
    return number > limit && !is_same(number, limit, precision);
}

bool is_same(double left, double right, Precision precision) noexcept {
    constexpr double most = std::numeric_limits<float>::max();
    const bool is_rounded =
        precision == Precision::rounded && std::abs(left) <= most && std::abs(right) <= most;
    return left == right || (is_rounded && static_cast<float>(left) == static_cast<float>(right));
}

bool is_longer(double length, double limit) noexcept {
    return length > limit + length_tolerance;
}

bool is_same_length(double left, double right) noexcept {
    return left == right || std::abs(left - right) <= length_tolerance;
}

std::optional<int> integer_of(std::optional<double> number) noexcept {
    if (!number || !(std::abs(*number) <= 2147483647.0) || std::trunc(*number) != *number) {
        return std::nullopt;
    }
    return static_cast<int>(*number);
}

} // namespace pm::kit::devices
