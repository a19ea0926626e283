#include "platform/locked_file.h"

#include "platform/compound_bytes.h"
#include "support/file_size_limit.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pm {
namespace {

using test::bytes_of;

class Locked : public testing::Test {
protected:
    test::TempFolder folder;
};

TEST_F(Locked, ContentIsReadWhole) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(bytes_of("content"), file->read(7));
}

TEST_F(Locked, MoreThanTheLimitIsNotRead) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    ASSERT_NE(nullptr, file);
    EXPECT_FALSE(file->read(6));
}

TEST_F(Locked, CreatedFileIsEmpty) {
    const auto file = LockedFile::create(folder.wide("file"));
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(bytes_of(""), file->read(100));
}

TEST_F(Locked, FileThatIsThereKeepsItsContentWhenCreated) {
    const auto file = LockedFile::create(folder.write("file", "content"));
    ASSERT_NE(nullptr, file);
    EXPECT_EQ(bytes_of("content"), file->read(100));
}

TEST_F(Locked, ReplacedContentMayBeLongerOrShorter) {
    const auto file = LockedFile::create(folder.wide("file"));
    ASSERT_NE(nullptr, file);
    EXPECT_TRUE(file->replace(bytes_of("longer content")));
    EXPECT_EQ("longer content", folder.read("file"));
    EXPECT_TRUE(file->replace(bytes_of("short")));
    EXPECT_EQ("short", folder.read("file"));
    EXPECT_TRUE(file->replace(bytes_of("")));
    EXPECT_EQ("", folder.read("file"));
}

TEST_F(Locked, ContentStaysWhereThereIsNoRoomForTheNew) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    ASSERT_NE(nullptr, file);
    {
        const test::FileSizeLimit limit(100);
        EXPECT_FALSE(file->replace(std::vector<std::byte>(101)));
        EXPECT_TRUE(file->replace(std::vector<std::byte>(100, std::byte{'x'})));
    }
    EXPECT_EQ(std::string(100, 'x'), folder.read("file"));
}

TEST_F(Locked, SecondOneOnTheFileIsRefused) {
    const auto name = folder.write("file", "content");
    const auto file = LockedFile::open(name);
    EXPECT_EQ(nullptr, LockedFile::open(name));
    EXPECT_EQ(nullptr, LockedFile::create(name));
    EXPECT_EQ("content", folder.read("file"));
}

TEST_F(Locked, OtherNamesOfTheFileAreRefused) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    std::filesystem::create_hard_link(folder / "file", folder / "hard");
    std::filesystem::create_symlink(folder / "file", folder / "soft");
    std::filesystem::create_directory(folder / "below");
    EXPECT_EQ(nullptr, LockedFile::open(folder.wide("hard")));
    EXPECT_EQ(nullptr, LockedFile::open(folder.wide("soft")));
    EXPECT_EQ(nullptr, LockedFile::open(folder.wide("below/../file")));
}

TEST_F(Locked, OtherFilesAreFree) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    EXPECT_NE(nullptr, LockedFile::open(folder.write("other", "content")));
}

TEST_F(Locked, FileIsFreeAgainWhenTheObjectDies) {
    const auto name = folder.write("file", "content");
    LockedFile::open(name).reset();
    EXPECT_NE(nullptr, LockedFile::open(name));
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

TEST_F(Locked, AnotherProcessIsRefusedTheFile) {
    const auto name = folder.write("file", "content");
    const auto can_open = [&name] { return LockedFile::open(name) != nullptr; };
    auto file = LockedFile::open(name);
    EXPECT_FALSE(true_in_another_process(can_open));
    file.reset();
    EXPECT_TRUE(true_in_another_process(can_open));
}

TEST_F(Locked, FileIsFreeWhileAChildProcessKeepsACopyOfTheDescriptor) {
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

TEST_F(Locked, MissingFileIsOpenedByCreateAlone) {
    EXPECT_EQ(nullptr, LockedFile::open(folder.wide("file")));
    EXPECT_FALSE(std::filesystem::exists(folder / "file"));
    EXPECT_NE(nullptr, LockedFile::create(folder.wide("file")));
}

TEST_F(Locked, FileInAMissingFolderIsRefused) {
    EXPECT_EQ(nullptr, LockedFile::create(folder.wide("missing/file")));
    EXPECT_EQ(nullptr, LockedFile::create(u""));
}

TEST_F(Locked, FolderPipeAndDeviceAreRefused) {
    ASSERT_EQ(0, mkfifo((folder / "pipe").c_str(), 0600));
    for (const auto& name : {folder.wide("."), folder.wide("pipe"), std::u16string(u"/dev/null")}) {
        EXPECT_EQ(nullptr, LockedFile::open(name));
        EXPECT_EQ(nullptr, LockedFile::create(name));
        EXPECT_FALSE(first_bytes(name, 8));
    }
}

TEST_F(Locked, FileThatMayOnlyBeReadIsRefused) {
    const auto name = folder.write("file", "content");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(folder / "file", std::filesystem::perms(0444));
    const test::DroppedPrivileges scope;
    EXPECT_EQ(nullptr, LockedFile::open(name));
    EXPECT_EQ(bytes_of("content"), first_bytes(name, 100));
}

TEST_F(Locked, FileThatMayNotBeReadGivesNoFirstBytes) {
    const auto name = folder.write("file", "content");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(folder / "file", std::filesystem::perms(0));
    const test::DroppedPrivileges scope;
    EXPECT_FALSE(first_bytes(name, 100));
}

TEST_F(Locked, FirstBytesAreAtMostThoseOfTheFile) {
    EXPECT_EQ(bytes_of("cont"), first_bytes(folder.write("file", "content"), 4));
    EXPECT_EQ(bytes_of("content"), first_bytes(folder.wide("file"), 8));
    EXPECT_EQ(bytes_of(""), first_bytes(folder.write("empty", ""), 8));
    EXPECT_FALSE(first_bytes(folder.wide("missing"), 8));
}

TEST_F(Locked, FirstBytesAreReadOfALockedFileToo) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    EXPECT_EQ(bytes_of("content"), first_bytes(folder.wide("file"), 100));
}

} // namespace
} // namespace pm
