#include "support/allocation_failures.h"
#include "support/exceptions.h"
#include "support/scoped_settings.h"
#include <bit>
#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <pm/error_number.h>
#include <pm/tree.h>
#include <span>
#include <string>
#include <vector>

namespace {

using namespace std::string_literals;
using pm::test::expect_thrown;
using testing::ElementsAre;

constexpr const char16_t* tree_place = u"pm::Tree";

// Which types get() and at() take.
static_assert(pm::Readable<int> && pm::Readable<long> && pm::Readable<long long>);
static_assert(pm::Readable<float> && pm::Readable<double> && pm::Readable<bool>);
static_assert(pm::Readable<std::string> && pm::Readable<std::u16string>);
static_assert(pm::Readable<pm::Bytes> && pm::Readable<pm::Value>);
static_assert(!pm::Readable<short> && !pm::Readable<unsigned>);
static_assert(!pm::Readable<const char*> && !pm::Readable<std::string_view>);

static_assert(std::is_nothrow_move_constructible_v<pm::Tree> && std::is_nothrow_move_assignable_v<pm::Tree>);
static_assert(!std::is_copy_constructible_v<pm::Tree>);

pm::Bytes bytes(std::initializer_list<int> values) {
    pm::Bytes result;
    for (const int value : values)
        result.push_back(static_cast<std::byte>(value));
    return result;
}

TEST(Tree, LongsReadBackAsEveryInteger) {
    pm::Tree tree;
    tree.set("a\\n", -5);
    EXPECT_EQ(-5, tree.get<int>("a\\n"));
    EXPECT_EQ(-5, tree.get<long>("a\\n"));
    EXPECT_EQ(-5, tree.get<long long>("a\\n"));
    EXPECT_EQ(-5, tree.at<std::int32_t>("a\\n"));
}

TEST(Tree, IntegersOfEveryTypeAreStoredAsLongs) {
    pm::Tree tree;
    tree.set("a", short{1});
    tree.set("b", 2U);
    tree.set("c", 3L);
    tree.set("d", std::uint64_t{4});
    tree.set("e", std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(1, tree.get<int>("a"));
    EXPECT_EQ(2, tree.get<int>("b"));
    EXPECT_EQ(3, tree.get<int>("c"));
    EXPECT_EQ(4, tree.get<int>("d"));
    EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), tree.get<int>("e"));
}

TEST(Tree, IntegerBeyond32BitsIsNumber58AndChangesNothing) {
    pm::Tree tree;
    tree.set("n", 1);
    expect_thrown<PM_Warning>([&] { tree.set("n", 0x80000000U); }, PM_ERR_VALUE_TOO_LARGE, tree_place, u"n");
    expect_thrown<PM_Warning>([&] { tree.set("new", -0x80000001LL); }, PM_ERR_VALUE_TOO_LARGE, tree_place,
                              u"new");
    EXPECT_EQ(1, tree.get<int>("n"));
    EXPECT_FALSE(tree.contains("new"));
}

TEST(Tree, DoublesReadBackToTheBit) {
    pm::Tree tree;
    for (const double value : {1.0 / 3, -0.0, 1e300, std::numeric_limits<double>::denorm_min(),
                               std::numeric_limits<double>::infinity(), std::nan("17")}) {
        tree.set("d", value);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(tree.at<double>("d")));
        const pm::Value held = tree.at<pm::Value>("d");
        EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(std::get<double>(held)));
    }
}

TEST(Tree, FloatsAreWidened) {
    pm::Tree tree;
    tree.set("f", 0.1F);
    EXPECT_EQ(static_cast<double>(0.1F), tree.get<double>("f"));
    EXPECT_EQ(0.1F, tree.get<float>("f"));
}

TEST(Tree, TruthValuesReadBack) {
    pm::Tree tree;
    tree.set("t", true);
    tree.set("f", false);
    EXPECT_EQ(true, tree.get<bool>("t"));
    EXPECT_EQ(false, tree.get<bool>("f"));
    EXPECT_EQ(PROP_BOOL, tree.property("t")->type());
}

