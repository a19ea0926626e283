#include "platform/files.h"

#include "support/temp_folder.h"
#include <fstream>
#include <gtest/gtest.h>

namespace {

using pm::test::TempFolder;

} // namespace

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
    std::ofstream(folder.path() / u"\u00E4\u4E00") << "x";
    EXPECT_TRUE(pm::file_exists(folder.wide("") + u"\u00E4\u4E00"));
}
