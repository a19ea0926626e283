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
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace {

// Which changes of owner and group fail as they do for a user who may not make them.
enum class Refused { none, owner, owner_and_group };
Refused refused_change = Refused::none;

// Whether files have one name only, as on many a memory stick.
bool link_fails = false;

// How often the rights of what stands under a name were changed, whatever that was by then.
int changes_by_name = 0;

} // namespace

// Stands before the system's own: the only way to have a change refused whoever runs the tests.
extern "C" int fchown(int file, uid_t owner, gid_t group) noexcept {
    const bool changes_owner = owner != static_cast<uid_t>(-1);
    const bool is_refused =
        refused_change == Refused::owner_and_group || (refused_change == Refused::owner && changes_owner);
    if (is_refused) {
        errno = EPERM;
        return -1;
    }
    return static_cast<int>(syscall(SYS_fchown, file, owner, group));
}

extern "C" int link(const char* from, const char* to) noexcept {
    if (link_fails) {
        errno = EPERM;
        return -1;
    }
    return static_cast<int>(syscall(SYS_linkat, AT_FDCWD, from, AT_FDCWD, to, 0));
}

extern "C" int chmod(const char* name, mode_t mode) noexcept {
    ++changes_by_name;
    return static_cast<int>(syscall(SYS_fchmodat, AT_FDCWD, name, mode));
}

namespace pm::test {

namespace {

using namespace pmtool;

constexpr uid_t nobody = 65534;

bool is_root() {
    return geteuid() == 0;
}

struct Identity {
    uid_t owner;
    gid_t group;

    bool operator==(const Identity&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Identity& identity) {
    return stream << identity.owner << ':' << identity.group;
}

// Owner and group for a file, as unlike those of a new file as the system lets whoever runs this choose them:
// root takes strangers, anybody else a group that he is in besides his own, if there is one.
Identity other_identity() {
    if (is_root()) return {1234, 2345};
    std::array<gid_t, 256> groups{};
    const int count = getgroups(static_cast<int>(groups.size()), groups.data());
    for (int i = 0; i < count; ++i) {
        if (groups[static_cast<std::size_t>(i)] != getegid())
            return {geteuid(), groups[static_cast<std::size_t>(i)]};
    }
    return {geteuid(), getegid()};
}

// While one lives, changes of owner and group are refused: root gives up his rights, anybody else is told so.
class Stranger {
public:
    explicit Stranger(Refused refused) { refused_change = m_was_root ? Refused::none : refused; }
    ~Stranger() { refused_change = Refused::none; }
    Stranger(const Stranger&) = delete;
    Stranger& operator=(const Stranger&) = delete;

private:
    bool m_was_root = is_root();
    OrdinaryUser m_user;
};

class SafeSave : public testing::Test {
protected:
    void make_file_of(const std::string& name, const Identity& identity, mode_t mode) const {
        folder.write(name, "old");
        ASSERT_EQ(0, chown(path(name).c_str(), identity.owner, identity.group));
        ASSERT_EQ(0, chmod(path(name).c_str(), mode));
    }

