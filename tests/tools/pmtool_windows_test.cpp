#include "safe_save.h"
#include "support/system.h"
#include "system.h"
#include "tools/run_tool.h"

namespace pm::test {

namespace {

class PmToolWindows : public ToolTest {
protected:
    PmToolWindows() { folder.write("a.pia", "PIAFILEVERSION_2.0,tag\r\na=1\n"); }

    std::string path(const std::string& name) const { return (folder / name).string(); }
};

TEST_F(PmToolWindows, FileThatSomebodyHasForHimselfIsTrouble) {
    const UnreadableFile taken(folder / "a.pia");
    expect_trouble({"tree", "a.pia"}, "a.pia: Access to the file is denied (error 61)");
}

TEST_F(PmToolWindows, ReadOnlyFileStays) {
    folder.write("b.pia", "old");
    std::filesystem::permissions(folder / "b.pia", std::filesystem::perms::owner_read);
    expect_trouble({"convert", "a.pia", "b.pia"}, "b.pia: Access to the file is denied (error 61)");
    EXPECT_EQ("old", folder.read("b.pia"));
    EXPECT_EQ((std::vector<std::string>{"a.pia", "b.pia"}), file_names());
    std::filesystem::permissions(folder / "b.pia", std::filesystem::perms::owner_all);
}

TEST_F(PmToolWindows, TargetThatIsInUseStays) {
    folder.write("b.pia", "old");
    {
        const UnreadableFile taken(folder / "b.pia");
        EXPECT_EQ(2, run({"convert", "a.pia", "b.pia"}).status);
    }
    EXPECT_EQ("old", folder.read("b.pia"));
    EXPECT_EQ((std::vector<std::string>{"a.pia", "b.pia"}), file_names());
}

TEST_F(PmToolWindows, WhatAKilledProgramLeftGoesWithTheNextSaving) {
    folder.write(".pmtool-scratch-1a2b3c", "half");
    folder.write(".pmtool-scratch-pad", "the user's own");
    folder.write(".pmtool-config", "the user's own");
    pmtool::save_safely(path("a.pia"), "new");
    EXPECT_EQ("new", folder.read("a.pia"));
    EXPECT_EQ((std::vector<std::string>{".pmtool-config", ".pmtool-scratch-pad", "a.pia"}), file_names());
}

TEST_F(PmToolWindows, ScratchFileOfAProgramThatLivesStays) {
    pmtool::ScratchFile scratch(path("a.pia"));
    scratch.write("new");
    expect_output({"convert", "a.pia", "b.pia"}, "");
    scratch.replace_target(std::nullopt);
    EXPECT_EQ("new", folder.read("a.pia"));
    EXPECT_EQ((std::vector<std::string>{"a.pia", "b.pia"}), file_names());
}

TEST_F(PmToolWindows, DriveStandsInFrontOfAName) {
    const std::string drive = folder.path().root_name().string();
    expect_output({"get", drive + "a.pia", "a"}, "1\n");
    expect_output({"convert", drive + "a.pia", drive + "b.pia"}, "");
    EXPECT_EQ((std::vector<std::string>{"a.pia", "b.pia"}), file_names());
}

TEST_F(PmToolWindows, NameThatBeginsWithASlashIsNoOption) {
    expect_trouble({"get", "/a", "a"}, "/a: The file doesn't exist (error 63)");
}

TEST_F(PmToolWindows, NamesAreOfEveryScript) {
    const std::string name = "\xC3\xA4 \xE4\xB8\x80\xD0\x96\xF0\x9F\x98\x80.pia";
    expect_output({"convert", "a.pia", name}, "");
    expect_output({"get", name, "a"}, "1\n");
    expect_output({"set", name, "t", "\xD0\x96", "--utf8"}, "");
    expect_output({"get", name, "t"}, "\xD0\x96\n");
    EXPECT_EQ((std::vector<std::string>{"a.pia", name}), pmtool::names_in(folder.path().string()));
}

TEST_F(PmToolWindows, DeviceTakesWhatIsWritten) {
    expect_output({"convert", "a.pia", "NUL", "--to", "pia"}, "");
    EXPECT_EQ((std::vector<std::string>{"a.pia"}), file_names());
}

TEST_F(PmToolWindows, MissingFolderIsNamed) {
    expect_trouble({"convert", "a.pia", "no\\b.pia"},
                   "no\\b.pia: the folder no doesn't exist (error 63); make it first");
}

TEST_F(PmToolWindows, EditorMayLieInAFolderWithABlank) {
    folder.write("a.pia", "PIAFILEVERSION_2.0,tag\r\na=7\n");
    const std::filesystem::path editor = folder / "my editors";
    std::filesystem::create_directory(editor);
    std::filesystem::copy_file(PM_REPLACING_EDITOR, editor / "edit.exe");
    const ToolSetting setting{.environment = {"VISUAL=\"" + (editor / "edit.exe").string() + "\" 7 5"}};
    const ToolRun result = run({"edit", "a.pia"}, setting);
    EXPECT_EQ(0, result.status) << result.err;
    EXPECT_EQ("~ \\a: long 7 -> long 5\n", result.out);
}

} // namespace

} // namespace pm::test
