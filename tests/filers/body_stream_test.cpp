#include "filers/body_stream.h"

#include "support/scoped_settings.h"
#include "support/temp_folder.h"
#include <cerrno>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <string>

namespace {

using pm::BodyStream;
using pm::test::ScopedVariable;
using pm::test::TempFolder;

std::ptrdiff_t files_in(const TempFolder& folder) {
    return std::distance(std::filesystem::directory_iterator(folder.path()), {});
}

void expect_keeps_bytes(BodyStream& body) {
    const std::string bytes("a=1\r\n\0b\n\xFF", 9);
    body.stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    body.stream().seekg(0);
    std::string read(bytes.size(), '\0');
    body.stream().read(read.data(), static_cast<std::streamsize>(read.size()));
    EXPECT_TRUE(body.stream().good());
    EXPECT_EQ(bytes, read);
    body.stream().seekg(0, std::ios::end);
    EXPECT_EQ(static_cast<std::streamoff>(bytes.size()), body.stream().tellg());
}

TEST(BodyStream, FileLivesAsLongAsTheStream) {
    const TempFolder folder;
    const ScopedVariable temp("TMPDIR", folder.path());
    {
        BodyStream body;
        ASSERT_EQ(1, files_in(folder));
        expect_keeps_bytes(body);
    }
    EXPECT_EQ(0, files_in(folder));
}

TEST(BodyStream, FileIsReadableByItsOwnerOnly) {
    const TempFolder folder;
    const ScopedVariable temp("TMPDIR", folder.path());
    const BodyStream body;
    const std::filesystem::directory_iterator file(folder.path());
    EXPECT_EQ(std::filesystem::perms(0600), file->status().permissions());
}

TEST(BodyStream, TwoStreamsHaveFilesOfTheirOwn) {
    const TempFolder folder;
    const ScopedVariable temp("TMPDIR", folder.path());
    BodyStream first;
    BodyStream second;
    EXPECT_EQ(2, files_in(folder));
    first.stream() << "first";
    expect_keeps_bytes(second);
}

TEST(BodyStream, FolderOfAnyNameIsUsed) {
    const TempFolder folder;
    std::filesystem::create_directory(folder / "\u00E4 \u4E2D");
    const ScopedVariable temp("TMPDIR", folder / "\u00E4 \u4E2D");
    {
        BodyStream body;
        EXPECT_FALSE(std::filesystem::is_empty(folder / "\u00E4 \u4E2D"));
        expect_keeps_bytes(body);
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder / "\u00E4 \u4E2D"));
}

TEST(BodyStream, MemoryIsUsedWithoutAFolder) {
    const TempFolder folder;
    const ScopedVariable temp("TMPDIR", folder / "missing");
    BodyStream body;
    expect_keeps_bytes(body);
}

TEST(BodyStream, MissingFolderLeavesNoErrorCode) {
    const TempFolder folder;
    const ScopedVariable temp("TMPDIR", folder / "missing");
    errno = 0;
    const BodyStream body;
    EXPECT_EQ(0, errno);
}

TEST(BodyStream, MemoryIsUsedForAFolderNameOf256Units) {
    const TempFolder folder;
    std::string name = folder.path();
    name += '/' + std::string(255 - name.size() - 1, 'x');
    ASSERT_EQ(255U, name.size());
    std::filesystem::create_directory(name);
    std::filesystem::create_directory(name + "y");
    {
        const ScopedVariable temp("TMPDIR", name);
        const BodyStream body;
        EXPECT_FALSE(std::filesystem::is_empty(name));
    }
    const ScopedVariable temp("TMPDIR", name + "y");
    BodyStream body;
    EXPECT_TRUE(std::filesystem::is_empty(name + "y"));
    expect_keeps_bytes(body);
}

} // namespace
