#pragma once

#include <string>
#include <string_view>

namespace pm {

// 1 to 31 units, none of / \ : ! and no zero. Unpaired surrogates are units like others.
bool compound_name_allowed(std::u16string_view name);

// What names are compared by: each unit in simple upper case, the same on every system.
std::u16string compound_name_key(std::u16string_view name);

// The compound format's own order of names, by their keys: shorter ones first, those of one length by units.
struct CompoundNameOrder {
    bool operator()(std::u16string_view a, std::u16string_view b) const {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    }
};

} // namespace pm
