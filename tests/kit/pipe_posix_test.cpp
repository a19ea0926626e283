#include "support/temp_folder.h"
#include <fstream>
#include <gtest/gtest.h>
#include <pm/kit/file.h>
#include <sys/stat.h>
#include <thread>

namespace {

TEST(ReadFile, APipeIsReadOnce) {
    const pm::test::TempFolder folder;
    const std::filesystem::path pipe = folder / "pipe";
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    std::jthread writer([&pipe] { std::ofstream(pipe) << "PIAFILEVERSION_2.0,TAG\nn{\na=1\n}\n"; });
    const pm::kit::FileContent content = pm::kit::read_file({.file = pipe.string()});
    EXPECT_EQ(1, content.tree.at<int>("\\n\\a"));
    EXPECT_EQ("TAG", content.tag);
}

} // namespace
