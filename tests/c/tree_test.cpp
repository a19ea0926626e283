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

std::string repeated(std::string_view text, int count) {
    std::string result;
    for (int done = 0; done < count; ++done) {
        result += text;
    }
    return result;
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
        EXPECT_EQ(pm9_tree_contains(tree.get(), path, PM9_Z, nullptr, &what, nullptr), PM9_OK);
        EXPECT_EQ(what, kind) << path;
    }
}

TEST(CTree, HasNothingAtAPathThatNothingCanHave) {
    const CTree tree = small_tree();
    ASSERT_EQ(pm9_tree_set_long(tree.get(), "a", PM9_Z, 1, nullptr), PM9_OK);
    const pm9_access exact{sizeof exact, PM9_EXACT, 0};
    const std::string paths[] = {std::string(5000, 'x'), std::string("a\0b", 3), "a" + repeated("\\a", 256)};
    for (const std::string& path : paths) {
        for (const pm9_access* access : {static_cast<const pm9_access*>(nullptr), &exact}) {
            std::int32_t what = -1;
            EXPECT_EQ(pm9_tree_contains(tree.get(), path.data(), path.size(), access, &what, nullptr),
                      PM9_OK);
            EXPECT_EQ(what, PM9_NOTHING);
            what = -1;
            EXPECT_EQ(pm9_tree_erase(tree.get(), path.data(), path.size(), access, &what, nullptr), PM9_OK);
            EXPECT_EQ(what, PM9_NOTHING);
        }
    }
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " a=1", " media", "  copies=2"));
}

TEST(CTree, FindsANodeWhosePathIsTooLongForAProperty) {
    const CTree tree = c_tree();
    const std::string path = std::string(600, 'x') + '\\' + std::string(600, 'y');
    ASSERT_EQ(pm9_tree_make_node(tree.get(), path.c_str(), PM9_Z, nullptr), PM9_OK);
    std::int32_t what = -1;
    EXPECT_EQ(pm9_tree_contains(tree.get(), path.c_str(), PM9_Z, nullptr, &what, nullptr), PM9_OK);
    EXPECT_EQ(what, PM9_NODE);
    EXPECT_EQ(pm9_tree_erase(tree.get(), path.c_str(), PM9_Z, nullptr, &what, nullptr), PM9_OK);
    EXPECT_EQ(what, PM9_NODE);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " " + std::string(600, 'x')));
}

TEST(CTree, ErasesAndTellsWhat) {
    const CTree tree = small_tree();
    std::int32_t what = -1;
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\media\\copies", PM9_Z, nullptr, &what, nullptr), PM9_OK);
    EXPECT_EQ(what, PM9_PROPERTY);
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\media\\copies", PM9_Z, nullptr, &what, nullptr), PM9_OK);
    EXPECT_EQ(what, PM9_NOTHING);
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\media", PM9_Z, nullptr, &what, nullptr), PM9_OK);
    EXPECT_EQ(what, PM9_NODE);
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\", PM9_Z, nullptr, nullptr, nullptr), PM9_ERR_BAD_PATH);
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

TEST(CTree, CopiesNothingOfANodeThatIsntThere) {
    const CTree tree = small_tree();
    EXPECT_EQ(pm9_tree_copy_node(tree.get(), "\\no", PM9_Z, "\\other", PM9_Z, nullptr), PM9_OK);
    EXPECT_EQ(pm9_tree_copy_node(tree.get(), "\\media\\copies", PM9_Z, "\\other", PM9_Z, nullptr), PM9_OK);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " media", "  copies=2", " other"));
}

TEST(CTree, CopiesUpToRawDataOfNoBytes) {
    const CTree tree = small_tree();
    ASSERT_EQ(pm9_tree_set_raw(tree.get(), "\\media\\raw", PM9_Z, "", 0, nullptr), PM9_OK);
    ASSERT_EQ(pm9_tree_set_long(tree.get(), "\\media\\sides", PM9_Z, 1, nullptr), PM9_OK);
    EXPECT_EQ(pm9_tree_copy_node(tree.get(), "\\media", PM9_Z, "\\other", PM9_Z, nullptr), PM9_ERR_NO_VALUE);
    EXPECT_THAT(listed(tree.get(), nullptr, "\\other"), ElementsAre("other", " copies=2", " raw=0"));
}

// A tree whose names hold what an index would replace.
class CExactPath : public testing::Test {
protected:
    pm9_status set(const char* path, std::int32_t number) {
        const pm9_value value{sizeof value, PM9_LONG, number, 0, nullptr, 0};
        return pm9_tree_set(tree.get(), path, PM9_Z, &exact, &value, nullptr);
    }
    std::int32_t kind(const char* path) {
        std::int32_t what = -1;
        EXPECT_EQ(pm9_tree_contains(tree.get(), path, PM9_Z, &exact, &what, nullptr), PM9_OK);
        return what;
    }
    std::int32_t erase(const char* path) {
        std::int32_t what = -1;
        EXPECT_EQ(pm9_tree_erase(tree.get(), path, PM9_Z, &exact, &what, nullptr), PM9_OK);
        return what;
    }
    pm9_status get(const char* path) {
        pm9_value value{};
        value.size = sizeof value;
        const pm9_status status = pm9_tree_get(tree.get(), path, PM9_Z, &exact, &value, nullptr);
        pm9_free(value.data);
        return status;
    }