TEST(Tree, TextsOfEveryKindAreTextsAndNoTruthValues) {
    pm::Tree tree;
    tree.set("a", "literal");
    tree.set("b", "string"s);
    tree.set("c", std::string_view("view"));
    tree.set("d", u"wide literal");
    tree.set("e", u"wide string"s);
    tree.set("f", std::u16string_view(u"wide view of more", 9));
    const char* const pointer = "pointer";
    tree.set("g", pointer);
    EXPECT_EQ("literal", tree.get<std::string>("a"));
    EXPECT_EQ("string", tree.get<std::string>("b"));
    EXPECT_EQ("view", tree.get<std::string>("c"));
    EXPECT_EQ("wide literal", tree.get<std::string>("d"));
    EXPECT_EQ("wide string", tree.get<std::string>("e"));
    EXPECT_EQ("wide view", tree.get<std::string>("f"));
    EXPECT_EQ("pointer", tree.get<std::string>("g"));
    EXPECT_EQ(u"literal", tree.get<std::u16string>("a"));
}

TEST(Tree, TextBesideAsciiIsTheSameInBothWidths) {
    pm::Tree tree;
    tree.set("\\\xC3\xA4\\\xE2\x82\xAC", "\xF0\x9F\x98\x80 \xC3\xA4");
    EXPECT_EQ(u"\U0001F600 \u00E4", tree.get<std::u16string>(u"\\\u00E4\\\u20AC"));
    EXPECT_EQ("\xF0\x9F\x98\x80 \xC3\xA4", tree.get<std::string>(u"\u00E4\\\u20AC"));
}

TEST(Tree, UnpairedSurrogatesPassInNamesAndTexts) {
    pm::Tree tree;
    tree.set(u"\xD800\\\xDC00", u"\xDFFF\xD800");
    EXPECT_EQ(u"\xDFFF\xD800", tree.get<std::u16string>("\xED\xA0\x80\\\xED\xB0\x80"));
    EXPECT_EQ("\xED\xBF\xBF\xED\xA0\x80", tree.get<std::string>(u"\xD800\\\xDC00"));
    EXPECT_EQ("\xED\xA0\x80", tree.root().children().front().name());
}

TEST(Tree, EmptyTextIsATerminatorAlone) {
    pm::Tree tree;
    tree.set("t", "");
    EXPECT_EQ("", tree.get<std::string>("t"));
    EXPECT_EQ(2U, tree.property("t")->bytes().size());
}

TEST(Tree, TextUpToTheStoresLimitIsWhole) {
    pm::Tree tree;
    const std::string text(4096, 'x');
    tree.set("t", text);
    EXPECT_EQ(text, tree.get<std::string>("t"));
    EXPECT_EQ(8194U, tree.property("t")->bytes().size());
}

TEST(Tree, TextThatTheStoreWouldCutIsNumber58) {
    pm::Tree tree;
    expect_thrown<PM_Warning>([&] { tree.set("t", std::string(4097, 'x')); }, PM_ERR_VALUE_TOO_LARGE,
                              tree_place, u"t");
    EXPECT_FALSE(tree.contains("t"));
}

TEST(Tree, LimitOfATextCountsUnitsAndNotBytes) {
    pm::Tree tree;
    std::string text;
    for (int character = 0; character < 4096; ++character)
        text += "\xE2\x82\xAC";
    tree.set("t", text);
    EXPECT_EQ(std::u16string(4096, u'\u20AC'), tree.get<std::u16string>("t"));
}

TEST(Tree, TextThatHoldsAZeroIsNumber78) {
    pm::Tree tree;
    expect_thrown<PM_Warning>([&] { tree.set("a\\t", "x\0y"s); }, PM_ERR_INVALID_ARGUMENT, tree_place,
                              u"a\\t");
    expect_thrown<PM_Warning>([&] { tree.set("t", u"x\0y"s); }, PM_ERR_INVALID_ARGUMENT, tree_place, u"t");
    EXPECT_FALSE(tree.contains("a"));
}

