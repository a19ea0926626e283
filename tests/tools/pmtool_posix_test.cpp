#include "failure.h"
#include "tools/run_tool.h"
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <pm/error_number.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pm::test {

namespace {

class PmToolPosix : public ToolTest {
protected:
    PmToolPosix() { folder.write("a.pia", "PIAFILEVERSION_2.0,tag\r\na=1\n"); }

    static mode_t mode_of(const std::filesystem::path& path) {
        struct stat attributes {};
        stat(path.c_str(), &attributes);
        return attributes.st_mode & 07777;
    }

    // The exit code of a script in which $PMTOOL is the program.
    int run_shell(const std::string& script) const {
        const std::string command =
            "cd '" + folder.path().string() + "' || exit; PMTOOL='" PMTOOL "'; " + script;
        return WEXITSTATUS(std::system(command.c_str()));
    }
};

TEST_F(PmToolPosix, ModeOfTheTargetStays) {
    folder.write("b.pia", "");
    chmod((folder / "b.pia").c_str(), 0640);
    expect_output({"convert", "a.pia", "b.pia"}, "");
    EXPECT_EQ(0640U, mode_of(folder / "b.pia"));
}

TEST_F(PmToolPosix, NewFileHasTheModeOfAnyNewFile) {
    const mode_t before = umask(027);
    expect_output({"convert", "a.pia", "b.pia"}, "");
    umask(before);
    EXPECT_EQ(0640U, mode_of(folder / "b.pia"));
}

TEST_F(PmToolPosix, LinkStaysAndItsFileIsReplaced) {
    std::filesystem::create_directory(folder / "sub");
    folder.write("sub/real.pia", "old");
    std::filesystem::create_symlink("sub/real.pia", folder / "link.pia");
    expect_output({"convert", "a.pia", "link.pia"}, "");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.pia"));
    EXPECT_TRUE(folder.read("sub/real.pia").starts_with("PIAFILEVERSION_2.0,tag\r\n"));
}

TEST_F(PmToolPosix, LinkToNothingIsFilled) {
    std::filesystem::create_symlink("new.pia", folder / "link.pia");
    expect_output({"convert", "a.pia", "link.pia"}, "");
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link.pia"));
    EXPECT_TRUE(folder.read("new.pia").starts_with("PIAFILEVERSION_2.0,tag\r\n"));
}

TEST_F(PmToolPosix, LinkThatLeadsToItselfIsToldByItsName) {
    std::filesystem::create_symlink("loop", folder / "loop");
    folder.write("script", "set \\a long 2\n");
    const std::string message = "loop: " + pmtool::number_text(PM_ERR_STREAM_FAILED);
    expect_trouble({"set", "loop", "a", "1"}, message);
    expect_trouble({"rm", "loop", "a"}, message);
    expect_trouble({"apply", "loop", "script"}, message);
    expect_trouble({"convert", "a.pia", "loop", "--to", "pia"}, message);
    expect_trouble({"merge", "a.pia", "a.pia", "a.pia", "-o", "loop"}, message);
    expect_trouble({"bundle", "-o", "loop", "A=a.pia"}, message);
    expect_trouble({"set", "a.pia", "a", "2", "-o", "loop"}, message);
}

TEST_F(PmToolPosix, SpecialFileIsWrittenToAndStays) {
    std::filesystem::create_symlink("/dev/stdout", folder / "out.pia");
    const ToolRun result = run({"convert", "a.pia", "out.pia"});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "out.pia"));
}

TEST_F(PmToolPosix, StandardOutputByNameIsWrittenWhereItStands) {
    std::filesystem::create_symlink("/dev/stdout", folder / "out");
    const std::string text = run({"convert", "a.pia", "-", "--to", "pia"}).out;
    for (const std::string name : {"/dev/stdout", "/dev/fd/1", "/proc/self/fd/1", "out"}) {
        const std::string one = "$PMTOOL convert a.pia " + name + " --to pia";
        folder.write("appended", "old\n");
        EXPECT_EQ(0, run_shell(one + " >> appended"));
        EXPECT_EQ("old\n" + text, folder.read("appended"));
        EXPECT_EQ(0, run_shell("{ echo a; " + one + "; echo b; } > between"));
        EXPECT_EQ("a\n" + text + "b\n", folder.read("between"));
        EXPECT_EQ(0, run_shell("{ " + one + " || echo failed; } | cat > piped"));
        EXPECT_EQ(text, folder.read("piped"));
    }
    EXPECT_EQ(0, run_shell("exec 3> other; echo old >&3; $PMTOOL convert a.pia /proc/$$/fd/3 --to pia"));
    EXPECT_EQ("old\n" + text, folder.read("other"));
}

