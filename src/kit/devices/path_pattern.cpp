#include "devices/path_pattern.h"
#include <algorithm>

namespace pm::kit::devices {

namespace {

char lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equal(std::string_view left, std::string_view right, bool any_case) noexcept {
    if (!any_case) return left == right;
    return std::ranges::equal(left, right, {}, lower, lower);
}

// What the star of a pattern stands for; empty text for a pattern without one.
std::optional<std::string_view> match_component(std::string_view pattern, std::string_view text,
                                                bool any_case) {
    const std::size_t star = pattern.find('*');
    if (star == std::string_view::npos) {
        return equal(pattern, text, any_case) ? std::optional(std::string_view()) : std::nullopt;
    }
    const std::string_view tail = pattern.substr(star + 1);
    if (text.size() < star + tail.size()) return std::nullopt;
    const std::size_t length = text.size() - star - tail.size();
    if (!equal(pattern.substr(0, star), text.substr(0, star), any_case)) return std::nullopt;
    if (!equal(tail, text.substr(star + length), any_case)) return std::nullopt;
    return text.substr(star, length);
}

} // namespace

std::vector<std::string> split_path(std::string_view path) {
    std::vector<std::string> components;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('\\'), path.size());
        if (end != 0) components.emplace_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return components;
}

PathPattern::PathPattern(std::string_view path, bool any_case)
    : m_components(split_path(path)), m_any_case(any_case) {}

std::optional<std::string> PathPattern::match(std::span<const std::string> components) const {
    if (components.size() != m_components.size()) return std::nullopt;
    std::string key;
    for (std::size_t i = 0; i < components.size(); ++i) {
        const auto star = match_component(m_components[i], components[i], m_any_case);
        if (!star) return std::nullopt;
        if (m_components[i].find('*') == std::string::npos) continue;
        if (!key.empty()) key += '\\';
        key += *star;
    }
    return key;
}

} // namespace pm::kit::devices
