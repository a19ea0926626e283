#include <pm/srcstreambuf.h>

pm_srcstreambuf::~pm_srcstreambuf() = default;

void pm_srcstreambuf::setg(char* eback, char* gptr, char* egptr) {
    std::streambuf::setg(eback, gptr, egptr);
}
