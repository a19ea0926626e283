#include "platform/compound_writer.h"

#include "platform/compound_bytes.h"
#include "platform/compound_manifest.h"
#include "platform/compound_reader.h"
#include <gtest/gtest.h>
#include <string>

namespace pm {
namespace {

TEST(CompoundWriter, EmptyTreeGivesAFileWithoutElements) {
    const CompoundTree empty;
    const auto tree = read_compound_file(test::file_of(empty));
    ASSERT_NE(nullptr, tree);
    EXPECT_TRUE(tree->root().sound);
    EXPECT_TRUE(tree->root().children.empty());
}

class StreamOfSize : public testing::TestWithParam<std::size_t> {};

TEST_P(StreamOfSize, IsReadAsItWasWritten) {
    const std::string content = test::stream_content(GetParam());
    CompoundTree written;
    test::add_stream(written, written.root(), u"before", "x");
    test::add_stream(written, written.root(), u"name", content);
    test::add_stream(written, written.root(), u"behind", "y");
    const auto tree = read_compound_file(test::file_of(written));
    ASSERT_NE(nullptr, tree);
    EXPECT_EQ(content, test::text_of(tree->find(tree->root(), u"name")->data));
}

TEST_P(StreamOfSize, LiesInSectorsFrom4096BytesOn) {
    CompoundTree tree;
    test::add_stream(tree, tree.root(), u"name", std::string(GetParam(), 'x'));
    const auto file = test::file_of(tree);
    const std::uint32_t mini_stream =
        compound::get32(file, test::entry_at(file, u"Root Entry") + compound::size_at);
    EXPECT_EQ(GetParam() < 4096 ? (GetParam() + 63) / 64 * 64 : 0, mini_stream);
}

INSTANTIATE_TEST_SUITE_P(Sizes, StreamOfSize,
                         testing::Values(0, 1, 63, 64, 65, 511, 512, 513, 4032, 4095, 4096, 4097, 4608, 70000,
                                         8'000'000));

TEST(CompoundWriter, WhatCouldNotBeReadIsNotWritten) {
    CompoundTree tree;
    CompoundElement& storage = test::add_storage(tree, tree.root(), u"storage");
    CompoundElement& stream = test::add_stream(tree, storage, u"stream", "content");
    EXPECT_TRUE(write_compound_file(tree).has_value());
    stream.sound = false;
    EXPECT_FALSE(write_compound_file(tree).has_value());
    stream.sound = true;
    storage.sound = false;
    EXPECT_FALSE(write_compound_file(tree).has_value());
    storage.sound = true;
    tree.root().sound = false;
    EXPECT_FALSE(write_compound_file(tree).has_value());
}

TEST(CompoundWriter, NothingIsPrinted) {
    CompoundTree tree;
    test::add_stream(tree, tree.root(), std::u16string(31, u'\u540D'), "content").sound = false;
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_FALSE(write_compound_file(tree).has_value());
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
}

TEST(CompoundWriter, HalfAThousandLevelsAreWritten) {
    CompoundTree written;
    CompoundElement* storage = &written.root();
    for (int level = 0; level < 512; ++level)
        storage = &test::add_storage(written, *storage, u"level");
    test::add_stream(written, *storage, u"lowest", "content");
    const auto tree = read_compound_file(test::file_of(written));
    ASSERT_NE(nullptr, tree);
    storage = &tree->root();
    for (int level = 0; level < 512; ++level) {
        storage = tree->find(*storage, u"level");
        ASSERT_NE(nullptr, storage);
    }
    EXPECT_EQ("content", test::text_of(tree->find(*storage, u"lowest")->data));
}

} // namespace
} // namespace pm
