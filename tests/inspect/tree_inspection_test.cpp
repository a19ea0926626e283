#include "support/exceptions.h"
#include "support/tree_text.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/inspect.h>
#include <pm/tree.h>

namespace pm::test {
namespace {

using ::testing::ElementsAre;

class TreeInspection : public ::testing::Test {
protected:
    TreeInspection() {
        object.SetProperty(u"pens\\count", 8);
        object.SetProperty(u"pens\\first\\name", u"thin", -1, false);
        object.SetProperty(u"pens\\first\\width", 0.25);
        object.SetProperty(u"pens\\3", true);
    }

    // Paths of all nodes, in their order.
    std::vector<std::string> nodes() const {
        std::vector<std::string> paths;
        for (const auto& [node, depth] : root_of(object).walk()) {
            paths.push_back(node.path());
        }
        return paths;
    }
    static std::u16string deep_path(int components) {
        std::u16string path;
        for (int i = 0; i < components; ++i) {
            path += u"\\a";
        }
        return path;
    }

    PM_Object object;
};

TEST_F(TreeInspection, NodeThatIsThereExists) {
    EXPECT_TRUE(node_exists(object, u"pens"));
    EXPECT_TRUE(node_exists(object, u"\\pens\\\\first\\"));
}

TEST_F(TreeInspection, RootExistsUnderEachOfItsNames) {
    EXPECT_TRUE(node_exists(object, u"\\"));
    EXPECT_TRUE(node_exists(object, u""));
    EXPECT_TRUE(node_exists(object, nullptr));
}

TEST_F(TreeInspection, PropertyIsNoNode) {
    EXPECT_FALSE(node_exists(object, u"pens\\count"));
}

TEST_F(TreeInspection, UnknownAndMisplacedNamesAreNoNodes) {
    EXPECT_FALSE(node_exists(object, u"never"));
    EXPECT_FALSE(node_exists(object, u"first"));
    EXPECT_FALSE(node_exists(object, u"Pens"));
}

TEST_F(TreeInspection, TypeSizeAndStrictnessOfAPropertyAreTold) {
    const std::optional<PropertyInfo> count = property_at(object, u"pens\\count");
    ASSERT_TRUE(count.has_value());
    EXPECT_EQ(PROP_LONG, count->type);
    EXPECT_EQ(4U, count->size);
    EXPECT_TRUE(count->strict);
    const std::optional<PropertyInfo> name = property_at(object, u"pens\\first\\name");
    ASSERT_TRUE(name.has_value());
    EXPECT_EQ(PROP_STRING, name->type);
    EXPECT_EQ(10U, name->size);
    EXPECT_FALSE(name->strict);
}

TEST_F(TreeInspection, IndexCountsAsForGetProperty) {
    ASSERT_TRUE(property_at(object, u"pens", 3).has_value());
    EXPECT_EQ(PROP_BOOL, property_at(object, u"pens", 3)->type);
    EXPECT_EQ(PROP_BOOL, property_at(object, u"pens\\*", 3)->type);
    EXPECT_FALSE(property_at(object, u"pens", 4).has_value());
}

TEST_F(TreeInspection, PropertyWithoutAValueHasSize0) {
    object.setVoidProperty(u"empty", nullptr, 0);
    const std::optional<PropertyInfo> empty = property_at(object, u"empty");
    ASSERT_TRUE(empty.has_value());
    EXPECT_EQ(PROP_VOID, empty->type);
    EXPECT_EQ(0U, empty->size);
}

TEST_F(TreeInspection, PathsThatNameNoPropertyGiveNothing) {
    for (const char16_t* path :
         {u"", u"\\", u"pens", u"count", u"pens\\never", u"never\\count", u"pens\\count\\count"}) {
        EXPECT_FALSE(property_at(object, path).has_value()) << utf8(path);
    }
    EXPECT_FALSE(property_at(object, nullptr).has_value());
}

TEST_F(TreeInspection, PathsThatCannotBeGiveNothing) {
    object.SetProperty(u"a", 1);
    EXPECT_FALSE(property_at(object, deep_path(257).c_str()).has_value());
    EXPECT_FALSE(node_exists(object, deep_path(257).c_str()));
    EXPECT_FALSE(property_at(object, std::u16string(5000, u'a').c_str()).has_value());
    EXPECT_FALSE(node_exists(object, std::u16string(5000, u'a').c_str()));
}

TEST_F(TreeInspection, LookingMakesNothing) {
    const std::vector<std::string> before = nodes();
    (void)property_at(object, u"x\\y");
    (void)node_exists(object, u"x\\y");
    EXPECT_EQ(before, nodes());
    // Nor does it make the names known.
    EXPECT_FALSE(object.pathExists(u"pens\\y"));
}

TEST_F(TreeInspection, NodeIsMadeEmptyAndLast) {
    make_node(object, u"pens\\second");
    EXPECT_THAT(nodes(), ElementsAre("\\", "\\pens", "\\pens\\first", "\\pens\\second"));
    EXPECT_TRUE(find_node(object, "pens\\second")->properties().empty());
}

TEST_F(TreeInspection, MissingNodesOnTheWayAreMade) {
    make_node(object, u"\\x\\y\\z\\");
    EXPECT_THAT(nodes(), ElementsAre("\\", "\\pens", "\\pens\\first", "\\x", "\\x\\y", "\\x\\y\\z"));
}

TEST_F(TreeInspection, NodeThatIsThereStaysAsItIs) {
    const std::vector<std::string> before = tree_text(object);
    make_node(object, u"pens\\first");
    make_node(object, u"\\");
    make_node(object, u"");
    make_node(object, nullptr);
    EXPECT_EQ(before, tree_text(object));
}

TEST_F(TreeInspection, NodeOfThatNameIsMadeBesideAProperty) {
    make_node(object, u"pens\\count");
    EXPECT_TRUE(node_exists(object, u"pens\\count"));
    EXPECT_EQ(PROP_LONG, property_at(object, u"pens\\count")->type);
}

TEST_F(TreeInspection, AsteriskIsAnOrdinaryCharacterOfANode) {
    make_node(object, u"a*");
    EXPECT_TRUE(node_exists(object, u"a*"));
    EXPECT_FALSE(node_exists(object, u"a-1"));
}

TEST_F(TreeInspection, DeepestNodeIsMade) {
    make_node(object, deep_path(256).c_str());
    EXPECT_TRUE(node_exists(object, deep_path(256).c_str()));
}

TEST_F(TreeInspection, NodeThatIsTooDeepIsNotMade) {
    const std::vector<std::string> before = nodes();
    const std::u16string path = deep_path(257);
    expect_thrown<PM_Warning>([&] { make_node(object, path.c_str()); }, PM_ERR_BAD_PATH,
                              u"PM_Path::PM_Path()", path.substr(0, 259));
    EXPECT_EQ(before, nodes());
}

} // namespace
} // namespace pm::test
