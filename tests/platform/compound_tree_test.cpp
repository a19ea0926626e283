#include "platform/compound_tree.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pm {
namespace {

std::vector<std::u16string> names(const CompoundElement& storage) {
    std::vector<std::u16string> found;
    for (const auto& child : storage.children)
        found.emplace_back(child.second->name);
    return found;
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
