#include "c/c_support.h"

#include "arguments.h"
#include <gmock/gmock.h>

namespace {

using namespace pm::test;
using testing::ElementsAre;

CTree deep_tree() {
    CTree tree = c_tree();
    for (const char* path : {"\\n\\m\\deep", "\\n\\a", "\\z", "\\o\\b"}) {
        EXPECT_EQ(pm9_tree_set_long(tree.get(), path, PM9_Z, 1, nullptr), PM9_OK);
    }
    return tree;
}

TEST(CList, PutsANodeBeforeItsPropertiesAndThoseBeforeItsChildren) {
    const CTree tree = deep_tree();
    EXPECT_THAT(listed(tree.get()),
                ElementsAre("Root", " z=1", " n", "  a=1", "  m", "   deep=1", " o", "  b=1"));
}

TEST(CList, GoesDownAsFarAsAsked) {
    const CTree tree = deep_tree();
    const pm9_list_options one{sizeof one, 1, 0};
    EXPECT_THAT(listed(tree.get(), &one), ElementsAre("Root", " z=1", " n", " o"));
    EXPECT_THAT(listed(tree.get(), &one, "\\n"), ElementsAre("n", " a=1", " m"));
}

TEST(CList, OmitsWhatIsntWanted) {
    const CTree tree = deep_tree();
    const pm9_list_options nodes{sizeof nodes, 0, PM9_PROPERTY};
    EXPECT_THAT(listed(tree.get(), &nodes), ElementsAre("Root", " n", "  m", " o"));
    const pm9_list_options properties{sizeof properties, 0, PM9_NODE};
    EXPECT_THAT(listed(tree.get(), &properties), ElementsAre(" z=1", "  a=1", "   deep=1", "  b=1"));
}

TEST(CList, OfAMissingNodeFails) {
    const CTree tree = deep_tree();
    pm9_item* items = nullptr;
    std::size_t count = 7;
    pm9_error error = c_error();
    EXPECT_EQ(pm9_tree_list(tree.get(), "\\no", PM9_Z, nullptr, sizeof *items, &items, &count, &error),
              PM9_ERR_NO_SUCH_NODE);
    EXPECT_EQ(told(error), "86 at \"pm9c\" with \"\\no\"");
    EXPECT_TRUE(items == nullptr && count == 7);
}

// As a program of a newer header has it.
struct LargerItem {
    pm9_item item;
    std::uint64_t added;
};

TEST(CList, LaysItemsOutAsTheCallerHasThem) {
    const CTree tree = deep_tree();
    pm9_item* items = nullptr;
    std::size_t count = 0;
    ASSERT_EQ(pm9_tree_list(tree.get(), "\\n", PM9_Z, nullptr, sizeof(LargerItem), &items, &count, nullptr),
              PM9_OK);
    const auto* const larger = reinterpret_cast<const LargerItem*>(items);
    ASSERT_EQ(count, 4U);
    EXPECT_EQ(larger[0].item.size, sizeof(pm9_item));
    EXPECT_STREQ(larger[1].item.name, "a");
    EXPECT_STREQ(larger[3].item.name, "deep");
    EXPECT_EQ(larger[3].added, 0U);
    pm9_free(items);
}

// Stores what only a damaged file can leave.
struct Damage : PM_Object {
    static void store(PM_Object& object, const char16_t* path, std::string_view bytes, PropType type) {
        (object.*&Damage::setData)(path, bytes.data(), bytes.size(), type, -1, true);
    }
};

TEST(CList, GivesTheBytesOfADamagedValue) {
    const CTree tree = c_tree();
    Damage::store(tree->tree.object(), u"\\n", "12345", PROP_LONG);
    Damage::store(tree->tree.object(), u"\\d", "", PROP_DOUBLE);
    ASSERT_EQ(pm9_tree_set_long(tree.get(), "\\good", PM9_Z, 7, nullptr), PM9_OK);
    pm9_item* items = nullptr;
    std::size_t count = 0;
    ASSERT_EQ(pm9_tree_list(tree.get(), "\\", PM9_Z, nullptr, sizeof *items, &items, &count, nullptr),
              PM9_OK);
    ASSERT_EQ(count, 4U);
    EXPECT_EQ(items[1].type, PM9_LONG);
    EXPECT_EQ(items[1].problem, PM9_ERR_VALUE_TOO_LARGE);
    EXPECT_EQ(std::string_view(items[1].data, items[1].length), "12345");
    EXPECT_EQ(items[2].problem, PM9_ERR_NO_VALUE);
    EXPECT_EQ(items[3].problem, 0);
    EXPECT_EQ(items[3].number, 7);
    pm9_free(items);
}

} // namespace
