#pragma once

#include <cstddef>
#include <cstdint>
#include <pm/object.h>
#include <span>
#include <string_view>

namespace pm {

// A key of the plotter configuration files: full name, type and default.
struct Pc2Key {
    std::u16string_view key;   // section, "\\", name
    PropType type = PROP_NONE; // PROP_NONE: has no value
    std::int32_t initial = 0;  // default of a PROP_LONG or PROP_DOUBLE
    std::int32_t first = 0;
    std::int32_t last = 0;
    bool hexadecimal = false; // written in hexadecimal digits without a prefix

    // Whether it stands for all keys that begin with it; those with the numbers `first` to `last` behind
    // have defaults.
    constexpr bool indexed() const { return last >= 1; }
    constexpr std::u16string_view section() const { return key.substr(0, key.find(u'\\')); }
    constexpr std::u16string_view name() const { return key.substr(key.find(u'\\') + 1); }
};

// Keys of at least this length match over their first units only.
inline constexpr std::size_t pc2_key_compared = 50;

// All keys in their order, which is that of the defaults in the tree.
std::span<const Pc2Key> pc2_keys();

// The first key that a full name of a file, in any case, stands for; null if there is none or if it has no
// value.
const Pc2Key* find_pc2_key(std::u16string_view full_name);

} // namespace pm
