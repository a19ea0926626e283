#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace pmtool {

// What is marked in output for people.
enum class Ink { node, name, type, value, removed, added, cut };

// Text as a terminal shows it: coloured, and cut at the end of its lines.
class Display {
public:
    // `when` is "always", "never" or "auto": then colour goes to a terminal, unless NO_COLOR is set. Lines
    // are as long as the terminal is wide; without one they are whole.
    explicit Display(const std::string& when);

    std::string ink(Ink ink, std::string_view text) const;
    // A text that ends a line, cut to what is left behind `used` columns, with "…" at its end.
    std::string fitted(std::string_view text, std::size_t used) const;

private:
    bool m_colours;
    std::size_t m_width; // 0: endless
};

// How many columns the text takes: a character of UTF-8 takes one.
std::size_t columns_of(std::string_view text);

} // namespace pmtool
