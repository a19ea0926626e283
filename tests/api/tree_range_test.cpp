#include <algorithm>
#include <gmock/gmock.h>
#include <memory>
#include <pm/iterator.h>
#include <pm/tree.h>
#include <ranges>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

static_assert(std::ranges::forward_range<pm::Properties> && std::ranges::view<pm::Properties>);
static_assert(std::ranges::forward_range<pm::Children> && std::ranges::view<pm::Children>);
static_assert(std::ranges::forward_range<pm::Walk> && std::ranges::view<pm::Walk>);
static_assert(std::ranges::borrowed_range<pm::Properties> && std::ranges::borrowed_range<pm::Children> &&
              std::ranges::borrowed_range<pm::Walk>);
static_assert(std::same_as<pm::Property, std::ranges::range_value_t<pm::Properties>>);
static_assert(std::same_as<pm::Node, std::ranges::range_value_t<pm::Children>>);
static_assert(std::same_as<std::pair<pm::Node, int>, std::ranges::range_value_t<pm::Walk>>);
static_assert(std::regular<pm::Node> && std::regular<pm::Property>);

pm::Tree sample() {
    pm::Tree tree;
    tree.set("z", 1);
    tree.set("b\\y", 2.5);
    tree.set("b\\x", "text");
    tree.set("b\\deep\\deeper\\w", true);
    tree.set("a\\v", pm::Bytes(1));
    tree.set("b\\last\\u", 3);
    return tree;
}

template<class Range>
std::vector<std::string> names(const Range& range) {
    std::vector<std::string> result;
    for (const auto& element : range)
        result.push_back(element.name());
    return result;
}

std::vector<std::pair<std::string, int>> steps(const pm::Walk& walk) {
    std::vector<std::pair<std::string, int>> result;
    for (const auto [node, depth] : walk)
        result.emplace_back(node.path(), depth);
    return result;
}

TEST(Properties, ComeInOrderOfCreationWithTheirValues) {
    const pm::Tree tree = sample();
    std::vector<std::pair<std::string, pm::Value>> met;
    for (const auto& [name, value] : tree.node("b")->properties())
        met.emplace_back(name, value);
    EXPECT_THAT(met, ElementsAre(std::pair<std::string, pm::Value>("y", 2.5),
                                 std::pair<std::string, pm::Value>("x", "text")));
}

TEST(Properties, OrderStaysWhenAValueChanges) {
    pm::Tree tree = sample();
    tree.set("b\\y", 7.5);
    EXPECT_THAT(names(tree.node("b")->properties()), ElementsAre("y", "x"));
}

TEST(Properties, OfANodeWithoutAnyAreEmpty) {
    const pm::Tree tree = sample();
    EXPECT_TRUE(tree.node("b\\deep")->properties().empty());
    EXPECT_TRUE(std::ranges::empty(tree.node("b\\deep")->properties()));
}

TEST(Properties, SearchWithAStandardAlgorithm) {
    const pm::Tree tree = sample();
    const auto found = std::ranges::find(tree.node("b")->properties(), "x", &pm::Property::name);
    ASSERT_NE(std::default_sentinel, found);
    EXPECT_EQ("text", (*found).as<std::string>());
}

TEST(Properties, AreMetAgainFromACopyOfTheirIterator) {
    const pm::Tree tree = sample();
    auto first = tree.node("b")->properties().begin();
    const auto copy = first++;
    EXPECT_EQ("y", (*copy).name());
    EXPECT_EQ("x", (*first).name());
    EXPECT_NE(copy, first);
    EXPECT_EQ(std::default_sentinel, ++first);
}

TEST(Property, TellsNameTypeAndBytes) {
    pm::Tree tree;
    tree.set("a\\n", 0x01020304, -1, false);
    const pm::Property property = *tree.property("a\\n");
    EXPECT_EQ(u"n", property.name16());
    EXPECT_EQ(PROP_LONG, property.type());
    EXPECT_FALSE(property.strict());
    EXPECT_EQ(4U, property.bytes().size());
    EXPECT_EQ(0x01020304, property.as<int>());
    EXPECT_EQ(pm::Value(0x01020304), property.as<pm::Value>());
}

TEST(Property, ShowsTheValueThatIsThereNow) {
    pm::Tree tree;
    tree.set("p", "short");
    const pm::Property property = *tree.property("p");
    tree.set("other", 1);
    tree.set("p", "a text that is much longer than before");
    EXPECT_EQ("a text that is much longer than before", property.as<std::string>());
}

TEST(Children, ComeInOrderOfCreation) {
    const pm::Tree tree = sample();
    EXPECT_THAT(names(tree.root().children()), ElementsAre("b", "a"));
    EXPECT_THAT(names(tree.node("b")->children()), ElementsAre("deep", "last"));
    EXPECT_THAT(names(tree.node("a")->children()), IsEmpty());
}

