#include "support/exceptions.h"
#include "support/tree_text.h"
#include <gmock/gmock.h>
#include <pm/build.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/inspect.h>
#include <pm/tree.h>

namespace pm::test {
namespace {

using ::testing::ElementsAre;

class Builder : public ::testing::Test {
protected:
    static constexpr std::int32_t two = 2;
    static constexpr TreeBuilder::Content long_two{PROP_LONG, true, &two, sizeof two};

    PM_Object object;
    TreeBuilder builder{object};
};

TEST_F(Builder, ChildIsMadeLastAndFoundAgain) {
    const PM_Node& first = builder.child(builder.root(), u"first");
    const PM_Node& second = builder.child(builder.root(), u"second");
    EXPECT_EQ(&first, &builder.child(builder.root(), u"first"));
    EXPECT_EQ(&second, pm_view(first).next_sibling);
    EXPECT_EQ(&second, builder.find_child(builder.root(), u"second"));
    EXPECT_EQ(nullptr, builder.find_child(builder.root(), u"third"));
}

TEST_F(Builder, PropertyIsWhatWasSaid) {
    builder.put(builder.root(), u"n", {PROP_STRING, false, "abc", 4});
    const Property property(*builder.find_property(builder.root(), u"n"));
    EXPECT_EQ(PROP_STRING, property.type());
    EXPECT_FALSE(property.strict());
    EXPECT_EQ(4U, property.bytes().size());
}

TEST_F(Builder, PropertyThatIsThereKeepsItsPlaceUnderAnotherType) {
    object.SetProperty(u"a", 1.5);
    object.SetProperty(u"b", 1);
    builder.put(builder.root(), u"a", long_two);
    EXPECT_THAT(tree_text(object), ElementsAre("a long 2", "b long 1"));
}

TEST_F(Builder, NoValueIsNotAValueOfNoBytes) {
    builder.put(builder.root(), u"none", {PROP_VOID, true, nullptr, 0});
    builder.put(builder.root(), u"empty", {PROP_VOID, true, "", 0});
    EXPECT_EQ(nullptr, pm_view(*builder.find_property(builder.root(), u"none")).data);
    EXPECT_NE(nullptr, pm_view(*builder.find_property(builder.root(), u"empty")).data);
    EXPECT_EQ(0U, pm_view(*builder.find_property(builder.root(), u"empty")).size);
}

TEST_F(Builder, ValueCanBeTakenAway) {
    builder.put(builder.root(), u"a", {PROP_VOID, true, "0123456789abcdefghij", 20});
    builder.put(builder.root(), u"a", {PROP_NONE, true, nullptr, 0});
    EXPECT_EQ(nullptr, pm_view(*builder.find_property(builder.root(), u"a")).data);
    EXPECT_EQ(PROP_NONE, pm_view(*builder.find_property(builder.root(), u"a")).type);
}

TEST_F(Builder, AsteriskIsOrdinaryInNames) {
    builder.put(builder.child(builder.root(), u"a*"), u"*", long_two);
    EXPECT_THAT(tree_text(object), ElementsAre("a*\\* long 2"));
}

TEST_F(Builder, NodeAndPropertyOfOneNameAreErasedEachForItself) {
    object.SetProperty(u"x", 1);
    object.SetProperty(u"x\\y", 2);
    builder.erase(*builder.find_child(builder.root(), u"x"));
    EXPECT_THAT(tree_text(object), ElementsAre("x long 1"));
    object.SetProperty(u"x\\y", 2);
    EXPECT_TRUE(builder.erase_property(builder.root(), u"x"));
    EXPECT_FALSE(builder.erase_property(builder.root(), u"x"));
    EXPECT_FALSE(builder.erase_property(builder.root(), u"unknown"));
    EXPECT_THAT(tree_text(object), ElementsAre("x\\y long 2"));
}

TEST_F(Builder, NamesThatNoPathHasAreRefused) {
    for (const auto& name : {std::u16string(), std::u16string(u"a\\b")}) {
        expect_thrown<PM_Warning>([&] { (void)builder.child(builder.root(), name); }, PM_ERR_BAD_PATH,
                                  u"pm::TreeBuilder", name);
        expect_thrown<PM_Warning>([&] { builder.put(builder.root(), name, long_two); }, PM_ERR_BAD_PATH,
                                  u"pm::TreeBuilder", name);
    }
    expect_thrown<PM_Warning>([&] { builder.put(builder.root(), std::u16string_view(u"a\0b", 3), long_two); },
                              PM_ERR_BAD_PATH, u"pm::TreeBuilder", u"a");
    EXPECT_TRUE(tree_text(object).empty());
}

TEST_F(Builder, RootIsNotErased) {
    expect_thrown<PM_Warning>([&] { builder.erase(builder.root()); }, PM_ERR_BAD_PATH, u"pm::TreeBuilder",
                              u"\\");
}

TEST_F(Builder, UnknownTypeIsRefused) {
    expect_thrown<PM_Warning>(
        [&] {
            builder.put(builder.root(), u"a", {static_cast<PropType>(6), true, "", 0});
        },
        PM_ERR_INVALID_ARGUMENT, u"pm::TreeBuilder", u"a");
}

TEST_F(Builder, NodesGoAsDeepAsPathsDo) {
    const PM_Node* node = &builder.root();
    for (int depth = 0; depth < 256; ++depth) {
        node = &builder.child(*node, u"n");
    }
    builder.put(*node, u"deepest", long_two);
    expect_thrown<PM_Warning>([&] { (void)builder.child(*node, u"n"); }, PM_ERR_BAD_PATH, u"pm::TreeBuilder",
                              u"n");
}

} // namespace
} // namespace pm::test
