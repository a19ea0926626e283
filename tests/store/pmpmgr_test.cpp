#include "store/pmpmgr.h"

#include "support/exceptions.h"
#include <cstring>
#include <pm/error_number.h>
#include <set>
#include <string>
#include <vector>

namespace {

using pm::test::expect_thrown;

int count_of(const PM_PathStrings& strings, const char16_t* text) {
    const auto* entry = strings.Find(text);
    return entry != nullptr ? entry->count() : 0;
}

PM_PathStrings::Entry& intern(PM_PathStrings& strings, const char16_t* text) {
    return strings.Add(PM_PathStrings::Key(text));
}

std::vector<std::u16string> components_of(const PM_Path& path) {
    std::vector<std::u16string> all;
    all.reserve(static_cast<std::size_t>(path.count()));
    for (int index = 0; index < path.count(); ++index) {
        all.emplace_back(path.component(index)->text());
    }
    return all;
}

std::u16string path_of(int components) {
    std::u16string text;
    for (int index = 0; index < components; ++index) {
        text += u"\\x";
    }
    return text;
}

TEST(PathStrings, PermutationsFallInOneBucketAndStayDistinct) {
    EXPECT_EQ(PM_PathStrings::Key(u"ab").bucket(), PM_PathStrings::Key(u"ba").bucket());
    PM_PathStrings strings;
    const char16_t* ab = strings.Add(u"ab");
    const char16_t* ba = strings.Add(u"ba");
    EXPECT_NE(ab, ba);
    EXPECT_EQ(u"ab", std::u16string(ab));
    EXPECT_EQ(u"ba", std::u16string(ba));
    EXPECT_EQ(ab, strings.Find(u"ab")->text());
    EXPECT_EQ(ba, strings.Find(u"ba")->text());
}

TEST(PathStrings, BucketIsTheExclusiveOrOfAllBytes) {
    EXPECT_EQ(0, PM_PathStrings::Key(u"").bucket());
    EXPECT_EQ('a', PM_PathStrings::Key(u"a").bucket());
    EXPECT_EQ('a' ^ 'b', PM_PathStrings::Key(u"ab").bucket());
    EXPECT_EQ(0x12 ^ 0x34 ^ 'a', PM_PathStrings::Key(u"\u1234a").bucket());
}

TEST(PathStrings, NamesThatDifferInOneUnitAreSpreadOverAnIndex) {
    constexpr std::uint32_t slots = 256;
    for (std::size_t length = 1; length <= 12; ++length) {
        for (std::size_t at = 0; at < length; ++at) {
            std::set<std::uint32_t> used;
            for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
                std::u16string name(length, u'n');
                name[at] = digit;
                used.insert(PM_PathStrings::Key(name).print % slots);
            }
            EXPECT_LE(7U, used.size()) << length << " units, " << at;
        }
    }
}

TEST(PathStrings, SameTextGivesTheSamePointer) {
    PM_PathStrings strings;
    const char16_t* first = strings.Add(u"name");
    EXPECT_EQ(first, strings.Add(u"name"));
    EXPECT_EQ(2, count_of(strings, u"name"));
}

TEST(PathStrings, SecondReleaseRemovesATextAddedTwice) {
    PM_PathStrings strings;
    const char16_t* name = strings.Add(u"name");
    strings.Add(u"name");
    strings.Release(name);
    EXPECT_EQ(1, count_of(strings, u"name"));
    strings.Release(name);
    EXPECT_EQ(nullptr, strings.Find(u"name"));
}

TEST(PathStrings, ReleaseOfAnUnknownTextIsIgnored) {
    PM_PathStrings strings;
    strings.Add(u"ab");
    strings.Release(u"ba");
    EXPECT_EQ(1, count_of(strings, u"ab"));
}

TEST(PathStrings, ReleaseFindsATextByItsUnits) {
    PM_PathStrings strings;
    strings.Add(u"name");
    const std::u16string other = u"name";
    strings.Release(other.c_str());
    EXPECT_EQ(nullptr, strings.Find(u"name"));
}

