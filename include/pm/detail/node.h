#pragma once

// What node.h declares; included by it.

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <optional>
#include <pm/detail/stored_value.h>
#include <pm/detail/terminated.h>
#include <pm/error_number.h>
#include <pm/node.h>
#include <pm/view.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pm {

inline std::span<const std::byte> Property::bytes() const noexcept {
    const PM_Property_View property = view();
    return {static_cast<const std::byte*>(property.data), property.size};
}

inline Value Property::value() const {
    return detail::stored_value(view());
}

template<Readable T>
T Property::as() const {
    if constexpr (std::same_as<T, Value>) {
        return value();
    } else {
        const PM_Property_View property = view();
        if (property.type != detail::type_for<T>()) detail::raise(PM_ERR_WRONG_TYPE, property.name);
        return detail::stored_as<T>(property);
    }
}

inline std::string Node::path() const {
    if (is_root()) return "\\";
    std::vector<std::u16string_view> names;
    for (Node node = *this; !node.is_root(); node = *node.parent()) {
        names.push_back(node.name16());
    }
    std::string path;
    std::for_each(names.rbegin(), names.rend(),
                  [&](std::u16string_view name) { (path += '\\') += to_utf8(name); });
    return path;
}

inline std::optional<Node> Node::parent() const noexcept {
    const PM_Node* const parent = view().parent;
    return parent != nullptr ? std::optional(Node(*parent)) : std::nullopt;
}

inline Properties Node::properties() const noexcept {
    return Properties(detail::PropertyStep{view().first_property});
}

inline Children Node::children() const noexcept {
    return Children(detail::ChildStep{view().first_child});
}

inline Walk Node::walk(int levels) const noexcept {
    return Walk(detail::WalkStep{m_node, 0, levels});
}

inline Property detail::PropertyStep::read() const noexcept {
    return Property(*at);
}

inline Node detail::ChildStep::read() const noexcept {
    return Node(*at);
}

inline std::pair<Node, int> detail::WalkStep::read() const noexcept {
    return {Node(*at), depth};
}

inline Node root_of(const PM_Object& object) {
    return Node(*pm_find_node(object, u"\\"));
}

inline std::optional<Node> find_node(const PM_Object& object, const TextView& path) {
    const PM_Node* const node = pm_find_node(object, detail::Terminated(path).text());
    return node != nullptr ? std::optional(Node(*node)) : std::nullopt;
}

inline std::optional<Property> find_property(const PM_Object& object, const TextView& path, int index) {
    const PM_Property* const property = pm_find_property(object, detail::Terminated(path).text(), index);
    return property != nullptr ? std::optional(Property(*property)) : std::nullopt;
}

} // namespace pm
