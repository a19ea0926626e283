#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <pm/detail/terminated.h>
#include <pm/error_number.h>
#include <pm/text.h>
#include <pm/value.h>
#include <pm/view.h>
#include <string>
#include <string_view>

// Values as they are stored, read as the types of value.h.
namespace pm::detail {

// A number as it is stored; fewer bytes than it takes are its low ones.
template<class Number>
Number stored_number(const PM_Property_View& property) {
    if (property.data == nullptr) raise(PM_ERR_NO_VALUE, property.name);
    if (property.size > sizeof(Number)) raise(PM_ERR_VALUE_TOO_LARGE, property.name);
    Number number{};
    if (property.size == sizeof(Number)) {
        std::memcpy(&number, property.data, sizeof(Number));
    } else {
        std::memcpy(&number, property.data, std::min(property.size, sizeof(Number)));
    }
    return number;
}

// Calls `use` with the units of a stored text, without its terminator.
template<class Use>
auto with_stored_text(const PM_Property_View& property, Use use) {
    constexpr std::size_t unit = sizeof(char16_t);
    const auto without_end = [](std::u16string_view text) {
        if (!text.empty() && text.back() == u'\0') text.remove_suffix(1);
        return text;
    };
    if (property.size % unit == 0 && reinterpret_cast<std::uintptr_t>(property.data) % unit == 0) {
        return use(without_end({static_cast<const char16_t*>(property.data), property.size / unit}));
    }
    std::u16string text((property.size + unit - 1) / unit, u'\0');
    std::memcpy(text.data(), property.data, property.size);
    return use(without_end(text));
}

inline Bytes stored_bytes(const PM_Property_View& property) {
    const auto* const bytes = static_cast<const std::byte*>(property.data);
    return {bytes, bytes + property.size};
}

template<Readable T>
constexpr PropType type_for() {
    if constexpr (std::same_as<T, bool>) return PROP_BOOL;
    if constexpr (ReadableInteger<T>) return PROP_LONG;
    if constexpr (std::floating_point<T>) return PROP_DOUBLE;
    if constexpr (std::same_as<T, Bytes>) return PROP_VOID;
    return PROP_STRING;
}

template<Readable T>
T stored_as(const PM_Property_View& property) {
    if constexpr (std::same_as<T, bool>) {
        return stored_number<unsigned char>(property) != 0;
    } else if constexpr (ReadableInteger<T>) {
        return stored_number<std::int32_t>(property);
    } else if constexpr (std::floating_point<T>) {
        return static_cast<T>(stored_number<double>(property));
    } else if constexpr (std::same_as<T, std::string>) {
        return with_stored_text(property, [](std::u16string_view text) { return to_utf8(text); });
    } else if constexpr (std::same_as<T, std::u16string>) {
        return with_stored_text(property, [](std::u16string_view text) { return std::u16string(text); });
    } else {
        return stored_bytes(property);
    }
}

inline Value stored_value(const PM_Property_View& property) {
    switch (property.type) {
    case PROP_LONG:
        return stored_as<std::int32_t>(property);
    case PROP_DOUBLE:
        return stored_as<double>(property);
    case PROP_STRING:
        return stored_as<std::string>(property);
    case PROP_BOOL:
        return stored_as<bool>(property);
    case PROP_VOID:
        return stored_as<Bytes>(property);
    default:
        return {};
    }
}

} // namespace pm::detail
