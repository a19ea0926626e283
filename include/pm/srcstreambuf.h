#pragma once

#include <pm/export.h>
#include <streambuf>

// A stream buffer whose get area is set from outside, to read a block of memory as a stream.
class PM_API pm_srcstreambuf : public std::streambuf {
public:
    ~pm_srcstreambuf() override;

    // Start of the area, read position, end: egptr - gptr bytes are left to read. The memory stays the
    // caller's and must outlive the reading.
    void setg(char* eback, char* gptr, char* egptr);
};
