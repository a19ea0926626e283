#include "exclusion.h"
#include "text_reader.h"
#include "tree_place.h"
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <pm/kit/difference.h>
#include <unordered_map>

namespace pm::kit {

namespace {

constexpr std::array<std::string_view, 6> change_names{"added", "removed",    "type",
                                                       "value", "strictness", "order"};

bool same_bytes(const PM_Property_View& a, const PM_Property_View& b) {
    if (a.size != b.size || (a.data == nullptr) != (b.data == nullptr)) return false;
    return a.data == nullptr || b.data == nullptr || std::memcmp(a.data, b.data, a.size) == 0;
}

bool within(const PM_Property_View& a, const PM_Property_View& b, double tolerance) {
    if (a.type != PROP_DOUBLE || a.size != sizeof(double) || b.size != sizeof(double)) return false;
    double first = 0;
    double second = 0;
    std::memcpy(&first, a.data, sizeof first);
    std::memcpy(&second, b.data, sizeof second);
    return std::fabs(first - second) <= tolerance;
}

// The members of one list of a node, by name.
template<class Handle>
using ByName = std::unordered_map<std::u16string_view, Handle>;

// The two sides of one list: what only one has, and the pairs in the order of the second.
template<class Handle>
struct Lists {
    std::vector<Handle> removed;
    std::vector<std::pair<std::optional<Handle>, Handle>> now;
    std::vector<Handle> kept_before; // what both have, in the order of the first
};

template<class Range>
auto handles_of(const Range& range, const Exclusion& exclusion) {
    std::vector<std::decay_t<decltype(*range.begin())>> handles;
    for (const auto handle : range) {
        if (!exclusion.excludes(handle)) handles.push_back(handle);
    }
    return handles;
}

template<class Handle>
bool same_names(const std::vector<Handle>& first, const std::vector<Handle>& second) {
    return std::ranges::equal(first, second, {}, &Handle::name16, &Handle::name16);
}

template<class Handle>
Lists<Handle> pair_up(const std::vector<Handle>& first, const std::vector<Handle>& second) {
    Lists<Handle> lists;
    lists.now.reserve(second.size());
    if (same_names(first, second)) {
        for (std::size_t i = 0; i < first.size(); ++i) {
            lists.now.emplace_back(first[i], second[i]);
        }
        return lists;
    }
    ByName<Handle> before;
    ByName<Handle> after;
    for (const Handle& handle : first) {
        before.emplace(handle.name16(), handle);
    }
    for (const Handle& handle : second) {
        const auto found = before.find(handle.name16());
        lists.now.emplace_back(found != before.end() ? std::optional(found->second) : std::nullopt, handle);
        after.emplace(handle.name16(), handle);
    }
    for (const Handle& handle : first) {
        (after.contains(handle.name16()) ? lists.kept_before : lists.removed).push_back(handle);
    }
    return lists;
}

// What has to go to the end, so that the list that both sides share, with what was added behind it, comes
// into the order of the second side.
template<class Handle>
std::vector<std::u16string_view> moved_names(const Lists<Handle>& lists) {
    std::vector<std::u16string_view> have;
    for (const Handle& handle : lists.kept_before) {
        have.push_back(handle.name16());
    }
    for (const auto& [before, after] : lists.now) {
        if (!before) have.push_back(after.name16());
    }
    // The longest beginning of the second side's order that stands in this order already.
    std::size_t keep = 0;
    for (const std::u16string_view name : have) {
        if (keep < lists.now.size() && lists.now[keep].second.name16() == name) ++keep;
    }
    std::vector<std::u16string_view> moved;
    if (have.empty()) return moved; // the same names in the same order
    for (; keep < lists.now.size(); ++keep) {
        moved.push_back(lists.now[keep].second.name16());
    }
    return moved;
}

class Comparison {
public:
    explicit Comparison(const CompareOptions& options) : m_options(options), m_exclusion(options.exclude) {}