    Identity identity_of(const std::string& name) const {
        struct stat attributes {};
        stat(path(name).c_str(), &attributes);
        return {attributes.st_uid, attributes.st_gid};
    }

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

// Saves as somebody who is in a group besides his own: of root nobody.
bool save_as_member(const std::string& target, gid_t group) {
    const bool is_member =
        !is_root() || (setgroups(1, &group) == 0 && setgid(nobody) == 0 && setuid(nobody) == 0);
    if (is_member) save_safely(target, "new");
    return is_member;
}

// The list of access rights that the system keeps: owner rw, user 1234 r, group `group`, mask, others.
std::string access_list(std::uint16_t group, std::uint16_t mask, std::uint16_t others) {
    struct Entry {
        std::uint16_t tag;
        std::uint16_t rights;
        std::uint32_t id;
    };
    constexpr std::uint32_t no_id = 0xFFFFFFFF;
    const std::array entries = {Entry{0x01, 6, no_id}, Entry{0x02, 4, 1234}, Entry{0x04, group, no_id},
                                Entry{0x10, mask, no_id}, Entry{0x20, others, no_id}};
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

TEST_F(SafeSave, BackupWhereFilesHaveNoSecondNamesIsACopyWithTheSameRights) {
    folder.write("a", "old");
    chmod(path("a").c_str(), 0640);
    link_fails = true;
    changes_by_name = 0;
    save_safely(path("a"), "new", "~");
    link_fails = false;
    EXPECT_EQ(0, changes_by_name); // a link in its place would be followed
    EXPECT_EQ("new", folder.read("a"));
    EXPECT_EQ("old", folder.read("a~"));
    EXPECT_EQ(0640U, mode_of("a"));
    EXPECT_EQ(0640U, mode_of("a~"));
    EXPECT_EQ((std::vector<std::string>{"a", "a~"}), file_names());
}

TEST_F(SafeSave, WhatAKilledProgramLeftGoesWithTheNextSaving) {
    folder.write("a", "old");
    folder.write(".pmtool-scratch-AbCdEf", "half");
    folder.write(".pmtool-scratch-AbCdEf~", "older");
    folder.write(".pmtool-scratch-GhIjKl~", "older");
    folder.write(".pmtool-config", "the user's own");
    folder.write(".pmtool-scratch-pad", "the user's own");
    save_safely(path("a"), "new");
    EXPECT_EQ((std::vector<std::string>{".pmtool-config", ".pmtool-scratch-pad", "a"}), file_names());
}

TEST_F(SafeSave, WhatIsNoFileWasLeftByNoProgram) {
    ASSERT_EQ(0, mkfifo(path(".pmtool-scratch-AbCdEf").c_str(), 0600));
    ASSERT_EQ(0, mkfifo(path(".pmtool-scratch-GhIjKl~").c_str(), 0600));
    save_safely(path("a"), "new");
    EXPECT_EQ((std::vector<std::string>{".pmtool-scratch-AbCdEf", ".pmtool-scratch-GhIjKl~", "a"}),
              file_names());
}

TEST_F(SafeSave, ScratchFileOfAProgramThatLivesStays) {
    folder.write("a", "old");
    folder.write("b", "old");
    ScratchFile scratch(path("a"));
    scratch.write("new");
    save_safely(path("b"), "new");
    scratch.replace_target(std::nullopt);
    EXPECT_EQ("new", folder.read("a"));
    EXPECT_EQ((std::vector<std::string>{"a", "b"}), file_names());
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
    make_file_of("a", other_identity(), 0640);
    save_safely(path("a"), "new");
    EXPECT_EQ("new", folder.read("a"));
    EXPECT_EQ(other_identity(), identity_of("a"));
}

TEST_F(SafeSave, GroupThatIsNotKeptWidensNoRights) {
    chmod(folder.path().c_str(), 0777);
    make_file_of("a", other_identity(), 04664 | S_IWOTH);
    make_file_of("b", {is_root() ? nobody : geteuid(), other_identity().group}, 0660);
    {
        const Stranger stranger(Refused::owner_and_group);
        save_safely(path("a"), "new");
        save_safely(path("b"), "new");
    }
    EXPECT_EQ(is_root() ? nobody : geteuid(), identity_of("a").owner);
    // Who is in no other group has only files whose group is kept.
    const bool is_same_group = other_identity().group == getegid();
    EXPECT_EQ(is_same_group ? 04666U : 0666U, mode_of("a")); // others' rights, which the new group has anyway
    EXPECT_EQ(is_same_group ? 0660U : 0600U, mode_of("b"));
}

TEST_F(SafeSave, RefusedChangeToWhatIsTrueAlreadyTakesNoRights) {
    make_file_of("a", {geteuid(), getegid()}, 04674);
    refused_change = Refused::owner_and_group;
    save_safely(path("a"), "new");
    refused_change = Refused::none;
    EXPECT_EQ((Identity{geteuid(), getegid()}), identity_of("a"));
    EXPECT_EQ(04674U, mode_of("a"));
}

TEST_F(SafeSave, GroupIsKeptWhereOnlyTheOwnerCannotBe) {
    chmod(folder.path().c_str(), 0777);
    make_file_of("a", other_identity(), 0666);
    const pid_t child = fork();
    if (child == 0) {
        refused_change = is_root() ? Refused::none : Refused::owner;
        _exit(save_as_member(path("a"), other_identity().group) ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(0, status);
    EXPECT_EQ((Identity{is_root() ? nobody : geteuid(), other_identity().group}), identity_of("a"));
    EXPECT_EQ(0666U, mode_of("a"));
}

TEST_F(SafeSave, MissingFolderIsNamed) {
    EXPECT_EQ(path("no/b") + ": the folder " + path("no") + " doesn't exist (error 63); make it first",
              failure_of(path("no/b")));
}

TEST_F(SafeSave, FolderThatCannotBeWrittenIsNamed) {
    folder.write("a", "old");
    chmod(path("a").c_str(), 0666);
    chmod(folder.path().c_str(), 0555);
    std::string failure;
    {
        const OrdinaryUser user;
        failure = failure_of(path("a"));
    }
    chmod(folder.path().c_str(), 0755);
    EXPECT_EQ(path("a") + ": a file can't be made beside it in the folder " + folder.path().string() +
                  ": Access to the file is denied (error 61)",
              failure);
    EXPECT_EQ("old", folder.read("a"));
    EXPECT_EQ((std::vector<std::string>{"a"}), file_names());
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