TEST(PathStrings, CaseIsSignificant) {
    PM_PathStrings strings;
    EXPECT_NE(strings.Add(u"name"), strings.Add(u"Name"));
}

TEST(PathStrings, AnEmptyTextCanBeInterned) {
    PM_PathStrings strings;
    EXPECT_EQ(u"", std::u16string(strings.Add(u"")));
    EXPECT_EQ(1, count_of(strings, u""));
}

TEST(PathStrings, UnlinkingKeepsTheRestOfAChain) {
    PM_PathStrings strings;
    const char16_t* abc = strings.Add(u"abc");
    const char16_t* bca = strings.Add(u"bca");
    const char16_t* cab = strings.Add(u"cab");
    strings.Release(bca);
    EXPECT_EQ(abc, strings.Find(u"abc")->text());
    EXPECT_EQ(cab, strings.Find(u"cab")->text());
    strings.Release(cab);
    EXPECT_EQ(abc, strings.Find(u"abc")->text());
}

std::u16string numbered(int number) {
    const std::string digits = std::to_string(number);
    return u"name" + std::u16string(digits.begin(), digits.end());
}

TEST(PathStrings, ManyNamesAreKeptApartWhileSomeGo) {
    constexpr int count = 5000;
    PM_PathStrings strings;
    std::vector<PM_PathStrings::Entry*> names;
    names.reserve(count);
    for (int number = 0; number < count; ++number) {
        names.push_back(&strings.Add(PM_PathStrings::Key(numbered(number))));
    }
    for (int number = 0; number < count; ++number) {
        EXPECT_EQ(names[static_cast<std::size_t>(number)]->text(), strings.Add(numbered(number).c_str()));
    }
    for (int number = 0; number < count; number += 3) {
        strings.Release(numbered(number).c_str());
    }
    for (int number = 0; number < count; number += 3) {
        strings.Release(*names[static_cast<std::size_t>(number)]);
    }
    for (int number = 0; number < count; ++number) {
        const PM_PathStrings::Entry* entry = strings.Find(numbered(number).c_str());
        ASSERT_EQ(number % 3 == 0, entry == nullptr) << number;
        if (entry != nullptr) {
            EXPECT_EQ(names[static_cast<std::size_t>(number)], entry);
            EXPECT_EQ(2, entry->count());
        }
    }
}

TEST(PathStrings, UnpairedSurrogatesAreOrdinaryUnits) {
    PM_PathStrings strings;
    const char16_t high[] = {0xD800, 0};
    const char16_t low[] = {0xDC00, 0};
    EXPECT_NE(strings.Add(high), strings.Add(low));
    EXPECT_EQ(0xD800, strings.Find(high)->text()[0]);
}

TEST(Path, BackslashesSplitAndRunsCountAsOne) {
    PM_PathStrings strings;
    for (const char16_t* text : {u"\\a\\b", u"a\\b", u"a\\\\b", u"\\a\\b\\", u"\\\\\\a\\b"}) {
        const PM_Path path(strings, text, true);
        EXPECT_EQ((std::vector<std::u16string>{u"a", u"b"}), components_of(path));
    }
}

TEST(Path, EmptyTextsHaveNoComponents) {
    PM_PathStrings strings;
    EXPECT_EQ(0, PM_Path(strings, u"", true).count());
    EXPECT_EQ(0, PM_Path(strings, u"\\\\\\", true).count());
    EXPECT_EQ(0, PM_Path(strings, nullptr, true).count());
}

TEST(Path, SlashAndStarAreOrdinaryCharacters) {
    PM_PathStrings strings;
    const PM_Path path(strings, u"a/b\\*", true);
    EXPECT_EQ((std::vector<std::u16string>{u"a/b", u"*"}), components_of(path));
}

TEST(Path, ComponentBeyondTheCountIsNull) {
    PM_PathStrings strings;
    const PM_Path path(strings, u"a", true);
    EXPECT_EQ(nullptr, path.component(1));
    EXPECT_EQ(nullptr, path.component(-1));
    EXPECT_EQ(nullptr, PM_Path(strings, u"", true).last());
}

