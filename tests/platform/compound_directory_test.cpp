#include "platform/compound_directory.h"

#include "platform/compound_bytes.h"
#include "platform/compound_reader.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <pm_test_paths.h>
#include <set>
#include <string>

namespace pm {
namespace {

using namespace compound;
using test::Bytes;

// Checks a storage's tree of elements for order and colours.
class TreeCheck {
public:
    explicit TreeCheck(const Bytes& file) : m_file(file), m_start(test::entry_at(file, u"Root Entry")) {}

    // Gives the number of black entries on each way down.
    int check(std::uint32_t number, const std::u16string& low = {}, const std::u16string& high = {},
              bool red_above = true, int depth = 1) {
        if (number == no_entry) return 0;
        const std::size_t at = m_start + entry_size * number;
        const CompoundEntry entry = parse_compound_entry(std::span(m_file).subspan(at, entry_size), false);
        const std::u16string key = compound_name_key(entry.name);
        const bool is_red = m_file[at + colour_at] == red;
        EXPECT_TRUE(low.empty() || CompoundNameOrder()(low, key));
        EXPECT_TRUE(high.empty() || CompoundNameOrder()(key, high));
        EXPECT_FALSE(is_red && red_above);
        count += 1;
        deepest = std::max(deepest, depth);
        const int left = check(entry.left, low, key, is_red, depth + 1);
        EXPECT_EQ(left, check(entry.right, key, high, is_red, depth + 1));
        return left + (is_red ? 0 : 1);
    }

    std::uint32_t child(std::u16string_view name) const {
        return get32(m_file, test::entry_at(m_file, name) + child_at);
    }

    int count = 0;
    int deepest = 0;

private:
    const Bytes& m_file;
    std::size_t m_start;
};

Bytes fixture(const std::string& name) {
    return test::bytes_of(test::TempFolder::read_file(PM_TEST_DATA "/compound/" + name));
}

class Balanced : public testing::TestWithParam<int> {};

TEST_P(Balanced, TreeIsRedBlackInTheOrderOfNames) {
    CompoundTree tree;
    for (int number = 0; number < GetParam(); ++number) {
        test::add_stream(tree, tree.root(),
                         std::u16string(1, static_cast<char16_t>(u'\u4E00' + number * 37 % 1009)), "");
    }
    const Bytes file = test::file_of(tree);
    TreeCheck check(file);
    check.check(check.child(u"Root Entry"));
    EXPECT_EQ(GetParam(), check.count);
    EXPECT_EQ(std::bit_width(static_cast<unsigned>(GetParam())), static_cast<unsigned>(check.deepest));
}

INSTANTIATE_TEST_SUITE_P(Counts, Balanced,
                         testing::Values(0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 15, 16, 63, 64, 500));

TEST(CompoundDirectory, OrderOfAnotherWriterIsSetRight) {
    Bytes file = fixture("cfb_names.doc");
    ASSERT_TRUE(balance_compound_directory(file));
    TreeCheck check(file);
    check.check(check.child(u"Root Entry"));
    EXPECT_EQ(26, check.count);
    EXPECT_EQ(5, check.deepest);
}

TEST(CompoundDirectory, EveryStorageIsBalanced) {
    Bytes file = fixture("gsf_createole.doc");
    ASSERT_TRUE(balance_compound_directory(file));
    for (const auto& [name, count] :
         {std::pair(u"Root Entry", 8), {u"list", 60}, {u"folder", 3}, {u"inner", 1}}) {
        TreeCheck check(file);
        check.check(check.child(name));
        EXPECT_EQ(count, check.count);
    }
}

TEST(CompoundDirectory, NothingElseInTheFileChanges) {
    const Bytes before = fixture("cfb_many.doc");
    Bytes file = before;
    ASSERT_TRUE(balance_compound_directory(file));
    ASSERT_EQ(before.size(), file.size());
    const std::size_t start = 512 * (get32(file, directory_start_at) + std::size_t{1});
    const std::set<std::size_t> links{67, 68, 69, 70, 71, 72, 73, 74, 75, 76, 77, 78, 79};
    for (std::size_t at = 0; at < file.size(); ++at) {
        if (file[at] != before[at]) {
            EXPECT_TRUE(at >= start && links.count(at % entry_size) == 1) << at;
        }
    }
    EXPECT_NE(before, file);
}

TEST(CompoundDirectory, WhatIsNoCompoundFileIsLeftAlone) {
    Bytes file = test::bytes_of("text");
    EXPECT_FALSE(balance_compound_directory(file));
    EXPECT_EQ(test::bytes_of("text"), file);
}

TEST(CompoundDirectory, FileThatEndsInItsDirectoryIsLeftAlone) {
    CompoundTree tree;
    Bytes file = test::file_of(tree);
    const auto directory = static_cast<std::uint32_t>(file.size() / 512 - 1);
    put32(file, directory_start_at, directory);
    put32(file, test::successor_at(file, directory), end_of_chain);
    file.resize(file.size() + 100);
    const Bytes before = file;
    EXPECT_FALSE(balance_compound_directory(file));
    EXPECT_EQ(before, file);
}

TEST(CompoundDirectory, DirectoryWithACycleIsLeftAlone) {
    CompoundTree tree;
    Bytes file = test::file_of(tree);
    const std::uint32_t start = get32(file, directory_start_at);
    put32(file, test::successor_at(file, start), start);
    const Bytes before = file;
    EXPECT_FALSE(balance_compound_directory(file));
    EXPECT_EQ(before, file);
}

} // namespace
} // namespace pm
