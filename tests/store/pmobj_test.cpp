#include "platform/code_page.h"
#include "store/pmpmgr.h"
#include "support/exceptions.h"
#include "support/tree_text.h"
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <pm/pm.h>
#include <string>
#include <vector>

namespace {

using pm::test::expect_thrown;
using pm::test::thrown_by;

constexpr const char16_t* set_place = u"PM_Object::SetData()";
constexpr const char16_t* get_place = u"PM_Object::GetData()";
constexpr const char16_t* size_place = u"PM_Object::getPropertySize()";
constexpr const char16_t* delete_place = u"PM_Object::DeletePath()";

// What the public interface hides: the raw write, and an object whose tree is gone.
class OpenObject : public PM_Object {
public:
    using PM_Object::setData;

    void lose_root() { m_root = nullptr; }
    int references(const char16_t* name) const {
        const auto* entry = m_strings->Find(name);
        return entry != nullptr ? entry->count() : 0;
    }
    ZT_Error_Handler* handler() const { return m_handler; }
    const PM_Node* root() const { return m_root; }
};

int long_at(const PM_Object& object, const char16_t* path, int index = -1) {
    int value = -999;
    EXPECT_TRUE(object.GetProperty(path, value, index));
    return value;
}

std::u16string string_at(const PM_Object& object, const char16_t* path, int index = -1) {
    std::array<char16_t, 5000> buffer{};
    EXPECT_TRUE(object.GetProperty(path, buffer.data(), sizeof buffer, index));
    return buffer.data();
}

TEST(Object, StartsWithAnEmptyRootOfItsName) {
    OpenObject object;
    EXPECT_EQ(u"Root", std::u16string(object.root()->name()));
    EXPECT_EQ(1, object.references(u"Root"));
    EXPECT_EQ(nullptr, object.root()->first_child());
    EXPECT_EQ(nullptr, object.handler());
}

TEST(Object, ValuesOfEachTypeReadBack) {
    PM_Object object;
    object.SetProperty(u"l", 42);
    object.SetProperty(u"d", 2.5);
    object.SetProperty(u"f", 0.1F);
    object.SetProperty(u"b", true);
    object.SetProperty(u"s", u"text");
    const unsigned char raw[] = {1, 2, 3};
    object.setVoidProperty(u"v", raw, sizeof raw);

    EXPECT_EQ(42, long_at(object, u"l"));
    double number = 0;
    EXPECT_TRUE(object.GetProperty(u"d", number));
    EXPECT_EQ(2.5, number);
    EXPECT_TRUE(object.GetProperty(u"f", number));
    EXPECT_EQ(static_cast<double>(0.1F), number);
    float narrow = 0;
    EXPECT_TRUE(object.GetProperty(u"f", narrow));
    EXPECT_EQ(0.1F, narrow);
    bool flag = false;
    EXPECT_TRUE(object.GetProperty(u"b", flag));
    EXPECT_TRUE(flag);
    EXPECT_EQ(u"text", string_at(object, u"s"));
    unsigned char bytes[3] = {};
    EXPECT_TRUE(object.getVoidProperty(u"v", bytes, sizeof bytes));
    EXPECT_EQ(0, std::memcmp(raw, bytes, sizeof raw));
}

TEST(Object, StoredSizesAreThoseOfTheTypes) {
    PM_Object object;
    object.SetProperty(u"l", 42);
    object.SetProperty(u"ll", 42L);
    object.SetProperty(u"d", 2.5);
    object.SetProperty(u"f", 2.5F);
    object.SetProperty(u"b", false);
    object.SetProperty(u"s", u"text");
    object.SetProperty(u"n", reinterpret_cast<const unsigned char*>("text"));
    object.setVoidProperty(u"v", "abc", 3);
    EXPECT_EQ(4U, object.getPropertySize(u"l"));
    EXPECT_EQ(4U, object.getPropertySize(u"ll"));
    EXPECT_EQ(8U, object.getPropertySize(u"d"));
    EXPECT_EQ(8U, object.getPropertySize(u"f"));
    EXPECT_EQ(1U, object.getPropertySize(u"b"));
    EXPECT_EQ(10U, object.getPropertySize(u"s"));
    EXPECT_EQ(5U, object.getPropertySize(u"n"));
    EXPECT_EQ(3U, object.getPropertySize(u"v"));
}

TEST(Object, LongKeepsTheLow32Bits) {
    PM_Object object;
    object.SetProperty(u"l", static_cast<long>(0x1'0000'0007));
    EXPECT_EQ(7, long_at(object, u"l"));
    long value = 0;
    object.SetProperty(u"l", -5L);
    EXPECT_TRUE(object.GetProperty(u"l", value));
    EXPECT_EQ(-5L, value);
}

TEST(Object, APropertyOfTheRootNeedsNoNode) {
    OpenObject object;
    object.SetProperty(u"a", 1);
    EXPECT_EQ(u"a", std::u16string(object.root()->first_prop()->name()));
    EXPECT_EQ(nullptr, object.root()->first_child());
}

TEST(Object, MissingNodesAreMadeInOrder) {
    OpenObject object;
    object.SetProperty(u"z\\p", 1);
    object.SetProperty(u"a\\p", 2);
    const PM_Node* first = object.root()->first_child();
    EXPECT_EQ(u"z", std::u16string(first->name()));
    EXPECT_EQ(u"a", std::u16string(first->next_sibling()->name()));
    EXPECT_EQ(nullptr, first->next_sibling()->next_sibling());
}

TEST(Object, ANameThatRepeatsInAPathMakesOneNodeALevel) {
    OpenObject object;
    object.SetProperty(u"a\\a\\a", 1);
    object.SetProperty(u"a\\a\\a", 2);
    const PM_Node* outer = object.root()->first_child();
    EXPECT_EQ(nullptr, outer->next_sibling());
    EXPECT_EQ(nullptr, outer->first_child()->next_sibling());
    EXPECT_EQ(nullptr, outer->first_child()->first_child());
    EXPECT_EQ(2, long_at(object, u"a\\a\\a"));
}

TEST(Object, OverwritingLeavesThePropertyWhereItStands) {
    OpenObject object;
    object.SetProperty(u"a", 1);
    object.SetProperty(u"b", 2);
    object.SetProperty(u"a", 3);
    EXPECT_EQ(u"a", std::u16string(object.root()->first_prop()->name()));
    EXPECT_EQ(3, long_at(object, u"a"));
}

TEST(Object, ANodeAndAPropertyOfOneNameLiveSideBySide) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.SetProperty(u"a\\a", 2);
    EXPECT_EQ(1, long_at(object, u"a"));
    EXPECT_EQ(2, long_at(object, u"a\\a"));
}