TEST(Path, UnknownComponentLeavesThePathEmptyAndCountsAsTheyWere) {
    PM_PathStrings strings;
    strings.Add(u"a");
    const PM_Path path(strings, u"a\\b", false);
    EXPECT_EQ(0, path.count());
    EXPECT_EQ(nullptr, path.component(0));
    EXPECT_EQ(1, count_of(strings, u"a"));
    EXPECT_EQ(nullptr, strings.Find(u"b"));
}

TEST(Path, HoldsAReferenceForEachComponentAndDropsItAtTheEnd) {
    PM_PathStrings strings;
    {
        const PM_Path path(strings, u"a\\b\\a", true);
        EXPECT_EQ(2, count_of(strings, u"a"));
        EXPECT_EQ(1, count_of(strings, u"b"));
    }
    EXPECT_EQ(nullptr, strings.Find(u"a"));
    EXPECT_EQ(nullptr, strings.Find(u"b"));
}

TEST(Path, KnownComponentsAreReferencedWithoutAdding) {
    PM_PathStrings strings;
    strings.Add(u"a");
    const PM_Path path(strings, u"a\\a", false);
    EXPECT_EQ(2, path.count());
    EXPECT_EQ(3, count_of(strings, u"a"));
}

TEST(Path, TwoHundredFiftySixComponentsParse) {
    PM_PathStrings strings;
    EXPECT_EQ(256, PM_Path(strings, path_of(256).c_str(), true).count());
    EXPECT_EQ(nullptr, strings.Find(u"x"));
}

TEST(Path, OneComponentMoreIsRefusedAndItsReferencesStayBehind) {
    PM_PathStrings strings;
    const std::u16string text = path_of(256) + u"\\y";
    expect_thrown<PM_Warning>([&] { const PM_Path path(strings, text.c_str(), true); }, PM_ERR_BAD_PATH,
                              u"PM_Path::PM_Path()", text.substr(0, 259));
    EXPECT_EQ(256, count_of(strings, u"x"));
    EXPECT_EQ(1, count_of(strings, u"y"));
}

TEST(Path, TooManyKnownComponentsAreRefusedWithoutAddingToo) {
    PM_PathStrings strings;
    strings.Add(u"x");
    const std::u16string text = path_of(257);
    expect_thrown<PM_Warning>([&] { const PM_Path path(strings, text.c_str(), false); }, PM_ERR_BAD_PATH,
                              u"PM_Path::PM_Path()", text.substr(0, 259));
}

TEST(Path, AnUnknownNameBehindTooManyKnownOnesIsNoFailure) {
    PM_PathStrings strings;
    strings.Add(u"x");
    EXPECT_EQ(0, PM_Path(strings, (path_of(256) + u"\\unknown").c_str(), false).count());
    EXPECT_EQ(1, count_of(strings, u"x"));
}

TEST(Path, FirstNewTellsWhereTheTableWasExtended) {
    PM_PathStrings strings;
    strings.Add(u"a");
    EXPECT_EQ(1, PM_Path(strings, u"a\\b\\c", true).first_new());
    const PM_Path known(strings, u"a\\a", true);
    EXPECT_GE(known.first_new(), known.count());
}

TEST(Path, PushAndPopKeepReferences) {
    PM_PathStrings strings;
    PM_Path path(strings, u"a", true);
    EXPECT_TRUE(path.push(intern(strings, u"b")));
    EXPECT_EQ(u"b", std::u16string(path.last()->text()));
    EXPECT_EQ(2, count_of(strings, u"b"));
    path.pop();
    EXPECT_EQ(1, count_of(strings, u"b"));
    EXPECT_EQ(1, path.count());
}

TEST(Path, PushOntoAFullPathIsRefused) {
    PM_PathStrings strings;
    PM_Path path(strings, path_of(256).c_str(), true);
    EXPECT_FALSE(path.push(intern(strings, u"y")));
    EXPECT_EQ(256, path.count());
    EXPECT_EQ(1, count_of(strings, u"y"));
}

