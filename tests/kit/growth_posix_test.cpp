#include "limits/scale.h"
#include <pm/kit/edit.h>
#include <pm/kit/file.h>
#include <string>

// What takes time that grows as the file or the tree does.

namespace pm::kit::test {
namespace {

std::string word(std::size_t number) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) {
        bytes += static_cast<char>(number >> 8 * i & 0xFF);
    }
    return bytes;
}

// A DPIA file of so many sections with as many bytes each; their names are `name_of` their numbers.
template<class NameOf>
std::string dpia(std::size_t count, NameOf name_of) {
    const std::string text = "PIAFILEVERSION_2.0,T\na=1\n";
    std::string directory = word(0x20000) + word(count);
    std::string sections;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = name_of(i);
        directory += word(name.size()) + name + word(0) + word(sections.size()) + word(text.size());
        sections += text;
    }
    return directory + sections;
}

TEST(Growth, OfSectionsThatAreAllRead) {
    pm::test::expect_linear(40'000, [](std::size_t count) {
        const std::string bytes = dpia(count, [](std::size_t i) { return "s" + std::to_string(i); });
        const FileContent content = read_content(bytes, {.file = "x"});
        EXPECT_EQ(count, content.sections.size());
        EXPECT_TRUE(content.reports.empty());
        EXPECT_EQ(1, content.tree.get<int>("\\s" + std::to_string(count - 1) + "\\a"));
    });
}

TEST(Growth, OfSectionsOfOneName) {
    pm::test::expect_linear(20'000, [](std::size_t count) {
        const std::string bytes = dpia(count, [](std::size_t) { return std::string("s"); });
        const FileContent content = read_content(bytes, {.file = "x"});
        EXPECT_EQ(count - 1, content.unread.size());
        EXPECT_EQ("s#" + std::to_string(count), content.sections.back().node);
    });
}

// Of properties and nodes that one pattern takes out of their list.
TEST(Growth, OfWhatAPatternRemoves) {
    pm::test::expect_linear(80'000, [](std::size_t count) {
        Tree tree;
        for (std::size_t i = 0; i < count; ++i) {
            tree.set("\\n\\p*", 1, static_cast<int>(i));
            tree.set("\\n\\p*\\x", 1, static_cast<int>(i));
        }
        apply_edits(tree, parse_script("rm \\n\\**"));
        EXPECT_TRUE(tree.node("\\n")->properties().empty());
        EXPECT_TRUE(tree.node("\\n")->children().empty());
    });
}

} // namespace
} // namespace pm::kit::test
