#include "kit/folder_watch.h"
#include "support/system.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <pm/kit/check.h>
#include <pm/pm.h>
#include <sys/stat.h>

namespace {

using pm::kit::check_file;
using Lines = std::vector<std::string>;

Lines said(const std::string& file) {
    Lines lines;
    for (const auto& each : check_file(file)) {
        lines.push_back(fmt::format("{} {} {}", each.rule, each.number, each.message));
    }
    return lines;
}

// The memory of a process opens, and its first page can't be read.
TEST(CheckUnreadable, FileThatFailsWhileItIsReadIsTold) {
    EXPECT_EQ(Lines{"unreadable 82 The file can't be read."}, said("/proc/self/mem"));
}

TEST(CheckUnreadable, FolderThatMayNotBeListedIsTold) {
    const pm::test::TempFolder folder;
    const std::filesystem::path closed = folder / "closed";
    std::filesystem::create_directory(closed);
    folder.write("closed/b.pia", "PIAFILEVERSION_2.0\nb\n");
    const pm::test::UnreadableFile unreadable(closed);
    const Lines told{"unreadable 61 The folder can't be read."};
    EXPECT_EQ(told, said(closed.string()));
    EXPECT_EQ(told, said(folder.path().string()));
}

// It can be listed, but of what is in it nobody learns what it is.
TEST(CheckUnreadable, WhatAClosedFolderHoldsIsTold) {
    const pm::test::TempFolder folder;
    const std::filesystem::path closed = folder / "closed";
    std::filesystem::create_directory(closed);
    ASSERT_EQ(0, mkfifo((closed / "a").c_str(), 0600));
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(closed, std::filesystem::perms(0444));
    const bool was_root = pm::test::drop_rights_of_root();
    const Lines told = said(closed.string());
    if (was_root) pm::test::take_back_rights_of_root();
    std::filesystem::permissions(closed, std::filesystem::perms(0700));
    EXPECT_EQ(Lines{"unreadable 61 The file can't be opened."}, told);
}

TEST(CheckUnreadable, WhatIsNoFileInAFolderIsPassedOver) {
    const pm::test::TempFolder folder;
    folder.write("b.pia", "PIAFILEVERSION_2.0\nb\n");
    ASSERT_EQ(0, mkfifo((folder / "a.pia").c_str(), 0600));
    std::filesystem::create_symlink("nowhere", folder / "c.pia");
    EXPECT_EQ(Lines{"bad-line 57 \"b\" is no property, no node and no comment."},
              said(folder.path().string()));
}

TEST(CheckUnreadable, TableThatIsNoFileCannotBeOpened) {
    const pm::test::TempFolder folder;
    folder.write("strings.pdt", "DRFX_A \"a\"\n");
    ASSERT_EQ(0, mkfifo((folder / "A.pdt").c_str(), 0600));
    ASSERT_EQ(0, mkfifo((folder / "Media Type.pdt").c_str(), 0600));
    const Lines told = said(folder.path().string());
    EXPECT_EQ(1, std::ranges::count(told, "missing-table 56 The table isn't there, or can't be read."));
    EXPECT_EQ(20, std::ranges::count(told, "missing-table 63 The table isn't there, or can't be read."));
}

TEST(CheckTemporary, CopiesOfACompoundFileLieInFoldersOfTheirOwn) {
    const pm::test::TempFolder folder;
    const std::string name = (folder / "a.doc").string();
    pm::Tree tree;
    tree.set("\\a", 1);
    pm::save(tree, name, {.type = PM_Object::FILE_DOC});
    const std::filesystem::path temporary = folder / "temporary";
    std::filesystem::create_directory(temporary);
    const std::string before = std::filesystem::temp_directory_path().string();
    pm::test::set_variable(pm::test::temp_folder_variable, temporary.string());
    const pm::test::FolderWatch watch(temporary);
    EXPECT_TRUE(check_file(name, {.round_trip = true}).empty());
    pm::test::set_variable(pm::test::temp_folder_variable, before);
    EXPECT_EQ((Lines{"made a folder", "made a folder", "made a folder"}), watch.seen());
    EXPECT_TRUE(std::filesystem::is_empty(temporary));
}

} // namespace
