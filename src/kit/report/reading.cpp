#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <pm/exception.h>
#include <report/reading.h>

namespace pm::kit::report {

namespace {

std::optional<Node> child(const Node& node, std::string_view name) {
    const std::u16string wanted = to_utf16(name);
    for (const Node& candidate : node.children()) {
        if (candidate.name16() == wanted) {
            return candidate;
        }
    }
    return {};
}

// Nothing for a value that is damaged.
std::optional<Value> value_of(const Property& property) {
    try {
        return property.value();
    } catch (const ZT_Exception&) {
        return {};
    }
}

std::optional<Value> value_of(const Node& node, std::string_view name) {
    const auto found = property(node, name);
    return found ? value_of(*found) : std::nullopt;
}

std::string shown_bytes(const Bytes& bytes) {
    constexpr std::size_t most = 32;
    std::string digits;
    for (std::size_t at = 0; at < std::min(bytes.size(), most); ++at) {
        digits += fmt::format("{:02X}", std::to_integer<unsigned>(bytes[at]));
    }
    return fmt::format("{}{} ({} {})", digits, bytes.size() > most ? "…" : "",
                       grouped(static_cast<long>(bytes.size())), bytes.size() == 1 ? "byte" : "bytes");
}

struct Shown {
    std::string operator()(std::monostate) const { return "no value"; }
    std::string operator()(std::int32_t value) const { return fmt::to_string(value); }
    std::string operator()(double value) const { return shown(value); }
    std::string operator()(const std::string& value) const { return value; }
    std::string operator()(bool value) const { return value ? "yes" : "no"; }
    std::string operator()(const Bytes& value) const { return shown_bytes(value); }
};

// A number rounded to 32 bits by the digits of 32 bits.
std::string shown_exactly(double value) {
    constexpr double scale = 1e4; // the decimals of shown()
    if (!std::isfinite(value) || std::round(value * scale) / scale == value) {
        return shown(value);
    }
    const bool is_narrow = std::fabs(value) <= double{std::numeric_limits<float>::max()} &&
                           double{static_cast<float>(value)} == value;
    return is_narrow ? fmt::format("{}", static_cast<float>(value)) : fmt::format("{}", value);
}

} // namespace

std::optional<Node> below(const Node& node, std::initializer_list<std::string_view> names) {
    std::optional<Node> found = node;
    for (const std::string_view name : names) {
        found = child(*found, name);
        if (!found) {
            return {};
        }
    }
    return found;
}

std::vector<Node> children(const Node& node, std::initializer_list<std::string_view> names) {
    const auto found = below(node, names);
    if (!found) {
        return {};
    }
    std::vector<Node> nodes;
    for (const Node& next : found->children()) {
        nodes.push_back(next);
    }
    return nodes;
}

std::optional<Property> property(const Node& node, std::string_view name) {
    const std::u16string wanted = to_utf16(name);
    for (const Property& candidate : node.properties()) {
        if (candidate.name16() == wanted) {
            return candidate;
        }
    }
    return {};
}

std::optional<double> number(const Node& node, std::string_view name) {
    const auto value = value_of(node, name);
    if (value && std::holds_alternative<std::int32_t>(*value)) {
        return std::get<std::int32_t>(*value);
    }
    return value && std::holds_alternative<double>(*value) ? std::optional(std::get<double>(*value))
                                                           : std::nullopt;
}

std::optional<long> integer(const Property& property) {
    const auto value = value_of(property);
    return value && std::holds_alternative<std::int32_t>(*value)
               ? std::optional<long>(std::get<std::int32_t>(*value))
               : std::nullopt;
}

std::optional<long> integer(const Node& node, std::string_view name) {
    const auto found = property(node, name);
    return found ? integer(*found) : std::nullopt;
}

std::optional<bool> truth(const Node& node, std::string_view name) {
    const auto value = value_of(node, name);
    return value && std::holds_alternative<bool>(*value) ? std::optional(std::get<bool>(*value))
                                                         : std::nullopt;
}

std::string text(const Node& node, std::string_view name) {
    const auto value = value_of(node, name);
    return value && std::holds_alternative<std::string>(*value) ? std::get<std::string>(*value)
                                                                : std::string();
}

std::string title(const Node& node, std::string_view otherwise) {
    std::string translated = text(node, "localized_name");
    return translated.empty() ? std::string(otherwise) : translated;
}

std::string shown(const Property& property) {
    const auto value = value_of(property);
    return value ? shown(*value) : "unreadable";
}

std::string shown(const Value& value) {
    return std::visit(Shown(), value);
}

std::string shown(double value) {
    if (std::isnan(value)) {
        return "not a number";
    }
    if (std::isinf(value)) {
        return value > 0 ? "∞" : "−∞";
    }
    if (value != 0 && (std::fabs(value) >= 1e15 || std::fabs(value) < 5e-5)) {
        return fmt::format("{:g}", value);
    }
    std::string text = fmt::format("{:.4f}", value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

std::string shown_exactly(const Property& property) {
    const auto value = value_of(property);
    const auto* number = value ? std::get_if<double>(&*value) : nullptr;
    return number != nullptr ? shown_exactly(*number) : shown(property);
}

std::string distinction(const Property& property, bool has_other_type) {
    static constexpr std::array<std::string_view, 6> types{"no value", "integer",     "number",
                                                           "text",     "truth value", "bytes"};
    const auto value = value_of(property);
    if (value && has_other_type) {
        return std::string(types[value->index()]);
    }
    const auto* number = value ? std::get_if<double>(&*value) : nullptr;
    return number != nullptr ? fmt::format("{}", *number) : "otherwise";
}

std::string grouped(long value) {
    const std::string digits = fmt::to_string(value);
    std::string text;
    for (std::size_t at = 0; at < digits.size(); ++at) {
        const bool begins_group = at > 0 && (digits.size() - at) % 3 == 0 && digits[at - 1] != '-';
        text += begins_group ? "," : "";
        text += digits[at];
    }
    return text;
}

std::string spoken(std::string_view name) {
    const auto of_a_name = [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9') ||
               character == '_';
    };
    std::string words(name);
    if (name.empty() || name.front() < 'a' || name.front() > 'z' || !std::ranges::all_of(name, of_a_name)) {
        return words;
    }
    std::ranges::replace(words, '_', ' ');
    words.front() = static_cast<char>(words.front() - 'a' + 'A');
    return words;
}

Index::Index(const std::vector<Node>& nodes, std::string_view property) {
    for (const Node& node : nodes) {
        m_nodes.emplace(text(node, property), node);
    }
}

std::optional<Node> Index::find(const std::string& text) const {
    const auto found = m_nodes.find(text);
    return found == m_nodes.end() ? std::nullopt : std::optional(found->second);
}

} // namespace pm::kit::report
