#include <gtest/gtest.h>
#include <pm/version.h>
#include <string>

namespace {

TEST(Version, LibraryIsAsOldAsItsHeaders) {
    EXPECT_EQ(PM_VERSION, pm_version());
}

TEST(Version, TextHoldsTheThreeNumbers) {
    EXPECT_EQ(PM_VERSION_TEXT, std::to_string(PM_VERSION_MAJOR) + '.' + std::to_string(PM_VERSION_MINOR) +
                                   '.' + std::to_string(PM_VERSION_PATCH));
}

TEST(Version, NumberGrowsFromPatchToMajor) {
    EXPECT_EQ(PM_VERSION_MAJOR, pm_version() / 10000);
    EXPECT_EQ(PM_VERSION_MINOR, pm_version() / 100 % 100);
    EXPECT_EQ(PM_VERSION_PATCH, pm_version() % 100);
}

} // namespace
