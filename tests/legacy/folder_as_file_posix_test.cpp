#include "legacy/pmpcp.h"
#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <array>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/object.h>
#include <string>

namespace {

using pm::test::expect_thrown;

// A folder in place of a file.
class FolderAsFile : public testing::Test {
protected:
    pm::test::TempFolder folder;
    std::u16string name = folder.path().u16string();
    PM_Object object;
};

TEST_F(FolderAsFile, FailureOfAPcpFileNamesTheFile) {
    expect_thrown<PM_Severe>([&] { object.load(name.c_str(), PM_Object::FILE_PCP, u"\\"); }, PM_ERR_NOT_READ,
                             u"PM_PCPFile::load()", name);
}

TEST_F(FolderAsFile, FailureOfAPc2FileNamesTheFile) {
    expect_thrown<PM_Severe>([&] { object.load(name.c_str(), PM_Object::FILE_PC2, u"\\"); }, PM_ERR_NOT_READ,
                             u"PM_PC2File::getVersion()", name);
}

TEST_F(FolderAsFile, FailureOfACfgFileNamesTheFile) {
    expect_thrown<PM_Severe>([&] { object.load_cfg_section(name.c_str(), PM_Object::FILE_CFG, u"\\", 1); },
                             PM_ERR_NOT_READ, u"PM_CFGFile::load_section()", name);
}

TEST_F(FolderAsFile, VersionFailureOfAPcpFileNamesTheFile) {
    PM_PCPFile filer(nullptr);
    filer.open(name.c_str(), false);
    std::array<char16_t, 8> version{};
    expect_thrown<PM_Severe>([&] { filer.getVersion(version.data(), version.size()); }, PM_ERR_NOT_READ,
                             u"PM_PCPFile::getVersion()", name);
}

} // namespace
