#include "support/temp_folder.h"
#include <gmock/gmock.h>
#include <pm/kit/check.h>

namespace pm::kit::test {
namespace {

namespace fs = std::filesystem;

TEST(CheckLinks, LinkToAFolderIsNotFollowed) {
    const pm::test::TempFolder folder;
    fs::create_directory(folder / "a");
    folder.write("a/a.pia", "PIAFILEVERSION_2.0\na\n");
    fs::create_directory_symlink(folder.path(), folder / "a" / "up");
    const std::vector<Diagnostic> found = check_file(folder.path().string());
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ("bad-line", found[0].rule);
    EXPECT_EQ((folder / "a/a.pia").string(), found[0].place.file);
}

} // namespace
} // namespace pm::kit::test