    void compare(const Node& first, const Node& second) {
        open(first, second, m_path.size());
        while (!m_levels.empty()) {
            Level& level = m_levels.back();
            if (level.next < level.children.now.size()) {
                const auto [before, after] = level.children.now[level.next++];
                compare_child(before, after);
            } else {
                add_order(level.children, "\\");
                close();
            }
        }
    }
    // Whether either tree has the path.
    bool compare_at(const Tree& first, const Tree& second, std::string_view path) {
        const SplitPath place = split_path(to_utf16(path));
        if (place.name.empty()) {
            compare(first.root(), second.root());
            return true;
        }
        const std::optional<Node> above[] = {first.node(place.parent), second.node(place.parent)};
        const std::optional<Node> nodes[] = {first.node(path), second.node(path)};
        const std::optional<Property> properties[] = {property_of(above[0], place.name),
                                                      property_of(above[1], place.name)};
        const bool has_node = nodes[0] || nodes[1];
        const bool has_property = !path.ends_with('\\') && (properties[0] || properties[1]);
        if (!has_node && !has_property) return false;
        if (!enter_all(place.parent)) return true;
        if (has_property) compare_sides(properties[0], properties[1]);
        if (has_node) compare_sides(nodes[0], nodes[1]);
        return true;
    }
    std::vector<Difference> take() { return std::move(m_differences); }

private:
    static std::optional<Property> property_of(const std::optional<Node>& node, std::u16string_view name) {
        if (!node) return std::nullopt;
        const auto properties = node->properties();
        const auto found = std::ranges::find(properties, name, &Property::name16);
        return found != properties.end() ? std::optional(*found) : std::nullopt;
    }

    // False if something on the way is excluded.
    bool enter_all(std::u16string_view path) {
        bool counts = true;
        for_each_name(path, [&](std::u16string_view name) {
            counts = counts && !m_exclusion.excludes_node(name);
            m_exclusion.enter(name);
            (m_path += to_utf8(name)) += '\\';
        });
        return counts;
    }

    void compare_sides(const std::optional<Property>& first, const std::optional<Property>& second) {
        if (m_exclusion.excludes(first ? *first : *second)) return;
        if (first && second) return compare_property(*first, *second);
        add_property(first ? Change::removed : Change::added, first ? *first : *second);
    }

    void compare_sides(const std::optional<Node>& first, const std::optional<Node>& second) {
        if (m_exclusion.excludes(first ? *first : *second)) return;
        if (first && second) {
            enter(*second);
            compare(*first, *second);
        } else {
            add_nodes(first ? Change::removed : Change::added, first ? *first : *second);
        }
    }

    // A node that is compared, and the length of the path in front of it. A list of them takes the place of
    // calls in each other: trees may be deep, and stacks small.
    struct Level {
        Lists<Node> children;
        std::size_t length;
        std::size_t next = 0;
    };

    void open(const Node& first, const Node& second, std::size_t length) {
        compare_properties(first, second);
        m_levels.push_back(
            {pair_up(handles_of(first.children(), m_exclusion), handles_of(second.children(), m_exclusion)),
             length});
        for (const Node& node : m_levels.back().children.removed) {
            add_nodes(Change::removed, node);
        }
    }

    // The start isn't entered.
    void close() {
        const std::size_t length = m_levels.back().length;
        m_levels.pop_back();
        if (!m_levels.empty()) leave(length);
    }

    void compare_child(const std::optional<Node>& before, const Node& after) {
        if (!before) return add_nodes(Change::added, after);
        const std::size_t length = enter(after);
        open(*before, after, length);
    }

    void compare_properties(const Node& first, const Node& second) {
        const auto lists = pair_up(handles_of(first.properties(), m_exclusion),
                                   handles_of(second.properties(), m_exclusion));
        for (const Property& property : lists.removed) {
            add_property(Change::removed, property);
        }
        for (const auto& [before, after] : lists.now) {
            if (before) {
                compare_property(*before, after);
            } else {
                add_property(Change::added, after);
            }
        }
        add_order(lists, "");
    }

    void compare_property(const Property& first, const Property& second) {
        const PM_Property_View a = first.view();
        const PM_Property_View b = second.view();
        const bool same_value =
            same_bytes(a, b) || (m_options.tolerance > 0 && within(a, b, m_options.tolerance));
        if (a.type != b.type) {
            add_change(Change::type, first, second);
        } else if (!same_value) {
            add_change(Change::value, first, second);
        } else if (a.strict != b.strict && m_options.strictness) {
            add_change(Change::strictness, first, second);
        }
    }

