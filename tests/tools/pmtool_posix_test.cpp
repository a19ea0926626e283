#include "tools/run_tool.h"

#include <sys/stat.h>

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

TEST_F(PmToolPosix, SpecialFileIsWrittenToAndStays) {
    std::filesystem::create_symlink("/dev/stdout", folder / "out.pia");
    const ToolRun result = run({"convert", "a.pia", "out.pia"});
    EXPECT_EQ(0, result.status);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "out.pia"));
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

} // namespace

} // namespace pm::test
