#include "platform/compound_directory.h"

#include "platform/compound_bytes.h"
#include "platform/compound_reader.h"
#include "support/temp_folder.h"
#include <algorithm>
#include <bit>
#include <gtest/gtest.h>
#include <pm_test_paths.h>
#include <string>
#include <utility>
#include <vector>

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

TEST(CompoundDirectory, EveryStorageIsBalanced) {
    const auto tree = read_compound_file(
        test::bytes_of(test::TempFolder::read_file(PM_TEST_DATA "/compound/gsf_createole.doc")));
    ASSERT_NE(nullptr, tree);
    const Bytes file = test::file_of(*tree);
    for (const auto& [name, count] :
         {std::pair(u"Root Entry", 8), {u"list", 60}, {u"folder", 3}, {u"inner", 1}}) {
        TreeCheck check(file);
        check.check(check.child(name));
        EXPECT_EQ(count, check.count);
    }
}

TEST(CompoundDirectory, ElementsAreNumberedStorageByStorageInTheirOrder) {
    CompoundTree tree;
    CompoundElement& b = test::add_storage(tree, tree.root(), u"b");
    CompoundElement& a = test::add_storage(tree, tree.root(), u"a");
    CompoundElement& below_b = test::add_stream(tree, b, u"c", "");
    CompoundElement& below_a = test::add_stream(tree, a, u"d", "");
    const CompoundDirectory directory(tree);
    std::vector<const CompoundElement*> elements;
    for (const auto& entry : directory.entries())
        elements.push_back(entry.element);
    EXPECT_EQ((std::vector<const CompoundElement*>{&tree.root(), &a, &b, &below_a, &below_b}), elements);
    EXPECT_EQ(2U, directory.entries()[0].child);
    EXPECT_EQ(1U, directory.entries()[2].left);
    EXPECT_EQ(no_entry, directory.entries()[2].right);
}

} // namespace
} // namespace pm