TEST(Object, AStrictPropertyRefusesAnotherType) {
    PM_Object object;
    object.SetProperty(u"a\\b", 1);
    expect_thrown<PM_Warning>([&] { object.SetProperty(u"a\\b", 2.5); }, PM_ERR_WRONG_TYPE, set_place, u"");
    EXPECT_EQ(1, long_at(object, u"a\\b"));
}

TEST(Object, ANonStrictPropertyTakesAnotherType) {
    PM_Object object;
    object.SetProperty(u"a\\b", 1, -1, false);
    object.SetProperty(u"a\\b", 2.5);
    double value = 0;
    EXPECT_TRUE(object.GetProperty(u"a\\b", value));
    EXPECT_EQ(2.5, value);
}

TEST(Object, StrictIsWhatTheLastWriterPassed) {
    PM_Object object;
    object.SetProperty(u"a", 1, -1, true);
    object.SetProperty(u"a", 2, -1, false);
    object.SetProperty(u"a", true, -1, true);
    expect_thrown<PM_Warning>([&] { object.SetProperty(u"a", 3); }, PM_ERR_WRONG_TYPE, set_place, u"");
}

TEST(Object, ReadingAnotherTypeOfAStrictPropertyRaises54) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    double number = 7;
    expect_thrown<PM_Warning>([&] { (void)object.GetProperty(u"a", number); }, PM_ERR_WRONG_TYPE, get_place,
                              u"");
    EXPECT_EQ(7, number);
    char16_t text[4] = {};
    expect_thrown<PM_Warning>([&] { (void)object.GetProperty(u"a", text, sizeof text); }, PM_ERR_WRONG_TYPE,
                              get_place, u"");
}

