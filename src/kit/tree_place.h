#pragma once

#include <algorithm>
#include <optional>
#include <pm/build.h>
#include <pm/kit/stored.h>
#include <pm/tree.h>
#include <string>
#include <string_view>

// Paths as texts, and what stands at them. Asterisks are ordinary here.
namespace pm::kit {

[[nodiscard]] inline std::u16string wide_text(const TextView& text) {
    return text.is_wide() ? std::u16string(text.wide()) : to_utf16(text.utf8());
}

template<class Use>
void for_each_name(std::u16string_view path, Use use) {
    while (!path.empty()) {
        const std::size_t end = std::min(path.find(u'\\'), path.size());
        if (end > 0) use(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
}

// A path's last name and what stands in front of it. Of a node's path, too.
struct SplitPath {
    std::u16string parent;
    std::u16string name;
};

[[nodiscard]] inline SplitPath split_path(std::u16string_view path) {
    while (path.ends_with(u'\\')) {
        path.remove_suffix(1);
    }
    const std::size_t cut = path.rfind(u'\\');
    if (cut == std::u16string_view::npos) return {u"", std::u16string(path)};
    return {std::u16string(path.substr(0, cut)), std::u16string(path.substr(cut + 1))};
}

[[nodiscard]] inline bool is_node_path(std::u16string_view path) {
    return path.empty() || path.back() == u'\\';
}

// The node of a path, made where it is missing.
const PM_Node& make_nodes(const TreeBuilder& builder, std::u16string_view path);
// All of a node into another.
void copy_node(const Node& from, const TreeBuilder& builder, const PM_Node& to);
void put_stored(const TreeBuilder& builder, const PM_Node& node, std::u16string_view name,
                const Stored& stored);

// Null if there is none.
[[nodiscard]] inline const PM_Node* node_at(const TreeBuilder& builder, std::u16string_view path) {
    const PM_Node* node = &builder.root();
    for_each_name(path, [&](std::u16string_view name) {
        if (node != nullptr) node = builder.find_child(*node, name);
    });
    return node;
}

[[nodiscard]] inline const PM_Property* property_at(const TreeBuilder& builder, const SplitPath& path) {
    const PM_Node* const node = node_at(builder, path.parent);
    return node != nullptr && !path.name.empty() ? builder.find_property(*node, path.name) : nullptr;
}

} // namespace pm::kit
