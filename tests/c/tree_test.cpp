#include "c/c_support.h"

#include <cmath>
#include <gmock/gmock.h>
#include <limits>

namespace {

using namespace pm::test;
using testing::ElementsAre;

pm9_value text_value(std::string_view text) {
    return {sizeof(pm9_value), PM9_STRING, 0, 0, text.data(), text.size()};
}

pm9_value value_at(const pm9_tree* tree, const char* path, const pm9_access* access = nullptr) {
    pm9_value value{};
    value.size = sizeof value;
    EXPECT_EQ(pm9_tree_get(tree, path, PM9_Z, access, &value, nullptr), PM9_OK);
    return value;
}

TEST(CTree, KeepsTheSignOfAZeroAndANotANumber) {
    const CTree tree = c_tree();
    double value = 1;
    ASSERT_EQ(pm9_tree_set_double(tree.get(), "\\a", PM9_Z, -0.0, nullptr), PM9_OK);
    ASSERT_EQ(pm9_tree_get_double(tree.get(), "\\a", PM9_Z, &value, nullptr), PM9_OK);
    EXPECT_TRUE(value == 0 && std::signbit(value));
    ASSERT_EQ(pm9_tree_set_double(tree.get(), "\\a", PM9_Z, std::nan(""), nullptr), PM9_OK);
    ASSERT_EQ(pm9_tree_get_double(tree.get(), "\\a", PM9_Z, &value, nullptr), PM9_OK);
    EXPECT_TRUE(std::isnan(value));
}

TEST(CTree, KeepsTextsThatUtf8CantSay) {
    const CTree tree = c_tree();
    const std::string lone = "a\xED\xA0\x80"
                             "b\xF0\x9F\x98\x80";
    ASSERT_EQ(pm9_tree_set_string(tree.get(), lone.data(), lone.size(), lone.data(), lone.size(), nullptr),
              PM9_OK);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " " + lone + "=0"));
    char* text = nullptr;
    std::size_t length = 0;
    ASSERT_EQ(pm9_tree_get_string(tree.get(), lone.data(), lone.size(), &text, &length, nullptr), PM9_OK);
    EXPECT_EQ(taken(text, length), lone);
}

TEST(CTree, TakesWhatIsNoUtf8AsAReplacementCharacter) {
    const CTree tree = c_tree();
    ASSERT_EQ(pm9_tree_set_string(tree.get(), "\\a", PM9_Z, "x\xFFy", PM9_Z, nullptr), PM9_OK);
    const pm9_value value = value_at(tree.get(), "\\a");
    EXPECT_EQ(taken(value.data, value.length), "x\xEF\xBF\xBDy");
}

TEST(CTree, ReadsATextAsFarAsItsLength) {
    const CTree tree = c_tree();
    ASSERT_EQ(pm9_tree_set_string(tree.get(), "\\name and more", 5, "value", 3, nullptr), PM9_OK);
    const pm9_value value = value_at(tree.get(), "\\name");
    EXPECT_EQ(value.type, PM9_STRING);
    EXPECT_EQ(taken(value.data, value.length), "val");
}

TEST(CTree, TakesANullTextAsAnEmptyOne) {
    const CTree tree = c_tree();
    ASSERT_EQ(pm9_tree_set_string(tree.get(), "\\a", PM9_Z, nullptr, PM9_Z, nullptr), PM9_OK);
    ASSERT_EQ(pm9_tree_set_raw(tree.get(), "\\b", PM9_Z, nullptr, 12, nullptr), PM9_OK);
    const pm9_value text = value_at(tree.get(), "\\a");
    const pm9_value raw = value_at(tree.get(), "\\b");
    EXPECT_EQ(taken(text.data, text.length), "");
    EXPECT_EQ(raw.type, PM9_RAW);
    EXPECT_EQ(taken(raw.data, raw.length), "");
    EXPECT_EQ(pm9_tree_set_long(tree.get(), nullptr, 5, 1, nullptr), PM9_ERR_BAD_PATH);
}

TEST(CTree, GivesAnyValueAsItsOwnType) {
    const CTree tree = small_tree();
    pm9_value value = value_at(tree.get(), "\\media\\copies");
    EXPECT_EQ(value.type, PM9_LONG);
    EXPECT_EQ(value.number, 2);
    EXPECT_EQ(value.data, nullptr);
    ASSERT_EQ(pm9_tree_set_bool(tree.get(), "\\t", PM9_Z, -1, nullptr), PM9_OK);
    value = value_at(tree.get(), "\\t");
    EXPECT_EQ(value.type, PM9_BOOL);
    EXPECT_EQ(value.number, 1);
    ASSERT_EQ(pm9_tree_set_double(tree.get(), "\\d", PM9_Z, 2.5, nullptr), PM9_OK);
    value = value_at(tree.get(), "\\d");
    EXPECT_EQ(value.type, PM9_DOUBLE);
    EXPECT_EQ(value.real, 2.5);
}

