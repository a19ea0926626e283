#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <pm/object.h>
#include <string>
#include <variant>
#include <vector>

namespace pm {

// Raw bytes, the value of a PROP_VOID property; may be empty.
using Bytes = std::vector<std::byte>;

// A value of any type, as the program's own copy. What a property holds comes out to the bit: doubles aren't
// rounded, a negative zero and a NaN stay themselves, bytes are bytes. std::visit and operator== take it.
//
// index() is its PropType: nothing, a 32-bit integer, a double, a text in UTF-8, a truth value, bytes. A text
// is without its terminator. A PROP_STRING that was set from narrow bytes can't be told from a wide one: it
// shows as the units that the bytes make in pairs, an odd last one with a high byte of 0. Property::bytes()
// has what is stored, PM_Object::GetProperty() to `unsigned char*` the narrow text.
using Value = std::variant<std::monostate, std::int32_t, double, std::string, bool, Bytes>;

// The type that a property has after this value was set; PROP_NONE for a value that holds nothing, which no
// property can be set to (number 59).
[[nodiscard]] inline PropType type_of(const Value& value) noexcept {
    return static_cast<PropType>(value.index());
}

// All integers are stored as signed ones of 32 bits.
template<class T>
concept ReadableInteger = std::signed_integral<T> && sizeof(T) >= sizeof(std::int32_t);

// What a value can be read as by get(), at() and as(): an integer of 32 bits or more, float, double, bool,
// std::string (UTF-8), std::u16string, Bytes, Value. A float is the stored double, rounded.
template<class T>
concept Readable = ReadableInteger<T> || std::same_as<T, float> || std::same_as<T, double> ||
    std::same_as<T, bool> || std::same_as<T, std::string> || std::same_as<T, std::u16string> ||
    std::same_as<T, Bytes> || std::same_as<T, Value>;

} // namespace pm
