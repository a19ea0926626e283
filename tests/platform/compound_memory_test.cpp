#include "platform/compound_bytes.h"
#include "platform/compound_storage.h"
#include "support/temp_folder.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <new>
#include <string>

namespace {

constexpr std::size_t no_limit = std::numeric_limits<std::size_t>::max();
std::size_t largest_block = no_limit;

// While one lives, there is no memory for a block of more than `size` bytes.
class BlockLimit {
public:
    explicit BlockLimit(std::size_t size) { largest_block = size; }
    ~BlockLimit() { largest_block = no_limit; }
    BlockLimit(const BlockLimit&) = delete;
    BlockLimit& operator=(const BlockLimit&) = delete;
};

} // namespace

// In place of those of the whole test program.
void* operator new(std::size_t size) {
    void* block = size <= largest_block ? std::malloc(size > 0 ? size : 1) : nullptr;
    if (block == nullptr) throw std::bad_alloc();
    return block;
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}

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
        const BlockLimit limit(little);
        EXPECT_EQ(nullptr, StgOpenStorage(name));
    }
    EXPECT_NE(nullptr, StgOpenStorage(name));
}

TEST_F(CompoundMemory, TreeThatIsTooLargeForItIsNotCommittedUntilThereIsRoom) {
    const std::string before = folder.read("file.doc");
    {
        const BlockLimit limit(little);
        EXPECT_FALSE(root->Commit());
    }
    EXPECT_EQ(before, folder.read("file.doc"));
    EXPECT_TRUE(root->Commit());
    EXPECT_NE(before, folder.read("file.doc"));
}

TEST_F(CompoundMemory, WriteThatIsTooLargeForItChangesNothing) {
    const auto stream = root->OpenStream(u"name");
    {
        const BlockLimit limit(little);
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
        const BlockLimit limit(little);
        root.reset();
    }
    EXPECT_EQ(before, folder.read("file.doc"));
}

} // namespace
} // namespace pm
