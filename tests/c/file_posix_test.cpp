#include "c/c_support.h"

#include "support/temp_folder.h"
#include <gtest/gtest.h>

namespace {

using namespace pm::test;

TEST(CFilePosix, NameIsTheBytesOfTheSystem) {
    const TempFolder folder;
    const std::string name = (folder.path() / "n\xFF.pia").string();
    const CTree tree = small_tree();
    ASSERT_EQ(pm9_tree_save(tree.get(), name.data(), name.size(), nullptr, nullptr), PM9_OK);
    const CTree again = c_tree();
    ASSERT_EQ(pm9_tree_load(again.get(), name.data(), name.size(), nullptr, nullptr), PM9_OK);
    EXPECT_EQ(listed(again.get()), listed(tree.get()));
}

} // namespace
