#pragma once

#include <cstddef>
#include <pm/export.h>

// Base class of all heap objects of the store and of the codecs. Its operator new gives null in place of
// throwing: whoever makes an object of a derived class tests the result and raises number 55.
//
// A block that the library hands out (codec output, the value of an iterator that was given up early)
// comes from the same allocator and is released with PM_Mem_Obj::operator delete(block).
//
// Not for a program's own classes. Objects of the derived classes may be made on the stack or with new; a
// PM_Object that is made with new has to be tested for null:
//
//     std::unique_ptr<PM_Object> object(new PM_Object);
class PM_API PM_Mem_Obj {
public:
    PM_Mem_Obj() = default;
    virtual ~PM_Mem_Obj();

    // Null when there is no memory; never throws. There is no form for arrays.
    static void* operator new(std::size_t size) noexcept;
    // Takes what operator new of this class gave and blocks that the library handed out. Null is allowed and
    // does nothing.
    static void operator delete(void* block) noexcept;

private:
    static void* alloc(std::size_t size) noexcept;
};
