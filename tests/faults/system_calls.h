#pragma once

#include <cstdint>

// The system's calls for files, which fail or are written down on demand: those of the program that this unit
// is linked into, or of one that it is preloaded into (preload.cpp). Only files of one folder count.
namespace pm::test {

// Kinds of calls, to be joined.
enum Call : unsigned {
    call_open = 1,
    call_read = 2,
    call_write = 4,
    call_size = 8, // truncating and reserving
    call_sync = 16,
    call_name = 32 // renaming and linking
};

struct CallFault {
    unsigned calls = 0;      // the kinds that count; 0: nothing fails
    std::uint64_t place = 0; // of the failing one, from 0
    int code = 0;            // what errno becomes; 0: the call does half of what it is to do
    bool from_then_on = false;
};

// The folder whose files count, with what it begins with as its name; null: no files.
void set_call_folder(const char* folder);
void set_call_fault(const CallFault& fault);
// Whether a call failed since then.
bool call_fault_hit();
// While one lives, no call counts: what the test does for itself.
class CallsSpared {
public:
    CallsSpared();
    ~CallsSpared();
    CallsSpared(const CallsSpared&) = delete;
    CallsSpared& operator=(const CallsSpared&) = delete;
};
// Appends what changes the folder's files to the file of that name, a line each; null ends it.
//   create NAME | truncate NAME SIZE | write NAME OFFSET HEX | sync NAME | name OLD NEW | link OLD NEW |
//   unlink NAME; names are those below the folder, "." the folder itself.
void record_calls(const char* log);

} // namespace pm::test