class PropertyTest : public testing::Test {
protected:
    PropertyTest()
        : m_node(m_strings, intern(m_strings, u"n"), nullptr),
          m_property(*m_node.AddProp(intern(m_strings, u"p"))) {}

    void set(const char* data, std::size_t size) { m_property.SetData(m_strings.pool(), data, size); }

    PM_PathStrings m_strings;
    PM_Node m_node;
    PM_Property& m_property;
};

TEST_F(PropertyTest, StartsStrictWithoutTypeAndValue) {
    EXPECT_TRUE(m_property.strict());
    EXPECT_EQ(PROP_NONE, m_property.type());
    EXPECT_EQ(0U, m_property.size());
    EXPECT_EQ(2, count_of(m_strings, u"p"));
}

TEST_F(PropertyTest, ReadingAPropertyWithoutAValueRaises59) {
    char buffer[4];
    expect_thrown<PM_Warning>([&] { m_property.GetData(buffer, 4); }, PM_ERR_NO_VALUE,
                              u"PM_Property::GetData()", u"p");
}

TEST_F(PropertyTest, WritingNoBytesToANewPropertyLeavesItWithoutAValue) {
    set("", 0);
    EXPECT_EQ(0U, m_property.size());
    char buffer[4];
    expect_thrown<PM_Warning>([&] { m_property.GetData(buffer, 4); }, PM_ERR_NO_VALUE,
                              u"PM_Property::GetData()", u"p");
}

TEST_F(PropertyTest, SmallBufferRaises58AndIsUntouched) {
    set("abcd", 4);
    char buffer[4] = {'x', 'x', 'x', 'x'};
    expect_thrown<PM_Warning>([&] { m_property.GetData(buffer, 3); }, PM_ERR_VALUE_TOO_LARGE,
                              u"PM_Property::GetData()", u"p");
    EXPECT_EQ(0, std::memcmp("xxxx", buffer, 4));
}

TEST_F(PropertyTest, LargeBufferKeepsItsTail) {
    set("ab", 2);
    char buffer[4] = {'x', 'x', 'x', 'x'};
    m_property.GetData(buffer, 4);
    EXPECT_EQ(0, std::memcmp("abxx", buffer, 4));
}

TEST_F(PropertyTest, SizesCanChangeBothWays) {
    set("abcd", 4);
    set("xy", 2);
    EXPECT_EQ(2U, m_property.size());
    set("", 0);
    EXPECT_EQ(0U, m_property.size());
    char buffer[1] = {'x'};
    m_property.GetData(buffer, 1); // a value of no bytes is a value
    EXPECT_EQ('x', buffer[0]);
}

class NodeTest : public testing::Test {
protected:
    PM_PathStrings::Entry& name(const char16_t* text) { return intern(m_strings, text); }

    std::vector<std::u16string> children() const {
        std::vector<std::u16string> all;
        for (auto* node = m_root.first_child(); node != nullptr; node = node->next_sibling()) {
            all.emplace_back(node->name());
        }
        return all;
    }
    std::vector<std::u16string> properties() const {
        std::vector<std::u16string> all;
        for (auto* prop = m_root.first_prop(); prop != nullptr; prop = prop->next()) {
            all.emplace_back(prop->name());
        }
        return all;
    }
    using Names = std::vector<std::u16string>;

    PM_PathStrings m_strings;
    PM_Node m_root{m_strings, intern(m_strings, u"Root"), nullptr};
};

TEST_F(NodeTest, ChildrenAndPropertiesKeepTheOrderOfCreation) {
    for (const char16_t* text : {u"c", u"a", u"b"}) {
        m_root.AddNode(name(text));
        m_root.AddProp(name(text));
    }
    EXPECT_EQ((Names{u"c", u"a", u"b"}), children());
    EXPECT_EQ((Names{u"c", u"a", u"b"}), properties());
}

