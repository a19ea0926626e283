#include "support/exceptions.h"
#include <cstring>
#include <memory>
#include <pm/error_number.h>
#include <pm/iterator.h>
#include <pm/view.h>
#include <string>

namespace {

using pm::test::expect_thrown;

TEST(View, OfAPropertyShowsWhatIsStored) {
    PM_Object object;
    object.SetProperty(u"a\\first", 7, -1, false);
    object.SetProperty(u"a\\second", u"xy");
    const PM_Property* const first = pm_find_property(object, u"a\\first");
    ASSERT_NE(nullptr, first);
    const PM_Property_View view = pm_view(*first);
    EXPECT_EQ(u"first", std::u16string(view.name));
    EXPECT_EQ(PROP_LONG, view.type);
    EXPECT_FALSE(view.strict);
    ASSERT_EQ(4U, view.size);
    std::int32_t number = 0;
    std::memcpy(&number, view.data, sizeof number);
    EXPECT_EQ(7, number);
    ASSERT_EQ(pm_find_property(object, u"a\\second"), view.next);
    const PM_Property_View second = pm_view(*view.next);
    EXPECT_EQ(PROP_STRING, second.type);
    EXPECT_TRUE(second.strict);
    ASSERT_EQ(6U, second.size);
    EXPECT_EQ(0, std::memcmp(u"xy", second.data, 6));
    EXPECT_EQ(nullptr, second.next);
}

TEST(View, OfAPropertyWithoutBytesHasNoData) {
    PM_Object object;
    object.setVoidProperty(u"empty", "", 0);
    const PM_Property_View view = pm_view(*pm_find_property(object, u"empty"));
    EXPECT_EQ(nullptr, view.data);
    EXPECT_EQ(0U, view.size);
    EXPECT_EQ(PROP_VOID, view.type);
}

TEST(View, OfANodeShowsItsNeighbours) {
    PM_Object object;
    object.SetProperty(u"a\\b\\p", 1);
    object.SetProperty(u"a\\c\\p", 1);
    const PM_Node* const root = pm_find_node(object, u"\\");
    const PM_Node* const a = pm_find_node(object, u"\\a");
    const PM_Node* const b = pm_find_node(object, u"a\\b");
    const PM_Node* const c = pm_find_node(object, u"\\\\a\\\\c\\");
    EXPECT_EQ(u"Root", std::u16string(pm_view(*root).name));
    EXPECT_EQ(nullptr, pm_view(*root).parent);
    EXPECT_EQ(a, pm_view(*root).first_child);
    EXPECT_EQ(root, pm_view(*a).parent);
    EXPECT_EQ(b, pm_view(*a).first_child);
    EXPECT_EQ(nullptr, pm_view(*a).first_property);
    EXPECT_EQ(c, pm_view(*b).next_sibling);
    EXPECT_EQ(u"c", std::u16string(pm_view(*c).name));
    EXPECT_EQ(nullptr, pm_view(*c).next_sibling);
    EXPECT_EQ(pm_find_property(object, u"a\\c\\p"), pm_view(*c).first_property);
}

TEST(View, ServesWhatAnIteratorStandsOn) {
    PM_Object object;
    object.SetProperty(u"a\\p", 1.0 / 3);
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(u"a", 0));
    char* value = nullptr;
    std::size_t size = 0;
    PropType type = PROP_NONE;
    ASSERT_NE(nullptr, walk->nextProp(value, size, type));
    double number = 0;
    std::memcpy(&number, pm_view(*walk->currentProp()).data, sizeof number);
    EXPECT_EQ(1.0 / 3, number);
    EXPECT_EQ(u"a", std::u16string(pm_view(*walk->currentNode()).name));
    PM_Mem_Obj::operator delete(value);
}

TEST(FindProperty, GivesNullForWhatIsNotThere) {
    PM_Object object;
    object.SetProperty(u"a\\b", 1);
    for (const char16_t* path : {u"", u"\\", u"a", u"b", u"a\\c", u"a\\a", u"b\\b", u"a\\b\\b"}) {
        EXPECT_EQ(nullptr, pm_find_property(object, path)) << std::string(path, path + 1);
    }
    EXPECT_EQ(nullptr, pm_find_property(object, nullptr));
}

TEST(FindProperty, ResolvesItsIndexAsReadsDo) {
    PM_Object object;
    object.SetProperty(u"Pen*\\Width", 1, 3);
    object.SetProperty(u"Pens", 1, 4);
    object.SetProperty(u"Pen*\\Width", 1);
    EXPECT_NE(nullptr, pm_find_property(object, u"Pen3\\Width"));
    EXPECT_EQ(pm_find_property(object, u"Pen3\\Width"), pm_find_property(object, u"Pen*\\Width", 3));
    EXPECT_EQ(pm_find_property(object, u"Pens\\4"), pm_find_property(object, u"Pens", 4));
    EXPECT_EQ(pm_find_property(object, u"Pen-1\\Width"), pm_find_property(object, u"Pen*\\Width"));
}

TEST(FindProperty, PathThatIsTooLongIsNumber51) {
    PM_Object object;
    const std::u16string path(1024, u'x');
    expect_thrown<PM_Warning>([&] { static_cast<void>(pm_find_property(object, path.c_str())); },
                              PM_ERR_BAD_PATH, u"pm_find_property()", path.substr(0, 259));
}

TEST(FindNode, GivesNullForWhatIsNotThere) {
    PM_Object object;
    object.SetProperty(u"a\\b\\c", 1);
    for (const char16_t* path : {u"b", u"c", u"a\\c", u"a\\b\\c", u"x", u"a\\*"}) {
        EXPECT_EQ(nullptr, pm_find_node(object, path));
    }
}

TEST(FindNode, PathWithoutComponentsIsTheRoot) {
    PM_Object object;
    const PM_Node* const root = pm_find_node(object, u"\\");
    EXPECT_NE(nullptr, root);
    EXPECT_EQ(root, pm_find_node(object, u""));
    EXPECT_EQ(root, pm_find_node(object, u"\\\\"));
    EXPECT_EQ(root, pm_find_node(object, nullptr));
}

TEST(FindNode, PathOf257ComponentsIsNumber51) {
    PM_Object object;
    object.SetProperty(u"a", 1);
    std::u16string path;
    for (int component = 0; component < 257; ++component)
        path += u"\\a";
    expect_thrown<PM_Warning>([&] { static_cast<void>(pm_find_node(object, path.c_str())); }, PM_ERR_BAD_PATH,
                              u"PM_Path::PM_Path()", path.substr(0, 259));
}

TEST(FindNode, ObjectWithoutATreeIsNumber50) {
    class Empty : public PM_Object {
    public:
        PM_Node* take_root() { return std::exchange(m_root, nullptr); }
        void put_root(PM_Node* root) { m_root = root; }
    } object;
    PM_Node* const root = object.take_root();
    expect_thrown<PM_Severe>([&] { static_cast<void>(pm_find_node(object, u"a")); }, PM_ERR_NO_ROOT,
                             u"pm_find_node()", u"m_root");
    expect_thrown<PM_Severe>([&] { static_cast<void>(pm_find_property(object, u"a")); }, PM_ERR_NO_ROOT,
                             u"pm_find_property()", u"m_root");
    object.put_root(root);
}

} // namespace