TEST(Tree, RawBytesOfEveryContainerReadBack) {
    pm::Tree tree;
    const unsigned char array[] = {0, 1, 255};
    tree.set("a", array);
    tree.set("b", bytes({0, 1, 255}));
    tree.set("c", std::span(array));
    tree.set("d", std::vector<unsigned char>{0, 1, 255});
    for (const char* path : {"a", "b", "c", "d"}) {
        EXPECT_EQ(bytes({0, 1, 255}), tree.get<pm::Bytes>(path)) << path;
        EXPECT_EQ(PROP_VOID, tree.property(path)->type()) << path;
    }
}

TEST(Tree, NoRawBytesReadBackAsNone) {
    pm::Tree tree;
    tree.set("v", pm::Bytes());
    EXPECT_EQ(pm::Bytes(), tree.get<pm::Bytes>("v"));
    tree.set("v", bytes({1}));
    tree.set("v", pm::Bytes());
    EXPECT_EQ(pm::Bytes(), tree.get<pm::Bytes>("v"));
}

TEST(Tree, ValuesKeepTheirTypesThereAndBack) {
    pm::Tree tree;
    const std::vector<pm::Value> values = {7, 0.1, "text"s, true, bytes({1, 2})};
    for (const pm::Value& value : values) {
        tree.set("v", value, -1, false);
        EXPECT_EQ(value, tree.get<pm::Value>("v"));
        EXPECT_EQ(pm::type_of(value), tree.property("v")->type());
    }
}

TEST(Tree, ValueWithoutAValueIsNumber59) {
    pm::Tree tree;
    expect_thrown<PM_Warning>([&] { tree.set("v", pm::Value()); }, PM_ERR_NO_VALUE, tree_place, u"v");
    EXPECT_FALSE(tree.contains("v"));
}

TEST(Value, IndexIsTheType) {
    EXPECT_EQ(PROP_NONE, pm::type_of(pm::Value()));
    EXPECT_EQ(PROP_LONG, pm::type_of(pm::Value(1)));
    EXPECT_EQ(PROP_DOUBLE, pm::type_of(pm::Value(1.0)));
    EXPECT_EQ(PROP_STRING, pm::type_of(pm::Value("text")));
    EXPECT_EQ(PROP_BOOL, pm::type_of(pm::Value(true)));
    EXPECT_EQ(PROP_VOID, pm::type_of(pm::Value(pm::Bytes())));
}

TEST(Value, NarrowBytesUnderATextShowInPairs) {
    pm::Tree tree;
    const auto set_narrow = [&](const char16_t* path, const char* text) {
        tree.object().SetProperty(path, reinterpret_cast<const unsigned char*>(text));
    };
    set_narrow(u"even", "abc"); // 4 bytes with its terminator
    set_narrow(u"odd", "abcd"); // 5 bytes: the last one, 0, makes a terminator
    EXPECT_EQ(u"\u6261c", tree.get<std::u16string>("even"));
    EXPECT_EQ(u"\u6261\u6463", tree.get<std::u16string>("odd"));
    EXPECT_EQ(5U, tree.property("odd")->bytes().size());
}

TEST(Value, TextWithoutATerminatorIsWhole) {
    pm::Tree tree;
    tree.object().SetProperty(u"t", std::u16string(5000, u'x').c_str());
    EXPECT_EQ(std::string(4097, 'x'), tree.get<std::string>("t"));
}

TEST(Tree, AbsentPropertyReadsAsNothing) {
    pm::Tree tree;
    tree.set("a\\b", 1);
    for (const char* path : {"b", "a", "a\\c", "c\\b", "", "\\"}) {
        EXPECT_EQ(std::nullopt, tree.get<int>(path)) << path;
        EXPECT_EQ(std::nullopt, tree.get<pm::Value>(path)) << path;
    }
}

