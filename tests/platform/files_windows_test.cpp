#include "platform/files.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <pm/pm.h>
#include <pm_test_paths.h>
#include <string>

namespace {

using pm::test::TempFolder;

// Letters of several scripts, a pair of surrogates, and one that stands alone.
const std::u16string wide_name = u"\u00E4 \u4E00\u0416\U0001F600" + std::u16string(1, 0xD800);

} // namespace

TEST(NativeFileName, IsTheSameUnits) {
    EXPECT_EQ(L"", pm::native_file_name(u"").native());
    EXPECT_EQ(L"C:\\a/b.pia", pm::native_file_name(u"C:\\a/b.pia").native());
    EXPECT_EQ(std::wstring(wide_name.begin(), wide_name.end()), pm::native_file_name(wide_name).native());
}

TEST(WideFileName, IsTheSameUnits) {
    EXPECT_EQ(u"C:\\a/b.pia", pm::wide_file_name(L"C:\\a/b.pia"));
    EXPECT_EQ(wide_name, pm::wide_file_name(pm::native_file_name(wide_name)));
}

TEST(WideFileName, FilesHaveNamesOfAllScripts) {
    const TempFolder folder;
    const std::u16string name = folder.wide("") + u"\u00E4 \u4E00\u0416\U0001F600";
    PM_Object tree;
    tree.SetProperty(u"copies", 3);
    for (const PM_Object::FileType type : {PM_Object::FILE_PIA, PM_Object::FILE_DPIA, PM_Object::FILE_DOC}) {
        const std::u16string file = name + static_cast<char16_t>(u'0' + type);
        tree.save(file.c_str(), type, u"NAMES_1.0", u"\\");
        EXPECT_TRUE(std::filesystem::exists(pm::native_file_name(file)));
        if (type == PM_Object::FILE_DPIA) continue; // holds sections, and this tree none
        PM_Object loaded;
        loaded.load(file.c_str(), type, u"\\");
        EXPECT_TRUE(loaded.pathExists(u"copies"));
    }
}

TEST(WideFileName, DescriptionLiesInAFolderOfAnyName) {
    const TempFolder folder;
    const std::filesystem::path copy = folder.path() / L"\u4E00\u0416";
    std::filesystem::copy(PM_SAMPLES "/dx4200", copy);
    PM_Object tree;
    tree.load(pm::wide_file_name(copy / "strings.pdt").c_str(), PM_Object::FILE_PDT, u"\\");
    EXPECT_TRUE(tree.pathExists(u"\\media"));
}

TEST(FolderLength, DriveIsSplitOff) {
    EXPECT_EQ(2U, pm::folder_length(u"X:strings.pdt"));
    EXPECT_EQ(3U, pm::folder_length(u"X:\\strings.pdt"));
    EXPECT_EQ(4U, pm::folder_length(u"X:a/strings.pdt"));
    EXPECT_EQ(0U, pm::folder_length(u"strings.pdt"));
    EXPECT_EQ(0U, pm::folder_length(u""));
}

// The tables lie in the drive's current folder.
TEST(FolderLength, DescriptionIsLoadedByItsDriveAndName) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(PM_SAMPLES "/dx4200");
    const std::u16string drive = std::filesystem::current_path().root_name().u16string();
    PM_Object tree;
    tree.load((drive + u"strings.pdt").c_str(), PM_Object::FILE_PDT, u"\\");
    std::filesystem::current_path(before);
    ASSERT_EQ(2U, drive.size());
    EXPECT_TRUE(tree.pathExists(u"\\media"));
}

TEST(FileExists, DriveIsThere) {
    EXPECT_TRUE(pm::file_exists(u"C:\\"));
    EXPECT_FALSE(pm::file_exists(u"C:\\no such folder\\a"));
}
