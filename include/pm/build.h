#pragma once

#include <cstddef>
#include <pm/export.h>
#include <pm/object.h>
#include <string_view>

namespace pm {

// Makes, changes and removes nodes and properties by their handles, exactly as it is said: for what copies
// trees or makes them anew, where PM_Object's paths would resolve an index, guard a type or cut a text.
//
//     pm::TreeBuilder builder(object);
//     const PM_Node& media = builder.child(builder.root(), u"media");
//     builder.put(media, u"copies", {PROP_LONG, true, &number, sizeof number});
//
// Handles are those of view.h and must be of this object. A name is one component as it is, "*" included. A
// step takes the same time wherever in the tree it is done. All that throw raise, with place
// "pm::TreeBuilder":
//
//   50  PM_Severe            the object's tree is gone
//   51  PM_Warning           a name that is empty or holds a "\" or a zero, a node deeper than 256 components
//                            (detail: the name); the root, where it is to be erased (detail: "\")
//   78  PM_Warning           a type that there isn't (detail: the property's name)
//   55  PM_Memory_Exception  no memory; what was there is as it was, but that a property may have lost its
//   value
class PM_API TreeBuilder {
public:
    // What a property is beside its name. Null `data` is no value at all, which isn't one of no bytes.
    struct Content {
        PropType type = PROP_NONE;
        bool strict = true;
        const void* data = nullptr; // `size` bytes, copied as they are; not those of the same property
        std::size_t size = 0;
    };

    // The object is borrowed.
    explicit TreeBuilder(PM_Object& object) noexcept : m_object(&object) {}

    const PM_Node& root() const;
    // The child of that name, made as the last one if it is missing.
    const PM_Node& child(const PM_Node& parent, std::u16string_view name) const;
    // Null if there is none.
    const PM_Node* find_child(const PM_Node& parent, std::u16string_view name) const noexcept;
    const PM_Property* find_property(const PM_Node& node, std::u16string_view name) const noexcept;
    // The property of that name, in its place if it is there, else behind the others; then it is what
    // `content` says, whatever it was.
    const PM_Property& put(const PM_Node& node, std::u16string_view name, const Content& content) const;
    // False if there is none.
    bool erase_property(const PM_Node& node, std::u16string_view name) const;
    // The node with all below it.
    void erase(const PM_Node& node) const;

private:
    PM_Object* m_object;
};

} // namespace pm
