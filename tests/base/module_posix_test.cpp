#include "base/module.h"

#include <fstream>
#include <gtest/gtest.h>
#include <pm/exception.h>
#include <string>

namespace {

bool message_library_is_mapped() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (line.find("pmres9") != line.npos) return true;
    }
    return false;
}

TEST(ModulePosix, EndLetsTheMessageLibraryGo) {
    pm::module_entry(1, pm::process_start);
    ASSERT_NE(0U, GetPMErrResHandle());
    EXPECT_TRUE(message_library_is_mapped());
    pm::module_entry(1, pm::process_end);
    EXPECT_FALSE(message_library_is_mapped());
    pm::module_entry(1, pm::process_start);
    EXPECT_TRUE(message_library_is_mapped());
}

} // namespace
