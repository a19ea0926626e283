#pragma once

#include "faults/subject.h"
#include <ostream>
#include <span>
#include <vector>

namespace pm::test {

// What an operation may do without memory and without telling; kept: programs know it so.
enum class LessDone {
    never,
    bad_line, // "57": a raw value of a text format is a bad line, with its default in place
    nothing,  // "nothing done": a section of a DPIA file isn't loaded
    rule      // "unreadable": the rule that a check tells of a file for which the system has no memory
};

// An operation whose memory fails.
struct MemoryOperation {
    const char* name; // of its test
    // What it must do with memory, whatever failed before.
    void (*run)(Subject&);
    // All that it may tell of where memory fails, and tells somewhere: class, number, place, detail, of a
    // file its name without folders.
    std::vector<const char*> told;
    LessDone less_done = LessDone::never;
    // What has to be done after a failure before it is tried again.
    void (*undo)(Subject&) = nullptr;

    friend void PrintTo(const MemoryOperation& operation, std::ostream* out) { *out << operation.name; }
};

// The failures of names, nodes, properties and values, and `others`.
std::vector<const char*> store_failures(std::vector<const char*> others = {});

std::span<const MemoryOperation> store_operations();
std::span<const MemoryOperation> filer_operations();
std::span<const MemoryOperation> codec_operations();
std::span<const MemoryOperation> kit_operations();
std::span<const MemoryOperation> c_operations();

} // namespace pm::test