TEST(Tree, AtTellsWhatIsMissing) {
    pm::Tree tree;
    tree.set("a\\b", 1);
    constexpr const char16_t* place = u"PM_Object::getPropertySize()";
    expect_thrown<PM_Warning>([&] { (void)tree.at<int>("a\\c"); }, PM_ERR_BAD_PATH, place, u"a\\c");
    expect_thrown<PM_Warning>([&] { (void)tree.at<int>("b\\b"); }, PM_ERR_NO_SUCH_NODE, place, u"b\\b");
    expect_thrown<PM_Warning>([&] { (void)tree.at<int>("a\\a"); }, PM_ERR_NO_SUCH_PROPERTY, place, u"a\\a");
    expect_thrown<PM_Warning>([&] { (void)tree.at<int>(""); }, PM_ERR_BAD_PATH, place, u"");
}

TEST(Tree, PropertyOfAnotherTypeIsNumber54) {
    pm::Tree tree;
    tree.set("a\\n", 1);
    expect_thrown<PM_Warning>([&] { (void)tree.get<double>("a\\n"); }, PM_ERR_WRONG_TYPE, tree_place,
                              u"a\\n");
    expect_thrown<PM_Warning>([&] { (void)tree.get<bool>("a\\n"); }, PM_ERR_WRONG_TYPE, tree_place, u"a\\n");
    expect_thrown<PM_Warning>([&] { (void)tree.at<std::string>("a\\n"); }, PM_ERR_WRONG_TYPE, tree_place,
                              u"a\\n");
    expect_thrown<PM_Warning>([&] { (void)tree.at<pm::Bytes>("a\\n"); }, PM_ERR_WRONG_TYPE, tree_place,
                              u"a\\n");
}

TEST(Tree, LoosePropertyOfAnotherTypeIsNotReadAsWhatItIsNot) {
    pm::Tree tree;
    tree.set("d", 2.5, -1, false);
    expect_thrown<PM_Warning>([&] { (void)tree.get<int>("d"); }, PM_ERR_WRONG_TYPE, tree_place, u"d");
}

TEST(Tree, StrictPropertyKeepsItsTypeAndValue) {
    pm::Tree tree;
    tree.set("p", 1);
    expect_thrown<PM_Warning>([&] { tree.set("p", 2.5); }, PM_ERR_WRONG_TYPE, u"PM_Object::SetData()", u"");
    EXPECT_EQ(1, tree.get<int>("p"));
}

TEST(Tree, LoosePropertyTakesAnotherType) {
    pm::Tree tree;
    tree.set("p", 1, -1, false);
    tree.set("p", 2.5);
    EXPECT_EQ(2.5, tree.get<double>("p"));
    EXPECT_TRUE(tree.property("p")->strict());
}

class RawObject : public PM_Object {
public:
    using PM_Object::setData;
};

// What a damaged file can leave: a number of another size than its type has.
class OddSizes : public testing::Test {
protected:
    void store(const char16_t* path, const void* data, std::size_t size, PropType type) {
        object.setData(path, data, size, type, -1, true);
    }
    pm::Property at(const char* path) const { return *pm::find_property(object, path); }
    RawObject object;
};

TEST_F(OddSizes, ShortNumberIsItsLowBytes) {
    store(u"n", "\x05\x01", 2, PROP_LONG);
    EXPECT_EQ(pm::Value(0x105), at("n").value());
    EXPECT_EQ(0x105, at("n").as<int>());
}

TEST_F(OddSizes, LongNumberIsNumber58) {
    store(u"n", "12345", 5, PROP_LONG);
    store(u"d", "123456789", 9, PROP_DOUBLE);
    store(u"b", "12", 2, PROP_BOOL);
    for (const char* path : {"n", "d", "b"}) {
        expect_thrown<PM_Warning>([&] { (void)at(path).value(); }, PM_ERR_VALUE_TOO_LARGE, tree_place,
                                  pm::to_utf16(path));
    }
}

