#include "platform/block_limit.h"
#include "platform/compound_storage.h"
#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace pm {
namespace {

constexpr std::size_t little = 100'000;

class CompoundMemory : public testing::Test {
protected:
    CompoundMemory() {
        const auto stream = root->CreateStream(u"name");
        EXPECT_TRUE(stream->Write(content.data(), content.size()));
    }

    test::TempFolder folder;
    std::u16string name = folder.wide("file.doc");
    std::string content = std::string(1'000'000, 'x');
    std::unique_ptr<IStorage> root = StgCreateDocfile(name);
};

TEST_F(CompoundMemory, FileThatIsTooLargeForItIsNotOpened) {
    root.reset();
    {
        const test::BlockLimit limit(little);
        EXPECT_EQ(nullptr, StgOpenStorage(name));
    }
    EXPECT_NE(nullptr, StgOpenStorage(name));
}

TEST_F(CompoundMemory, TreeThatIsTooLargeForItIsNotCommittedUntilThereIsRoom) {
    const std::string before = folder.read("file.doc");
    {
        const test::BlockLimit limit(little);
        EXPECT_FALSE(root->Commit());
    }
    EXPECT_EQ(before, folder.read("file.doc"));
    EXPECT_TRUE(root->Commit());
    EXPECT_NE(before, folder.read("file.doc"));
}

TEST_F(CompoundMemory, WriteThatIsTooLargeForItChangesNothing) {
    const auto stream = root->OpenStream(u"name");
    {
        const test::BlockLimit limit(little);
        EXPECT_FALSE(root->CreateStream(u"other")->Write(content.data(), content.size()));
        EXPECT_TRUE(stream->Write("y", 1));
    }
    root.reset();
    root = StgOpenStorage(name);
    char byte = 0;
    EXPECT_FALSE(root->OpenStream(u"other")->Read(&byte, 1));
    EXPECT_TRUE(root->OpenStream(u"name")->Read(&byte, 1));
    EXPECT_EQ('y', byte);
}

TEST_F(CompoundMemory, RootWhoseTreeIsTooLargeForItDiesQuietly) {
    const std::string before = folder.read("file.doc");
    {
        const test::BlockLimit limit(little);
        root.reset();
    }
    EXPECT_EQ(before, folder.read("file.doc"));
}

} // namespace
} // namespace pm
