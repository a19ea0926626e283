#include "platform/compound_bytes.h"
#include "platform/locked_file.h"
#include "support/temp_folder.h"
#include <fstream>
#include <gtest/gtest.h>

namespace pm {
namespace {

using test::bytes_of;

class LockedWindows : public testing::Test {
protected:
    // Whether another process can open the file for itself.
    bool is_free_for_another_process(const std::string& name) const {
        const test::ProgramRun run{
            PM_OPEN_LOCKED, {(folder / name).string()}, {}, folder / "out", folder / "err"};
        const int status = test::run_program(run);
        EXPECT_TRUE(status == 0 || status == 1) << status;
        return status == 0;
    }

    test::TempFolder folder;
};

TEST_F(LockedWindows, AnotherProcessIsRefusedTheFile) {
    auto file = LockedFile::open(folder.write("file", "content"));
    EXPECT_FALSE(is_free_for_another_process("file"));
    file.reset();
    EXPECT_TRUE(is_free_for_another_process("file"));
}

TEST_F(LockedWindows, OthersMayReadTheFileAndNotWriteIt) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    EXPECT_EQ("content", folder.read("file"));
    EXPECT_FALSE(std::ofstream(folder / "file", std::ios::binary | std::ios::app).is_open());
}

TEST_F(LockedWindows, FileThatSomebodyWritesIsRefused) {
    const auto name = folder.write("file", "content");
    {
        const std::ofstream writer(folder / "file", std::ios::binary | std::ios::app);
        ASSERT_TRUE(writer);
        EXPECT_EQ(nullptr, LockedFile::open(name));
    }
    EXPECT_NE(nullptr, LockedFile::open(name));
}

TEST_F(LockedWindows, FolderAndDeviceAreRefused) {
    for (const auto& name : {folder.wide("."), std::u16string(u"NUL")}) {
        EXPECT_EQ(nullptr, LockedFile::open(name));
        EXPECT_EQ(nullptr, LockedFile::create(name));
        EXPECT_FALSE(first_bytes(name, 8));
    }
}

} // namespace
} // namespace pm