    const pm9_access exact{sizeof exact, PM9_EXACT, 0};
    CTree tree = c_tree();
};

TEST_F(CExactPath, TakesAStarAsItIs) {
    ASSERT_EQ(set("\\n*\\*", 1), PM9_OK);
    ASSERT_EQ(set("top", 2), PM9_OK);
    EXPECT_THAT(listed(tree.get()), ElementsAre("Root", " top=2", " n*", "  *=1"));
    EXPECT_EQ(value_at(tree.get(), "\\n*\\*", &exact).number, 1);
    EXPECT_EQ(value_at(tree.get(), "\\top\\", &exact).number, 2);
    EXPECT_EQ(kind("\\n*\\*"), PM9_PROPERTY);
    EXPECT_EQ(kind("\\n*"), PM9_NODE);
    EXPECT_EQ(kind("\\"), PM9_NODE);
    EXPECT_EQ(kind("\\n"), PM9_NOTHING);
}

TEST_F(CExactPath, HasEveryTypeOfValue) {
    const pm9_value values[] = {{sizeof(pm9_value), PM9_DOUBLE, 0, 0.1, nullptr, 0},
                                {sizeof(pm9_value), PM9_STRING, 0, 0, "text", PM9_Z},
                                {sizeof(pm9_value), PM9_BOOL, 1, 0, nullptr, 0},
                                {sizeof(pm9_value), PM9_RAW, 0, 0, nullptr, 0},
                                {sizeof(pm9_value), PM9_RAW, 0, 0, "ab", 2}};
    for (const pm9_value& value : values) {
        const CTree other = c_tree();
        ASSERT_EQ(pm9_tree_set(other.get(), "a", PM9_Z, &exact, &value, nullptr), PM9_OK);
        const pm9_value got = value_at(other.get(), "a", &exact);
        EXPECT_EQ(got.type, value.type);
        EXPECT_EQ(got.number, value.number);
        EXPECT_EQ(got.real, value.real);
        EXPECT_EQ(got.data == nullptr ? "" : taken(got.data, got.length),
                  value.data == nullptr ? "" : value.data);
    }
}

TEST_F(CExactPath, GuardsWhatAPathWithAnIndexGuards) {
    ASSERT_EQ(set("a", 1), PM9_OK);
    const std::string long_text(4097, 'x');
    const pm9_value text{sizeof text, PM9_STRING, 0, 0, long_text.data(), long_text.size()};
    const pm9_value zero{sizeof zero, PM9_STRING, 0, 0, "x\0y", 3};
    const pm9_value none{sizeof none, PM9_NONE, 0, 0, nullptr, 0};
    const auto put = [&](const char* path, const pm9_value& value) {
        return pm9_tree_set(tree.get(), path, PM9_Z, &exact, &value, nullptr);
    };
    EXPECT_EQ(put("a", pm9_value{sizeof text, PM9_DOUBLE, 0, 1, nullptr, 0}), PM9_ERR_WRONG_TYPE);
    EXPECT_EQ(put("b", text), PM9_ERR_VALUE_TOO_LARGE);
    EXPECT_EQ(put("b", zero), PM9_ERR_INVALID_ARGUMENT);
    EXPECT_EQ(put("b", none), PM9_ERR_NO_VALUE);
    EXPECT_EQ(set("\\", 1), PM9_ERR_BAD_PATH);
    EXPECT_EQ(get("\\b"), PM9_ERR_NO_SUCH_PROPERTY);
    EXPECT_EQ(get("\\b\\c"), PM9_ERR_NO_SUCH_NODE);
    EXPECT_EQ(get(""), PM9_ERR_NO_SUCH_PROPERTY);
}

TEST_F(CExactPath, HasTheLimitsOfEveryPath) {
    const std::string deep = "a" + repeated("\\a", 255);
    const std::string wide = std::string(600, 'x') + '\\' + std::string(422, 'y');
    EXPECT_EQ(set(deep.c_str(), 1), PM9_OK);
    EXPECT_EQ(set(("\\\\" + deep + "\\\\").c_str(), 2), PM9_OK);
    EXPECT_EQ(set(wide.c_str(), 3), PM9_OK);
    const std::vector<std::string> before = listed(tree.get());
    EXPECT_EQ(set((deep + "\\b").c_str(), 4), PM9_ERR_BAD_PATH);
    EXPECT_EQ(set((wide + 'y').c_str(), 4), PM9_ERR_BAD_PATH);
    EXPECT_EQ(set(std::string(1024, 'z').c_str(), 4), PM9_ERR_BAD_PATH);
    EXPECT_EQ(listed(tree.get()), before);
}

TEST_F(CExactPath, ErasesThePropertyBeforeTheNode) {
    ASSERT_EQ(set("*", 1), PM9_OK);
    ASSERT_EQ(set("*\\a", 1), PM9_OK);
    EXPECT_EQ(erase("*"), PM9_PROPERTY);
    EXPECT_EQ(erase("*"), PM9_NODE);
    EXPECT_EQ(erase("*"), PM9_NOTHING);
    EXPECT_EQ(erase("no\\a"), PM9_NOTHING);
    EXPECT_EQ(pm9_tree_erase(tree.get(), "\\", PM9_Z, &exact, nullptr, nullptr), PM9_ERR_BAD_PATH);
}

} // namespace