TEST(Walk, MeetsEachNodeOnceBeforeItsChildren) {
    const pm::Tree tree = sample();
    using Step = std::pair<std::string, int>;
    EXPECT_THAT(steps(tree.walk()),
                ElementsAre(Step("\\", 0), Step("\\b", 1), Step("\\b\\deep", 2), Step("\\b\\deep\\deeper", 3),
                            Step("\\b\\last", 2), Step("\\a", 1)));
}

TEST(Walk, StaysBelowItsNode) {
    const pm::Tree tree = sample();
    using Step = std::pair<std::string, int>;
    EXPECT_THAT(steps(tree.node("b\\deep")->walk()),
                ElementsAre(Step("\\b\\deep", 0), Step("\\b\\deep\\deeper", 1)));
    EXPECT_THAT(steps(tree.node("a")->walk()), ElementsAre(Step("\\a", 0)));
}

TEST(Walk, GoesAsDeepAsAsked) {
    const pm::Tree tree = sample();
    using Step = std::pair<std::string, int>;
    EXPECT_THAT(steps(tree.walk(1)), ElementsAre(Step("\\", 0), Step("\\b", 1), Step("\\a", 1)));
    EXPECT_THAT(steps(tree.walk(2)), ElementsAre(Step("\\", 0), Step("\\b", 1), Step("\\b\\deep", 2),
                                                 Step("\\b\\last", 2), Step("\\a", 1)));
}

TEST(Walk, OfAnEmptyTreeIsItsRoot) {
    const pm::Tree tree;
    EXPECT_THAT(steps(tree.walk()), ElementsAre(std::pair<std::string, int>("\\", 0)));
}

TEST(Walk, MeetsTheNodesThatAnIteratorMeets) {
    const pm::Tree tree = sample();
    std::vector<std::u16string> expected = {u"Root"};
    const std::unique_ptr<PM_Iterator> iterator(tree.object().newIterator(u"\\", 0));
    PM_Object::NodeType step{};
    while (const char16_t* name = iterator->nextNode(step)) {
        if (step != PM_Object::NODE_PARENT) expected.emplace_back(name);
    }
    std::vector<std::u16string> met;
    for (const auto [node, depth] : tree.walk())
        met.emplace_back(node.name16());
    EXPECT_EQ(expected, met);
}

TEST(Walk, OfAVeryDeepTreeTakesNoStack) {
    pm::Tree tree;
    std::string path;
    for (int level = 0; level < 250; ++level)
        path += "\\n";
    tree.set(path + "\\p", 1);
    int deepest = 0;
    for (const auto [node, depth] : tree.walk())
        deepest = std::max(deepest, depth);
    EXPECT_EQ(250, deepest);
}

TEST(Node, TellsNamePathAndParent) {
    const pm::Tree tree = sample();
    const pm::Node node = *tree.node("b\\deep\\deeper");
    EXPECT_EQ("deeper", node.name());
    EXPECT_EQ(u"deeper", node.name16());
    EXPECT_EQ("\\b\\deep\\deeper", node.path());
    EXPECT_EQ(tree.node("b\\deep"), node.parent());
    EXPECT_FALSE(node.is_root());
}

TEST(Node, RootHasItsNameAndNoParent) {
    const pm::Tree tree;
    EXPECT_EQ("Root", tree.root().name());
    EXPECT_EQ("\\", tree.root().path());
    EXPECT_EQ(std::nullopt, tree.root().parent());
    EXPECT_TRUE(tree.root().is_root());
    EXPECT_EQ(tree.root(), tree.node("\\"));
}

TEST(Node, PathOfANameBesideAsciiIsUtf8) {
    pm::Tree tree;
    tree.set(u"\u00E4\\\xD800\\p", 1);
    EXPECT_EQ("\\\xC3\xA4\\\xED\xA0\x80", tree.node(u"\u00E4\\\xD800")->path());
}

TEST(Node, AbsentNodeIsNothing) {
    const pm::Tree tree = sample();
    for (const char* path : {"z", "b\\y", "deep", "never"})
        EXPECT_EQ(std::nullopt, tree.node(path)) << path;
}

TEST(Node, StaysValidWhenOthersComeAndGo) {
    pm::Tree tree = sample();
    const pm::Node node = *tree.node("b\\last");
    tree.erase("b\\deep");
    for (int number = 0; number < 1000; ++number)
        tree.set("b\\new" + std::to_string(number) + "\\p", 1);
    EXPECT_EQ("\\b\\last", node.path());
    EXPECT_EQ(1000, std::ranges::distance(tree.node("b")->children()) - 1);
}

TEST(Node, HandlesServeATreeThatIsKeptAsAnObject) {
    PM_Object object;
    object.SetProperty(u"a\\p", 1);
    EXPECT_THAT(names(pm::root_of(object).children()), ElementsAre("a"));
    EXPECT_EQ("\\a", pm::find_node(object, "a")->path());
    EXPECT_EQ(1, pm::find_property(object, "a\\p")->as<int>());
    EXPECT_EQ(std::nullopt, pm::find_property(object, "a\\q"));
}

} // namespace
