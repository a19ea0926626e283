#include "platform/compound_writer.h"

#include "platform/compound_bytes.h"
#include "platform/compound_manifest.h"
#include "platform/compound_reader.h"
#include <cstdint>
#include <gtest/gtest.h>
#include <string>

namespace pm {
namespace {

using namespace compound;

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
    const std::uint32_t mini_stream = get32(file, test::entry_at(file, u"Root Entry") + size_at);
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
    stream.repeats = 1;
    EXPECT_FALSE(write_compound_file(tree).has_value());
    stream.repeats = 0;
    storage.complete = false;
    EXPECT_FALSE(write_compound_file(tree).has_value());
    storage.complete = true;
    tree.root().complete = false;
    EXPECT_FALSE(write_compound_file(tree).has_value());
}

TEST(CompoundWriter, MoreThanAFileHoldsIsNotWritten) {
    CompoundTree tree;
    test::add_stream(tree, tree.root(), u"name", "content");
    const std::size_t size = test::file_of(tree).size();
    EXPECT_TRUE(write_compound_file(tree, size).has_value());
    EXPECT_FALSE(write_compound_file(tree, size - 1).has_value());
}

TEST(CompoundWriter, HeaderIsThatOfVersion3) {
    CompoundTree tree;
    test::add_stream(tree, tree.root(), u"name", "content");
    const auto file = test::file_of(tree);
    EXPECT_EQ(0x3E, get16(file, 24));
    EXPECT_EQ(3, get16(file, 26));
    EXPECT_EQ(0xFFFE, get16(file, 28));
    EXPECT_EQ(9, get16(file, 30));
    EXPECT_EQ(6, get16(file, 32));
    EXPECT_EQ(0U, get32(file, 40)); // number of directory sectors: of version 4 only
    EXPECT_EQ(1U, get32(file, fat_count_at));
    EXPECT_EQ(4096U, get32(file, mini_cutoff_at));
    EXPECT_EQ(1U, get32(file, mini_fat_count_at));
    EXPECT_EQ(end_of_chain, get32(file, difat_start_at));
    EXPECT_EQ(0U, get32(file, difat_count_at));
    EXPECT_EQ(0U, get32(file, difat_at));
    for (std::size_t place = 1; place < difat_in_header; ++place)
        EXPECT_EQ(free_sector, get32(file, difat_at + 4 * place)) << place;
}

TEST(CompoundWriter, EmptyFileHasNoMiniStream) {
    const CompoundTree tree;
    const auto file = test::file_of(tree);
    EXPECT_EQ(512U * 3, file.size());
    EXPECT_EQ(end_of_chain, get32(file, mini_fat_start_at));
    EXPECT_EQ(0U, get32(file, mini_fat_count_at));
    const std::size_t root = test::entry_at(file, u"Root Entry");
    EXPECT_EQ(end_of_chain, get32(file, root + start_at));
    EXPECT_EQ(0U, get32(file, root + size_at));
    EXPECT_EQ(no_entry, get32(file, root + child_at));
}

TEST(CompoundWriter, EmptyStreamHasNoSector) {
    CompoundTree tree;
    test::add_stream(tree, tree.root(), u"empty", "");
    const auto file = test::file_of(tree);
    const std::size_t at = test::entry_at(file, u"empty");
    EXPECT_EQ(end_of_chain, get32(file, at + start_at));
    EXPECT_EQ(0U, get32(file, at + size_at));
    EXPECT_EQ(0U, get32(file, at + size_at + 4));
}

TEST(CompoundWriter, UnusedEntriesPointNowhere) {
    CompoundTree tree;
    test::add_stream(tree, tree.root(), u"name", "content");
    const auto file = test::file_of(tree);
    for (std::size_t number = 2; number < 4; ++number) {
        const std::size_t at = test::entry_at(file, u"Root Entry") + entry_size * number;
        EXPECT_EQ(0, get16(file, at + name_size_at));
        EXPECT_EQ(std::byte{0}, file[at + type_at]);
        for (const std::size_t link : {left_at, right_at, child_at})
            EXPECT_EQ(no_entry, get32(file, at + link));
    }
}

// The table's sectors are marked in it, and so are those of their list; all behind the file's end is free.
void expect_marks(const test::Bytes& file) {
    const std::uint32_t fat = get32(file, fat_count_at);
    const std::uint32_t difat = get32(file, difat_count_at);
    const auto mark = [&file](std::size_t sector) { return get32(file, 512 + 4 * sector); };
    for (std::uint32_t sector = 0; sector < fat; ++sector)
        ASSERT_EQ(fat_sector, mark(sector)) << sector;
    for (std::uint32_t sector = fat; sector < fat + difat; ++sector)
        ASSERT_EQ(difat_sector, mark(sector)) << sector;
    for (std::size_t sector = file.size() / 512 - 1; sector < 128 * std::size_t{fat}; ++sector)
        ASSERT_EQ(free_sector, mark(sector)) << sector;
}

// The sectors around which the table needs one more of its own, or of its list.
class TableSize : public testing::TestWithParam<std::size_t> {};

TEST_P(TableSize, TablesHoldEverySector) {
    CompoundTree tree;
    CompoundElement& stream = test::add_stream(tree, tree.root(), u"name", "");
    stream.data.resize(512 * GetParam());
    for (std::size_t at = 0; at < stream.data.size(); at += 512)
        stream.data[at] = std::byte(at / 512 % 251);
    const auto file = test::file_of(tree);
    expect_marks(file);
    const auto again = read_compound_file(file);
    ASSERT_NE(nullptr, again);
    EXPECT_TRUE(stream.data == again->find(again->root(), u"name")->data);
}

INSTANTIATE_TEST_SUITE_P(Sectors, TableSize,
                         testing::Values(8, 125, 126, 127, 252, 253, 254, 13841, 13842, 13843, 13844, 30094,
                                         30095, 30096, 30097, 30098, 30099));

TEST(CompoundWriter, ListOfTableSectorsEndsInItsLastSector) {
    CompoundTree tree;
    test::add_stream(tree, tree.root(), u"name", std::string(512 * 30200, 'x'));
    const auto file = test::file_of(tree);
    const std::uint32_t fat = get32(file, fat_count_at);
    EXPECT_EQ(238U, fat);
    EXPECT_EQ(2U, get32(file, difat_count_at));
    EXPECT_EQ(fat, get32(file, difat_start_at));
    const std::size_t first = 512 * (fat + std::size_t{1});
    EXPECT_EQ(difat_in_header, get32(file, first));
    EXPECT_EQ(fat + 1, get32(file, first + 508));
    EXPECT_EQ(109U + 127, get32(file, first + 512));
    EXPECT_EQ(fat - 1, get32(file, first + 512 + 4));
    EXPECT_EQ(free_sector, get32(file, first + 512 + 8));
    EXPECT_EQ(end_of_chain, get32(file, first + 512 + 508));
}

TEST(CompoundWriter, RootsSizeCoversTheLastMiniSector) {
    CompoundTree tree;
    test::add_stream(tree, tree.root(), u"a", std::string(65, 'x'));
    test::add_stream(tree, tree.root(), u"b", "y");
    const auto file = test::file_of(tree);
    EXPECT_EQ(3U * 64, get32(file, test::entry_at(file, u"Root Entry") + size_at));
}

TEST(CompoundWriter, NamesAreWrittenAsTheyAre) {
    for (const std::u16string& name :
         {std::u16string(u"a\xD83D"), std::u16string(u"\xDE00"), std::u16string(31, u'\xDC80'),
          std::u16string(u"\xDE00\xD83D"), std::u16string(u"\U0001F600")}) {
        CompoundTree tree;
        test::add_stream(tree, tree.root(), name, "content");
        const auto file = test::file_of(tree);
        const std::size_t at = test::entry_at(file, name);
        EXPECT_EQ(0, get16(file, at + 2 * name.size()));
        const auto again = read_compound_file(file);
        ASSERT_NE(nullptr, again);
        ASSERT_NE(nullptr, again->find(again->root(), name));
        EXPECT_EQ(name, again->find(again->root(), name)->name);
        EXPECT_EQ("content", test::text_of(again->find(again->root(), name)->data));
    }
}

TEST(CompoundWriter, ClassIdentifiersAndStateBitsAreKept) {
    const auto number = [](CompoundElement& element, unsigned first) {
        for (std::byte& each : element.class_and_state)
            each = std::byte(first++);
    };
    CompoundTree tree;
    CompoundElement& storage = test::add_storage(tree, tree.root(), u"storage");
    CompoundElement& stream = test::add_stream(tree, storage, u"stream", "content");
    number(tree.root(), 1);
    number(storage, 50);
    number(stream, 100);
    const auto file = test::file_of(tree);
    const std::size_t at = test::entry_at(file, u"storage");
    for (std::size_t byte = 0; byte < 20; ++byte)
        EXPECT_EQ(std::byte(50 + byte), file[at + 80 + byte]);
    const auto again = read_compound_file(file);
    ASSERT_NE(nullptr, again);
    CompoundElement& storage_again = *again->find(again->root(), u"storage");
    EXPECT_EQ(tree.root().class_and_state, again->root().class_and_state);
    EXPECT_EQ(storage.class_and_state, storage_again.class_and_state);
    EXPECT_EQ(stream.class_and_state, again->find(storage_again, u"stream")->class_and_state);
}

TEST(CompoundWriter, ReplacedElementHasNoClassIdentifier) {
    CompoundTree tree;
    CompoundElement& storage = test::add_storage(tree, tree.root(), u"storage");
    storage.class_and_state.fill(std::byte{1});
    EXPECT_EQ(CompoundElement().class_and_state,
              test::add_storage(tree, tree.root(), u"storage").class_and_state);
}

TEST(CompoundWriter, HundredThousandElementsOfOneStorageComeBack) {
    constexpr std::uint32_t count = 100'000;
    CompoundTree written;
    for (std::uint32_t number = 0; number < count; ++number) {
        const std::uint32_t mixed = number * 7919 % 100'003;
        const std::u16string name{static_cast<char16_t>(u'\u4E00' + mixed % 1000),
                                  static_cast<char16_t>(u'\u4E00' + mixed / 1000)};
        test::add_stream(written, written.root(), name, "content");
    }
    const auto tree = read_compound_file(test::file_of(written));
    ASSERT_NE(nullptr, tree);
    ASSERT_EQ(count, tree->root().children.size());
    for (auto one = written.root().children.begin(), other = tree->root().children.begin();
         one != written.root().children.end(); ++one, ++other) {
        ASSERT_EQ(one->first, other->first);
        ASSERT_TRUE(one->second->data == other->second->data);
    }
}

TEST(CompoundWriter, EightyThousandLevelsAreWrittenWithoutRecursion) {
    constexpr int levels = 80'000;
    CompoundTree written;
    CompoundElement* storage = &written.root();
    for (int level = 0; level < levels; ++level)
        storage = &test::add_storage(written, *storage, u"level");
    test::add_stream(written, *storage, u"lowest", "content");
    const auto tree = read_compound_file(test::file_of(written));
    ASSERT_NE(nullptr, tree);
    storage = &tree->root();
    for (int level = 0; level < levels; ++level) {
        storage = tree->find(*storage, u"level");
        ASSERT_NE(nullptr, storage);
    }
    EXPECT_EQ("content", test::text_of(tree->find(*storage, u"lowest")->data));
}

} // namespace
} // namespace pm
