#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace pm {

// 1 to 31 units, none of / \ : ! and no zero. Unpaired surrogates are units like others.
bool compound_name_allowed(std::u16string_view name);

// What names are compared by: each unit in simple upper case, the same on every system.
std::u16string compound_name_key(std::u16string_view name);

// A name's text, or its key, where it takes no memory.
class CompoundName {
public:
    static constexpr std::size_t most_units = 31;

    CompoundName() = default;
    // `name` has at most `most_units`.
    static CompoundName key_of(std::u16string_view name);

    // Room for so many units, to be overwritten.
    char16_t* resize(std::size_t size) {
        m_size = size;
        return m_units.data();
    }
    operator std::u16string_view() const { return {m_units.data(), m_size}; }
    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }

private:
    std::array<char16_t, most_units> m_units; // only the first m_size are set
    std::size_t m_size = 0;
};

// The compound format's own order of names, by their keys: shorter ones first, those of one length by units.
struct CompoundNameOrder {
    bool operator()(std::u16string_view a, std::u16string_view b) const {
        return a.size() != b.size() ? a.size() < b.size() : units_before(a, b);
    }

private:
    // Of the same size. Four units at a time as long as they are the same.
    static bool units_before(std::u16string_view a, std::u16string_view b) {
        constexpr std::size_t step = 4;
        std::size_t at = 0;
        while (at + step <= a.size() &&
               std::memcmp(a.data() + at, b.data() + at, step * sizeof(char16_t)) == 0) {
            at += step;
        }
        while (at < a.size() && a[at] == b[at]) {
            ++at;
        }
        return at < a.size() && a[at] < b[at];
    }
};

} // namespace pm
