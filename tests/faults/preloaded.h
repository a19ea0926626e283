#pragma once

#include "support/temp_folder.h"
#include <filesystem>
#include <string>

namespace pm::test {

// The library that fails or writes down calls, under a name without blanks, which stand between names there.
class Preloaded {
public:
    Preloaded() { std::filesystem::create_symlink(FAULTS_PRELOAD, m_folder / "faults.so"); }

    // For the environment of a program.
    std::string variable() const { return "LD_PRELOAD=" + (m_folder / "faults.so").string(); }

private:
    TempFolder m_folder;
};

} // namespace pm::test
