#include "paths.h"

#include <algorithm>

namespace pmtool {

namespace {

constexpr char16_t separator = u'\\';

} // namespace

std::u16string full_path(std::u16string_view path) {
    std::u16string full;
    while (!path.empty()) {
        const std::size_t end = path.find(separator);
        if (const std::u16string_view name = path.substr(0, end); !name.empty()) (full += separator) += name;
        path = end == std::u16string_view::npos ? std::u16string_view() : path.substr(end + 1);
    }
    return full.empty() ? std::u16string(1, separator) : full;
}

std::u16string join_path(const std::u16string& node, std::u16string_view name) {
    std::u16string path = node;
    if (!path.ends_with(separator)) path += separator;
    return path += name;
}

std::optional<pm::Node> node_at(const PM_Object& object, const std::u16string& path) {
    if (!pm::node_exists(object, path.c_str())) return std::nullopt;
    return pm::find_node(object, path);
}

std::optional<pm::Property> property_at(const PM_Object& object, const std::u16string& path) {
    const std::size_t cut = path.rfind(separator);
    const std::optional<pm::Node> node = node_at(object, path.substr(0, cut));
    if (!node) return std::nullopt;
    const pm::Properties properties = node->properties();
    const auto found =
        std::ranges::find(properties, std::u16string_view(path).substr(cut + 1), &pm::Property::name16);
    return found != properties.end() ? std::optional(*found) : std::nullopt;
}

} // namespace pmtool
