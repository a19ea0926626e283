#include "inspect/inspect_support.h"
#include "support/exceptions.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <sys/stat.h>

namespace pm::test {
namespace {

TEST(IdentifyPosix, WhatIsNoFileInAFolderIsPassedOver) {
    const TempFolder folder;
    ASSERT_EQ(0, mkfifo((folder / "a.pdt").c_str(), 0600));
    ASSERT_EQ(0, mkfifo((folder / "strings.pdt").c_str(), 0600));
    std::filesystem::create_symlink("/dev/zero", folder / "b.pdt");
    const std::u16string name = folder.path().u16string();
    EXPECT_EQ(std::nullopt, find_string_file(name));
    expect_thrown<PM_Severe>([&] { (void)identify(name); }, PM_ERR_IS_A_FOLDER, u"pm::identify()",
                             name.c_str());
    const std::u16string file = folder.write("c.pdt", "DRFX_A \"a\"\n");
    EXPECT_EQ(file, find_string_file(name));
}

} // namespace
} // namespace pm::test
