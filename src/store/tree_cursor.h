#pragma once

#include "store/working_path.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <pm/object.h>
#include <string>
#include <string_view>

class PM_Node;
class PM_Property;

namespace pm {

// The place in a tree at which one load writes: a working path, and the nodes along it that have been
// reached, so that a property is set without its whole path being read again. What is set, made and raised,
// and when, is what PM_Object::setData() with the path's text does; names with a "\" or "*", and what is
// beyond a limit, go that way.
class TreeCursor {
public:
    // `base` has at most WorkingPath::capacity units. The object is borrowed.
    TreeCursor(PM_Object& object, std::u16string_view base);
    TreeCursor(const TreeCursor&) = delete;
    TreeCursor& operator=(const TreeCursor&) = delete;

    // A property's name, and whether it is one component as it stands.
    struct Name {
        Name(std::u16string_view name_text, bool is_plain) : text(name_text), plain(is_plain) {}
        Name(std::u16string_view name_text);
        Name(const std::u16string& name_text) : Name(std::u16string_view(name_text)) {}
        Name(const char16_t* name_text) : Name(std::u16string_view(name_text)) {}

        std::u16string_view text;
        bool plain; // holds no "\" and no "*", and isn't empty
    };

    // One level down: a node is made with its first property. False, with nothing done, for a path that would
    // be too long.
    bool push(std::u16string_view name);
    // One level up, at the last "\" of the path's text; false, with nothing done, if it has none.
    bool pop();
    // Whether the path has room for a name.
    bool has_room_for(std::u16string_view name) const;

    // push() and pop() of a property's name, which has room. A "\" in it leaves the path with what stands in
    // front; one at the path's end goes.
    void leave(const Name& name);
    // Whether leave() changes the path.
    bool is_moved_by(const Name& name) const;

    // The name that a property here is likely to have; empty if none is known. Valid as long as the tree
    // isn't changed by others.
    std::u16string_view expected_name() const;

    // Set a property here, strictly; there is room for its name. Numbers 51, 54 and 55 as setData().
    void set_data(const Name& name, const void* data, std::size_t size, PropType type);
    void set_long(const Name& name, std::int32_t value) { set_data(name, &value, sizeof value, PROP_LONG); }
    void set_double(const Name& name, double value) { set_data(name, &value, sizeof value, PROP_DOUBLE); }
    void set_bool(const Name& name, bool value) {
        const unsigned char stored = value ? 1 : 0;
        set_data(name, &stored, sizeof stored, PROP_BOOL);
    }
    // `text` holds no zero unit, and one follows it. One of more than 4096 units is cut to 4097.
    void set_string(const Name& name, std::u16string_view text);

    // The tree may have changed: to be called after anything else had it.
    void look_again() {
        m_reached = 0;
        m_models.fill(nullptr);
    }

    const char16_t* text() const { return m_path.text(); }

    // For tests: cursors that are made from now on take the long way for everything.
    static bool always_by_path;

private:
    // A level of the path: where its name ends in the text, and its node once it is reached.
    struct Level {
        std::size_t end = 0;
        PM_Node* node = nullptr;
    };
    class Names;
    static constexpr std::size_t most_levels = 254;
    static constexpr std::size_t most_models = 32;

    void add_base_levels();
    bool stands_at(const Level& level) const;
    std::u16string_view name_of(std::size_t level) const;
    void set_by_path(std::u16string_view name, const void* data, std::size_t size, PropType type);
    PM_Property& property_of(PM_Node& node, std::u16string_view name, PropType type);
    PM_Property& property_here(std::u16string_view name, PropType type);
    PM_Property& property_below(std::u16string_view name, PropType type);

    PM_Object& m_object;
    WorkingPath m_path;
    std::size_t m_count = 0;   // levels behind the first, which is the root
    std::size_t m_reached = 0; // the last level with a node
    bool m_in_step = true;     // the levels are those of the path's text
    bool m_by_path = false;    // the base needs the long way
    std::array<Level, most_levels + 1> m_levels;
    // Properties of a node in front, by their turn: nodes of one kind have the same names in the same order,
    // and such a name needs no look-up.
    std::array<const PM_Property*, most_models> m_models{};
    std::size_t m_turn = 0;
};

} // namespace pm
