#pragma once

#include <cstddef>
#include <cstdint>
#include <pm/object.h>

// Walks a subtree depth-first and gives each value as text. Made by PM_Object::newIterator().
//
// The start node is current from the beginning: read its properties before the first nextNode(). Each node
// with children is met a second time, with NODE_PARENT, when its last child is done, and its properties can
// then be read again. The walked subtree must not change during the walk.
//
//     std::unique_ptr<PM_Iterator> it(object.newIterator(u"\\media", 0));
//     char* value = nullptr;
//     std::size_t size = 0;
//     PropType type = PROP_NONE;
//     PM_Object::NodeType step{};
//     do {
//         while (const char16_t* name = it->nextProp(value, size, type)) { ... }
//     } while (it->nextNode(step));
class PM_API PM_Iterator : public PM_Mem_Obj {
public:
    ~PM_Iterator() override;
    PM_Iterator(const PM_Iterator&) = delete;
    PM_Iterator& operator=(const PM_Iterator&) = delete;

    // Moves on; the name of the node moved to, or null at the end. `type` tells how the step went.
    const char16_t* nextNode(PM_Object::NodeType& type);

    // Moves to the next property of the current node; its name, or null when there are no more, which also
    // releases the last value. Pass the same `value` and `size` each time, starting with null and 0: the
    // iterator owns the text between calls. A walk given up early leaves `value` to the caller, who releases
    // it with PM_Mem_Obj::operator delete(value).
    //
    //   type         value                                                        size
    //   PROP_STRING  the stored bytes: wide text, unless it was set narrow        stored size + 1
    //   PROP_LONG    narrow decimal text                                          12
    //   PROP_DOUBLE  wide text, exact: "2.5", or "0.33333333333 (55555555U3_#T@)" 128
    //   PROP_BOOL    narrow "TRUE" or "FALSE"                                     8
    //   PROP_VOID    narrow uppercase hexadecimal digits                          2 * stored size + 1
    //
    // Numbers: 53 (PM_Error) for raw data of size 0, 55 without memory, 58 and 59 as GetProperty(). A
    // property of no type gives null with `type` PROP_NONE and ends the properties of its node.
    const char16_t* nextProp(char*& value, std::size_t& size, PropType& type);

    // The node and property that the walk stands on, for view.h. Null at the end of the walk; currentProp()
    // also before the first nextProp() on a node and when there are no more.
    const PM_Node* currentNode() const { return m_node; }
    const PM_Property* currentProp() const { return m_prop; }
    // Of the start node at first; null at the end. Valid as long as the node.
    const char16_t* getCurrentNodeName() const;

private:
    friend class PM_Object;
    PM_Iterator(const PM_Object& object, const char16_t* path, int depth);

    const char16_t* move_to(const PM_Node* node, PM_Object::NodeType step, PM_Object::NodeType& type);
    const char16_t* move_up(PM_Object::NodeType& type);
    const char16_t* end(PM_Object::NodeType& type);

    const PM_Node* m_node = nullptr;
    const PM_Node* m_start = nullptr;
    const PM_Property* m_prop = nullptr;
    PM_Object::NodeType m_state = PM_Object::NODE_SIBLING;
    std::int32_t m_max_depth;
    std::int32_t m_depth;
};
