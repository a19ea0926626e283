#include "platform/locked_file.h"

#include "platform/compound_bytes.h"
#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>

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
    std::filesystem::create_directory(folder / "below");
    EXPECT_EQ(nullptr, LockedFile::open(folder.wide("hard")));
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

TEST_F(Locked, MissingFileIsOpenedByCreateAlone) {
    EXPECT_EQ(nullptr, LockedFile::open(folder.wide("file")));
    EXPECT_FALSE(std::filesystem::exists(folder / "file"));
    EXPECT_NE(nullptr, LockedFile::create(folder.wide("file")));
}

TEST_F(Locked, FileInAMissingFolderIsRefused) {
    EXPECT_EQ(nullptr, LockedFile::create(folder.wide("missing/file")));
    EXPECT_EQ(nullptr, LockedFile::create(u""));
}

TEST_F(Locked, FileThatMayOnlyBeReadIsRefused) {
    const auto name = folder.write("file", "content");
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(folder / "file", std::filesystem::perms(0444));
    const test::DroppedPrivileges scope;
    EXPECT_EQ(nullptr, LockedFile::open(name));
    EXPECT_EQ(bytes_of("content"), first_bytes(name, 100));
}

TEST_F(Locked, FirstBytesAreAtMostThoseOfTheFile) {
    EXPECT_EQ(bytes_of("cont"), first_bytes(folder.write("file", "content"), 4));
    EXPECT_EQ(bytes_of("content"), first_bytes(folder.wide("file"), 8));
    EXPECT_EQ(bytes_of(""), first_bytes(folder.write("empty", ""), 8));
    EXPECT_FALSE(first_bytes(folder.wide("missing"), 8));
}

TEST_F(Locked, FileThatMayNotBeReadGivesNoFirstBytes) {
    const auto name = folder.write("file", "content");
    const test::UnreadableFile secret(folder / "file");
    EXPECT_FALSE(first_bytes(name, 100));
}

TEST_F(Locked, FirstBytesAreReadOfALockedFileToo) {
    const auto file = LockedFile::open(folder.write("file", "content"));
    EXPECT_EQ(bytes_of("content"), first_bytes(folder.wide("file"), 100));
}

} // namespace
} // namespace pm
