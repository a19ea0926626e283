#include "text.h"

#include <algorithm>
#include <cstdio>
#include <fmt/format.h>
#include <new>
#include <pm/kit/stored.h>
#include <pm/text.h>
#include <system_error>

namespace pmtool {

namespace {

constexpr char16_t replacement = 0xFFFD;
constexpr std::string_view white_space = " \t\r\n\v\f";

bool is_surrogate(char16_t unit) {
    return (unit & 0xF800) == 0xD800;
}

bool is_high_surrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool is_low_surrogate(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Where a character begins, from `at` on.
std::size_t next_character(std::string_view text, std::size_t at) {
    while (at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80) {
        ++at;
    }
    return at;
}

// Two values of the greatest length fit.
std::string shortened(std::string_view line) {
    constexpr std::size_t longest = std::size_t{32} << 10;
    if (line.size() <= longest) return std::string(line);
    const std::string_view end = line.substr(next_character(line, line.size() - longest / 4));
    return fmt::format("{} ... {}", line.substr(0, next_character(line, longest / 2)), end);
}

} // namespace

std::string shown(std::u16string_view text) {
    std::u16string whole(text);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (!is_surrogate(whole[at])) continue;
        const bool paired =
            is_high_surrogate(whole[at]) && at + 1 < whole.size() && is_low_surrogate(whole[at + 1]);
        if (paired) {
            ++at;
        } else {
            whole[at] = replacement;
        }
    }
    return pm::to_utf8(whole);
}

std::string printable(std::string_view text) {
    return pm::kit::printable_text(text.substr(0, text.find_last_not_of(white_space) + 1));
}

std::string printable_lines(std::string_view text) {
    std::string out;
    while (!text.empty()) {
        const bool is_ended = text.find('\n') != std::string_view::npos;
        out += pm::kit::printable_text(take_line(text));
        if (is_ended) out += '\n';
    }
    return out;
}

void complain(std::string_view line) try {
    print_error(fmt::format("pmtool: {}\n", pm::kit::printable_text(shortened(line))));
} catch (const std::bad_alloc&) {
    std::fputs("pmtool: there is not enough memory\n", stderr);
}

void print_error(std::string_view text) try {
    fmt::print(stderr, "{}", text);
} catch (const std::system_error&) {
    std::clearerr(stderr); // the next may fit
}

std::string in_quotes(std::string_view text) {
    return pm::kit::quoted_text(text);
}

std::string lower_case(std::string_view text) {
    std::string out(text);
    std::ranges::transform(out, out.begin(), lower);
    return out;
}

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(white_space);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(white_space) - first + 1);
}

std::string_view take_line(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return line;
}

} // namespace pmtool