TEST_F(NodeTest, AddPropOfAnExistingNameGivesNullAndChangesNothing) {
    PM_Property* first = m_root.AddProp(name(u"p"));
    EXPECT_EQ(nullptr, m_root.AddProp(name(u"p")));
    EXPECT_EQ((Names{u"p"}), properties());
    EXPECT_EQ(first, m_root.find_prop(name(u"p")));
}

TEST_F(NodeTest, AddNodeDoesNotLookForAnExistingName) {
    EXPECT_NE(m_root.AddNode(name(u"n")), m_root.AddNode(name(u"n")));
    EXPECT_EQ((Names{u"n", u"n"}), children());
}

TEST_F(NodeTest, ANewNodeKnowsItsParentAndHoldsItsName) {
    EXPECT_EQ(&m_root, m_root.AddNode(name(u"n"))->parent());
    EXPECT_EQ(2, count_of(m_strings, u"n"));
}

TEST_F(NodeTest, DeletingOneOfManyKeepsTheOthers) {
    for (const char16_t* text : {u"a", u"b", u"c"}) {
        m_root.AddNode(name(text));
        m_root.AddProp(name(text));
    }
    EXPECT_TRUE(m_root.delete_child(name(u"b")));
    EXPECT_TRUE(m_root.delete_prop(name(u"a")));
    EXPECT_EQ((Names{u"a", u"c"}), children());
    EXPECT_EQ((Names{u"b", u"c"}), properties());
}

TEST_F(NodeTest, DeletingTheLastOneLeavesAPlaceToAppendTo) {
    for (const char16_t* text : {u"a", u"b"}) {
        m_root.AddNode(name(text));
        m_root.AddProp(name(text));
    }
    EXPECT_TRUE(m_root.delete_child(name(u"b")));
    EXPECT_TRUE(m_root.delete_prop(name(u"b")));
    m_root.AddNode(name(u"c"));
    m_root.AddProp(name(u"c"));
    EXPECT_EQ((Names{u"a", u"c"}), children());
    EXPECT_EQ((Names{u"a", u"c"}), properties());
}

TEST_F(NodeTest, DeletingTheOnlyOneLeavesEmptyLists) {
    m_root.AddNode(name(u"a"));
    m_root.AddProp(name(u"a"));
    EXPECT_TRUE(m_root.delete_child(name(u"a")));
    EXPECT_TRUE(m_root.delete_prop(name(u"a")));
    EXPECT_EQ(nullptr, m_root.first_child());
    EXPECT_EQ(nullptr, m_root.first_prop());
    m_root.AddNode(name(u"b"));
    EXPECT_EQ((Names{u"b"}), children());
}

TEST_F(NodeTest, DeletingAnAbsentNameIsFalse) {
    m_root.AddNode(name(u"a"));
    EXPECT_FALSE(m_root.delete_child(name(u"x")));
    EXPECT_FALSE(m_root.delete_prop(name(u"a")));
}

TEST_F(NodeTest, DestructionReleasesAllNamesBelow) {
    {
        PM_Node top(m_strings, name(u"top"), nullptr);
        PM_Node* child = top.AddNode(name(u"child"));
        child->AddProp(name(u"prop"));
        child->AddNode(name(u"grandchild"));
        top.AddNode(name(u"sibling"));
        for (const char16_t* text : {u"top", u"child", u"prop", u"grandchild", u"sibling"}) {
            EXPECT_EQ(2, count_of(m_strings, text));
        }
    }
    for (const char16_t* text : {u"top", u"child", u"prop", u"grandchild", u"sibling"}) {
        EXPECT_EQ(1, count_of(m_strings, text));
    }
}

TEST(Node, AMillionSiblingsAndPropertiesAreDestroyedWithAFlatStack) {
    PM_PathStrings strings;
    PM_PathStrings::Entry& name = intern(strings, u"n");
    PM_Node root(strings, name, nullptr);
    for (int count = 0; count < 1'000'000; ++count) {
        root.AddNode(name);
        root.append_prop(name);
    }
    EXPECT_EQ(2'000'002, count_of(strings, u"n"));
}

} // namespace
