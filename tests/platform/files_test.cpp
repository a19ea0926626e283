#include "platform/files.h"

#include "support/temp_folder.h"
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
    folder.write("\xC3\xA4\xE4\xB8\x80", "x");
    EXPECT_TRUE(pm::file_exists(folder.wide("") + u"\u00E4\u4E00"));
}
