#include "safe_save.h"

#include "failure.h"
#include "support/ordinary_user.h"
#include "support/temp_folder.h"
#include "system.h"
#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <cstring>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace pm::test {

namespace {

using namespace pmtool;

class SafeSave : public testing::Test {
protected:
    std::string path(const std::string& name) const { return folder / name; }

    std::vector<std::string> file_names() const { return names_in(folder.path()); }

    mode_t mode_of(const std::string& name) const {
        struct stat attributes {};
        stat(path(name).c_str(), &attributes);
        return attributes.st_mode & 07777;
    }

    std::string failure_of(const std::string& target) const {
        try {
            save_safely(target, "new");
            return "";
        } catch (const Failure& e) {
            return e.what();
        }
    }

    TempFolder folder;
};

std::string attribute(const std::string& file, const char* name) {
    std::string value(256, '\0');
    const ssize_t size = getxattr(file.c_str(), name, value.data(), value.size());
    value.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return value;
}

// Saves as nobody, who is in a group besides his own.
bool save_as_member(const std::string& target, gid_t group) {
    const bool changed = setgroups(1, &group) == 0 && setgid(65534) == 0 && setuid(65534) == 0;
    if (changed) save_safely(target, "new");
    return changed;
}

// The list of access rights that the system keeps: owner rw, user 1234 r, group `group`, mask, others.
std::string access_list(std::uint16_t group, std::uint16_t mask, std::uint16_t others) {
    struct Entry {
        std::uint16_t tag;
        std::uint16_t rights;
        std::uint32_t id;
    };
    constexpr std::uint32_t nobody = 0xFFFFFFFF;
    const std::array entries = {Entry{0x01, 6, nobody}, Entry{0x02, 4, 1234}, Entry{0x04, group, nobody},
                                Entry{0x10, mask, nobody}, Entry{0x20, others, nobody}};
    std::string bytes("\2\0\0\0", 4);
    bytes.append(reinterpret_cast<const char*>(entries.data()), sizeof entries);
    return bytes;
}

TEST_F(SafeSave, ReplacesTheWholeFileAndLeavesNothingBeside) {
    folder.write("a", "a longer text than before");
    save_safely(path("a"), "new");
    EXPECT_EQ("new", folder.read("a"));
    EXPECT_EQ((std::vector<std::string>{"a"}), file_names());
}

TEST_F(SafeSave, BackupKeepsTheOldFile) {
    folder.write("a", "old");
    folder.write("a.bak", "older");
    save_safely(path("a"), "new", ".bak");
    EXPECT_EQ("new", folder.read("a"));
    EXPECT_EQ("old", folder.read("a.bak"));
    EXPECT_EQ((std::vector<std::string>{"a", "a.bak"}), file_names());
}

TEST_F(SafeSave, NewFileHasNoBackup) {
    save_safely(path("a"), "new", "~");
    EXPECT_EQ((std::vector<std::string>{"a"}), file_names());
}

TEST_F(SafeSave, ExtendedAttributesStay) {
    folder.write("a", "old");
    ASSERT_EQ(0, setxattr(path("a").c_str(), "user.origin", "plotter", 7, 0));
    save_safely(path("a"), "new");
    EXPECT_EQ("plotter", attribute(path("a"), "user.origin"));
}

TEST_F(SafeSave, AccessListStays) {
    folder.write("a", "old");
    const std::string list = access_list(4, 6, 0);
    ASSERT_EQ(0, setxattr(path("a").c_str(), "system.posix_acl_access", list.data(), list.size(), 0));
    const mode_t mode = mode_of("a");
    save_safely(path("a"), "new");
    EXPECT_EQ(list, attribute(path("a"), "system.posix_acl_access"));
    EXPECT_EQ(mode, mode_of("a"));
}

TEST_F(SafeSave, AccessListOfTheFolderGivesNobodyRightsToAFileWithoutOne) {
    folder.write("a", "old");
    chmod(path("a").c_str(), 0600);
    const std::string list = access_list(6, 6, 4);
    const std::string name = folder.path();
    ASSERT_EQ(0, setxattr(name.c_str(), "system.posix_acl_default", list.data(), list.size(), 0));
    save_safely(path("a"), "new");
    EXPECT_EQ("", attribute(path("a"), "system.posix_acl_access"));
    EXPECT_EQ(0600U, mode_of("a"));
}

TEST_F(SafeSave, OwnerAndGroupStayWhereTheSystemLetsIt) {
    if (geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    folder.write("a", "old");
    ASSERT_EQ(0, chown(path("a").c_str(), 1234, 2345));
    save_safely(path("a"), "new");
    struct stat attributes {};
    stat(path("a").c_str(), &attributes);
    EXPECT_EQ(1234U, attributes.st_uid);
    EXPECT_EQ(2345U, attributes.st_gid);
}

TEST_F(SafeSave, GroupThatIsNotKeptWidensNoRights) {
    if (geteuid() != 0) GTEST_SKIP() << "only root makes such a file";
    folder.write("a", "old");
    chmod(folder.path().c_str(), 0777);
    ASSERT_EQ(0, chown(path("a").c_str(), 1234, 2345));
    ASSERT_EQ(0, chmod(path("a").c_str(), 04664 | S_IWOTH));
    {
        const OrdinaryUser user;
        save_safely(path("a"), "new");
    }
    struct stat attributes {};
    stat(path("a").c_str(), &attributes);
    EXPECT_EQ(65534U, attributes.st_uid);
    EXPECT_EQ(0666U, attributes.st_mode & 07777); // others' rights, which the new group has anyway
    folder.write("b", "old");
    ASSERT_EQ(0, chown(path("b").c_str(), 65534, 2345));
    ASSERT_EQ(0, chmod(path("b").c_str(), 0660));
    {
        const OrdinaryUser user;
        save_safely(path("b"), "new");
    }
    EXPECT_EQ(0600U, mode_of("b"));
}

TEST_F(SafeSave, GroupIsKeptWhereOnlyTheOwnerCannotBe) {
    if (geteuid() != 0) GTEST_SKIP() << "only root makes such a file";
    folder.write("a", "old");
    chmod(folder.path().c_str(), 0777);
    ASSERT_EQ(0, chown(path("a").c_str(), 1234, 2345));
    ASSERT_EQ(0, chmod(path("a").c_str(), 0666));
    const pid_t child = fork();
    if (child == 0) {
        _exit(save_as_member(path("a"), 2345) ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(0, status);
    struct stat attributes {};
    stat(path("a").c_str(), &attributes);
    EXPECT_EQ(65534U, attributes.st_uid);
    EXPECT_EQ(2345U, attributes.st_gid);
}

TEST_F(SafeSave, MissingFolderIsNamed) {
    EXPECT_EQ(path("no/b") + ": the folder " + path("no") + " doesn't exist (error 63); make it first",
              failure_of(path("no/b")));
}

TEST_F(SafeSave, FolderThatCannotBeWrittenIsNamed) {
    if (geteuid() != 0) GTEST_SKIP() << "made for root, who gives up the right";
    folder.write("a", "old");
    chmod(path("a").c_str(), 0666);
    chmod(folder.path().c_str(), 0555);
    const OrdinaryUser user;
    EXPECT_EQ(path("a") + ": a file can't be made beside it in the folder " + folder.path().string() +
                  ": Access to the file is denied (error 61)",
              failure_of(path("a")));
}

TEST_F(SafeSave, PipeThatNobodyReadsIsRefused) {
    ASSERT_EQ(0, mkfifo(path("pipe").c_str(), 0600));
    EXPECT_EQ(path("pipe") + ": nobody reads from this pipe", failure_of(path("pipe")));
}

TEST_F(SafeSave, PipeThatIsReadIsWrittenTo) {
    ASSERT_EQ(0, mkfifo(path("pipe").c_str(), 0600));
    std::string got;
    std::thread reader([&] { got = read_whole(path("pipe")); });
    while (failure_of(path("pipe")) != "") {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    reader.join();
    EXPECT_EQ("new", got);
}

TEST_F(SafeSave, FullDiskIsSaid) {
    EXPECT_EQ("/dev/full: There is no space left on the disk (error 65)", failure_of("/dev/full"));
}

TEST_F(SafeSave, SignalThatEndsTheProgramLeavesNothing) {
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        folder.write("a", "old");
        const pid_t child = fork();
        if (child == 0) {
            std::signal(number, SIG_DFL); // may be ignored where tests run
            prepare_process();
            ScratchFile scratch(path("a"));
            scratch.write("half");
            raise(number);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status));
        EXPECT_EQ(number, WTERMSIG(status));
        EXPECT_EQ((std::vector<std::string>{"a"}), file_names());
        EXPECT_EQ("old", folder.read("a"));
    }
}

TEST_F(SafeSave, LocksWaitForEachOtherAcrossReplacing) {
    folder.write("count", "0");
    constexpr int children = 20;
    for (int i = 0; i < children; ++i) {
        if (fork() == 0) {
            const FileLock lock(path("count"));
            const int count = std::stoi(read_whole(path("count")));
            save_safely(path("count"), std::to_string(count + 1));
            _exit(0);
        }
    }
    for (int i = 0; i < children; ++i) {
        int status = 0;
        wait(&status);
        EXPECT_EQ(0, status);
    }
    EXPECT_EQ(std::to_string(children), folder.read("count"));
    EXPECT_EQ((std::vector<std::string>{"count"}), file_names());
}

} // namespace

} // namespace pm::test
