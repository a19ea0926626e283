#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

class PM_Object;

namespace pm::bench {

// Texts are zero-terminated.
using ContentValue = std::variant<int, double, std::string_view, bool>;

struct ContentNode {
    std::vector<std::string_view> path; // names from below the root down
};

struct ContentProperty {
    std::uint32_t node; // index into Content::nodes
    std::string_view name;
    ContentValue value;
};

// How the names of a tree are spread.
enum class ContentShape { ten_a_node, thousand_a_node, one_node, names_10000, names_100000 };

const char* name_of(ContentShape shape);

// What every store of a comparison is filled with: 40 % integers, 30 % doubles, a third of which need all
// their digits, 20 % texts, 10 % truth values. Nodes with properties lie in the fifth level, the lists of all
// levels above are of equal length; `one_node` has one node below the root. The same arguments give the same
// content.
class Content {
public:
    Content(ContentShape shape, std::size_t count);
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;

    ContentShape shape() const { return m_shape; }
    const std::vector<ContentNode>& nodes() const { return m_nodes; }               // depth first
    const std::vector<ContentProperty>& properties() const { return m_properties; } // by node
    const std::vector<std::string_view>& path_of(const ContentProperty& property) const {
        return m_nodes[property.node].path;
    }

    // The whole path of a property, names joined.
    std::string joined_path(const ContentProperty& property, char separator) const;

private:
    const std::string& keep(std::string text) { return m_texts.emplace_back(std::move(text)); }
    void add_nodes(std::size_t count);
    void add_properties(std::size_t count, std::size_t a_node, std::size_t distinct_names);
    ContentValue value(std::size_t index);

    ContentShape m_shape;
    std::deque<std::string> m_texts;
    std::vector<ContentNode> m_nodes;
    std::vector<ContentProperty> m_properties;
};

// Sets all properties of the content under `base`, which is empty or ends in a separator.
void fill(PM_Object& object, const Content& content, const std::string& base);

// Calls add_node(parent, name), which gives a handle, and add_value(node, name, value) so that each node and
// each property of the content is made once, in order.
template<class Handle, class AddNode, class AddValue>
void build_tree(const Content& content, Handle root, AddNode add_node, AddValue add_value) {
    std::vector<Handle> open{root};
    std::vector<std::string_view> names;
    std::size_t next = 0;
    for (std::size_t index = 0; index < content.nodes().size(); ++index) {
        const auto& path = content.nodes()[index].path;
        std::size_t common = 0;
        while (common < names.size() && common < path.size() && names[common] == path[common])
            ++common;
        names.resize(common);
        open.erase(open.begin() + static_cast<std::ptrdiff_t>(common) + 1, open.end());
        for (; common < path.size(); ++common) {
            open.push_back(add_node(open.back(), path[common]));
            names.push_back(path[common]);
        }
        const auto& properties = content.properties();
        for (; next < properties.size() && properties[next].node == index; ++next) {
            const ContentProperty& property = properties[next];
            std::visit([&](auto value) { add_value(open.back(), property.name, value); }, property.value);
        }
    }
}

} // namespace pm::bench
