#include "platform/files.h"
#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <pm/pm.h>
#include <pm_test_paths.h>
#include <string>

namespace {

using pm::test::TempFolder;

} // namespace

TEST(NativeFileName, IsUtf8) {
    EXPECT_EQ("", pm::native_file_name(u""));
    EXPECT_EQ("/a/b.pia", pm::native_file_name(u"/a/b.pia"));
    EXPECT_EQ("/\xC3\xA4\xE4\xB8\x80\xF0\x9F\x98\x80", pm::native_file_name(u"/\u00E4\u4E00\U0001F600"));
}

TEST(NativeFileName, UnitFromDC80ToDCFFThatStandsAloneIsAByte) {
    EXPECT_EQ("/\x80\xE4\xFF", pm::native_file_name(std::u16string({u'/', 0xDC80, 0xDCE4, 0xDCFF})));
    EXPECT_EQ("/?", pm::native_file_name(std::u16string({u'/', 0xDC7F})));
    EXPECT_EQ("/?", pm::native_file_name(std::u16string({u'/', 0xD800})));
}

TEST(WideFileName, ShowsEveryNameSoThatItCanBeGiven) {
    for (const char* name :
         {"", "/a/b.pia", "/\xC3\xA4\xF0\x9F\x98\x80", "caf\xE9", "\xE4\xB8", "\xED\xA0\x80\xFF"}) {
        EXPECT_EQ(name, pm::native_file_name(pm::wide_file_name(name)));
    }
    EXPECT_EQ(u"/\u00E4\U0001F600", pm::wide_file_name("/\xC3\xA4\xF0\x9F\x98\x80"));
    EXPECT_EQ(std::u16string({u'c', 0xDCE9}), pm::wide_file_name("c\xE9"));
}

TEST(WideFileName, NamesOfRealFilesThatAreNoUtf8CanBeUsed) {
    const TempFolder folder;
    const std::string name = "caf\xE9 \xE4\xB8.pia";
    PM_Object tree;
    tree.SetProperty(u"copies", 3);
    tree.save(pm::wide_file_name(folder / name).c_str(), PM_Object::FILE_PIA, u"NAMES_1.0", u"\\");

    const auto found = *std::filesystem::directory_iterator(folder.path());
    EXPECT_EQ(folder / name, found.path());
    PM_Object loaded;
    loaded.load(pm::wide_file_name(found.path()).c_str(), PM_Object::FILE_PIA, u"\\");
    int copies = 0;
    EXPECT_TRUE(loaded.GetProperty(u"copies", copies));
    EXPECT_EQ(3, copies);
}

TEST(WideFileName, ReportsShowANameThatIsNoUtf8AsItWasGiven) {
    const TempFolder folder;
    const std::u16string name = pm::wide_file_name(folder / "caf\xE9");
    PM_Object tree;
    pm::test::expect_thrown<PM_Severe>([&] { tree.load(name.c_str(), PM_Object::FILE_PIA, u"\\"); },
                                       PM_ERR_NO_SUCH_FILE, u"PM_PIAFile::load()", name);
}

TEST(WideFileName, DescriptionLiesInAFolderWhoseNameIsNoUtf8) {
    const TempFolder folder;
    const std::filesystem::path copy = folder / "dx\xE9";
    std::filesystem::copy(PM_SAMPLES "/dx4200", copy);
    PM_Object tree;
    tree.load(pm::wide_file_name(copy / "strings.pdt").c_str(), PM_Object::FILE_PDT, u"\\");
    EXPECT_TRUE(tree.pathExists(u"\\media"));
}

TEST(WideFileName, CompoundFileHasANameThatIsNoUtf8) {
    const TempFolder folder;
    const std::u16string name = pm::wide_file_name(folder / "\xFF.doc");
    PM_Object tree;
    tree.SetProperty(u"copies", 3);
    tree.save(name.c_str(), PM_Object::FILE_DOC, u"NAMES_1.0", u"\\");
    EXPECT_TRUE(std::filesystem::exists(folder / "\xFF.doc"));
    PM_Object loaded;
    loaded.load(name.c_str(), PM_Object::FILE_DOC, u"\\");
    EXPECT_TRUE(loaded.pathExists(u"copies"));
}

TEST(FolderLength, ColonIsPartOfAName) {
    EXPECT_EQ(0U, pm::folder_length(u"X:strings.pdt"));
    EXPECT_EQ(2U, pm::folder_length(u"X\\strings.pdt"));
}

TEST(FileExists, LinkToNothingIsNoFile) {
    const TempFolder folder;
    std::filesystem::create_symlink(folder / "missing", folder / "link");
    EXPECT_FALSE(pm::file_exists(folder.wide("link")));
}
