#pragma once

#include "pattern_walk.h"
#include <algorithm>
#include <pm/kit/pattern.h>
#include <string>
#include <vector>

namespace pm::kit {

// What patterns take out of a walk that goes down from the root.
class Exclusion {
public:
    explicit Exclusion(const std::vector<std::string>& patterns)
        : m_patterns(patterns.begin(), patterns.end()), m_walks(m_patterns.begin(), m_patterns.end()) {}
    Exclusion(const Exclusion&) = delete;
    Exclusion& operator=(const Exclusion&) = delete;

    // Of what is right below the place.
    [[nodiscard]] bool excludes(const Property& property) const { return excludes(property.name16(), false); }
    [[nodiscard]] bool excludes(const Node& node) const { return excludes_node(node.name16()); }
    [[nodiscard]] bool excludes_node(std::u16string_view name) const { return excludes(name, true); }

    void enter(const Node& node) { enter(node.name16()); }
    void enter(std::u16string_view name) {
        for (PatternWalk& walk : m_walks) {
            walk.enter(name);
        }
    }
    void leave() {
        for (PatternWalk& walk : m_walks) {
            walk.leave();
        }
    }

private:
    [[nodiscard]] bool excludes(std::u16string_view name, bool node) const {
        return std::ranges::any_of(m_walks,
                                   [&](const PatternWalk& w) { return w.matches_below(name, node); });
    }

    std::vector<Pattern> m_patterns;
    std::vector<PatternWalk> m_walks;
};

} // namespace pm::kit
