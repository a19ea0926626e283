#include "exact.h"

#include "arguments.h"
#include <pm/build.h>
#include <pm/inspect.h>
#include <span>
#include <variant>

namespace pm::c {

namespace {

// As Tree::set() takes them.
constexpr std::size_t longest_text = 4096; // in units, as the next
constexpr std::size_t longest_path = 1023;
constexpr std::size_t most_names = 256;

std::size_t names_in(std::u16string_view path) {
    std::size_t names = 0;
    for (std::size_t at = 0; at < path.size(); ++at) {
        if (path[at] != u'\\' && (at == 0 || path[at - 1] == u'\\')) ++names;
    }
    return names;
}

// A path in its two parts; blank components at the end don't count.
struct SplitPath {
    std::u16string node;
    std::u16string name;
    std::size_t units; // of the whole path as it is given

    explicit SplitPath(std::string_view path)
        : node(wide_text(path.data(), path.size())), units(node.size()) {
        node.resize(node.find_last_not_of(u'\\') + 1);
        const std::size_t end_of_node = node.rfind(u'\\') + 1; // 0 without one
        name = node.substr(end_of_node);
        node.resize(end_of_node);
    }
};

const PM_Property* find(const Tree& tree, const SplitPath& path) {
    const PM_Node* const node = pm_find_node(tree.object(), path.node.c_str());
    if (node == nullptr || path.name.empty()) return nullptr;
    // It only looks.
    return TreeBuilder(const_cast<PM_Object&>(tree.object())).find_property(*node, path.name);
}

// The value as the store has it, put at once.
struct Put {
    Tree& tree;
    const SplitPath& path;
    bool strict;

    void operator()(std::monostate) const { refuse(path.name.c_str(), PM_ERR_NO_VALUE); }
    void operator()(std::int32_t number) const { put(PROP_LONG, &number, sizeof number); }
    void operator()(double real) const { put(PROP_DOUBLE, &real, sizeof real); }
    void operator()(bool truth) const { put(PROP_BOOL, &truth, sizeof truth); }
    void operator()(const Bytes& bytes) const {
        // Null would be no value at all.
        put(PROP_VOID, bytes.empty() ? static_cast<const void*>("") : bytes.data(), bytes.size());
    }
    void operator()(const std::string& text) const {
        const std::u16string wide = to_utf16(text);
        if (wide.find(u'\0') != std::u16string::npos) refuse(path.name.c_str(), PM_ERR_INVALID_ARGUMENT);
        if (wide.size() > longest_text) refuse(path.name.c_str(), PM_ERR_VALUE_TOO_LARGE);
        put(PROP_STRING, wide.c_str(), (wide.size() + 1) * sizeof(char16_t));
    }

    void put(PropType type, const void* data, std::size_t size) const {
        const TreeBuilder builder(tree.object());
        make_node(tree.object(), path.node.c_str());
        const PM_Node& node = *pm_find_node(tree.object(), path.node.c_str());
        const PM_Property* const there = builder.find_property(node, path.name);
        if (there != nullptr && pm_view(*there).strict && pm_view(*there).type != type) {
            refuse(path.name.c_str(), PM_ERR_WRONG_TYPE);
        }
        builder.put(node, path.name, {type, strict, data, size});
    }
};

} // namespace

const PM_Property* find_exact(const Tree& tree, std::string_view path) {
    return find(tree, SplitPath(path));
}

Value exact_value(const Tree& tree, std::string_view path) {
    const SplitPath split(path);
    const PM_Property* const property = find(tree, split);
    if (property != nullptr) return Property(*property).value();
    const std::u16string whole = wide_text(path.data(), path.size());
    const bool has_node = pm_find_node(tree.object(), split.node.c_str()) != nullptr;
    refuse(whole.c_str(), has_node ? PM_ERR_NO_SUCH_PROPERTY : PM_ERR_NO_SUCH_NODE);
}

void set_exact(Tree& tree, std::string_view path, const Value& value, bool strict) {
    const SplitPath split(path);
    if (split.name.empty()) refuse(u"\\", PM_ERR_BAD_PATH);
    if (split.units > longest_path || names_in(split.node) >= most_names) {
        refuse((split.node + split.name).c_str(), PM_ERR_BAD_PATH);
    }
    std::visit(Put{tree, split, strict}, value);
}

std::int32_t erase_exact(Tree& tree, std::string_view path) {
    if (kind_at_exact(tree, path) == PM9_NOTHING) return PM9_NOTHING;
    const SplitPath split(path);
    const TreeBuilder builder(tree.object());
    const PM_Node& parent = *pm_find_node(tree.object(), split.node.c_str());
    if (split.name.empty()) refuse(u"\\", PM_ERR_BAD_PATH);
    if (builder.erase_property(parent, split.name)) return PM9_PROPERTY;
    builder.erase(*builder.find_child(parent, split.name));
    return PM9_NODE;
}

std::int32_t kind_at_exact(const Tree& tree, std::string_view path) {
    return unless_bad_path([&] {
        if (find_exact(tree, path) != nullptr) return PM9_PROPERTY;
        return tree.node(path) ? PM9_NODE : PM9_NOTHING;
    });
}

} // namespace pm::c
