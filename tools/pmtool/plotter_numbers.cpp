#include "plotter_numbers.h"

#include "text.h"
#include <charconv>
#include <optional>
#include <set>

namespace pmtool {

namespace {

std::optional<int> number_of_section(std::string_view line) {
    if (!line.starts_with('[') || line.find('=') != std::string_view::npos) return std::nullopt;
    const std::string_view name = line.substr(0, line.find(']'));
    const std::size_t mark = name.find('#');
    if (mark == std::string_view::npos) return std::nullopt;
    int number = 0;
    const std::string_view digits = name.substr(mark + 1);
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (result.ec != std::errc()) return std::nullopt;
    return number;
}

} // namespace

std::vector<int> plotter_numbers(std::string_view text) {
    std::set<int> numbers;
    while (!text.empty()) {
        if (const std::optional<int> number = number_of_section(trim(take_line(text)))) {
            numbers.insert(*number);
        }
    }
    return {numbers.begin(), numbers.end()};
}

} // namespace pmtool
