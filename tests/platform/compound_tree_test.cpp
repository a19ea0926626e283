#include "platform/compound_tree.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pm {
namespace {

std::vector<std::u16string> names(const CompoundElement& storage) {
    std::vector<std::u16string> found;
    for (const auto& child : storage.children)
        found.push_back(child.second->name);
    return found;
}

TEST(CompoundName, OneTo31UnitsAreAllowed) {
    EXPECT_FALSE(compound_name_allowed(u""));
    EXPECT_TRUE(compound_name_allowed(u"n"));
    EXPECT_TRUE(compound_name_allowed(std::u16string(31, u'n')));
    EXPECT_FALSE(compound_name_allowed(std::u16string(32, u'n')));
}

TEST(CompoundName, SurrogatePairCountsAsTwoUnits) {
    std::u16string name(29, u'n');
    name += u"\U0001F600";
    EXPECT_TRUE(compound_name_allowed(name));
    EXPECT_FALSE(compound_name_allowed(name + u"n"));
}

TEST(CompoundName, SeparatorsAreNotAllowed) {
    for (const char16_t unit : std::u16string_view(u"/\\:!")) {
        EXPECT_FALSE(compound_name_allowed(std::u16string(1, unit)));
        EXPECT_FALSE(compound_name_allowed(std::u16string(u"before") + unit + u"behind"));
    }
}

TEST(CompoundName, ZeroUnitIsNotAllowed) {
    EXPECT_FALSE(compound_name_allowed(std::u16string_view(u"a\0b", 3)));
}

TEST(CompoundName, OtherUnitsAreAllowed) {
    EXPECT_TRUE(compound_name_allowed(u"\u0005SummaryInformation"));
    EXPECT_TRUE(compound_name_allowed(u" .*?\"<>|[]{}~"));
    EXPECT_TRUE(compound_name_allowed(u"\u540D\u524D\uFFFF"));
}

TEST(CompoundName, UnpairedSurrogateIsNotAllowed) {
    EXPECT_FALSE(compound_name_allowed(u"a\xD83D"));
    EXPECT_FALSE(compound_name_allowed(u"\xD83D"
                                       u"a"));
    EXPECT_FALSE(compound_name_allowed(u"\xDE00"
                                       u"a"));
    EXPECT_FALSE(compound_name_allowed(u"\xD83D\xD83D\xDE00"));
    EXPECT_TRUE(compound_name_allowed(u"\xD83D\xDE00"));
}

TEST(CompoundName, KeyIsEachUnitInUpperCase) {
    EXPECT_EQ(u"GR\u00D6\u00DFE 1", compound_name_key(u"Gr\u00F6\u00DFe 1"));
    EXPECT_EQ(u"\u041C\u041E", compound_name_key(u"\u043C\u043E"));
    EXPECT_EQ(u"\u03A3", compound_name_key(u"\u03C2"));
    EXPECT_EQ(u"\xD801\xDC28", compound_name_key(u"\xD801\xDC28"));
}

TEST(CompoundName, ShorterNamesComeFirst) {
    const CompoundNameOrder before;
    EXPECT_TRUE(before(u"ZZ", u"AAA"));
    EXPECT_FALSE(before(u"AAA", u"ZZ"));
    EXPECT_TRUE(before(u"AB", u"AC"));
    EXPECT_FALSE(before(u"AB", u"AB"));
}

TEST(CompoundName, NamesOfOneLengthGoByUnitsNotCharacters) {
    EXPECT_TRUE(CompoundNameOrder()(u"\xD83D\xDE00", u"\uFF21\uFF21"));
}

TEST(CompoundTree, ChildrenStandInTheOrderOfTheirNames) {
    CompoundTree tree;
    for (const char16_t* name : {u"b", u"abc", u"A", u"aZ", u"a_", u"Zy", u"AB"}) {
        ASSERT_NE(nullptr, tree.create(tree.root(), name, CompoundKind::stream));
    }
    EXPECT_EQ((std::vector<std::u16string>{u"A", u"b", u"AB", u"aZ", u"a_", u"Zy", u"abc"}),
              names(tree.root()));
}

TEST(CompoundTree, ElementIsFoundInAnyCase) {
    CompoundTree tree;
    CompoundElement* made = tree.create(tree.root(), u"Gr\u00F6\u00DFe", CompoundKind::stream);
    EXPECT_EQ(made, tree.find(tree.root(), u"gR\u00D6\u00DFE"));
    EXPECT_EQ(nullptr, tree.find(tree.root(), u"Gr\u00F6sse"));
}

TEST(CompoundTree, NewElementReplacesOneOfItsName) {
    CompoundTree tree;
    CompoundElement* before = tree.create(tree.root(), u"name", CompoundKind::stream);
    before->data.resize(3);
    CompoundElement* after = tree.create(tree.root(), u"NAME", CompoundKind::stream);
    EXPECT_EQ((std::vector<std::u16string>{u"NAME"}), names(tree.root()));
    EXPECT_EQ(after, tree.find(tree.root(), u"name"));
    EXPECT_TRUE(after->data.empty());
    EXPECT_FALSE(before->attached);
    EXPECT_TRUE(before->data.empty());
}

TEST(CompoundTree, ReplacedStorageIsDetachedWithAllBelow) {
    CompoundTree tree;
    CompoundElement* storage = tree.create(tree.root(), u"name", CompoundKind::storage);
    CompoundElement* below = tree.create(*storage, u"below", CompoundKind::storage);
    CompoundElement* lowest = tree.create(*below, u"lowest", CompoundKind::stream);
    tree.create(tree.root(), u"name", CompoundKind::storage);
    EXPECT_FALSE(storage->attached);
    EXPECT_FALSE(below->attached);
    EXPECT_FALSE(lowest->attached);
}

TEST(CompoundTree, NameThatIsNotAllowedReplacesNothing) {
    CompoundTree tree;
    EXPECT_EQ(nullptr, tree.create(tree.root(), u"a/b", CompoundKind::stream));
    EXPECT_TRUE(tree.root().children.empty());
}

TEST(CompoundTree, MillionLevelsAreDetachedWithoutAMillionFrames) {
    CompoundTree tree;
    CompoundElement* storage = &tree.root();
    for (int level = 0; level < 1'000'000; ++level) {
        storage = tree.create(*storage, u"n", CompoundKind::storage);
    }
    tree.detach(tree.root());
    EXPECT_FALSE(storage->attached);
}

} // namespace
} // namespace pm
