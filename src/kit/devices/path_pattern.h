#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pm::kit::devices {

// "\media\size" as its components; empty ones don't count.
[[nodiscard]] std::vector<std::string> split_path(std::string_view path);

// A path in which a "*" in a component stands for any characters of it, once a component.
class PathPattern {
public:
    explicit PathPattern(std::string_view path, bool any_case = false);

    [[nodiscard]] std::size_t depth() const noexcept { return m_components.size(); }
    // Whether it matches `components`; what the stars stand for, with "\" between.
    [[nodiscard]] std::optional<std::string> match(std::span<const std::string> components) const;

private:
    std::vector<std::string> m_components;
    bool m_any_case;
};

} // namespace pm::kit::devices
