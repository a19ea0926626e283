#include "filers/failing_file.h"
#include "filers/pia_text.h"
#include "support/scoped_settings.h"
#include <sys/resource.h>

namespace pm::test {
namespace {

using FailingFilePosix = FailingFile;

TEST_F(FailingFilePosix, FolderIs82) {
    expect_load_failure(folder.path().u16string(), PM_ERR_STREAM_FAILED, u"PM_PIAFile::getVersion()");
    expect_save_failure(folder.path().u16string(), PM_ERR_STREAM_FAILED, open_place);
}

TEST_F(FailingFilePosix, TooManyOpenFilesAre62) {
    const std::u16string name = folder.write("a.pia", pia_header);
    rlimit before{};
    ASSERT_EQ(0, getrlimit(RLIMIT_NOFILE, &before));
    rlimit none = before;
    none.rlim_cur = 0;
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &none));
    const auto e = thrown_by([&] { object.load(name.c_str(), PM_Object::FILE_PIA, u"\\"); });
    ASSERT_EQ(0, setrlimit(RLIMIT_NOFILE, &before));
    ASSERT_TRUE(e);
    EXPECT_EQ(PM_ERR_TOO_MANY_FILES, e->m_number);
    EXPECT_EQ(std::u16string(open_place), e->m_place);
    EXPECT_EQ(name, e->m_detail);
}

TEST_F(FailingFilePosix, FullDeviceIs65) {
    expect_save_failure(u"/dev/full", PM_ERR_DISK_FULL, u"PM_PIAFile::save()");
}

TEST_F(FailingFilePosix, FullDeviceIs65WhenCompressed) {
    expect_thrown<PM_Severe>([&] { object.save(u"/dev/full", PM_Object::FILE_PIA, u"compress", u"\\"); },
                             PM_ERR_DISK_FULL, u"PM_PIAFile::save()", u"/dev/full");
}

// What lies on a full device.

TEST(FullDevice, IsToldByADpiaFile) {
    PM_Object object;
    object.SetProperty(u"s\\p", 1);
    expect_thrown<PM_Severe>([&] { object.save(u"/dev/full", PM_Object::FILE_DPIA, u"", u"s"); },
                             PM_ERR_DISK_FULL, u"PM_DPIAFile::write_directory", u"");
}

} // namespace
} // namespace pm::test
