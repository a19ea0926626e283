#pragma once

#include "store/pmpmgr.h"
#include "store/working_path.h"
#include <array>
#include <cstddef>
#include <cstdint>
#include <pm/object.h>
#include <string>
#include <string_view>

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
    bool push(const Name& name);
    // One level up, at the last "\" of the path's text; false, with nothing done, if it has none.
    bool pop();
    // Whether the path has room for a name.
    bool has_room_for(std::u16string_view name) const {
        const std::size_t separator = m_path.ends_in_separator() ? 0 : 1;
        return m_path.length() + separator + name.size() <= WorkingPath::capacity;
    }

    // push() and pop() of a property's name, which has room. A "\" in it leaves the path with what stands in
    // front; one at the path's end goes.
    void leave(const Name& name);
    // Whether leave() changes the path.
    bool is_moved_by(const Name& name) const { return m_path.ends_in_separator() || !name.plain; }

    // The name that a property here is likely to have, which is plain; empty if none is known. Valid as long
    // as the tree isn't changed by others.
    std::u16string_view expected_name() const {
        const PM_Property* const model = m_levels[m_count].model;
        return model != nullptr && m_models_are_plain ? model->entry().view() : std::u16string_view();
    }

    // Set a property here, strictly; there is room for its name. Numbers 51, 54 and 55 as setData().
    void set_data(const Name& name, const void* data, std::size_t size, PropType type);
    void set_long(const Name& name, std::int32_t value);
    void set_double(const Name& name, double value);
    void set_bool(const Name& name, bool value);
    // `text` holds no zero unit, and one follows it. One of more than 4096 units is cut to 4097.
    void set_string(const Name& name, std::u16string_view text);

    // The tree may have changed: to be called after anything else had it.
    void look_again();

    const char16_t* text() const { return m_path.text(); }

    // For tests: cursors that are made from now on take the long way for everything.
    static bool always_by_path;

private:
    // A level of the path: where its name ends in the text, and its node once it is reached. Nodes of one
    // kind have the same names in the same order: the model is the property of the node that was reached
    // before at this level whose name is likely to come next. Such a name needs no look-up.
    struct Level {
        std::uint32_t end = 0;
        bool is_fresh = false; // the node has the names in front of the model, and no others
        PM_Node* node = nullptr;
        PM_Node* last = nullptr; // the node before
        const PM_Property* model = nullptr;

        bool expects(std::u16string_view name) const;
    };
    class Names;
    static constexpr std::size_t most_levels = 254;

    void add_base_levels();
    bool stands_at(const Level& level) const;
    std::u16string_view name_of(std::size_t level) const;
    PM_Property* append_as_model(std::u16string_view name);
    template<class T>
    void set_value(const Name& name, PropType type, T value);
    void set_otherwise(const Name& name, const void* data, std::size_t size, PropType type);
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
    bool m_models_are_plain = true; // no model may have a name with a "*"
};

} // namespace pm
