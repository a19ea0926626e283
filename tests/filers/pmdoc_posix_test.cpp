#include "filers/pmdoc.h"
#include "support/exceptions.h"
#include "support/file_size_limit.h"
#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/object.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using pm::test::expect_thrown;

constexpr const char16_t* save_place = u"PM_DOCFile::save()";

class DocPosix : public testing::Test {
protected:
    void save() { object.save(path.c_str(), PM_Object::FILE_DOC, u"", u"\\"); }

    pm::test::TempFolder folder;
    std::u16string path = folder.wide("f.doc");
    PM_Object object;
};

TEST_F(DocPosix, ASecondOpenInAnotherProcessFails) {
    save();
    PM_DOCFile first(nullptr);
    first.open(path.c_str(), false);
    const pid_t child = fork();
    if (child == 0) {
        const auto e = pm::test::thrown_by([&] {
            PM_DOCFile second(nullptr);
            second.open(path.c_str(), false);
        });
        _exit(e && e->m_number == PM_ERR_NOT_OPENED ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(0, WEXITSTATUS(status));
}

TEST_F(DocPosix, AFileThatCannotGrowRaises60) {
    for (int node = 0; node < 50; ++node)
        object.SetProperty(u"n*\\p", std::u16string(500, u'x').c_str(), node);
    const pm::test::FileSizeLimit limit(8192);
    expect_thrown<PM_Severe>([&] { save(); }, PM_ERR_NOT_WRITTEN, save_place, path);
}

} // namespace