TEST_F(OddSizes, NumberWithoutBytesIsNumber59) {
    store(u"n", "", 0, PROP_LONG);
    expect_thrown<PM_Warning>([&] { (void)at("n").value(); }, PM_ERR_NO_VALUE, tree_place, u"n");
    EXPECT_TRUE(at("n").bytes().empty());
}

TEST_F(OddSizes, TextWithoutBytesIsEmpty) {
    store(u"t", "", 0, PROP_STRING);
    EXPECT_EQ(pm::Value(""), at("t").value());
}

TEST_F(OddSizes, ZerosWithinATextStay) {
    store(u"t", u"a\0b", 8, PROP_STRING);
    EXPECT_EQ("a\0b"s, at("t").as<std::string>());
}

TEST_F(OddSizes, PropertyOfNoTypeHasNoValue) {
    store(u"x", "12", 2, PROP_NONE);
    EXPECT_EQ(pm::Value(), at("x").value());
    EXPECT_EQ(PROP_NONE, at("x").type());
    EXPECT_EQ(2U, at("x").bytes().size());
}

TEST(Tree, IndexStandsForTheStarOrForOneMoreLevel) {
    pm::Tree tree;
    tree.set("Pen*\\Width", 0.5, 3);
    tree.set("Pens", 2, 4);
    EXPECT_EQ(0.5, tree.get<double>("Pen3\\Width"));
    EXPECT_EQ(0.5, tree.get<double>("Pen*\\Width", 3));
    EXPECT_EQ(2, tree.at<int>("Pens", 4));
    EXPECT_EQ(2, tree.at<int>("Pens\\4"));
    EXPECT_TRUE(tree.contains("Pen*\\Width", 3));
    EXPECT_TRUE(tree.contains("Pen*", 3));
    EXPECT_FALSE(tree.contains("Pen*", 4));
    EXPECT_TRUE(tree.erase("Pens", 4));
    EXPECT_FALSE(tree.contains("Pens\\4"));
    EXPECT_TRUE(tree.erase("Pen*", 3));
    EXPECT_FALSE(tree.contains("Pen3"));
}

TEST(Tree, OnlyTheFirstStarIsReplaced) {
    pm::Tree tree;
    tree.set("a*\\b*", 1, 7);
    EXPECT_TRUE(tree.contains("a*\\b*", 7));
    EXPECT_EQ("b*", tree.node("a7")->properties().front().name());
    EXPECT_TRUE(tree.erase("a*\\b*", 7));
    EXPECT_TRUE(tree.node("a7")->properties().empty());
}

TEST(Tree, StarWithoutAnIndexIsMinusOneEverywhere) {
    pm::Tree tree;
    tree.set("a*", 1);
    EXPECT_EQ("a-1", tree.root().properties().front().name());
    EXPECT_EQ(1, tree.get<int>("a*"));
    EXPECT_TRUE(tree.contains("a*"));
    EXPECT_TRUE(tree.erase("a*"));
    EXPECT_FALSE(tree.contains("a-1"));
}

TEST(Tree, ContainsSeesNodesAndPropertiesThatAreThere) {
    pm::Tree tree;
    tree.set("a\\b\\c", 1);
    for (const char* path : {"a", "\\a\\b", "a\\b\\c", "\\"})
        EXPECT_TRUE(tree.contains(path)) << path;
    for (const char* path : {"b", "a\\c", "a\\b\\a", "x"})
        EXPECT_FALSE(tree.contains(path)) << path;
}

TEST(Tree, EraseTakesThePropertyFirstAndThenTheNode) {
    pm::Tree tree;
    tree.set("a", 1);
    tree.set("a\\b", 2);
    EXPECT_TRUE(tree.erase("a"));
    EXPECT_EQ(2, tree.get<int>("a\\b"));
    EXPECT_TRUE(tree.erase("a"));
    EXPECT_FALSE(tree.contains("a\\b"));
    EXPECT_FALSE(tree.erase("a"));
    EXPECT_FALSE(tree.erase("never\\there"));
}

