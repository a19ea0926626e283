#pragma once

#include <cstddef>
#include <pm/kit/pattern.h>
#include <string_view>
#include <vector>

namespace pm::kit {

// Follows a pattern down a tree: how much of it the names from the root to a place can have used up.
class PatternWalk {
public:
    // Stands on the root. The pattern is borrowed.
    explicit PatternWalk(const Pattern& pattern);

    // Whether the pattern matches the place it stands on, a node.
    [[nodiscard]] bool matches() const;
    // Whether it matches a node or property of that name right below.
    [[nodiscard]] bool matches_below(std::u16string_view name, bool node) const;
    // Whether anything below can match.
    [[nodiscard]] bool may_match_below() const;
    // The one name that what can match right below has; null if there are several.
    [[nodiscard]] const std::u16string* only_name() const;

    void enter(std::u16string_view name);
    void leave() { m_states.pop_back(); }

private:
    // Numbers of components used up, rising.
    using States = std::vector<std::size_t>;
    [[nodiscard]] States after(std::u16string_view name) const;
    void add(States& states, std::size_t used) const;
    [[nodiscard]] bool is_whole(const States& states) const;

    const Pattern* m_pattern;
    std::vector<States> m_states; // one for each level
};

} // namespace pm::kit