TEST(CTree, SetsAnyValue) {
    const CTree tree = c_tree();
    const unsigned char bytes[] = {1, 0, 2};
    const pm9_value values[] = {
        {sizeof(pm9_value), PM9_LONG, std::numeric_limits<std::int32_t>::min(), 0, nullptr, 0},
        {sizeof(pm9_value), PM9_DOUBLE, 0, 0.1, nullptr, 0},
        {sizeof(pm9_value), PM9_STRING, 0, 0, "by its zero", PM9_Z},
        {sizeof(pm9_value), PM9_BOOL, 1, 0, nullptr, 0},
        {sizeof(pm9_value), PM9_RAW, 0, 0, reinterpret_cast<const char*>(bytes), sizeof bytes},
    };
    for (const pm9_value& value : values) {
        const std::string path = "\\p" + std::to_string(value.type);
        ASSERT_EQ(pm9_tree_set(tree.get(), path.c_str(), PM9_Z, nullptr, &value, nullptr), PM9_OK);
        const pm9_value got = value_at(tree.get(), path.c_str());
        EXPECT_EQ(got.type, value.type);
        EXPECT_EQ(got.number, value.number);
        EXPECT_EQ(got.real, value.real);
        if (value.data == nullptr) continue;
        EXPECT_EQ(taken(got.data, got.length),
                  value.type == PM9_RAW ? std::string("\1\0\2", 3) : "by its zero");
    }
}

TEST(CTree, PutsTheIndexInThePath) {
    const CTree tree = c_tree();
    const pm9_access third{sizeof third, 3, 0};
    const pm9_value value = text_value("x");
    ASSERT_EQ(pm9_tree_set(tree.get(), "\\size\\*\\name", PM9_Z, &third, &value, nullptr), PM9_OK);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " size", "  3", "   name=0"));
    const pm9_value got = value_at(tree.get(), "\\size\\*\\name", &third);
    EXPECT_EQ(taken(got.data, got.length), "x");
}

TEST(CTree, LetsALoosePropertyChangeItsType) {
    const CTree tree = c_tree();
    const pm9_access loose{sizeof loose, -1, 1};
    const pm9_value value = text_value("x");
    ASSERT_EQ(pm9_tree_set(tree.get(), "\\a", PM9_Z, &loose, &value, nullptr), PM9_OK);
    EXPECT_EQ(pm9_tree_set_long(tree.get(), "\\a", PM9_Z, 1, nullptr), PM9_OK);
    EXPECT_EQ(pm9_tree_set_double(tree.get(), "\\a", PM9_Z, 1, nullptr), PM9_ERR_WRONG_TYPE);
}

TEST(CTree, TellsWhatIsAtAPath) {
    const CTree tree = small_tree();
    const std::pair<const char*, int> expected[] = {{"\\", PM9_NODE},
                                                    {"\\media", PM9_NODE},
                                                    {"\\media\\copies", PM9_PROPERTY},
                                                    {"\\copies", PM9_NOTHING},
                                                    {"\\never", PM9_NOTHING}};
    for (const auto& [path, kind] : expected) {
        std::int32_t what = -1;
        EXPECT_EQ(pm9_tree_contains(tree.get(), path, PM9_Z, &what, nullptr), PM9_OK);
        EXPECT_EQ(what, kind) << path;
    }
}

TEST(CTree, ErasesAndTellsWhat) {
    const CTree tree = small_tree();
    std::int32_t what = -1;
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\media\\copies", PM9_Z, &what, nullptr), PM9_OK);
    EXPECT_EQ(what, PM9_PROPERTY);
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\media\\copies", PM9_Z, &what, nullptr), PM9_OK);
    EXPECT_EQ(what, PM9_NOTHING);
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\media", PM9_Z, &what, nullptr), PM9_OK);
    EXPECT_EQ(what, PM9_NODE);
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\", PM9_Z, nullptr, nullptr), PM9_ERR_BAD_PATH);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root"));
}

TEST(CTree, CopiesANode) {
    const CTree tree = small_tree();
    EXPECT_EQ(pm9_tree_copy_node(tree.get(), "\\media", PM9_Z, "\\other\\place", PM9_Z, nullptr), PM9_OK);
    EXPECT_THAT(listed(tree.get()),
                ElementsAre("Root", " media", "  copies=2", " other", "  place", "   copies=2"));
    EXPECT_EQ(pm9_tree_copy_node(tree.get(), "\\media", PM9_Z, "\\media\\in", PM9_Z, nullptr),
              PM9_ERR_COPY_INTO_ITSELF);
}

} // namespace
