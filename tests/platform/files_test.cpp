#include "platform/files.h"

#include "support/exceptions.h"
#include "support/temp_folder.h"
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <pm/pm.h>
#include <pm_test_paths.h>
#include <set>
#include <string>

namespace {

using pm::test::TempFolder;

// Sets TMPDIR, or unsets it, for one test.
class TempFolderSetting {
public:
    explicit TempFolderSetting(const char* value) {
        if (const char* set = std::getenv("TMPDIR")) m_before = set;
        apply(value);
    }
    ~TempFolderSetting() { apply(m_before ? m_before->c_str() : nullptr); }
    TempFolderSetting(const TempFolderSetting&) = delete;
    TempFolderSetting& operator=(const TempFolderSetting&) = delete;

private:
    static void apply(const char* value) {
        if (value != nullptr) {
            setenv("TMPDIR", value, 1);
        } else {
            unsetenv("TMPDIR");
        }
    }

    std::optional<std::string> m_before;
};

std::u16string make_temp_file_in(const char* folder) {
    const TempFolderSetting setting(folder);
    return pm::make_temp_file();
}

// A folder inside `folder` whose whole name has `length` units.
std::string make_folder_of_length(const TempFolder& folder, std::size_t length) {
    std::string name = folder.path().string();
    while (name.size() < length) {
        const std::size_t left = length - name.size();
        name += '/' + std::string(left < 100 ? left - 1 : std::min<std::size_t>(left - 3, 60), 'd');
    }
    std::filesystem::create_directories(name);
    return name;
}

bool is_in(const std::u16string& name, const std::string& folder) {
    return std::filesystem::path(name).parent_path() == folder;
}

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

TEST(FileExists, KnowsFilesAndFolders) {
    const TempFolder folder;
    EXPECT_TRUE(pm::file_exists(folder.write("a.pia", "")));
    EXPECT_TRUE(pm::file_exists(folder.wide("")));
    EXPECT_FALSE(pm::file_exists(folder.wide("b.pia")));
    EXPECT_FALSE(pm::file_exists(folder.wide("a.pia/b")));
    EXPECT_FALSE(pm::file_exists(u""));
}

TEST(FileExists, TakesNamesOutsideAscii) {
    const TempFolder folder;
    folder.write("\xC3\xA4\xE4\xB8\x80", "x");
    EXPECT_TRUE(pm::file_exists(folder.wide("") + u"\u00E4\u4E00"));
}

TEST(FileExists, LinkToNothingIsNoFile) {
    const TempFolder folder;
    std::filesystem::create_symlink(folder / "missing", folder / "link");
    EXPECT_FALSE(pm::file_exists(folder.wide("link")));
}

TEST(TempFile, IsANewEmptyFileOfItsOwn) {
    const TempFolder folder;
    std::set<std::u16string> names;
    for (int i = 0; i < 20; ++i) {
        const std::u16string name = make_temp_file_in(folder.path().c_str());
        EXPECT_TRUE(is_in(name, folder.path()));
        EXPECT_TRUE(names.insert(name).second);
        EXPECT_EQ(0U, std::filesystem::file_size(name));
        EXPECT_EQ(std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                  std::filesystem::status(name).permissions());
    }
}

TEST(TempFile, LiesInTheSystemsFolderByDefault) {
    for (const char* folder : {static_cast<const char*>(nullptr), ""}) {
        const std::u16string name = make_temp_file_in(folder);
        EXPECT_TRUE(is_in(name, "/tmp"));
        EXPECT_TRUE(pm::file_exists(name));
        pm::delete_file(name);
        EXPECT_FALSE(pm::file_exists(name));
    }
}

TEST(TempFile, ThereIsNoneInAMissingFolder) {
    const TempFolder folder;
    EXPECT_EQ(u"", make_temp_file_in((folder / "missing").c_str()));
}

TEST(TempFile, FolderNameMayHave255Units) {
    const TempFolder folder;
    const std::string longest = make_folder_of_length(folder, 255);
    ASSERT_EQ(255U, longest.size());
    EXPECT_TRUE(is_in(make_temp_file_in(longest.c_str()), longest));
    EXPECT_EQ(u"", make_temp_file_in(make_folder_of_length(folder, 256).c_str()));
}

TEST(TempFile, LengthOfTheFolderNameCountsInUnits) {
    const TempFolder folder;
    std::string name = (folder / "").string();
    for (int i = 0; i < 70; ++i) {
        name += "\xE4\xB8\x80";
    }
    std::filesystem::create_directory(name);
    EXPECT_TRUE(is_in(make_temp_file_in(name.c_str()), name));
}

TEST(TempFile, FolderNameThatIsNoUtf8IsTaken) {
    const TempFolder folder;
    const std::string name = (folder / "\xE4").string();
    std::filesystem::create_directory(name);
    const std::u16string file = make_temp_file_in(name.c_str());
    EXPECT_EQ(name, pm::native_file_name(file).parent_path());
    EXPECT_TRUE(pm::file_exists(file));
    pm::delete_file(file);
    EXPECT_TRUE(std::filesystem::is_empty(name));
}

TEST(DeleteFile, TakesAwayTheFile) {
    const TempFolder folder;
    const std::u16string name = folder.write("\xC3\xA4.tmp", "x");
    pm::delete_file(name);
    EXPECT_FALSE(pm::file_exists(name));
    pm::delete_file(name);
}
