#include "terminal.h"

#include "failure.h"
#include "system.h"
#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace pmtool {

namespace {

constexpr std::string_view ellipsis = "\xE2\x80\xA6";

// By Ink: the numbers of a terminal's colours.
constexpr std::array<std::string_view, 7> colours = {"1;34", "36", "2", "0", "31", "32", "33"};

bool wants_colours(const std::string& when) {
    if (when == "always") return true;
    if (when == "never") return false;
    if (when != "auto") throw Mistake(fmt::format("{}: --color takes always, never or auto", when));
    return is_terminal(Stream::out) && !environment("NO_COLOR") && environment("TERM") != "dumb";
}

bool begins_character(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

} // namespace

std::size_t columns_of(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(text, begins_character));
}

Display::Display(const std::string& when)
    : m_colours(wants_colours(when)), m_width(is_terminal(Stream::out) ? terminal_width() : 0) {}

std::string Display::ink(Ink ink, std::string_view text) const {
    if (!m_colours) return std::string(text);
    return fmt::format("\x1B[{}m{}\x1B[0m", colours[static_cast<std::size_t>(ink)], text);
}

std::string Display::fitted(std::string_view text, std::size_t used) const {
    if (m_width == 0 || used + columns_of(text) <= m_width) return std::string(text);
    const std::size_t room = m_width > used + 1 ? m_width - used - 1 : 0;
    std::size_t at = 0;
    for (std::size_t columns = 0; at < text.size(); ++at) {
        if (begins_character(text[at]) && columns++ == room) break;
    }
    return std::string(text.substr(0, at)) + std::string(ellipsis);
}

} // namespace pmtool
