#include "limits/scale.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/kit/check.h>
#include <pm/kit/difference.h>
#include <pm/kit/edit.h>
#include <pm/kit/file.h>
#include <pm/kit/json.h>
#include <pm/kit/loss.h>
#include <pm/kit/merge.h>
#include <pm/kit/pattern.h>
#include <pm/kit/stored.h>
#include <string>

// Trees as deep as a path can tell, on a stack of 256 KB.

namespace {

using pm::Tree;
using pm::test::run_on_small_stack;

constexpr std::size_t levels = 255; // and a property's name, the 256th component

std::string path_of_level(std::size_t level) {
    std::string path;
    while (level-- > 0) {
        path += "\\n";
    }
    return path;
}

Tree deep_tree(std::int32_t innermost = 1) {
    Tree tree;
    for (std::size_t level = 1; level < levels; ++level) {
        tree.set(path_of_level(level) + "\\p", 1);
    }
    tree.set(path_of_level(levels) + "\\p", innermost);
    return tree;
}

TEST(DeepTree, IsComparedWithAnotherOne) {
    run_on_small_stack([] {
        const auto found = pm::kit::compare(deep_tree(), deep_tree(2));
        ASSERT_EQ(1U, found.size());
        EXPECT_EQ(path_of_level(levels) + "\\p", found[0].path);
    });
}

TEST(DeepTree, IsAddedWholeByAScript) {
    run_on_small_stack([] {
        const auto found = pm::kit::compare(Tree(), deep_tree());
        EXPECT_EQ(2 * levels, found.size());
        const auto edits = pm::kit::parse_script(pm::kit::script(found));
        EXPECT_TRUE(pm::kit::identical(deep_tree(), pm::kit::applied(Tree(), edits)));
    });
}

TEST(DeepTree, IsMerged) {
    run_on_small_stack([] {
        const auto merged = pm::kit::merge(deep_tree(), deep_tree(), deep_tree(2));
        EXPECT_TRUE(merged.conflicts.empty());
        EXPECT_TRUE(pm::kit::identical(deep_tree(2), merged.tree));
    });
}

TEST(DeepTree, ComesBackFromJson) {
    run_on_small_stack([] {
        EXPECT_TRUE(pm::kit::identical(deep_tree(), pm::kit::from_json(pm::kit::to_json(deep_tree()))));
    });
}

TEST(DeepTree, IsWrittenAsPlainJson) {
    run_on_small_stack([] {
        std::string members = "\"p\": 1";
        for (std::size_t level = 1; level < levels; ++level) {
            members = "\"p\": 1, \"n\": {" + members + "}";
        }
        EXPECT_EQ("{\"n\": {" + members + "}}\n",
                  pm::kit::to_json(deep_tree(), {.indent = -1, .plain = true}));
    });
}

TEST(DeepTree, IsCopied) {
    run_on_small_stack([] { EXPECT_TRUE(pm::kit::identical(deep_tree(), pm::kit::copy(deep_tree()))); });
}

TEST(DeepTree, IsSearched) {
    run_on_small_stack(
        [] { EXPECT_EQ(levels, pm::kit::find_all(deep_tree(), pm::kit::Pattern("**\\p")).size()); });
}

TEST(DeepTree, IsPreparedReadAndCheckedInEachFormatThatIsWritten) {
    run_on_small_stack([] {
        for (const auto type : {PM_Object::FILE_PIA, PM_Object::FILE_DOC}) {
            pm::kit::WriteOptions options;
            options.type = type;
            const auto prepared = pm::kit::prepare(deep_tree(), options);
            EXPECT_THAT(prepared.losses, testing::IsEmpty());
            const auto content = pm::kit::read_content(prepared.bytes, {.file = "deep", .type = type});
            EXPECT_TRUE(pm::kit::identical(deep_tree(), content.tree));
            pm::kit::CheckOptions check;
            check.type = type;
            check.round_trip = true;
            EXPECT_THAT(pm::kit::check_content(prepared.bytes, "deep", check), testing::IsEmpty());
        }
    });
}

TEST(DeepTree, TellsWhatCantBeWritten) {
    run_on_small_stack([] {
        Tree tree = deep_tree();
        tree.set(path_of_level(levels) + "\\q", std::string(2000, 'x'));
        pm::kit::WriteOptions options;
        options.type = PM_Object::FILE_DOC;
        const auto losses = pm::kit::prepare(tree, options).losses;
        ASSERT_EQ(1U, losses.size());
        EXPECT_EQ(path_of_level(levels) + "\\q", losses[0].path);
    });
}

} // namespace
