#include "base/allocator.h"
#include "store/pmpmgr.h"
#include "support/exceptions.h"
#include <cstring>
#include <memory>
#include <pm/pm.h>
#include <string>
#include <vector>

namespace {

using pm::test::expect_thrown;

constexpr const char16_t* iterator_place = u"PM_Iterator::PM_Iterator()";

class OpenObject : public PM_Object {
public:
    using PM_Object::setData;
    PM_Node& root() { return *m_root; }
    PM_PathStrings& strings() { return *m_strings; }
};

// The steps of a walk, such as "a child"; ends with "end".
std::vector<std::string> steps_of(const PM_Object& object, const char16_t* path, int depth) {
    std::vector<std::string> steps;
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(path, depth));
    PM_Object::NodeType type = PM_Object::NODE_CHILD;
    while (const char16_t* name = walk->nextNode(type)) {
        const std::u16string wide = name;
        const char* kind = type == PM_Object::NODE_CHILD     ? " child"
                           : type == PM_Object::NODE_SIBLING ? " sibling"
                                                             : " parent";
        steps.push_back(std::string(wide.begin(), wide.end()) + kind);
    }
    EXPECT_EQ(PM_Object::NODE_SIBLING, type);
    steps.emplace_back("end");
    return steps;
}

using Steps = std::vector<std::string>;

// A walk whose value is released at the end.
class Walk {
public:
    Walk(const PM_Object& object, const char16_t* path, int depth = 0)
        : it(object.newIterator(path, depth)) {}
    ~Walk() { PM_Mem_Obj::operator delete(value); }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    const char16_t* next() { return it->nextProp(value, size, type); }
    std::u16string wide() const { return reinterpret_cast<const char16_t*>(value); }

    std::unique_ptr<PM_Iterator> it;
    char* value = nullptr;
    std::size_t size = 0;
    PropType type = PROP_NONE;
};

class WalkTest : public testing::Test {
protected:
    WalkTest() {
        object.SetProperty(u"a\\b\\p", 1);
        object.SetProperty(u"a\\c\\d\\p", 1);
    }
    OpenObject object;
};

TEST_F(WalkTest, GoesDepthFirstAndMeetsParentsAgain) {
    EXPECT_EQ(
        (Steps{"a child", "b child", "c sibling", "d child", "c parent", "a parent", "Root parent", "end"}),
        steps_of(object, u"\\", 0));
}

TEST_F(WalkTest, DepthLimitsTheLevelsBelowTheStart) {
    EXPECT_EQ((Steps{"a child", "Root parent", "end"}), steps_of(object, u"\\", 1));
    EXPECT_EQ((Steps{"a child", "b child", "c sibling", "a parent", "Root parent", "end"}),
              steps_of(object, u"\\", 2));
    EXPECT_EQ((Steps{"b child", "c sibling", "a parent", "end"}), steps_of(object, u"a", 1));
}

TEST_F(WalkTest, AStepUpGivesTheLevelBackToADeeperSibling) {
    PM_Object tree;
    for (const char16_t* path : {u"a\\b\\c\\p", u"d\\e\\f\\p", u"d\\g\\h\\p"})
        tree.SetProperty(path, 1);
    EXPECT_EQ((Steps{"a child", "b child", "a parent", "d sibling", "e child", "g sibling", "d parent",
                     "Root parent", "end"}),
              steps_of(tree, u"\\", 2));
    EXPECT_EQ(
        (Steps{"a child", "b child", "c child", "b parent", "a parent", "d sibling", "e child", "f child",
               "e parent", "g sibling", "h child", "g parent", "d parent", "Root parent", "end"}),
        steps_of(tree, u"\\", 3));
}

TEST_F(WalkTest, ASubtreeEndsAtItsStart) {
    EXPECT_EQ((Steps{"d child", "c parent", "end"}), steps_of(object, u"a\\c", 0));
    object.SetProperty(u"z\\p", 1);
    EXPECT_EQ((Steps{"b child", "c sibling", "d child", "c parent", "a parent", "end"}),
              steps_of(object, u"a", 0));
}

TEST_F(WalkTest, ALeafEndsAtOnce) {
    EXPECT_EQ((Steps{"end"}), steps_of(object, u"a\\b", 0));
}

TEST_F(WalkTest, AnEmptyTreeEndsAtOnce) {
    const PM_Object empty;
    EXPECT_EQ((Steps{"end"}), steps_of(empty, u"\\", 0));
}

TEST_F(WalkTest, SiblingsOfOneLevelAreARunOfSiblingSteps) {
    PM_Object flat;
    for (const char16_t* path : {u"x\\p", u"y\\p", u"z\\p"})
        flat.SetProperty(path, 1);
    EXPECT_EQ((Steps{"x child", "y sibling", "z sibling", "Root parent", "end"}), steps_of(flat, u"\\", 0));
}

