#pragma once

#include "check/rules.h"
#include "check/source_text.h"
#include <functional>
#include <optional>
#include <pm/object.h>
#include <string>
#include <string_view>

namespace pm::kit {

// What there is to say of a value, and where in the line.
struct ValueRemark {
    Rule rule;
    const char* at;
    std::string message;
    std::uint32_t number = 0;
};

// A value of a property line of a PIA file as the library reads it.
struct PiaValue {
    PropType type = PROP_NONE; // PROP_NONE: not stored
    bool ends_load = false;
    std::vector<ValueRemark> remarks;
};

// `value` is a part of the source's text(), behind all blanks and "=".
[[nodiscard]] PiaValue read_pia_value(std::string_view value, const SourceText& source);

// "a whole number", "a text"...
[[nodiscard]] std::string_view type_words(PropType type) noexcept;

} // namespace pm::kit
