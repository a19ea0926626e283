#include "faults/disk.h"
#include "faults/preloaded.h"
#include "faults/system_calls.h"
#include "support/exceptions.h"
#include "tools/run_tool.h"
#include <gmock/gmock.h>
#include <pm/pm.h>

namespace {

using namespace pm::test;

TEST(Disk, LosesWhatNothingFlushed) {
    const std::vector<DiskChange> changes = disk_changes("create b\nwrite b 0 7879\nname b a\n");
    const std::set<Folder> states = after_power_cuts({{"a", "old"}}, changes);
    EXPECT_TRUE(states.contains({{"a", ""}}));
    EXPECT_TRUE(states.contains({{"a", "x"}}));
    EXPECT_TRUE(states.contains({{"a", "old"}}));
    EXPECT_TRUE(states.contains({{"a", "old"}, {"b", "xy"}}));
}

TEST(Disk, KeepsWhatWasFlushed) {
    const std::vector<DiskChange> changes =
        disk_changes("create b\nwrite b 0 7879\nsync b\nname b a\nsync .\n");
    for (const Folder& state : after_power_cuts({{"a", "old"}}, changes)) {
        EXPECT_THAT(state.at("a"), testing::AnyOf("old", "xy"));
    }
}

class PowerCut : public ToolTest {
protected:
    Folder files() const {
        Folder all;
        for (const std::string& name : file_names()) {
            all[name] = folder.read(name);
        }
        return all;
    }

    // What the tool does to its folder.
    std::vector<DiskChange> changes_of(const std::vector<std::string>& arguments) {
        const std::filesystem::path log = m_log / "log";
        ToolSetting setting;
        setting.environment = {m_preloaded.variable(), "FAULTS_FOLDER=" + folder.path().string(),
                               "FAULTS_LOG=" + log.string(), "ASAN_OPTIONS=verify_asan_link_order=0"};
        const ToolRun result = run(arguments, setting);
        EXPECT_EQ(0, result.status) << result.err;
        return disk_changes(m_log.read("log"));
    }

    // Expects that whenever power fails, the file has its old or its new content.
    void expect_old_or_new(const std::string& name, const std::vector<std::string>& arguments) {
        const Folder before = files();
        const std::vector<DiskChange> changes = changes_of(arguments);
        const std::string after = folder.read(name);
        EXPECT_NE(before.at(name), after);
        std::set<std::string> contents;
        for (const Folder& state : after_power_cuts(before, changes)) {
            contents.insert(state.contains(name) ? state.at(name) : "missing");
        }
        EXPECT_EQ((std::set<std::string>{before.at(name), after}), contents);
        EXPECT_EQ(files(), *after_ordered_cuts(before, changes).find(files()));
    }

private:
    Preloaded m_preloaded;
    TempFolder m_log;
};

TEST_F(PowerCut, LeavesAPiaFileOldOrNew) {
    copy_sample("plotter.pia", "f.pia");
    expect_old_or_new("f.pia", {"set", (folder / "f.pia").string(), "\\media\\copies", "12"});
}

TEST_F(PowerCut, LeavesADpiaFileOldOrNew) {
    copy_sample("sections.dpia", "f.dpia");
    expect_old_or_new("f.dpia", {"set", (folder / "f.dpia").string(), "\\Office\\revision", "12"});
}

TEST_F(PowerCut, LeavesACompoundFileOldOrNew) {
    pm::Tree tree;
    tree.set("\\media\\copies", 2);
    tree.save((folder / "f.doc").string(), {.type = PM_Object::FILE_DOC});
    expect_old_or_new("f.doc", {"set", (folder / "f.doc").string(), "\\media\\copies", "12"});
}

TEST_F(PowerCut, LeavesATargetWithABackupOldOrNewAndTheBackupNoMixture) {
    copy_sample("plotter.pia", "f.pia");
    folder.write("f.pia~", "an older one");
    const Folder before = files();
    const std::vector<DiskChange> changes =
        changes_of({"set", (folder / "f.pia").string(), "\\media\\copies", "12", "--backup=~"});
    const Folder after = files();
    EXPECT_EQ(before.at("f.pia"), after.at("f.pia~"));
    for (const Folder& state : after_power_cuts(before, changes)) {
        ASSERT_TRUE(state.contains("f.pia"));
        EXPECT_THAT(state.at("f.pia"), testing::AnyOf(before.at("f.pia"), after.at("f.pia")));
        ASSERT_TRUE(state.contains("f.pia~"));
        EXPECT_THAT(state.at("f.pia~"), testing::AnyOf("an older one", before.at("f.pia")));
    }
}

// A save of the library itself writes in place: what a cut leaves is read as far as it goes, or refused, and
// never more than that.
void expect_told(PM_Object::FileType type, const char* name) {
    const TempFolder folder;
    const TempFolder other;
    PM_Object object;
    object.SetProperty(u"One\\data\\copies", 2);
    object.SetProperty(u"One\\data\\name", u"of the old file");
    object.save(folder.wide(name).c_str(), type, u"", u"\\");
    const Folder before{{name, folder.read(name)}};
    object.SetProperty(u"One\\data\\name", u"of the new file, which is longer");

    set_call_folder(folder.path().c_str());
    record_calls((other / "log").c_str());
    object.save(folder.wide(name).c_str(), type, u"", u"\\");
    record_calls(nullptr);
    set_call_folder(nullptr);

    const std::set<Folder> states = after_power_cuts(before, disk_changes(other.read("log")));
    EXPECT_TRUE(states.contains(before));
    EXPECT_TRUE(states.contains({{name, folder.read(name)}}));
    for (const Folder& state : states) {
        other.write("cut", state.at(name));
        PM_Object read;
        const auto thrown = thrown_by([&] { read.load(other.wide("cut").c_str(), type, u"\\"); });
        if (thrown) {
            EXPECT_GE(thrown->m_number, 50U);
        }
        EXPECT_NO_THROW(read.SetProperty(u"still\\usable", 1));
    }
}

TEST(PowerCutInPlace, LeavesAPiaFileThatIsReadOrRefused) {
    expect_told(PM_Object::FILE_PIA, "f.pia");
}

TEST(PowerCutInPlace, LeavesADpiaFileThatIsReadOrRefused) {
    expect_told(PM_Object::FILE_DPIA, "f.dpia");
}

TEST(PowerCutInPlace, LeavesACompoundFileThatIsReadOrRefused) {
    expect_told(PM_Object::FILE_DOC, "f.doc");
}

} // namespace
