#pragma once

#include <bit>
#include <cstdint>
#include <limits>
#include <pm/build.h>
#include <pm/kit/stored.h>
#include <pm/tree.h>
#include <random>
#include <string>
#include <vector>

namespace pm::kit::test {

// Trees of all that a tree may hold: values of every type and of none, of odd sizes, narrow texts, names with
// any characters, nodes and properties of one name, empty nodes, loose properties.
class RandomTree {
public:
    explicit RandomTree(unsigned seed) : m_random(seed) {}

    Tree make(int items) {
        Tree tree;
        const TreeBuilder builder(tree.object());
        std::vector<const PM_Node*> nodes{&builder.root()};
        for (int i = 0; i < items; ++i) {
            const PM_Node& node = *nodes[below(nodes.size())];
            if (below(4) == 0) {
                nodes.push_back(&builder.child(node, name()));
            } else {
                put_random(builder, node, name());
            }
        }
        return tree;
    }

    // Some changes: values, removals, additions.
    void change(Tree& tree, int changes) {
        const TreeBuilder builder(tree.object());
        for (int i = 0; i < changes; ++i) {
            std::vector<Node> nodes;
            for (const auto& [node, depth] : tree.walk()) {
                nodes.push_back(node);
            }
            const Node node = nodes[below(nodes.size())];
            change_node(builder, node);
        }
    }

    Stored stored() {
        Stored result{static_cast<PropType>(below(6)), below(4) != 0, std::nullopt};
        if (below(12) == 0) return result;
        switch (below(5)) {
        case 0:
            result.bytes = raw(below(20));
            return result;
        case 1:
            return make_stored(Value(text()), result.strict);
        case 2:
            return make_stored(Value(number()), result.strict);
        case 3:
            return make_stored(Value(static_cast<std::int32_t>(m_random())), result.strict);
        default:
            return make_stored(Value(below(2) == 0), result.strict);
        }
    }

    // A name: one of a few, so that nodes and properties meet.
    std::u16string name() {
        static const std::u16string names[] = {
            u"a",          u"b",           u"B",   u"*",    u"**",     u"[*]",          u"two words",
            u"#x",         u"\"q\"",       u"{;}", u"1st",  u"\xD800", u"\xDC01\xD801", u"Ж",
            u"\U0001F600", u"tab\tline\n", u"a=b", u"Root", u"-",      u"set"};
        return names[below(std::size(names))];
    }

    std::size_t below(std::size_t bound) { return m_random() % bound; }

private:
    void put_random(const TreeBuilder& builder, const PM_Node& node, const std::u16string& name) {
        const Stored value = stored();
        const void* data = nullptr;
        if (value.bytes) data = value.bytes->empty() ? "" : static_cast<const void*>(value.bytes->data());
        builder.put(node, name, {value.type, value.strict, data, value.bytes ? value.bytes->size() : 0});
    }

    void change_node(const TreeBuilder& builder, const Node& node) {
        switch (below(5)) {
        case 0:
            if (!node.is_root()) builder.erase(*node.handle());
            break;
        case 1:
            if (node.properties().empty()) break;
            builder.erase_property(*node.handle(), std::u16string((*node.properties().begin()).name16()));
            break;
        case 2:
            builder.child(*node.handle(), name());
            break;
        default:
            put_random(builder, *node.handle(), name());
        }
    }

    Bytes raw(std::size_t size) {
        Bytes bytes(size);
        for (std::byte& byte : bytes) {
            byte = static_cast<std::byte>(below(256));
        }
        return bytes;
    }

    std::string text() {
        std::u16string units(below(12), u'\0');
        for (char16_t& unit : units) {
            static constexpr char16_t some[] = u"ab\"\\ \n\r\t\x7F;{=\xD83D\xDE00\xD800Ж\x1\0";
            unit = below(8) == 0 ? static_cast<char16_t>(m_random()) : some[below(std::size(some))];
        }
        return to_utf8(units);
    }

    double number() {
        static constexpr double some[] = {0.0,  -0.0, 0.1, 1.0 / 3, 5e-324, 1.7976931348623157e308,
                                          -2.5, 1e22};
        if (below(3) != 0) return some[below(std::size(some))];
        return std::bit_cast<double>(std::uint64_t{m_random()} << 32 | m_random()); // NaNs and infinities too
    }

    std::mt19937 m_random;
};

} // namespace pm::kit::test