    // A node with all that is in it.
    void add_nodes(Change change, const Node& node) {
        struct Open {
            std::vector<Node> children;
            std::size_t length;
            std::size_t next = 0;
        };
        std::vector<Open> levels{{{node}, m_path.size()}};
        while (!levels.empty()) {
            Open& level = levels.back();
            if (level.next < level.children.size()) {
                const Node child = level.children[level.next++];
                const std::size_t length = enter(child);
                add_node(change, child);
                levels.push_back({handles_of(child.children(), m_exclusion), length});
            } else {
                const std::size_t length = level.length;
                levels.pop_back();
                if (!levels.empty()) leave(length);
            }
        }
    }

    void add_node(Change change, const Node& node) {
        m_differences.push_back({change, m_path, {}, {}, {}});
        for (const Property& property : handles_of(node.properties(), m_exclusion)) {
            add_property(change, property);
        }
    }

    void add_property(Change change, const Property& property) {
        Difference difference{change, m_path + property.name(), {}, {}, {}};
        (change == Change::removed ? difference.before : difference.after) = stored(property);
        m_differences.push_back(std::move(difference));
    }

    void add_change(Change change, const Property& first, const Property& second) {
        m_differences.push_back({change, m_path + second.name(), stored(first), stored(second), {}});
    }

    template<class Handle>
    void add_order(const Lists<Handle>& lists, std::string_view end) {
        if (!m_options.order) return;
        const std::vector<std::u16string_view> names = moved_names(lists);
        if (names.empty()) return;
        Difference difference{Change::order, m_path, {}, {}, {}};
        for (const std::u16string_view name : names) {
            difference.moved.push_back(fmt::format("{}{}{}", m_path, to_utf8(name), end));
        }
        m_differences.push_back(std::move(difference));
    }

    std::size_t enter(const Node& node) {
        const std::size_t length = m_path.size();
        (m_path += node.name()) += '\\';
        m_exclusion.enter(node);
        return length;
    }
    void leave(std::size_t length) {
        m_path.resize(length);
        m_exclusion.leave();
    }

    const CompareOptions& m_options;
    Exclusion m_exclusion;
    std::string m_path = "\\";
    std::vector<Level> m_levels;
    std::vector<Difference> m_differences;
};

std::string side_text(const std::optional<Stored>& stored) {
    return stored ? value_text(*stored) : "";
}

} // namespace

std::string_view change_name(Change change) noexcept {
    return change_names[static_cast<std::size_t>(change)];
}

std::vector<Difference> compare(const Node& first, const Node& second, const CompareOptions& options) {
    Comparison comparison(options);
    comparison.compare(first, second);
    return comparison.take();
}

std::vector<Difference> compare(const Tree& first, const Tree& second, const CompareOptions& options) {
    return compare(first.root(), second.root(), options);
}

std::optional<std::vector<Difference>> compare_at(const Tree& first, const Tree& second,
                                                  std::string_view path, const CompareOptions& options) {
    Comparison comparison(options);
    if (!comparison.compare_at(first, second, path)) return std::nullopt;
    return comparison.take();
}

bool identical(const Node& first, const Node& second) {
    return compare(first, second).empty();
}

bool identical(const Tree& first, const Tree& second) {
    return identical(first.root(), second.root());
}

std::string difference_text(const Difference& difference) {
    const std::string path = printable_text(difference.path);
    const auto entry = [&path](char mark, const std::optional<Stored>& value) {
        return value ? fmt::format("{} {}: {}", mark, path, value_text(*value))
                     : fmt::format("{} {}", mark, path);
    };
    switch (difference.change) {
    case Change::added:
        return entry('+', difference.after);
    case Change::removed:
        return entry('-', difference.before);
    case Change::strictness:
        return fmt::format("~ {}: {}", path,
                           difference.after && difference.after->strict ? "strict" : "loose");
    case Change::order:
        return fmt::format("order of {}", path);
    default:
        return fmt::format("~ {}: {} -> {}", path, side_text(difference.before), side_text(difference.after));
    }
}

} // namespace pm::kit