TEST_F(WalkTest, AMissingNodeOfKnownNamesIsAtItsEnd) {
    Walk walk(object, u"b\\a");
    PM_Object::NodeType type = PM_Object::NODE_CHILD;
    EXPECT_EQ(nullptr, walk.it->currentNode());
    EXPECT_EQ(nullptr, walk.it->getCurrentNodeName());
    EXPECT_EQ(nullptr, walk.next());
    EXPECT_EQ(nullptr, walk.it->nextNode(type));
    EXPECT_EQ(PM_Object::NODE_CHILD, type); // not written
}

TEST_F(WalkTest, AnUnknownOrEmptyPathRaises51) {
    expect_thrown<PM_Warning>([&] { delete object.newIterator(u"a\\unknown", 0); }, PM_ERR_BAD_PATH,
                              iterator_place, u"a\\unknown");
    expect_thrown<PM_Warning>([&] { delete object.newIterator(u"", 0); }, PM_ERR_BAD_PATH, iterator_place,
                              u"");
    expect_thrown<PM_Warning>([&] { delete object.newIterator(u"\\\\", 0); }, PM_ERR_BAD_PATH, iterator_place,
                              u"\\\\");
}

TEST_F(WalkTest, TheStartIsCurrentFromTheBeginning) {
    Walk walk(object, u"a\\b");
    EXPECT_EQ(u"b", std::u16string(walk.it->getCurrentNodeName()));
    EXPECT_EQ(nullptr, walk.it->currentProp());
    EXPECT_EQ(u"p", std::u16string(walk.next()));
    EXPECT_EQ(u"p", std::u16string(walk.it->currentProp()->name()));
}

TEST_F(WalkTest, EachNodeBeginsAtItsFirstPropertyAndParentsDoAgain) {
    object.SetProperty(u"a\\first", 1);
    object.SetProperty(u"a\\second", 2);
    Walk walk(object, u"\\");
    PM_Object::NodeType type{};
    EXPECT_EQ(u"a", std::u16string(walk.it->nextNode(type)));
    EXPECT_EQ(u"first", std::u16string(walk.next()));
    EXPECT_EQ(u"b", std::u16string(walk.it->nextNode(type)));
    EXPECT_EQ(nullptr, walk.it->currentProp());
    EXPECT_EQ(u"p", std::u16string(walk.next()));
    while (type != PM_Object::NODE_PARENT || std::u16string(walk.it->getCurrentNodeName()) != u"a") {
        walk.it->nextNode(type);
    }
    EXPECT_EQ(u"first", std::u16string(walk.next()));
    EXPECT_EQ(u"second", std::u16string(walk.next()));
    EXPECT_EQ(nullptr, walk.next());
}

class ValueTest : public testing::Test {
protected:
    OpenObject object;
};

TEST_F(ValueTest, StringsAreTheStoredBytesAndOneMore) {
    object.SetProperty(u"s", u"te\u20ACt");
    Walk walk(object, u"\\");
    EXPECT_EQ(u"s", std::u16string(walk.next()));
    EXPECT_EQ(PROP_STRING, walk.type);
    EXPECT_EQ(11U, walk.size);
    EXPECT_EQ(u"te\u20ACt", walk.wide());
}

TEST_F(ValueTest, NarrowStringsStayNarrow) {
    object.SetProperty(u"s", reinterpret_cast<const unsigned char*>("abc"));
    Walk walk(object, u"\\");
    walk.next();
    EXPECT_EQ(5U, walk.size);
    EXPECT_STREQ("abc", walk.value);
}

TEST_F(ValueTest, LongsAreNarrowDecimalText) {
    object.SetProperty(u"l", -2147483647 - 1);
    Walk walk(object, u"\\");
    walk.next();
    EXPECT_EQ(PROP_LONG, walk.type);
    EXPECT_EQ(12U, walk.size);
    EXPECT_STREQ("-2147483648", walk.value);
}

TEST_F(ValueTest, DoublesAreWideText) {
    object.SetProperty(u"d", 1.0 / 3);
    Walk walk(object, u"\\");
    walk.next();
    EXPECT_EQ(PROP_DOUBLE, walk.type);
    EXPECT_EQ(128U, walk.size);
    EXPECT_EQ(u"0.33333333333 (55555555U3_#T@)", walk.wide());
}

TEST_F(ValueTest, BoolsAreNarrowWords) {
    object.SetProperty(u"t", true);
    object.SetProperty(u"f", false);
    Walk walk(object, u"\\");
    walk.next();
    EXPECT_EQ(PROP_BOOL, walk.type);
    EXPECT_EQ(8U, walk.size);
    EXPECT_STREQ("TRUE", walk.value);
    walk.next();
    EXPECT_STREQ("FALSE", walk.value);
}