TEST_F(PmToolPosix, StandardOutputByNameThatIsClosedIsTrouble) {
    EXPECT_EQ(0, run_shell("$PMTOOL convert a.pia /dev/stdout --to pia 2> told >&-; test $? = 2"));
    EXPECT_EQ("pmtool: /dev/stdout: " + pmtool::number_text(PM_ERR_FILE_NOT_OPEN) + "\n",
              folder.read("told"));
}

TEST_F(PmToolPosix, CompoundFileThatAnotherProgramHasOpenIsRead) {
    expect_output({"convert", "a.pia", "a.doc"}, "");
    const int file = open((folder / "a.doc").c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(0, flock(file, LOCK_EX));
    expect_output({"get", "a.doc", "a"}, "1\n");
    expect_output({"check", "a.doc", "--roundtrip"}, "a.doc: no bad lines\n");
    expect_output({"diff", "a.pia", "a.doc"}, "a.pia and a.doc hold equal trees.\n");
    // What is in the middle of being written must not be written back.
    expect_trouble({"set", "a.doc", "a", "2"},
                   "a.doc: The file can't be opened, or it isn't a file of the expected kind (error 56)");
    close(file);
    expect_output({"set", "a.doc", "a", "2"}, "");
}

TEST_F(PmToolPosix, CompoundFileIsReadByManyAtOnceWhileItIsEdited) {
    expect_output({"convert", "a.pia", "a.doc"}, "");
    constexpr int programs = 24;
    for (int i = 1; i <= programs; ++i) {
        if (fork() != 0) continue;
        if (i % 4 == 0) _exit(run({"set", "a.doc", "n" + std::to_string(i), std::to_string(i)}).status);
        const ToolRun result = run({"get", "a.doc", "a"});
        _exit(result.out == "1\n" ? result.status : 3);
    }
    for (int i = 1; i <= programs; ++i) {
        int status = 0;
        wait(&status);
        EXPECT_EQ(0, status);
    }
    expect_output({"get", "a.doc", "n4", "n8", "n12", "n16", "n20", "n24"}, "4\n8\n12\n16\n20\n24\n");
}

TEST_F(PmToolPosix, CompoundFileThatCanOnlyBeReadIsRead) {
    expect_output({"convert", "a.pia", "a.doc"}, "");
    std::filesystem::permissions(folder / "a.doc", std::filesystem::perms(0444));
    EXPECT_EQ("1\n", run_unprivileged({"get", "a.doc", "a"}).out);
    EXPECT_EQ(0, run_unprivileged({"check", "a.doc"}).status);
    EXPECT_EQ(0, run_unprivileged({"set", "a.doc", "a", "2", "-o", "b.doc"}).status);
    expect_output({"get", "b.doc", "a"}, "2\n");
}

TEST_F(PmToolPosix, UnreadableFileIsTrouble) {
    std::filesystem::permissions(folder / "a.pia", std::filesystem::perms::none);
    const ToolRun result = run_unprivileged({"tree", "a.pia"});
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("pmtool: a.pia: Access to the file is denied (error 61)\n", result.err);
}

TEST_F(PmToolPosix, OutputThatCannotBeWrittenIsTrouble) {
    std::filesystem::create_symlink("/dev/full", folder / "full");
    expect_trouble({"convert", "a.pia", "full", "--to", "pia"},
                   "full: There is no space left on the disk (error 65)");
}

TEST(SystemError, QuotaThatIsUsedUpIsAFullDisk) {
    EXPECT_EQ(PM_ERR_DISK_FULL, pmtool::number_of_system_error(EDQUOT));
    EXPECT_EQ(PM_ERR_DISK_FULL, pmtool::number_of_system_error(ENOSPC));
    EXPECT_EQ(PM_ERR_STREAM_FAILED, pmtool::number_of_system_error(ERANGE));
}

} // namespace

} // namespace pm::test
