#include "tree_compare.h"

#include "tree_walk.h"
#include <bit>

namespace pmtool {

namespace {

class Flattener : public TreeVisitor {
public:
    void on_property(const Property& property) override {
        tree.emplace(m_node + property.name, property.value);
    }
    void on_enter(const std::u16string& node) override {
        m_node += node + u'\\';
        tree.emplace(m_node, Raw());
    }
    void on_leave() override { m_node.resize(m_node.rfind(u'\\', m_node.size() - 2) + 1); }

    FlatTree tree;

private:
    std::u16string m_node = u"\\";
};

// Numbers are the same when their bits are.
bool same(const Value& first, const Value& second) {
    const auto* a = std::get_if<double>(&first);
    const auto* b = std::get_if<double>(&second);
    if (a == nullptr || b == nullptr) return first == second;
    return std::bit_cast<std::uint64_t>(*a) == std::bit_cast<std::uint64_t>(*b);
}

} // namespace

FlatTree flatten(const PM_Object& object, const std::u16string& path) {
    Flattener flattener;
    walk_tree(object, path, 0, flattener);
    return std::move(flattener.tree);
}

std::vector<Difference> compare(const FlatTree& first, const FlatTree& second) {
    std::vector<Difference> differences;
    auto a = first.begin();
    auto b = second.begin();
    while (a != first.end() || b != second.end()) {
        if (b == second.end() || (a != first.end() && a->first < b->first)) {
            differences.push_back({a->first, &a->second, nullptr});
            ++a;
        } else if (a == first.end() || b->first < a->first) {
            differences.push_back({b->first, nullptr, &b->second});
            ++b;
        } else {
            if (!same(a->second, b->second)) differences.push_back({a->first, &a->second, &b->second});
            ++a;
            ++b;
        }
    }
    return differences;
}

} // namespace pmtool
