#pragma once

#include <pm/export.h>
#include <streambuf>

// A stream buffer whose get area is set from outside, to read a block of memory as a stream:
//
//     pm_srcstreambuf buffer;
//     buffer.setg(data, data, data + size);
//     std::istream stream(&buffer);
//
// It can't be written to and can't seek. PM_Object::load() needs to seek: over this buffer it ends with
// number 82 (PM_Severe); give it a std::stringstream.
class PM_API pm_srcstreambuf : public std::streambuf {
public:
    ~pm_srcstreambuf() override;

    // Start of the area, read position, end: egptr - gptr bytes are left to read. The memory stays the
    // caller's and must outlive the reading.
    void setg(char* eback, char* gptr, char* egptr);
};
