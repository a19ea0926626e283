#include "filers/plain_lines.h"

#include "base/widen.h"
#include "store/armour.h"
#include "store/plain_number.h"
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace pm {

namespace {

constexpr std::size_t word_size = sizeof(std::uint64_t);
constexpr std::uint64_t ones = 0x0101010101010101;
constexpr std::uint64_t tops = 0x8080808080808080;

constexpr std::size_t longest_name = 64;
constexpr std::size_t longest_text = 256;

std::uint64_t word_at(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    return word;
}

// The place of the first byte of a word that `marks` has the top bit of.
std::size_t first_marked(std::uint64_t marks) {
    return static_cast<std::size_t>(std::countr_zero(marks)) / 8;
}

const char* skip_blanks(const char* at) {
    for (;;) {
        const std::uint64_t others = word_at(at) ^ ones * ' ';
        if (others != 0) return at + std::countr_zero(others) / 8;
        at += word_size;
    }
}

// Bytes that a name of a node or of a property can hold where it is one component as it stands.
constexpr std::array<bool, 256> name_bytes = [] {
    std::array<bool, 256> bytes{};
    for (std::size_t byte = '!'; byte < 0x7F; ++byte) {
        bytes[byte] = std::string_view("\"'*;=\\{}").find(static_cast<char>(byte)) == std::string_view::npos;
    }
    return bytes;
}();

bool is_name_byte(char byte) {
    return name_bytes[static_cast<unsigned char>(byte)];
}

// Widens up to the first byte that is beyond ASCII, a line feed or below it; gives how many, or `most` if
// there are more, which is a multiple of a word.
std::size_t widen_text(const char* from, char16_t* to, std::size_t most) {
    constexpr std::uint64_t first_kept = '\n' + 1;
    for (std::size_t at = 0; at < most; at += word_size) {
        const std::uint64_t word = word_at(from + at);
        widen_eight(from + at, to + at);
        const std::uint64_t stops = (word | (word - ones * first_kept)) & tops;
        if (stops != 0) return at + first_marked(stops);
    }
    return most;
}

using Half = std::uint32_t; // four bytes

Half half_at(const char* bytes) {
    Half half = 0;
    std::memcpy(&half, bytes, sizeof half);
    return half;
}

// Whether two runs of four bytes are of ASCII, and two runs of as many units.
bool same_halves(const char* first, const char* last, const char16_t* first_units,
                 const char16_t* last_units) {
    const auto bytes = std::bit_cast<std::array<char, word_size>>(std::array{half_at(first), half_at(last)});
    std::array<char16_t, word_size> wide;
    widen_eight(bytes.data(), wide.data());
    std::array<std::uint64_t, 2> units;
    std::memcpy(&units[0], first_units, sizeof units[0]);
    std::memcpy(&units[1], last_units, sizeof units[1]);
    const auto told = std::bit_cast<std::array<std::uint64_t, 2>>(wide);
    const std::uint64_t others = (told[0] ^ units[0]) | (told[1] ^ units[1]);
    return (others | (std::bit_cast<std::uint64_t>(bytes) & tops)) == 0;
}

// Whether there are the bytes of ASCII that the name has.
bool starts_with(const char* bytes, std::u16string_view name) {
    constexpr std::size_t half = sizeof(Half);
    if (name.size() < half) {
        return std::equal(name.begin(), name.end(), bytes, [](char16_t unit, char byte) {
            return unit < 0x80 && static_cast<char>(unit) == byte;
        });
    }
    const char16_t* const units = name.data();
    const std::size_t last = name.size() - half; // the last half, which may overlap
    std::size_t at = 0;
    for (; at + half < last; at += word_size) {
        if (!same_halves(bytes + at, bytes + at + half, units + at, units + at + half)) return false;
    }
    at = std::min(at, last);
    return same_halves(bytes + at, bytes + last, units + at, units + last);
}

// A name that is widened.
class WideName {
public:
    // Of at most longest_name bytes.
    WideName(const char* bytes, std::size_t size) : m_size(size) {
        for (std::size_t at = 0; at < size; at += word_size) {
            widen_eight(bytes + at, m_units + at);
        }
    }
    std::u16string_view view() const { return {m_units, m_size}; }

private:
    std::size_t m_size;
    char16_t m_units[longest_name];
};

class Loader {
public:
    Loader(TreeCursor& place, std::string_view text) : m_place(place), m_end(text.data() + text.size()) {}

    // These give where the line ends, or null with nothing done.
    const char* load_line(const char* line) {
        const std::u16string_view name = m_place.expected_name();
        const bool can_be = !name.empty() && name.size() < static_cast<std::size_t>(m_end - line);
        if (can_be && line[name.size()] == '=' && starts_with(line, name)) {
            return load_value({name, true}, line + name.size() + 1);
        }
        return load_unexpected(line);
    }

private:
    const char* load_unexpected(const char* line) {
        const char* at = line;
        while (is_name_byte(*at)) {
            ++at;
        }
        const auto length = static_cast<std::size_t>(at - line);
        if (*at == '}' && length == 0) return at[1] == '\n' && m_place.pop() ? at + 2 : nullptr;
        if (length == 0 || length > longest_name) return nullptr;
        const WideName name(line, length);
        if (*at == '=') return load_value({name.view(), true}, at + 1);
        return *at == '{' && at[1] == '\n' && m_place.push({name.view(), true}) ? at + 2 : nullptr;
    }

    const char* load_value(const TreeCursor::Name& name, const char* value) {
        if (!m_place.has_room_for(name.text) || m_place.is_moved_by(name)) return nullptr;
        if (*value == '"') return load_text(name, value + 1);
        if (*value == 'T' || *value == 'F') return load_bool(name, value);
        return load_number(name, value);
    }

    const char* load_number(const TreeCursor::Name& name, const char* value) {
        const PlainNumber number(value);
        std::int32_t integer = 0;
        double real = 0;
        if (*number.end() != '\n') return load_exact_double(name, number);
        if (number.as_long(integer)) {
            m_place.set_long(name, integer);
        } else if (number.as_short_double(real)) {
            m_place.set_double(name, real);
        } else {
            return nullptr;
        }
        return number.end() + 1;
    }

    // Behind the digits that are shown stands " (", the armour and ")". Apart from what most numbers need.
    [[gnu::noinline]] const char* load_exact_double(const TreeCursor::Name& name, PlainNumber number) {
        constexpr std::size_t closing = 2 + armoured_double_size;
        const char* const behind = number.end();
        if (static_cast<std::size_t>(m_end - behind) < closing + 2) return nullptr;
        if (behind[0] != ' ' || behind[1] != '(' || behind[closing] != ')' || behind[closing + 1] != '\n') {
            return nullptr;
        }
        double real = 0;
        if (!number.as_exact_double(behind + 2, real)) return nullptr;
        m_place.set_double(name, real);
        return behind + closing + 2;
    }

    const char* load_text(const TreeCursor::Name& name, const char* text) {
        char16_t units[longest_text + 1];
        const std::size_t length = widen_text(text, units, longest_text);
        const char* const end = text + length;
        if (*end != '\n' || end[-1] == ' ') return nullptr; // there is the quote, at least
        units[length] = u'\0';
        m_place.set_string(name, {units, length});
        return end + 1;
    }

    const char* load_bool(const TreeCursor::Name& name, const char* value) {
        constexpr std::size_t longest = 6;
        static_assert(longest <= PlainLines::margin);
        const bool is_true = std::memcmp(value, "TRUE\n", longest - 1) == 0;
        if (!is_true && std::memcmp(value, "FALSE\n", longest) != 0) return nullptr;
        m_place.set_bool(name, is_true);
        return value + (is_true ? longest - 1 : longest);
    }

    TreeCursor& m_place;
    const char* m_end;
};

} // namespace

bool PlainLines::none_is_plain = false;

PlainLines load_plain_lines(TreeCursor& place, std::string_view text) {
    PlainLines loaded{0, text.data()};
    if (PlainLines::none_is_plain) return loaded;
    Loader loader(place, text);
    const char* const end = text.data() + text.size();
    while (loaded.end != end) {
        const char* const behind = loader.load_line(skip_blanks(loaded.end));
        if (behind == nullptr) break;
        loaded.end = behind;
        ++loaded.count;
    }
    return loaded;
}

} // namespace pm