TEST(Tree, RootIsNotErased) {
    pm::Tree tree;
    tree.set("a", 1);
    expect_thrown<PM_Warning>([&] { tree.erase("\\"); }, PM_ERR_BAD_PATH, u"PM_Object::DeletePath()", u"\\");
    EXPECT_TRUE(tree.contains("a"));
}

TEST(Tree, PathThatHoldsAZeroIsNumber51WithWhatStandsBeforeIt) {
    pm::Tree tree;
    tree.set("a", 1);
    const std::string path = "a\0b"s;
    expect_thrown<PM_Warning>([&] { tree.set(path, 2); }, PM_ERR_BAD_PATH, tree_place, u"a");
    expect_thrown<PM_Warning>([&] { (void)tree.get<int>(path); }, PM_ERR_BAD_PATH, tree_place, u"a");
    expect_thrown<PM_Warning>([&] { (void)tree.at<int>(u"a\0b"s); }, PM_ERR_BAD_PATH, tree_place, u"a");
    expect_thrown<PM_Warning>([&] { tree.erase(path); }, PM_ERR_BAD_PATH, tree_place, u"a");
    expect_thrown<PM_Warning>([&] { (void)tree.contains(path); }, PM_ERR_BAD_PATH, tree_place, u"a");
    expect_thrown<PM_Warning>([&] { (void)tree.node(path); }, PM_ERR_BAD_PATH, tree_place, u"a");
    EXPECT_EQ(1, tree.get<int>("a"));
}

TEST(Tree, LongPathsAreRefusedAsByTheStore) {
    pm::Tree tree;
    tree.set(std::string(1023, 'x'), 1);
    EXPECT_EQ(1, tree.get<int>(std::string(1023, 'x')));
    const std::string path(1024, 'x');
    expect_thrown<PM_Warning>([&] { tree.set(path, 1); }, PM_ERR_BAD_PATH, u"PM_Object::SetData()",
                              std::u16string(259, u'x'));
}

TEST(Tree, ViewThatEndsWithinATextIsNotReadBeyondItsEnd) {
    pm::Tree tree;
    const std::u16string_view path(u"a\\bc", 3);
    tree.set(path, 1);
    EXPECT_EQ(1, tree.get<int>(std::string_view("a\\bc", 3)));
}

TEST(Tree, MovesWithItsContentAndItsHandles) {
    pm::Tree tree;
    tree.set("a\\b", 1);
    const PM_Object* const object = &tree.object();
    const pm::Property property = *tree.property("a\\b");
    pm::Tree moved = std::move(tree);
    EXPECT_EQ(object, &moved.object());
    EXPECT_EQ(pm::Value(1), property.value());
    pm::Tree assigned;
    assigned.set("gone", 1);
    assigned = std::move(moved);
    EXPECT_EQ(1, assigned.get<int>("a\\b"));
    EXPECT_FALSE(assigned.contains("gone"));
}

TEST(Tree, WithoutMemoryInTheStoreIsNumber55AndTheTreeStaysUsable) {
    const int failed = pm::test::fail_each_allocation([](int place) {
        std::optional<ZT_Exception> e;
        try {
            pm::Tree tree;
            tree.set("a\\b", 1);
            e = pm::test::thrown_by([&] { tree.set("a\\c\\d", "text"); });
            EXPECT_EQ(1, tree.get<int>("a\\b")) << place;
            EXPECT_EQ(!e, tree.contains("a\\c\\d") && tree.get<std::string>("a\\c\\d") == "text") << place;
        } catch (const ZT_Exception& thrown) {
            e = thrown;
        }
        EXPECT_EQ(PM_ERR_NO_MEMORY, e ? e->m_number : PM_ERR_NO_MEMORY) << place;
    });
    EXPECT_GT(failed, 10);
}

} // namespace
