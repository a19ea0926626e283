#include "kit/folder_watch.h"
#include "scratch_file.h"
#include "support/scoped_settings.h"
#include "support/system.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <pm/kit/loss.h>
#include <pm/pm.h>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;
using pm::test::ScopedVariable;
using Lines = std::vector<std::string>;

// While one lives, nothing is kept from anybody but by those who make it.
class OpenMask {
public:
    OpenMask() : m_before(umask(0)) {}
    ~OpenMask() { umask(m_before); }
    OpenMask(const OpenMask&) = delete;
    OpenMask& operator=(const OpenMask&) = delete;

private:
    mode_t m_before;
};

TEST(ScratchFile, FolderIsTheUsersAloneFromItsBeginning) {
    const pm::test::TempFolder folder;
    const ScopedVariable temporary(pm::test::temp_folder_variable, folder.path().string());
    const OpenMask mask;
    const pm::test::FolderWatch watch(folder.path());
    {
        const pm::kit::ScratchFile file("content");
        EXPECT_EQ("content", file.content());
        const fs::path made = fs::directory_iterator(folder.path())->path();
        EXPECT_EQ(fs::perms::owner_all, fs::status(made).permissions());
    }
    EXPECT_EQ(Lines{"made a folder"}, watch.seen());
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

// One to write, however often, one to read.
TEST(ScratchFile, CountsTwoForACompoundFileWithMuchThatCannotBeWritten) {
    pm::Tree tree;
    for (int i = 0; i < 20; ++i) {
        tree.set("\\too long\\*\\text", std::string(600, 'x'), i);
    }
    const pm::test::TempFolder folder;
    const ScopedVariable temporary(pm::test::temp_folder_variable, folder.path().string());
    const pm::test::FolderWatch watch(folder.path());
    EXPECT_EQ(20U, pm::kit::prepare(tree, {.type = PM_Object::FILE_DOC}).losses.size());
    EXPECT_EQ(Lines(2, "made a folder"), watch.seen());
    EXPECT_TRUE(fs::is_empty(folder.path()));
}

} // namespace