TEST_F(ValueTest, RawBytesAreHexadecimalText) {
    object.setVoidProperty(u"v", "\x01\xAB", 2);
    Walk walk(object, u"\\");
    walk.next();
    EXPECT_EQ(PROP_VOID, walk.type);
    EXPECT_EQ(5U, walk.size);
    EXPECT_STREQ("01AB", walk.value);
}

TEST_F(ValueTest, TheEndReleasesTheValueAndKeepsTheType) {
    object.SetProperty(u"l", 1);
    Walk walk(object, u"\\");
    walk.next();
    EXPECT_EQ(nullptr, walk.next());
    EXPECT_EQ(nullptr, walk.value);
    EXPECT_EQ(0U, walk.size);
    EXPECT_EQ(PROP_LONG, walk.type);
}

TEST_F(ValueTest, AValueOfSizeZeroIsNotReleased) {
    object.SetProperty(u"l", 1);
    const pm::Block<char> own = pm::allocate_block<char>(4);
    std::memcpy(own.get(), "own", 4);
    Walk walk(object, u"\\");
    walk.value = own.get();
    walk.size = 0;
    EXPECT_EQ(u"l", std::u16string(walk.next()));
    EXPECT_NE(own.get(), walk.value);
    EXPECT_STREQ("1", walk.value);
    EXPECT_STREQ("own", own.get());

    PM_Mem_Obj::operator delete(walk.value);
    walk.value = own.get();
    walk.size = 0;
    EXPECT_EQ(nullptr, walk.next());
    EXPECT_EQ(nullptr, walk.value);
    EXPECT_STREQ("own", own.get());
}

TEST_F(ValueTest, RawDataThatWasNeverThereRaises59) {
    object.setVoidProperty(u"v", "", 0);
    Walk walk(object, u"\\");
    expect_thrown<PM_Warning>([&] { walk.next(); }, PM_ERR_NO_VALUE, u"PM_Property::GetData()", u"v");
    EXPECT_EQ(nullptr, walk.value);
    EXPECT_EQ(0U, walk.size);
}

TEST_F(ValueTest, RawDataThatBecameEmptyRaises53) {
    object.setVoidProperty(u"v", "x", 1);
    object.setVoidProperty(u"v", "", 0);
    Walk walk(object, u"\\");
    expect_thrown<PM_Error>([&] { walk.next(); }, PM_ERR_BAD_RAW_DATA, u".\\pmobj", u"bad raw data value");
}

TEST_F(ValueTest, NumbersOfTooManyBytesRaise58) {
    for (const PropType type : {PROP_LONG, PROP_DOUBLE, PROP_BOOL}) {
        OpenObject each;
        each.setData(u"x", "123456789", 9, type, -1, true);
        Walk walk(each, u"\\");
        expect_thrown<PM_Warning>([&] { walk.next(); }, PM_ERR_VALUE_TOO_LARGE, u"PM_Property::GetData()",
                                  u"x");
    }
}

TEST_F(ValueTest, ABoolOfEightBytesStillFits) {
    object.setData(u"x", "\1xxxxxxx", 8, PROP_BOOL, -1, true);
    Walk walk(object, u"\\");
    walk.next();
    EXPECT_STREQ("TRUE", walk.value);
}

TEST_F(ValueTest, APropertyOfNoTypeEndsItsNode) {
    object.SetProperty(u"a", 1);
    object.root().AddProp(object.strings().Add(PM_PathStrings::Key(u"untyped")));
    object.SetProperty(u"z", 1);
    Walk walk(object, u"\\");
    EXPECT_EQ(u"a", std::u16string(walk.next()));
    EXPECT_EQ(nullptr, walk.next());
    EXPECT_EQ(PROP_NONE, walk.type);
    EXPECT_EQ(u"untyped", std::u16string(walk.it->currentProp()->name()));
}

TEST_F(ValueTest, AWalkGivenUpEarlyLeavesItsValueToTheCaller) {
    object.SetProperty(u"l", 1);
    char* value = nullptr;
    std::size_t size = 0;
    PropType type{};
    std::unique_ptr<PM_Iterator> walk(object.newIterator(u"\\", 0));
    walk->nextProp(value, size, type);
    walk.reset();
    EXPECT_STREQ("1", value);
    PM_Mem_Obj::operator delete(value);
}

TEST_F(ValueTest, TheCallBehindAnEndGoesOnOrBeginsAgain) {
    object.SetProperty(u"a", 1);
    object.root().AddProp(object.strings().Add(PM_PathStrings::Key(u"untyped")));
    object.SetProperty(u"z", 2);
    Walk walk(object, u"\\");
    EXPECT_EQ(u"a", std::u16string(walk.next()));
    EXPECT_EQ(nullptr, walk.next()); // stands on the one of no type
    EXPECT_EQ(u"z", std::u16string(walk.next()));
    EXPECT_STREQ("2", walk.value);
    EXPECT_EQ(nullptr, walk.next());
    EXPECT_EQ(u"a", std::u16string(walk.next()));
}

} // namespace
