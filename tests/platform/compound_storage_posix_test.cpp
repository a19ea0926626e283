#include "platform/compound_storage_fixture.h"
#include "support/file_size_limit.h"

namespace pm {
namespace {

using CompoundStoragePosix = CompoundStorage;

TEST_F(CompoundStoragePosix, FullDiskIsTold) {
    write(*root, u"first", "1");
    ASSERT_TRUE(root->Commit());
    const std::string before = folder.read("file.doc");
    write(*root, u"second", std::string(10000, 'x'));
    {
        const test::FileSizeLimit limit(4096);
        EXPECT_FALSE(root->Commit());
        EXPECT_EQ(before, folder.read("file.doc"));
        root.reset();
        EXPECT_EQ(before, folder.read("file.doc"));
    }
    reopen();
    EXPECT_EQ(Names{u"first"}, names(*root));
}

TEST_F(CompoundStoragePosix, CommitSucceedsOnceThereIsRoom) {
    write(*root, u"name", std::string(10000, 'x'));
    {
        const test::FileSizeLimit limit(4096);
        EXPECT_FALSE(root->Commit());
    }
    EXPECT_TRUE(root->Commit());
    reopen();
    EXPECT_EQ(std::string(10000, 'x'), read(*root, u"name"));
}

TEST_F(CompoundStoragePosix, FileIsNotCreatedOnAFullDisk) {
    const test::FileSizeLimit limit(100);
    EXPECT_EQ(nullptr, StgCreateDocfile(folder.wide("other.doc")));
}

} // namespace
} // namespace pm
