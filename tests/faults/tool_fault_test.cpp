#include "faults/preloaded.h"
#include "faults/system_calls.h"
#include "faults/torture.h"
#include "tools/run_tool.h"
#include <cerrno>
#include <gmock/gmock.h>
#include <pm/pm.h>

namespace {

using namespace pm::test;

// The tool with one of its calls failing, in the folder of its files or in that of temporary ones.
class ToolFaults : public ToolTest {
protected:
    static constexpr std::uint64_t most_calls = 1000; // of a kind in an edit

    ToolRun run_failing(const std::vector<std::string>& arguments, const std::filesystem::path& where,
                        const CallFault& fault) {
        std::filesystem::remove(m_other / "unmet");
        ToolSetting setting;
        setting.environment = {m_preloaded.variable(),
                               "FAULTS_FOLDER=" + where.string(),
                               "FAULTS_CALLS=" + std::to_string(fault.calls),
                               "FAULTS_PLACE=" + std::to_string(fault.place),
                               "FAULTS_CODE=" + std::to_string(fault.code),
                               "FAULTS_UNMET=" + (m_other / "unmet").string(),
                               "TMPDIR=" + temporary.path().string(),
                               "ASAN_OPTIONS=verify_asan_link_order=0"};
        return run(arguments, setting);
    }
    bool was_unmet() const { return std::filesystem::exists(m_other / "unmet"); }

    // Sets a value with each call failing in turn: the file is the old one and that is told, or it is the new
    // one; nothing is left beside it.
    void expect_whole(const std::string& name, const std::filesystem::path& where) {
        const std::string old_content = folder.read(name);
        const std::vector<std::string> names = file_names();
        const std::vector<std::string> arguments = {"set", (folder / name).string(), "\\One\\copies", "12"};
        EXPECT_EQ(0, run(arguments).status);
        const std::string new_content = folder.read(name);
        EXPECT_NE(old_content, new_content);
        for (const unsigned calls : {call_open, call_read, call_write, call_size, call_sync, call_name}) {
            for (const int code : {EIO, ENOSPC, EACCES, EMFILE, ENOMEM}) {
                if (!torture() && code != (calls == call_write ? ENOSPC : EIO)) continue;
                for (CallFault fault{calls, 0, code}; !HasFailure(); ++fault.place) {
                    ASSERT_LT(fault.place, most_calls);
                    SCOPED_TRACE(testing::Message()
                                 << "kind " << calls << ", call " << fault.place << ", code " << code);
                    folder.write(name, old_content);
                    const ToolRun result = run_failing(arguments, where, fault);
                    if (result.status == 0) {
                        EXPECT_EQ(new_content, folder.read(name));
                    } else {
                        EXPECT_EQ(2, result.status);
                        EXPECT_EQ(old_content, folder.read(name));
                        EXPECT_THAT(result.err, testing::StartsWith("pmtool: "));
                    }
                    EXPECT_EQ(names, file_names());
                    EXPECT_TRUE(std::filesystem::is_empty(temporary.path()));
                    if (was_unmet()) {
                        EXPECT_EQ(0, result.status) << result.err;
                        break;
                    }
                }
            }
        }
    }

    void make(const std::string& name, PM_Object::FileType type) {
        pm::Tree tree;
        tree.set("\\One\\copies", 2);
        tree.set("\\One\\data\\copies", 2);
        tree.save((folder / name).string(), {.type = type});
    }

    TempFolder temporary;

private:
    TempFolder m_other;
    Preloaded m_preloaded;
};

TEST_F(ToolFaults, LeaveAPiaFileWhole) {
    make("f.pia", PM_Object::FILE_PIA);
    expect_whole("f.pia", folder.path());
}

TEST_F(ToolFaults, LeaveADpiaFileWhole) {
    make("f.dpia", PM_Object::FILE_DPIA);
    expect_whole("f.dpia", folder.path());
}

TEST_F(ToolFaults, LeaveACompoundFileWhole) {
    make("f.doc", PM_Object::FILE_DOC);
    expect_whole("f.doc", folder.path());
}

TEST_F(ToolFaults, InTheTemporaryFolderLeaveNothingThere) {
    make("f.doc", PM_Object::FILE_DOC);
    expect_whole("f.doc", temporary.path());
}

TEST_F(ToolFaults, OfAMissingTemporaryFolderAreTold) {
    make("f.doc", PM_Object::FILE_DOC);
    const std::string old_content = folder.read("f.doc");
    ToolSetting setting;
    setting.environment = {"TMPDIR=" + (folder / "missing").string()};
    const ToolRun result = run({"set", "f.doc", "\\One\\copies", "12"}, setting);
    EXPECT_EQ(2, result.status);
    EXPECT_THAT(result.err, testing::StartsWith("pmtool: "));
    EXPECT_EQ(old_content, folder.read("f.doc"));
}

} // namespace
