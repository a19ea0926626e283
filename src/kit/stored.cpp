#include "text_reader.h"
#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <limits>
#include <pm/build.h>
#include <pm/detail/utf.h>
#include <pm/kit/stored.h>
#include <utility>

namespace pm::kit {

namespace {

constexpr std::array<std::string_view, 6> type_names{"none", "long", "double", "string", "bool", "raw"};

template<class T>
Bytes bytes_of(const T* data, std::size_t count) {
    Bytes bytes(count * sizeof(T));
    if (!bytes.empty()) std::memcpy(bytes.data(), data, bytes.size());
    return bytes;
}

struct BytesOf {
    std::optional<Bytes> operator()(std::monostate) const { return std::nullopt; }
    std::optional<Bytes> operator()(std::int32_t number) const { return bytes_of(&number, 1); }
    std::optional<Bytes> operator()(double number) const { return bytes_of(&number, 1); }
    std::optional<Bytes> operator()(bool yes) const { return Bytes{static_cast<std::byte>(yes)}; }
    std::optional<Bytes> operator()(const Bytes& bytes) const { return bytes; }
    std::optional<Bytes> operator()(const std::string& text) const {
        const std::u16string wide = to_utf16(text);
        return bytes_of(wide.c_str(), wide.size() + 1);
    }
};

template<class Number>
std::optional<Number> number_in(const Bytes& bytes) {
    if (bytes.size() != sizeof(Number)) return std::nullopt;
    Number number{};
    std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

bool is_told(double number) {
    const double usual = std::numeric_limits<double>::quiet_NaN();
    return !std::isnan(number) || std::bit_cast<std::uint64_t>(number) == std::bit_cast<std::uint64_t>(usual);
}

// The text of wide bytes that end in a terminator.
std::optional<Value> text_in(const Bytes& bytes) {
    if (bytes.empty() || bytes.size() % sizeof(char16_t) != 0) return std::nullopt;
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes.data(), bytes.size());
    if (units.back() != u'\0') return std::nullopt;
    units.pop_back();
    return Value(to_utf8(units));
}

std::optional<Value> value_in(PropType type, const Bytes& bytes) {
    switch (type) {
    case PROP_LONG:
        if (const auto number = number_in<std::int32_t>(bytes)) return Value(*number);
        return std::nullopt;
    case PROP_DOUBLE:
        if (const auto number = number_in<double>(bytes); number && is_told(*number)) return Value(*number);
        return std::nullopt;
    case PROP_STRING:
        return text_in(bytes);
    case PROP_BOOL:
        if (bytes.size() != 1 || std::to_integer<unsigned>(bytes.front()) > 1) return std::nullopt;
        return Value(bytes.front() == std::byte{1});
    case PROP_VOID:
        return Value(bytes);
    default:
        return std::nullopt;
    }
}

struct ValueText {
    std::string operator()(std::monostate) const { return {}; }
    std::string operator()(std::int32_t number) const { return fmt::format("{}", number); }
    std::string operator()(double number) const { return double_text(number); }
    std::string operator()(bool yes) const { return yes ? "true" : "false"; }
    std::string operator()(const std::string& text) const { return quoted_text(text); }
    std::string operator()(const Bytes& bytes) const { return hex_text(bytes); }
};

template<class Number>
std::optional<Value> parse_number(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return Value(number);
}

std::optional<Value> parse_long(std::string_view text) {
    return parse_number<std::int32_t>(text);
}

// What from_chars takes for a NaN in words other than "nan" would be another one to the bit.
std::optional<Value> parse_double(std::string_view text) {
    if (text == "nan") return Value(std::numeric_limits<double>::quiet_NaN());
    if (text.find_first_of("nN") != std::string_view::npos && text != "inf" && text != "-inf") return {};
    return parse_number<double>(text);
}

std::optional<Value> parse_bool(std::string_view text) {
    const auto is = [text](std::string_view word) {
        return std::ranges::equal(text, word, {}, [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    };
    if (is("true")) return Value(true);
    return is("false") ? std::optional(Value(false)) : std::nullopt;
}

std::optional<Value> parse_raw(std::string_view text) {
    std::optional<Bytes> bytes = parse_hex(text);
    return bytes ? std::optional(Value(std::move(*bytes))) : std::nullopt;
}

// A value that is one word.
struct WordType {
    PropType type;
    std::string_view wanted;
    std::optional<Value> (*parse)(std::string_view);
};

constexpr WordType word_types[] = {
    {PROP_LONG, "a whole number from -2147483648 to 2147483647", parse_long},
    {PROP_DOUBLE, "a number", parse_double},
    {PROP_BOOL, "true or false", parse_bool},
    {PROP_VOID, "an even number of hexadecimal digits", parse_raw},
};

Value parse_word(TextReader& reader, std::string_view word, std::size_t position, PropType type) {
    const auto* const row = std::ranges::find(word_types, type, &WordType::type);
    if (const std::optional<Value> value = row->parse(word)) return *value;
    reader.fail_at(position, fmt::format("{} isn't {}, which {} asks for", quoted_text(word), row->wanted,
                                         type_name(type)));
}

PropType take_type(TextReader& reader) {
    reader.skip_blanks();
    const std::size_t position = reader.position();
    const std::string_view word = reader.take_word();
    if (const std::optional<PropType> type = type_named(word)) return *type;
    reader.fail_at(position, fmt::format("{}: no such type; there are long, double, string, bool, raw, none",
                                         quoted_text(word)));
}

// The forms that any type has.
std::optional<Stored> parse_stored_form(TextReader& reader, std::string_view word, PropType type) {
    if (word == "none") return Stored{type, true, std::nullopt};
    if (word != "bytes") return std::nullopt;
    reader.skip_blanks();
    const std::size_t position = reader.position();
    if (std::optional<Bytes> bytes = parse_hex(reader.take_word())) {
        return Stored{type, true, std::move(bytes)};
    }
    reader.fail_at(position, "bytes asks for an even number of hexadecimal digits");
}

bool is_surrogate(char32_t code) {
    return code >= 0xD800 && code <= 0xDFFF;
}

// What nobody sees and a terminal obeys: control characters of both sets, the ends of lines and paragraphs,
// and what turns the direction of writing.
bool is_unseen(char32_t code) {
    if (code >= 0x20 && code < 0x7F) return false;
    constexpr std::pair<char32_t, char32_t> ranges[] = {{0, 0x1F},        {0x7F, 0x9F},     {0x061C, 0x061C},
                                                        {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069}};
    return std::ranges::any_of(
        ranges, [&](const auto& range) { return code >= range.first && code <= range.second; });
}

std::string byte_text(char32_t byte) {
    return fmt::format("\\x{:02X}", static_cast<unsigned>(byte));
}

} // namespace

Stored stored(const Property& property) {
    const PM_Property_View view = property.view();
    Stored stored{view.type, view.strict, std::nullopt};
    if (view.data != nullptr) stored.bytes = bytes_of(static_cast<const std::byte*>(view.data), view.size);
    return stored;
}

Stored make_stored(const Value& value, bool strict) {
    return {type_of(value), strict, std::visit(BytesOf(), value)};
}

std::optional<Value> exact_value(const Stored& stored) {
    if (!stored.bytes) return stored.type == PROP_NONE ? std::optional(Value()) : std::nullopt;
    return value_in(stored.type, *stored.bytes);
}

std::string_view type_name(PropType type) noexcept {
    const auto at = static_cast<std::size_t>(type);
    return at < type_names.size() ? type_names[at] : "unknown";
}

std::optional<PropType> type_named(std::string_view name) noexcept {
    const auto found = std::ranges::find(type_names, name);
    if (found == type_names.end()) return std::nullopt;
    return static_cast<PropType>(found - type_names.begin());
}

std::string value_text(const Stored& stored) {
    const std::string_view type = type_name(stored.type);
    if (!stored.bytes) return stored.type == PROP_NONE ? "none" : fmt::format("{} none", type);
    const std::optional<Value> value = exact_value(stored);
    if (!value) return fmt::format("{} bytes {}", type, hex_text(*stored.bytes));
    std::string text = fmt::format("{} {}", type, std::visit(ValueText(), *value));
    if (text.back() == ' ') text.pop_back();
    return text;
}

Stored parse_value(std::string_view text) {
    TextReader reader(text);
    reader.require_utf8();
    const PropType type = take_type(reader);
    reader.skip_blanks();
    if (type == PROP_STRING && reader.peek() == '"') {
        Stored stored = make_stored(Value(reader.take_quoted()));
        reader.require_end();
        return stored;
    }
    const std::size_t position = reader.position();
    const std::string_view word = reader.take_word();
    std::optional<Stored> stored =
        type == PROP_NONE && word.empty() ? Stored{} : parse_stored_form(reader, word, type);
    if (!stored && type == PROP_STRING) reader.fail_at(position, "a text stands in double quotes");
    if (!stored && type == PROP_NONE) reader.fail_at(position, "none has no value");
    if (!stored) stored = make_stored(parse_word(reader, word, position, type));
    reader.require_end();
    return *stored;
}

Stored parse_value(std::string_view text, PropType type) {
    TextReader reader(text);
    reader.require_utf8();
    if (type == PROP_STRING) return make_stored(Value(std::string(text)));
    if (type == PROP_NONE) reader.fail("a value of no type can't be told");
    return make_stored(parse_word(reader, text, 0, type));
}

std::string printable_text(std::string_view text) {
    std::u16string units = to_utf16(text);
    const bool is_utf8 = to_utf8(units) == text;
    if (!is_utf8) units = file_name_to_utf16(text); // which has units for bytes that are none
    std::string out;
    for (std::size_t at = 0; at < units.size();) {
        const char32_t code = detail::next_code_point(units, at);
        if (is_surrogate(code)) {
            out += is_utf8 ? "\uFFFD" : byte_text(code & 0xFF);
        } else if (is_unseen(code)) {
            out += code <= 0xFF ? byte_text(code) : fmt::format("\\u{:04X}", static_cast<unsigned>(code));
        } else {
            detail::append_utf8(code, out);
        }
    }
    return out;
}

std::string quoted_text(std::string_view text) {
    constexpr std::string_view short_forms = "btnvfr"; // of 8 to 13
    const std::u16string units = to_utf16(text);
    std::string out = "\"";
    for (std::size_t at = 0; at < units.size();) {
        const char32_t code = detail::next_code_point(units, at);
        if (code == U'"' || code == U'\\') {
            (out += '\\') += static_cast<char>(code);
        } else if (code >= 8 && code <= 13 && code != 11) {
            (out += '\\') += short_forms[code - 8];
        } else if (is_unseen(code) || is_surrogate(code)) {
            out += fmt::format("\\u{:04x}", static_cast<unsigned>(code));
        } else {
            detail::append_utf8(code, out);
        }
    }
    return out += '"';
}

} // namespace pm::kit
