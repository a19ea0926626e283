#include "value.h"

#include "failure.h"
#include "text.h"
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <optional>

namespace pmtool {

namespace {

constexpr std::size_t longest_string = 4096;
constexpr std::string_view digits = "0123456789ABCDEF";

template<class Number>
std::optional<Number> parse_number(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

std::optional<Value> parse_long(std::string_view text) {
    const auto number = parse_number<std::int32_t>(text);
    return number ? std::optional<Value>(*number) : std::nullopt;
}

std::optional<Value> parse_double(std::string_view text) {
    const auto number = parse_number<double>(text);
    return number ? std::optional<Value>(*number) : std::nullopt;
}

std::optional<Value> parse_string(std::string_view text) {
    if (pm::to_utf16(text).size() > longest_string) {
        throw Failure(fmt::format("a string holds at most {} characters", longest_string));
    }
    return Value(std::string(text));
}

std::optional<Value> parse_bool(std::string_view text) {
    const std::string word = lower_case(text);
    if (word != "true" && word != "false") return std::nullopt;
    return Value(word == "true");
}

int digit_value(char c) {
    const char upper = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    return static_cast<int>(digits.find(upper));
}

std::optional<Value> parse_raw(std::string_view text) {
    if (text.size() > 2 && text.front() == '\\' && text.back() == '\\') {
        text = text.substr(1, text.size() - 2);
    }
    if (text.empty() || text.size() % 2 != 0) return std::nullopt;
    pm::Bytes raw;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        const int high = digit_value(text[i]);
        const int low = digit_value(text[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        raw.push_back(static_cast<std::byte>(high << 4 | low));
    }
    return Value(std::move(raw));
}

struct Type {
    std::string_view name;
    std::string_view description;
    std::optional<Value> (*parse)(std::string_view);
};

// In the order of PropType, which is that of the alternatives of Value, from PROP_LONG on.
constexpr Type types[] = {
    {"long", "a whole number of 32 bits", parse_long},
    {"double", "a number", parse_double},
    {"string", "a text", parse_string},
    {"bool", "true or false", parse_bool},
    {"raw", "an even number of hexadecimal digits", parse_raw},
};

const Type& type_named(std::string_view name) {
    for (const Type& type : types) {
        if (type.name == name) return type;
    }
    throw Failure(fmt::format("{}: no such type; there are {}", name, type_names()));
}

std::string double_text(double number) {
    std::string text = fmt::format("{}", number);
    if (std::isfinite(number) && text.find_first_of(".e") == std::string::npos) text += ".0";
    return text;
}

std::string hex_text(const pm::Bytes& raw) {
    std::string text;
    for (const std::byte byte : raw) {
        text += digits[std::to_integer<unsigned>(byte) >> 4];
        text += digits[std::to_integer<unsigned>(byte) & 15];
    }
    return text;
}

struct PlainText {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(std::int32_t number) const { return fmt::format("{}", number); }
    std::string operator()(double number) const { return double_text(number); }
    std::string operator()(const std::string& text) const { return shown(pm::to_utf16(text)); }
    std::string operator()(bool yes) const { return yes ? "true" : "false"; }
    std::string operator()(const pm::Bytes& raw) const { return hex_text(raw); }
};

} // namespace

std::string_view type_name(const Value& value) {
    return value.index() == PROP_NONE ? "none" : types[value.index() - PROP_LONG].name;
}

std::string type_names() {
    std::array<std::string_view, std::size(types)> names;
    for (std::size_t i = 0; i < names.size(); ++i) {
        names[i] = types[i].name;
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string plain_text(const Value& value) {
    return std::visit(PlainText(), value);
}

std::string shown_text(const Value& value) {
    return std::holds_alternative<std::string>(value) ? in_quotes(plain_text(value)) : plain_text(value);
}

Value parse_value(std::string_view text, std::string_view type) {
    const Type& wanted = type_named(type);
    if (std::optional<Value> value = wanted.parse(text)) return *value;
    throw Failure(
        fmt::format("{} isn't {}, which type {} asks for", in_quotes(text), wanted.description, wanted.name));
}

Value parse_value(std::string_view text) {
    const bool may_be_number = text.find_first_of("0123456789") != std::string_view::npos;
    const bool may_be_raw = text.size() > 2 && text.front() == '\\' && text.back() == '\\';
    std::optional<Value> value;
    if (may_be_number) value = parse_long(text);
    if (!value && may_be_number) value = parse_double(text);
    if (!value) value = parse_bool(text);
    if (!value && may_be_raw) value = parse_raw(text);
    if (!value) value = parse_string(text);
    return *value;
}

void set_property(PM_Object& object, const std::u16string& path, const Value& value) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
        object.SetProperty(path.c_str(), *number);
    } else if (const auto* real = std::get_if<double>(&value)) {
        object.SetProperty(path.c_str(), *real);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        object.SetProperty(path.c_str(), pm::to_utf16(*text).c_str());
    } else if (const auto* yes = std::get_if<bool>(&value)) {
        object.SetProperty(path.c_str(), *yes);
    } else if (const auto* raw = std::get_if<pm::Bytes>(&value)) {
        object.setVoidProperty(path.c_str(), raw->data(), static_cast<unsigned>(raw->size()));
    }
}

} // namespace pmtool