TEST(Object, ANonStrictValueIsCopiedAsItIsUnderAnyType) {
    PM_Object object;
    object.SetProperty(u"a", 0x01020304, -1, false);
    double number = std::bit_cast<double>(std::uint64_t{0xAABBCCDD'00000000});
    EXPECT_TRUE(object.GetProperty(u"a", number));
    EXPECT_EQ(0xAABBCCDD'01020304U, std::bit_cast<std::uint64_t>(number));
}

TEST(Object, ALooseValueOfNoBytesLeavesTheResult) {
    PM_Object object;
    object.setVoidProperty(u"a", "x", 1, -1, false);
    object.setVoidProperty(u"a", "", 0, -1, false);
    bool flag = true;
    EXPECT_TRUE(object.GetProperty(u"a", flag));
    EXPECT_TRUE(flag);
    flag = false;
    EXPECT_TRUE(object.GetProperty(u"a", flag));
    EXPECT_FALSE(flag);
    long integer = 7;
    EXPECT_TRUE(object.GetProperty(u"a", integer));
    EXPECT_EQ(7, integer);
    double number = 2.5;
    EXPECT_TRUE(object.GetProperty(u"a", number));
    EXPECT_EQ(2.5, number);
}

TEST(Object, ANonStrictValueMustFit) {
    PM_Object object;
    object.SetProperty(u"n\\a", 2.5, -1, false);
    int value = 0;
    expect_thrown<PM_Warning>([&] { (void)object.GetProperty(u"n\\a", value); }, PM_ERR_VALUE_TOO_LARGE,
                              u"PM_Property::GetData()", u"a");
}

TEST(Object, AnAbsentValueIsFalseAndLeavesTheResult) {
    PM_Object object;
    object.SetProperty(u"n\\p", 1);
    double number = 7;
    float narrow = 7;
    long integer = 7;
    bool flag = true;
    char16_t wide[2] = {u'x', 0};
    unsigned char bytes[2] = {'x', 0};
    for (const char16_t* path : {u"unknown", u"n", u"p", u"n\\n", u"p\\p", u""}) {
        EXPECT_FALSE(object.GetProperty(path, number));
        EXPECT_FALSE(object.GetProperty(path, integer));
        EXPECT_FALSE(object.GetProperty(path, flag));
        EXPECT_FALSE(object.GetProperty(path, wide, sizeof wide));
        EXPECT_FALSE(object.GetProperty(path, bytes, sizeof bytes));
        EXPECT_FALSE(object.getVoidProperty(path, bytes, sizeof bytes));
        narrow = 7;
        EXPECT_FALSE(object.GetProperty(path, narrow));
        EXPECT_EQ(0.0F, narrow);
    }
    EXPECT_EQ(7, number);
    EXPECT_EQ(7, integer);
    EXPECT_TRUE(flag);
    EXPECT_EQ(u'x', wide[0]);
    EXPECT_EQ('x', bytes[0]);
}

TEST(Object, ATextBufferOfUnknownSizeIsRefused) {
    PM_Object object;
    object.SetProperty(u"s", u"t");
    char16_t wide[2] = {};
    unsigned char narrow[4] = {};
    EXPECT_FALSE(object.GetProperty(u"s", wide, static_cast<std::size_t>(-1)));
    EXPECT_FALSE(object.GetProperty(u"s", narrow, static_cast<std::size_t>(-1)));
    EXPECT_EQ(0, wide[0]);
}

TEST(Object, TheSizeOfAWideBufferIsInBytes) {
    PM_Object object;
    object.SetProperty(u"s", u"abc");
    char16_t buffer[5] = {u'x', u'x', u'x', u'x', u'x'};
    expect_thrown<PM_Warning>([&] { (void)object.GetProperty(u"s", buffer, 7); }, PM_ERR_VALUE_TOO_LARGE,
                              u"PM_Property::GetData()", u"s");
    EXPECT_TRUE(object.GetProperty(u"s", buffer, 8));
    EXPECT_EQ(u"abc", std::u16string(buffer));
    EXPECT_EQ(u'x', buffer[4]);
}

TEST(Object, ATextOf4096UnitsTakesItsTerminatorAlong) {
    PM_Object object;
    const std::u16string text(4096, u'x');
    object.SetProperty(u"s", text.c_str());
    EXPECT_EQ(8194U, object.getPropertySize(u"s"));
    std::vector<char16_t> stored(4097, u'?');
    EXPECT_TRUE(object.GetProperty(u"s", stored.data(), 8194));
    EXPECT_EQ(0, stored[4096]);
}

TEST(Object, ATextOf4095UnitsStores4096) {
    PM_Object object;
    object.SetProperty(u"s", std::u16string(4095, u'x').c_str());
    EXPECT_EQ(8192U, object.getPropertySize(u"s"));
}

TEST(Object, ALongerTextIsCutTo4097UnitsWithoutTerminator) {
    PM_Object object;
    object.SetProperty(u"s", std::u16string(5000, u'x').c_str());
    EXPECT_EQ(8194U, object.getPropertySize(u"s"));
    std::vector<char16_t> stored(4097, u'?');
    EXPECT_TRUE(object.GetProperty(u"s", stored.data(), 8194));
    EXPECT_EQ(u'x', stored[4096]);
}

TEST(Object, NarrowTextIsStoredAsItIs) {
    PM_Object object;
    object.SetProperty(u"s", reinterpret_cast<const unsigned char*>("ab\xE4"));
    EXPECT_EQ(4U, object.getPropertySize(u"s"));
    unsigned char bytes[4] = {'x', 'x', 'x', 'x'};
    EXPECT_TRUE(object.GetProperty(u"s", bytes, sizeof bytes));
    EXPECT_EQ(0, std::memcmp("ab\xE4", bytes, 4));
    char16_t paired[2] = {};
    EXPECT_TRUE(object.GetProperty(u"s", paired, sizeof paired));
    EXPECT_EQ(0x6261, paired[0]);
    EXPECT_EQ(0x00E4, paired[1]);
}

TEST(Object, NarrowTextIsLimitedIn4096CharactersOfTheCodePage) {
    PM_Object object;
    const std::string single(5000, 'x');
    object.SetProperty(u"s", reinterpret_cast<const unsigned char*>(single.c_str()));
    EXPECT_EQ(4097U, object.getPropertySize(u"s"));

    pm_set_system_code_page(932);
    std::string pairs;
    for (int count = 0; count < 5000; ++count)
        pairs += "\x82\xA0";
    object.SetProperty(u"s", reinterpret_cast<const unsigned char*>(pairs.c_str()));
    EXPECT_EQ(2U * 4096 + 1, object.getPropertySize(u"s"));
    pm_set_system_code_page(1252);
}

TEST(Object, NullTextsCountAsEmpty) {
    PM_Object object;
    object.SetProperty(u"w", static_cast<const char16_t*>(nullptr));
    object.SetProperty(u"n", static_cast<const unsigned char*>(nullptr));
    EXPECT_EQ(2U, object.getPropertySize(u"w"));
    EXPECT_EQ(1U, object.getPropertySize(u"n"));
    expect_thrown<PM_Warning>([&] { object.SetProperty(nullptr, 1); }, PM_ERR_BAD_PATH, set_place, u"");
    EXPECT_FALSE(object.pathExists(nullptr));
}

TEST(Object, AnIndexFillsTheFirstStar) {
    PM_Object object;
    object.SetProperty(u"Pen*\\Width*", 1, 3);
    EXPECT_EQ(4U, object.getPropertySize(u"Pen*\\Width*", 3));
    EXPECT_TRUE(object.pathExists(u"Pen3\\Width*"));
}

TEST(Object, AnIndexOfMinusOneFillsAStarToo) {
    PM_Object object;
    object.SetProperty(u"Pen*\\Width", 5, -1);
    EXPECT_EQ(4U, object.getPropertySize(u"Pen*\\Width", -1));
    EXPECT_TRUE(object.pathExists(u"Pen-1\\Width"));
    EXPECT_FALSE(object.pathExists(u"Pen*\\Width"));
}

TEST(Object, AnIndexWithoutAStarIsOneMoreLevel) {
    PM_Object object;
    object.SetProperty(u"Pens", 7, 3);
    EXPECT_EQ(7, long_at(object, u"Pens\\3"));
    EXPECT_EQ(7, long_at(object, u"Pens", 3));
    object.SetProperty(u"Pens", 8, -2);
    EXPECT_EQ(8, long_at(object, u"Pens\\-2"));
    object.SetProperty(u"Pens", 9, 0);
    EXPECT_EQ(9, long_at(object, u"Pens\\0"));
}

TEST(Object, ASecondValueAtAnIndexReplacesTheFirst) {
    PM_Object object;
    object.SetProperty(u"Pens", 7, 3);
    object.SetProperty(u"Pens", 8, 3);
    EXPECT_EQ(8, long_at(object, u"Pens\\3"));
    object.deletePath(u"Pens\\3");
    EXPECT_FALSE(object.pathExists(u"Pens\\3"));
}

TEST(Object, AStrictPropertyAtAnIndexRefusesAnotherType) {
    PM_Object object;
    object.SetProperty(u"Pen*\\Width", 1, 3);
    expect_thrown<PM_Warning>([&] { object.SetProperty(u"Pen*\\Width", 2.5, 3); }, PM_ERR_WRONG_TYPE,
                              set_place, u"");
    EXPECT_EQ(1, long_at(object, u"Pen3\\Width"));
}

TEST(Object, StarsAreOrdinaryWhereNoIndexIsTaken) {
    PM_Object object;
    object.SetProperty(u"Pen*\\Width", 1, 1);
    expect_thrown<PM_Warning>([&] { object.deletePath(u"Pen*\\Width"); }, PM_ERR_BAD_PATH, delete_place,
                              u"Pen*\\Width");
    EXPECT_FALSE(object.pathExists(u"Pen*\\Width"));
    expect_thrown<PM_Warning>([&] { delete object.newIterator(u"Pen*", 0); }, PM_ERR_BAD_PATH,
                              u"PM_Iterator::PM_Iterator()", u"Pen*");
}

TEST(Object, ExtremeIndexesFit) {
    PM_Object object;
    object.SetProperty(u"p", 1, 2147483647);
    object.SetProperty(u"p", 2, -2147483647 - 1);
    EXPECT_EQ(1, long_at(object, u"p\\2147483647"));
    EXPECT_EQ(2, long_at(object, u"p\\-2147483648"));
}

TEST(Object, APathOf1023UnitsIsTheLongest) {
    PM_Object object;
    const std::u16string longest(1023, u'x');
    object.SetProperty(longest.c_str(), 1);
    EXPECT_EQ(1, long_at(object, longest.c_str()));
    const std::u16string longer(1024, u'x');
    expect_thrown<PM_Warning>([&] { object.SetProperty(longer.c_str(), 1); }, PM_ERR_BAD_PATH, set_place,
                              longer.substr(0, 259));
    int value = 0;
    expect_thrown<PM_Warning>([&] { (void)object.GetProperty(longer.c_str(), value); }, PM_ERR_BAD_PATH,
                              get_place, longer.substr(0, 259));
    expect_thrown<PM_Warning>([&] { (void)object.getPropertySize(longer.c_str()); }, PM_ERR_BAD_PATH,
                              size_place, longer.substr(0, 259));
}

TEST(Object, TheIndexCountsForTheLengthOfAPath) {
    PM_Object object;
    const std::u16string base(1020, u'x');
    object.SetProperty(base.c_str(), 1, 12);
    expect_thrown<PM_Warning>([&] { object.SetProperty(base.c_str(), 1, 123); }, PM_ERR_BAD_PATH, set_place,
                              base.substr(0, 259));
    const std::u16string star = std::u16string(1020, u'x') + u"*";
    object.SetProperty(star.c_str(), 1, 123);
    expect_thrown<PM_Warning>([&] { object.SetProperty(star.c_str(), 1, 1234); }, PM_ERR_BAD_PATH, set_place,
                              star.substr(0, 259));
}

TEST(Object, WritingToAPathWithoutComponentsRaises51) {
    PM_Object object;
    expect_thrown<PM_Warning>([&] { object.SetProperty(u"", 1); }, PM_ERR_BAD_PATH, set_place, u"");
    expect_thrown<PM_Warning>([&] { object.SetProperty(u"\\\\", 1); }, PM_ERR_BAD_PATH, set_place, u"\\\\");
}

TEST(Object, APathOf257ComponentsRaises51FromThePath) {
    PM_Object object;
    std::u16string path;
    for (int count = 0; count < 257; ++count)
        path += u"\\x";
    expect_thrown<PM_Warning>([&] { object.SetProperty(path.c_str(), 1); }, PM_ERR_BAD_PATH,
                              u"PM_Path::PM_Path()", path.substr(0, 259));
}

std::u16string levels(std::size_t count, std::u16string_view name) {
    std::u16string path;
    for (std::size_t level = 0; level < count; ++level) {
        path += u'\\';
        path += name;
    }
    return path;
}

TEST(Object, A257thComponentRaises51OutOfEveryOperationAndKeepsItsReferences) {
    const std::u16string path = levels(257, u"x");
    const char16_t* const text = path.c_str();
    using Operation = std::function<void(PM_Object&)>;
    const Operation operations[] = {
        [&](PM_Object& object) { object.SetProperty(text, 1); },
        [&](PM_Object& object) { object.SetProperty(text, 1L); },
        [&](PM_Object& object) { object.SetProperty(text, true); },
        [&](PM_Object& object) { object.SetProperty(text, 2.5); },
        [&](PM_Object& object) { object.SetProperty(text, 2.5F); },
        [&](PM_Object& object) { object.SetProperty(text, u"t"); },
        [&](PM_Object& object) { object.SetProperty(text, reinterpret_cast<const unsigned char*>("t")); },
        [&](PM_Object& object) { object.setVoidProperty(text, "t", 1); },
        [&](PM_Object& object) {
            int value = 0;
            (void)object.GetProperty(text, value);
        },
        [&](PM_Object& object) {
            long value = 0;
            (void)object.GetProperty(text, value);
        },
        [&](PM_Object& object) {
            bool value = false;
            (void)object.GetProperty(text, value);
        },
        [&](PM_Object& object) {
            double value = 0;
            (void)object.GetProperty(text, value);
        },
        [&](PM_Object& object) {
            float value = 0;
            (void)object.GetProperty(text, value);
        },
        [&](PM_Object& object) {
            char16_t value[2];
            (void)object.GetProperty(text, value, 4);
        },
        [&](PM_Object& object) {
            unsigned char value[2];
            (void)object.GetProperty(text, value, 2);
        },
        [&](PM_Object& object) {
            char value[2];
            (void)object.getVoidProperty(text, value, 2);
        },
        [&](PM_Object& object) { (void)object.getPropertySize(text); },
        [&](PM_Object& object) { (void)object.pathExists(text); },
        [&](PM_Object& object) { object.deletePath(text); },
        [&](PM_Object& object) { object.duplicate(text, u"y"); },
        [&](PM_Object& object) { object.duplicate(u"y", text); },
        [&](PM_Object& object) { delete object.newIterator(text, 0); },
    };
    for (std::size_t index = 0; index < std::size(operations); ++index) {
        SCOPED_TRACE(index);
        OpenObject object;
        object.SetProperty(u"x", 1);
        expect_thrown<PM_Warning>([&] { operations[index](object); }, PM_ERR_BAD_PATH, u"PM_Path::PM_Path()",
                                  path.substr(0, 259));
        EXPECT_EQ(258, object.references(u"x"));
        EXPECT_EQ(0, object.references(u"y"));
        object.deletePath(u"x");
        EXPECT_TRUE(object.pathExists(u"x"));
    }
}

TEST(Object, A257thComponentRaises51BelowANodeOf256Too) {
    PM_Object object;
    object.SetProperty(u"p", 1);
    object.duplicate(u"p", levels(256, u"x").c_str());
    const std::u16string path = levels(257, u"x");
    expect_thrown<PM_Warning>([&] { object.SetProperty(path.c_str(), 1); }, PM_ERR_BAD_PATH,
                              u"PM_Path::PM_Path()", path.substr(0, 259));
}

TEST(Object, AnUnknownNameIsMetBeforeTheCountOfComponents) {
    OpenObject object;
    object.SetProperty(u"x", 1);
    const std::u16string path = levels(256, u"x") + u"\\unknown";
    int value = 0;
    EXPECT_FALSE(object.GetProperty(path.c_str(), value));
    EXPECT_FALSE(object.pathExists(path.c_str()));
    expect_thrown<PM_Warning>([&] { (void)object.getPropertySize(path.c_str()); }, PM_ERR_BAD_PATH,
                              size_place, path.substr(0, 259));
    EXPECT_EQ(1, object.references(u"x"));
    EXPECT_EQ(0, object.references(u"unknown"));
}

TEST(Object, OperationsWithoutAnIndexTakePathsOfAnyLength) {
    OpenObject object;
    const std::u16string name(300, u'x');
    const std::u16string part = levels(3, name);
    const std::u16string path = part + part;
    object.SetProperty((part + u"\\p").c_str(), 1);
    object.duplicate(u"xx", path.c_str()); // a missing source makes the destination
    EXPECT_TRUE(object.pathExists((path + u"\\p").c_str()));
    object.SetProperty(u"from\\p", 7);
    object.duplicate(u"from", path.c_str());
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(path.c_str(), 0));
    char* value = nullptr;
    std::size_t size = 0;
    PropType type{};
    EXPECT_EQ(u"p", std::u16string(walk->nextProp(value, size, type)));
    EXPECT_STREQ("7", value);
    EXPECT_EQ(nullptr, walk->nextProp(value, size, type));
    object.duplicate(path.c_str(), u"to");
    EXPECT_EQ(7, long_at(object, u"to\\p"));
    object.deletePath((path + u"\\p").c_str());
    object.deletePath(path.c_str());
    EXPECT_EQ(5, object.references(name.c_str()));
    expect_thrown<PM_Warning>([&] { object.deletePath(path.c_str()); }, PM_ERR_NOTHING_THERE, delete_place,
                              path.substr(0, 259));
}

TEST(Object, SizeOfAnUnknownNameRaises51WithThePathAsGiven) {
    PM_Object object;
    object.SetProperty(u"a\\b", 1);
    expect_thrown<PM_Warning>([&] { (void)object.getPropertySize(u"a\\*", 7); }, PM_ERR_BAD_PATH, size_place,
                              u"a\\*");
    expect_thrown<PM_Warning>([&] { (void)object.getPropertySize(u""); }, PM_ERR_BAD_PATH, size_place, u"");
}

TEST(Object, SizeBelowAMissingNodeRaises86WithTheResolvedPath) {
    PM_Object object;
    object.SetProperty(u"a\\b7", 1);
    expect_thrown<PM_Warning>([&] { (void)object.getPropertySize(u"b*\\a", 7); }, PM_ERR_NO_SUCH_NODE,
                              size_place, u"b7\\a");
}

TEST(Object, SizeOfAMissingPropertyRaises87WithTheResolvedPath) {
    PM_Object object;
    object.SetProperty(u"a\\b", 1);
    object.SetProperty(u"7", 1);
    expect_thrown<PM_Warning>([&] { (void)object.getPropertySize(u"a", 7); }, PM_ERR_NO_SUCH_PROPERTY,
                              size_place, u"a\\7");
    expect_thrown<PM_Warning>([&] { (void)object.getPropertySize(u"a\\a"); }, PM_ERR_NO_SUCH_PROPERTY,
                              size_place, u"a\\a");
}

TEST(Object, PathExistsAsksForNodesAndAKnownLastName) {
    PM_Object object;
    object.SetProperty(u"a\\p", 1);
    EXPECT_FALSE(object.pathExists(u"a\\never-written"));
    object.SetProperty(u"other\\never-written", 1);
    EXPECT_TRUE(object.pathExists(u"a\\never-written"));
    EXPECT_TRUE(object.pathExists(u"a"));
    EXPECT_TRUE(object.pathExists(u"p"));
    EXPECT_FALSE(object.pathExists(u"p\\a"));
    EXPECT_FALSE(object.pathExists(u""));
}

TEST(Object, PathExistsForgetsNamesThatAreNoLongerInUse) {
    PM_Object object;
    object.SetProperty(u"a\\p", 1);
    object.SetProperty(u"b", 1);
    object.deletePath(u"b");
    EXPECT_FALSE(object.pathExists(u"a\\b"));
}

TEST(Object, DeletingTakesThePropertyFirstThenTheNode) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    object.SetProperty(u"a\\a", 2);
    object.deletePath(u"a");
    int value = 0;
    EXPECT_FALSE(object.GetProperty(u"a", value));
    EXPECT_EQ(2, long_at(object, u"a\\a"));
    object.deletePath(u"a");
    EXPECT_FALSE(object.pathExists(u"a"));
    object.SetProperty(u"b\\a", 1);
    expect_thrown<PM_Warning>([&] { object.deletePath(u"a"); }, PM_ERR_NOTHING_THERE, delete_place, u"a");
}

TEST(Object, AThirdDeleteOfANameStillInUseRaises52) {
    PM_Object object;
    object.SetProperty(u"keep\\a", 0);
    object.SetProperty(u"a", 1);
    object.SetProperty(u"a\\x", 2);
    object.deletePath(u"a");
    object.deletePath(u"a");
    expect_thrown<PM_Warning>([&] { object.deletePath(u"a"); }, PM_ERR_NOTHING_THERE, delete_place, u"a");
}

TEST(Object, DeletingAnUnknownNameRaises51) {
    PM_Object object;
    expect_thrown<PM_Warning>([&] { object.deletePath(u"a"); }, PM_ERR_BAD_PATH, delete_place, u"a");
    expect_thrown<PM_Warning>([&] { object.deletePath(u""); }, PM_ERR_BAD_PATH, delete_place, u"");
}

TEST(Object, DeletingBelowAMissingNodeRaises52) {
    PM_Object object;
    object.SetProperty(u"a\\b", 1);
    expect_thrown<PM_Warning>([&] { object.deletePath(u"b\\a"); }, PM_ERR_NOTHING_THERE, delete_place,
                              u"b\\a");
}

TEST(Object, DeletingKeepsSiblings) {
    PM_Object object;
    for (const char16_t* name : {u"a", u"b", u"c"}) {
        object.SetProperty(name, 1);
        object.SetProperty((std::u16string(name) + u"\\x").c_str(), 2);
    }
    object.deletePath(u"a");
    object.deletePath(u"a");
    EXPECT_EQ(1, long_at(object, u"b"));
    EXPECT_EQ(2, long_at(object, u"b\\x"));
    EXPECT_EQ(2, long_at(object, u"c\\x"));
}

TEST(Object, EveryOperationGivesBackTheNamesItLookedUp) {
    OpenObject object;
    object.SetProperty(u"a\\b", 1);
    const int a = object.references(u"a");
    const int b = object.references(u"b");
    int value = 0;
    double number = 0;
    (void)object.GetProperty(u"a\\b", value);
    (void)object.GetProperty(u"a\\b\\unknown", value);
    (void)object.getPropertySize(u"a\\b");
    (void)object.pathExists(u"a\\b");
    (void)thrown_by([&] { (void)object.GetProperty(u"a\\b", number); });
    (void)thrown_by([&] { object.SetProperty(u"a\\b", 2.5); });
    (void)thrown_by([&] { (void)object.getPropertySize(u"b\\a"); });
    (void)thrown_by([&] { (void)object.getPropertySize(u"a\\a"); });
    (void)thrown_by([&] { object.deletePath(u"b\\a"); });
    (void)thrown_by([&] { object.duplicate(u"a", u"b\\a"); });
    delete object.newIterator(u"a\\b", 0);
    EXPECT_EQ(a, object.references(u"a"));
    EXPECT_EQ(b, object.references(u"b"));
    EXPECT_EQ(0, object.references(u"unknown"));
}

TEST(Object, WithoutARootEveryOperationRaises50) {
    OpenObject object;
    object.lose_root();
    int value = 0;
    expect_thrown<PM_Severe>([&] { object.SetProperty(u"a", 1); }, PM_ERR_NO_ROOT, set_place, u"m_root");
    expect_thrown<PM_Severe>([&] { (void)object.GetProperty(u"a", value); }, PM_ERR_NO_ROOT, get_place,
                             u"m_root");
    expect_thrown<PM_Severe>([&] { (void)object.getPropertySize(u"a"); }, PM_ERR_NO_ROOT, size_place,
                             u"m_root");
    expect_thrown<PM_Severe>([&] { object.deletePath(u"a"); }, PM_ERR_NO_ROOT, delete_place, u"m_root");
    expect_thrown<PM_Severe>([&] { object.duplicate(u"a", u"b"); }, PM_ERR_NO_ROOT, u"PM_Object::duplicate()",
                             u"m_root");
    expect_thrown<PM_Severe>([&] { delete object.newIterator(u"a", 0); }, PM_ERR_NO_ROOT,
                             u"PM_Iterator::PM_Iterator()", u"pmobj->m_root");
    EXPECT_FALSE(object.pathExists(u"a"));
}

TEST(Object, ExceptionsCarryTheMarkersOfTheirUnits) {
    PM_Object object;
    const auto by_object = thrown_by([&] { object.deletePath(u"a"); });
    EXPECT_EQ(u"$Workfile: pmobj $ $Revision: #1 $", std::u16string(by_object->m_source));
    object.SetProperty(u"v", 2.5, -1, false);
    int value = 0;
    const auto by_property = thrown_by([&] { (void)object.GetProperty(u"v", value); });
    EXPECT_EQ(u"$Workfile: pmpmgr $ $Revision: #1 $", std::u16string(by_property->m_source));
}

TEST(Duplicate, TheContentLandsInTheDestinationItself) {
    PM_Object object;
    object.SetProperty(u"a\\b\\p", 1);
    object.SetProperty(u"a\\b\\n\\q", u"text");
    object.duplicate(u"a\\b", u"c");
    EXPECT_EQ(1, long_at(object, u"c\\p"));
    EXPECT_EQ(u"text", string_at(object, u"c\\n\\q"));
    int value = 0;
    EXPECT_FALSE(object.GetProperty(u"c\\b\\p", value));
}

TEST(Duplicate, WhatFollowsADeeperNodeStaysBesideItsParent) {
    PM_Object object;
    object.SetProperty(u"a\\x\\y\\n\\p", 1);
    object.SetProperty(u"a\\x\\z\\p", 2);
    object.SetProperty(u"a\\z\\p", 3);
    object.duplicate(u"a", u"c");
    EXPECT_EQ((std::vector<std::string>{"a\\x\\y\\n\\p long 1", "a\\x\\z\\p long 2", "a\\z\\p long 3",
                                        "c\\x\\y\\n\\p long 1", "c\\x\\z\\p long 2", "c\\z\\p long 3"}),
              pm::test::tree_text(object));
}

TEST(Duplicate, MissingLevelsOfTheDestinationAreMadeOnce) {
    OpenObject object;
    object.SetProperty(u"a\\p", 1);
    object.SetProperty(u"a\\x\\p", 2);
    object.SetProperty(u"a\\y\\p", 3);
    object.duplicate(u"a", u"new\\place");
    EXPECT_EQ(1, long_at(object, u"new\\place\\p"));
    EXPECT_EQ(2, long_at(object, u"new\\place\\x\\p"));
    EXPECT_EQ(3, long_at(object, u"new\\place\\y\\p"));
    const PM_Node* made = object.root()->first_child()->next_sibling();
    EXPECT_EQ(u"new", std::u16string(made->name()));
    EXPECT_EQ(nullptr, made->next_sibling());
    EXPECT_EQ(nullptr, made->first_child()->next_sibling());
}

TEST(Duplicate, ExistingPropertiesOfTheDestinationWin) {
    PM_Object object;
    object.SetProperty(u"a\\p", 1);
    object.SetProperty(u"a\\q", 2);
    object.SetProperty(u"c\\p", u"stays");
    object.duplicate(u"a", u"c");
    EXPECT_EQ(u"stays", string_at(object, u"c\\p"));
    EXPECT_EQ(2, long_at(object, u"c\\q"));
}

TEST(Duplicate, StrictnessAndTypeAreCopied) {
    PM_Object object;
    object.SetProperty(u"a\\loose", 1, -1, false);
    object.SetProperty(u"a\\strict", 1);
    object.duplicate(u"a", u"c");
    object.SetProperty(u"c\\loose", 2.5);
    expect_thrown<PM_Warning>([&] { object.SetProperty(u"c\\strict", 2.5); }, PM_ERR_WRONG_TYPE, set_place,
                              u"");
}

TEST(Duplicate, LastNameOfTheSourceAnywhereInTheDestinationIsRefused) {
    PM_Object object;
    object.SetProperty(u"a\\b\\p", 1);
    expect_thrown<PM_Severe>([&] { object.duplicate(u"a", u"x\\a\\y"); }, PM_ERR_COPY_INTO_ITSELF,
                             u"PM_Object::duplicate()", u"");
    expect_thrown<PM_Severe>([&] { object.duplicate(u"a\\b", u"b"); }, PM_ERR_COPY_INTO_ITSELF,
                             u"PM_Object::duplicate()", u"");
    object.duplicate(u"a\\b", u"a\\c");
    EXPECT_EQ(1, long_at(object, u"a\\c\\p"));
}

TEST(Duplicate, OfTheRootIntoItselfChangesNothing) {
    PM_Object object;
    object.SetProperty(u"a\\p", 1);
    object.duplicate(u"\\", u"\\");
    EXPECT_EQ(1, long_at(object, u"a\\p"));
    int value = 0;
    EXPECT_FALSE(object.GetProperty(u"a\\a\\p", value));
}

TEST(Duplicate, IntoItsOwnInsideEndsAt256Components) {
    PM_Object object;
    object.SetProperty(u"a\\p", 1);
    expect_thrown<PM_Warning>([&] { object.duplicate(u"\\", u"a"); }, PM_ERR_BAD_PATH,
                              u"PM_Object::duplicate()", u"a");
    EXPECT_EQ(1, long_at(object, u"a\\a\\a\\p"));
}

TEST(Duplicate, WhatACopyHas256NodesDeepNoPathReaches) {
    PM_Object object;
    object.SetProperty(u"a\\a", 1); // a path of that name alone goes as deep as it may
    (void)thrown_by([&] { object.duplicate(u"\\", u"a"); });
    EXPECT_EQ(1, long_at(object, levels(256, u"a").c_str()));
    int value = 0;
    const std::u16string deeper = levels(257, u"a");
    expect_thrown<PM_Warning>([&] { (void)object.GetProperty(deeper.c_str(), value); }, PM_ERR_BAD_PATH,
                              u"PM_Path::PM_Path()", deeper.substr(0, 259));
    EXPECT_EQ(0, value);
}

TEST(Duplicate, OfAMissingNodeWithKnownNamesMakesTheDestinationOnly) {
    PM_Object object;
    object.SetProperty(u"a\\p", 1);
    object.duplicate(u"p", u"c");
    EXPECT_TRUE(object.pathExists(u"c\\p"));
    int value = 0;
    EXPECT_FALSE(object.GetProperty(u"c\\p", value));
}

TEST(Duplicate, OfAnEmptyPathRaises51FromTheWalk) {
    PM_Object object;
    expect_thrown<PM_Warning>([&] { object.duplicate(u"", u"c"); }, PM_ERR_BAD_PATH,
                              u"PM_Iterator::PM_Iterator()", u"");
}

TEST(Duplicate, APropertyWithoutAValueRaises59) {
    PM_Object object;
    object.setVoidProperty(u"a\\v", "", 0);
    expect_thrown<PM_Warning>([&] { object.duplicate(u"a", u"c"); }, PM_ERR_NO_VALUE,
                              u"PM_Property::GetData()", u"v");
}

TEST(Duplicate, GivesBackItsNamesWhen59PassesOut) {
    OpenObject object;
    object.SetProperty(u"a\\b\\p", 1);
    object.setVoidProperty(u"a\\b\\v", "", 0);
    expect_thrown<PM_Warning>([&] { object.duplicate(u"a", u"c\\d"); }, PM_ERR_NO_VALUE,
                              u"PM_Property::GetData()", u"v");
    EXPECT_EQ(1, object.references(u"a"));
    EXPECT_EQ(2, object.references(u"b"));
    EXPECT_EQ(1, object.references(u"c"));
    EXPECT_EQ(1, object.references(u"d"));
    EXPECT_EQ(2, object.references(u"p"));
    EXPECT_EQ(2, object.references(u"v")); // the copy was made before its value was read
    EXPECT_EQ(0U, object.getPropertySize(u"c\\d\\b\\v"));
}

TEST(Duplicate, GivesBackItsNamesWhen51PassesOut) {
    OpenObject object;
    object.SetProperty(u"a\\p", 1);
    (void)thrown_by([&] { object.duplicate(u"\\", u"a"); });
    EXPECT_EQ(256, object.references(u"a")); // a node on each level
    object.deletePath(u"a");
    EXPECT_EQ(0, object.references(u"a"));
    EXPECT_EQ(0, object.references(u"p"));
}

TEST(Duplicate, GivesBackItsNamesWhenTheSourceIsEmptyOrRefused) {
    OpenObject object;
    object.SetProperty(u"a\\p", 1);
    (void)thrown_by([&] { object.duplicate(u"", u"c\\d"); });
    (void)thrown_by([&] { object.duplicate(u"a", u"c\\a"); });
    EXPECT_EQ(1, object.references(u"a"));
    EXPECT_EQ(0, object.references(u"c"));
    EXPECT_EQ(0, object.references(u"d"));
}

TEST(Duplicate, ReleasesTheNamesItUsed) {
    OpenObject object;
    object.SetProperty(u"a\\b\\p", 1);
    object.duplicate(u"a", u"c");
    EXPECT_EQ(1, object.references(u"a"));
    EXPECT_EQ(2, object.references(u"b"));
    EXPECT_EQ(1, object.references(u"c"));
    EXPECT_EQ(2, object.references(u"p"));
}

} // namespace
