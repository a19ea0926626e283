#include "platform/compound_bytes.h"
#include "platform/locked_file.h"
#include "support/file_size_limit.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pm {
namespace {

using test::bytes_of;

class LockedPosix : public testing::Test {
protected:
    test::TempFolder folder;
};

TEST_F(LockedPosix, ContentStaysWhereThereIsNoRoomForTheNew) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    ASSERT_NE(nullptr, file);
    {
        const test::FileSizeLimit limit(100);
        EXPECT_FALSE(file->replace(std::vector<std::byte>(101)));
        EXPECT_TRUE(file->replace(std::vector<std::byte>(100, std::byte{'x'})));
    }
    EXPECT_EQ(std::string(100, 'x'), folder.read("file"));
}

TEST_F(LockedPosix, LinkToTheFileIsRefused) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    std::filesystem::create_symlink(folder / "file", folder / "soft");
    EXPECT_EQ(nullptr, LockedFile::open(folder.wide("soft")));
}

// Runs `action` in another process and gives whether it said true.
template<class Action>
bool true_in_another_process(Action action) {
    const pid_t child = fork();
    if (child == 0) _exit(action() ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST_F(LockedPosix, AnotherProcessIsRefusedTheFile) {
    const auto name = folder.write("file", "content");
    const auto can_open = [&name] { return LockedFile::open(name) != nullptr; };
    auto file = LockedFile::open(name);
    EXPECT_FALSE(true_in_another_process(can_open));
    file.reset();
    EXPECT_TRUE(true_in_another_process(can_open));
}

TEST_F(LockedPosix, FileIsFreeWhileAChildProcessKeepsACopyOfTheDescriptor) {
    const auto name = folder.write("file", "content");
    auto file = LockedFile::open(name);
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    const pid_t child = fork();
    if (child == 0) {
        close(ends[1]);
        char byte = 0;
        _exit(read(ends[0], &byte, 1) == 0 ? 0 : 1);
    }
    file.reset();
    EXPECT_NE(nullptr, LockedFile::open(name));
    close(ends[1]);
    close(ends[0]);
    waitpid(child, nullptr, 0);
}

TEST_F(LockedPosix, FolderPipeAndDeviceAreRefused) {
    ASSERT_EQ(0, mkfifo((folder / "pipe").c_str(), 0600));
    for (const auto& name : {folder.wide("."), folder.wide("pipe"), std::u16string(u"/dev/null")}) {
        EXPECT_EQ(nullptr, LockedFile::open(name));
        EXPECT_EQ(nullptr, LockedFile::create(name));
        EXPECT_FALSE(first_bytes(name, 8));
    }
}

std::ptrdiff_t open_files() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST_F(LockedPosix, NothingStaysOpenThatWasReadOrRefused) {
    const auto name = folder.write("file", "content");
    const auto before = open_files();
    EXPECT_TRUE(first_bytes(name, 4));
    EXPECT_FALSE(first_bytes(folder.wide("."), 4));
    EXPECT_EQ(nullptr, LockedFile::open(folder.wide(".")));
    {
        const auto file = LockedFile::open(name);
        EXPECT_EQ(nullptr, LockedFile::open(name));
    }
    EXPECT_EQ(before, open_files());
}

} // namespace
} // namespace pm
