#include "tree_compare.h"

#include "paths.h"
#include <bit>

namespace pmtool {

namespace {

// `path` is that of the node, which ends in a backslash.
void append(const pm::Node& node, std::u16string& path, FlatTree& tree) {
    const std::size_t length = path.size();
    for (const pm::Property property : node.properties()) {
        tree.emplace(path + std::u16string(property.name16()), property.value());
    }
    for (const pm::Node child : node.children()) {
        (path += child.name16()) += u'\\';
        tree.emplace(path, pm::Bytes());
        append(child, path, tree);
        path.resize(length);
    }
}

// Numbers are the same when their bits are.
bool same(const Value& first, const Value& second) {
    const auto* a = std::get_if<double>(&first);
    const auto* b = std::get_if<double>(&second);
    if (a == nullptr || b == nullptr) return first == second;
    return std::bit_cast<std::uint64_t>(*a) == std::bit_cast<std::uint64_t>(*b);
}

} // namespace

FlatTree flatten(const PM_Object& object, const std::u16string& path) {
    FlatTree tree;
    std::u16string top = u"\\";
    if (const std::optional<pm::Node> node = node_at(object, path)) append(*node, top, tree);
    return tree;
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
