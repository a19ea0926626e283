#include "value.h"

#include "failure.h"
#include "text.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>
#include <pm/kit/error.h>

namespace pmtool {

namespace {

namespace kit = pm::kit;

constexpr std::size_t longest_string = 4096;

struct Type {
    PropType type;
    std::string_view description;
};
constexpr std::array types = {Type{PROP_LONG, "a whole number of 32 bits"}, Type{PROP_DOUBLE, "a number"},
                              Type{PROP_STRING, "a text"}, Type{PROP_BOOL, "true or false"},
                              Type{PROP_VOID, "an even number of hexadecimal digits"}};

template<class Number>
bool is_number(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size();
}

bool is_truth(std::string_view text) {
    const std::string word = lower_case(text);
    return word == "true" || word == "false";
}

// "\00FF\" as a PIA file has raw data.
bool is_raw(std::string_view text) {
    return text.size() > 2 && text.size() % 2 == 0 && text.front() == '\\' && text.back() == '\\' &&
           text.substr(1, text.size() - 2).find_first_not_of("0123456789abcdefABCDEF") ==
               std::string_view::npos;
}

PropType type_of_form(std::string_view text) {
    const bool may_be_number = text.find_first_of("0123456789") != std::string_view::npos;
    if (may_be_number && is_number<std::int32_t>(text)) return PROP_LONG;
    if (may_be_number && is_number<double>(text)) return PROP_DOUBLE;
    if (is_truth(text)) return PROP_BOOL;
    return is_raw(text) ? PROP_VOID : PROP_STRING;
}

} // namespace

std::string type_names() {
    std::array<std::string_view, types.size()> names;
    std::ranges::transform(types, names.begin(), [](const Type& type) { return kit::type_name(type.type); });
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string plain_text(const kit::Stored& value) {
    const std::optional<pm::Value> exact = kit::exact_value(value);
    if (exact && std::holds_alternative<std::string>(*exact)) {
        return shown(pm::to_utf16(std::get<std::string>(*exact)));
    }
    return shown_text(value);
}

std::string shown_text(const kit::Stored& value) {
    const std::string text = kit::value_text(value);
    const std::size_t blank = text.find(' ');
    return blank == std::string::npos ? std::string() : text.substr(blank + 1);
}

kit::Stored parse_value(std::string_view text, PropType type) {
    if (type == PROP_STRING) {
        if (pm::to_utf16(text).size() > longest_string) {
            throw Failure(fmt::format("a string holds at most {} characters", longest_string));
        }
        return kit::make_stored(std::string(text));
    }
    if (type == PROP_BOOL && is_truth(text)) return kit::make_stored(lower_case(text) == "true");
    if (type == PROP_VOID && is_raw(text)) text = text.substr(1, text.size() - 2);
    try {
        return kit::parse_value(text, type);
    } catch (const kit::Error&) {
        const auto* wanted = std::ranges::find(types, type, &Type::type);
        throw Failure(fmt::format("{} isn't {}, which type {} asks for", in_quotes(text), wanted->description,
                                  kit::type_name(type)));
    }
}

kit::Stored parse_value(std::string_view text) {
    return parse_value(text, type_of_form(text));
}

PropType parse_type(const std::string& name) {
    const std::optional<PropType> type = kit::type_named(name);
    if (type && std::ranges::find(types, *type, &Type::type) != types.end()) return *type;
    throw Mistake(fmt::format("{}: no such type; there are {}", name, type_names()));
}

} // namespace pmtool
