#include "faults/system_calls.h"

#include <cstdlib>

// The library that is preloaded into a program: its environment tells what is to be done with its calls.
namespace {

unsigned long number_of(const char* variable) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? std::strtoul(text, nullptr, 10) : 0;
}

__attribute__((constructor)) void begin() {
    pm::test::set_call_folder(std::getenv("FAULTS_FOLDER"));
    pm::test::set_call_fault({static_cast<unsigned>(number_of("FAULTS_CALLS")), number_of("FAULTS_PLACE"),
                              static_cast<int>(number_of("FAULTS_CODE")), false});
    pm::test::record_calls(std::getenv("FAULTS_LOG"));
}

// A program whose calls didn't fail says so by this file.
__attribute__((destructor)) void end() {
    const char* const unmet = std::getenv("FAULTS_UNMET");
    if (unmet != nullptr && !pm::test::call_fault_hit()) pm::test::record_calls(unmet);
}

} // namespace
