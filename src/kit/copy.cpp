#include "tree_place.h"
#include <pm/build.h>
#include <pm/kit/stored.h>
#include <vector>

namespace pm::kit {

namespace {

void copy_properties(const Node& from, const TreeBuilder& builder, const PM_Node& to) {
    for (const Property property : from.properties()) {
        const PM_Property_View view = property.view();
        builder.put(to, view.name, {view.type, view.strict, view.data, view.size});
    }
}

bool is_in(const PM_Node& node, const PM_Node& other) {
    const PM_Node* at = &node;
    while (at != nullptr && at != &other) {
        at = pm_view(*at).parent;
    }
    return at != nullptr;
}

} // namespace

void put_stored(const TreeBuilder& builder, const PM_Node& node, std::u16string_view name,
                const Stored& stored) {
    // An empty vector may have no address, which would mean no value.
    const void* const data = !stored.bytes           ? nullptr
                             : stored.bytes->empty() ? ""
                                                     : static_cast<const void*>(stored.bytes->data());
    builder.put(node, name, {stored.type, stored.strict, data, stored.bytes ? stored.bytes->size() : 0});
}

const PM_Node& make_nodes(const TreeBuilder& builder, std::u16string_view path) {
    const PM_Node* node = &builder.root();
    for_each_name(path, [&](std::u16string_view name) { node = &builder.child(*node, name); });
    return *node;
}

void copy_node(const Node& from, const TreeBuilder& builder, const PM_Node& to) {
    // The way down to the node that is copied, in the copy.
    std::vector<const PM_Node*> above{&to};
    for (const auto& [node, depth] : from.walk()) {
        above.resize(static_cast<std::size_t>(depth) + 1);
        if (depth > 0) above.back() = &builder.child(*above[above.size() - 2], node.name16());
        copy_properties(node, builder, *above.back());
    }
}

void put(Tree& tree, const TextView& path, const Stored& stored) {
    const TreeBuilder builder(tree.object());
    const SplitPath split = split_path(wide_text(path));
    put_stored(builder, make_nodes(builder, split.parent), split.name, stored);
}

void copy(const Node& from, Tree& tree, const TextView& path) {
    const TreeBuilder builder(tree.object());
    const PM_Node& to = make_nodes(builder, wide_text(path));
    if (!is_in(*from.handle(), to) && !is_in(to, *from.handle())) {
        copy_node(from, builder, to);
        return;
    }
    // What is read may not change meanwhile.
    Tree aside;
    const TreeBuilder aside_builder(aside.object());
    copy_node(from, aside_builder, aside_builder.root());
    copy_node(aside.root(), builder, to);
}

Tree copy(const Tree& tree) {
    Tree result;
    const TreeBuilder builder(result.object());
    copy_node(tree.root(), builder, builder.root());
    return result;
}

} // namespace pm::kit
