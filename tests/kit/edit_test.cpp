#include "kit/errors.h"
#include "kit/random_tree.h"
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <pm/inspect.h>
#include <pm/kit/edit.h>
#include <pm/kit/pattern.h>
#include <random>

namespace pm::kit::test {
namespace {

using ::testing::IsEmpty;

// The tree as a script that makes it.
std::string text_of(const Tree& tree) {
    return script(compare(Tree(), tree));
}

std::string parse_error(const std::string& text) {
    return error_of([&] { (void)parse_script(text); });
}

class Apply : public ::testing::Test {
protected:
    Apply() { run("set \\x long 1\nset \\n\\p string \"a\"\nset \\n\\q bool true\nset \\n\\m\\r long 3\n"); }

    void run(const std::string& text) { apply_edits(tree, parse_script(text)); }
    std::string error(const std::string& text) {
        const std::string before = text_of(tree);
        const std::string message = error_of([&] { run(text); });
        EXPECT_EQ(before, text_of(tree)); // all or nothing
        return message;
    }
    std::string text() const { return text_of(tree); }

    Tree tree;
};

TEST_F(Apply, SetMakesWhatIsMissing) {
    run("set \\new\\node\\p double 0.5\nset \\new\\empty\\");
    EXPECT_EQ(0.5, tree.get<double>("\\new\\node\\p"));
    EXPECT_TRUE(tree.node("\\new\\empty"));
}

TEST_F(Apply, SetKeepsThePlaceUnderAnotherType) {
    run("set \\n\\p loose long 7");
    EXPECT_EQ("set \\x long 1\nset \\n\\\nset \\n\\p loose long 7\nset \\n\\q bool true\nset \\n\\m\\\n"
              "set \\n\\m\\r long 3\n",
              text());
}

TEST_F(Apply, SetOfAPatternIsOfPropertiesThatAreThere) {
    run("set \\n\\* long 0");
    EXPECT_EQ(0, tree.get<int>("\\n\\p"));
    EXPECT_EQ(0, tree.get<int>("\\n\\q"));
    EXPECT_EQ(3, tree.get<int>("\\n\\m\\r"));
    EXPECT_EQ("1: \\n\\m*\\: no property matches", error("set \\n\\m*\\ long 0"));
}

TEST_F(Apply, RemoveTakesThePropertyBeforeTheNode) {
    run("set \\n long 1\nrm \\n");
    EXPECT_FALSE(tree.property("\\n"));
    EXPECT_TRUE(tree.node("\\n"));
    run("set \\n long 1\nrm \\n\\");
    EXPECT_TRUE(tree.property("\\n"));
    EXPECT_FALSE(tree.node("\\n"));
}

TEST_F(Apply, RemoveOfAPatternTakesAllThatMatches) {
    run("rm \\**");
    EXPECT_EQ("", text());
}

TEST_F(Apply, RemoveOfAPatternTakesWhatIsInANodeWithIt) {
    run("set \\n\\m\\mm\\m long 4\nset \\n\\m long 5\nset \\n\\k\\m long 6\nrm \\**\\m*");
    EXPECT_EQ("set \\x long 1\nset \\n\\\nset \\n\\p string \"a\"\nset \\n\\q bool true\nset \\n\\k\\\n",
              text());
}

TEST_F(Apply, MoveRenamesAndMovesAndKeepsBytesAndOrder) {
    run("set \\n\\p loose string bytes 616200\nmv \\n\\p \\b\\c\\d\nmv \\n\\ \\b\\n");
    EXPECT_EQ(
        "set \\x long 1\nset \\b\\\nset \\b\\c\\\nset \\b\\c\\d loose string bytes 616200\nset \\b\\n\\\n"
        "set \\b\\n\\q bool true\nset \\b\\n\\m\\\nset \\b\\n\\m\\r long 3\n",
        text());
}

TEST_F(Apply, MoveToTheSamePathIsMoveToTheEnd) {
    run("set \\z\\\nmv \\n\\p \\n\\p\nmv \\n\\ \\n\\");
    EXPECT_EQ("set \\x long 1\nset \\z\\\nset \\n\\\nset \\n\\q bool true\nset \\n\\p string \"a\"\n"
              "set \\n\\m\\\nset \\n\\m\\r long 3\n",
              text());
}

TEST_F(Apply, MoveIntoANodeKeepsTheName) {
    run("mv \\x \\n\\m\\\nmv \\n\\* \\all\\");
    EXPECT_EQ("set \\n\\\nset \\all\\\nset \\all\\p string \"a\"\nset \\all\\q bool true\nset \\all\\m\\\n"
              "set \\all\\m\\r long 3\nset \\all\\m\\x long 1\n",
              text());
}

TEST_F(Apply, CopyLeavesTheSource) {
    run("cp \\n \\c\ncp \\x \\c\\");
    EXPECT_TRUE(identical(*tree.node("\\n\\m"), *tree.node("\\c\\m")));
    EXPECT_EQ(1, tree.get<int>("\\c\\x"));
    EXPECT_EQ(1, tree.get<int>("\\x"));
}

TEST_F(Apply, MoveOfAPatternTakesWhatIsInANodeWithIt) {
    run("mv \\n\\** \\all\\");
    EXPECT_EQ("set \\x long 1\nset \\n\\\nset \\all\\\nset \\all\\p string \"a\"\nset \\all\\q bool true\n"
              "set \\all\\m\\\nset \\all\\m\\r long 3\n",
              text());
}

TEST_F(Apply, MoveToTheRootKeepsTheName) {
    run("mv \\n\\* \\\nmv \\m\\r \\");
    EXPECT_EQ(
        "set \\x long 1\nset \\p string \"a\"\nset \\q bool true\nset \\r long 3\nset \\n\\\nset \\m\\\n",
        text());
}

TEST_F(Apply, AsteriskInANameIsEscaped) {
    run("set \\[*] long 1\nmv \\[*] \\[*][*]");
    EXPECT_TRUE(find_all(tree, Pattern("\\[*][*]")).size() == 1);
}

TEST_F(Apply, WhatCannotBeDoneIsToldWithItsLine) {
    EXPECT_EQ("2: \\y: there is no such property or node", error("set \\a long 1\nrm \\y"));
    EXPECT_EQ("1: \\x\\: there is no such node", error("rm \\x\\"));
    EXPECT_EQ("1: \\: the root stays", error("rm \\"));
    EXPECT_EQ("1: \\y*: nothing matches", error("rm \\y*"));
    EXPECT_EQ("1: \\y: there is no such property or node", error("mv \\y \\z"));
    EXPECT_EQ("1: \\n\\q: there is a property of this path already", error("mv \\x \\n\\q"));
    EXPECT_EQ("1: \\x: there is a property of this path already", error("cp \\x \\x"));
    EXPECT_EQ("2: \\n\\m\\: there is a node of this path already", error("set \\m\\\nmv \\m\\ \\n\\m\\"));
    EXPECT_EQ("1: \\n\\: a node can't go into itself", error("mv \\n\\ \\n\\m\\n\\"));
    EXPECT_EQ("1: \\: the root stays what and where it is", error("cp \\ \\c\\"));
    EXPECT_EQ("1: \\c: what several things go to is a node; its path ends in a backslash",
              error("mv \\* \\c"));
    EXPECT_EQ("1: \\x: a property needs a type and a value", error("set \\x"));
    EXPECT_EQ("1: \\x\\: this is the path of a node, which has no value", error("set \\x\\ long 1"));
}

TEST_F(Apply, TargetWithAsterisksIsRefused) {
    const Edit edit{Edit::Verb::move, "\\x", "\\a*", {}, 3};
    EXPECT_EQ("3: \\a*: a target is one path, without asterisks",
              error_of([&] { apply_edits(tree, std::vector<Edit>{edit}); }));
    EXPECT_EQ(1, tree.get<int>("\\x"));
}

TEST_F(Apply, MoveOfAPatternTakesEachOfSeveralNodes) {
    run("set \\n\\k\\s long 4\nmv \\n\\** \\");
    EXPECT_EQ("set \\x long 1\nset \\p string \"a\"\nset \\q bool true\nset \\n\\\nset \\m\\\n"
              "set \\m\\r long 3\nset \\k\\\nset \\k\\s long 4\n",
              text());
}

TEST_F(Apply, CopiesMakeNoMoreThanAMillionNodesAndProperties) {
    std::string text;
    for (int i = 0; i < 30; ++i) {
        text += fmt::format("cp \\n\\ \\b\\\nmv \\b\\ \\n\\c{}\\\n", i);
    }
    // 5 nodes and properties, which double: the first 17 copies make 5 * (2^17 - 1) of them.
    EXPECT_EQ("35: \\n\\: copies and patterns of a script make no more than 1000000 nodes and properties, "
              "and 256 MB of values",
              error(text));
}

TEST_F(Apply, CopiesAndPatternsMakeNoMoreThan256MegabytesOfValues) {
    const char* const refused = " copies and patterns of a script make no more than 1000000 nodes and "
                                "properties, and 256 MB of values";
    const auto set = [](const char* path, std::uint64_t line) {
        return Edit{Edit::Verb::set, path, {}, Stored{PROP_VOID, true, Bytes(32 << 20)}, line};
    };
    const auto eight_copies = [] {
        std::string text;
        for (int i = 0; i < 8; ++i) {
            text += fmt::format("cp \\v \\w{}\n", i);
        }
        return parse_script(text);
    };
    apply_edit(tree, set("\\v", 0));
    const Tree before = copy(tree);
    std::vector<Edit> edits = eight_copies();
    edits.push_back(set("\\v", 9)); // one path needs no asterisk, and a script as long as the value
    edits.push_back(set("\\n\\p*", 10));
    EXPECT_EQ("10: \\n\\p*:" + std::string(refused), error_of([&] { apply_edits(tree, edits); }));
    edits.back() = parse_script("cp \\v \\n\\v").front();
    EXPECT_EQ("1: \\v:" + std::string(refused), error_of([&] { apply_edits(tree, edits); }));
    EXPECT_TRUE(identical(before, tree));
    edits.pop_back();
    apply_edits(tree, edits);
    EXPECT_TRUE(tree.contains("\\w7"));
}

TEST_F(Apply, PathThatIsTooDeepIsAnErrorAndNoCrash) {
    std::string deep;
    for (int i = 0; i < 257; ++i) {
        deep += "\\a";
    }
    EXPECT_EQ("1: " + deep + "\\: no path can be so: its names hold a zero, or are more than 256",
              error("set " + deep + "\\"));
    EXPECT_EQ("1: " + deep + "\\: no path can be so: its names hold a zero, or are more than 256",
              error("mv \\x " + deep + "\\"));
}

TEST(ParseScript, SkipsCommentsAndEmptyLines) {
    const std::vector<Edit> edits = parse_script("\n# rm \\a\r\n  \n  rm \\a\r\n");
    ASSERT_EQ(1U, edits.size());
    EXPECT_TRUE((Edit{Edit::Verb::remove, "\\a", {}, {}, 4}) == edits.front());
}

TEST(ParseScript, MistakesAreToldWithLineAndColumn) {
    EXPECT_EQ("1:1: \"del\": a line begins with set, rm, mv or cp", parse_error("del \\a"));
    EXPECT_EQ("2:3: a path is missing", parse_error("\nrm"));
    EXPECT_EQ("1:6: a target is missing", parse_error("mv \\a"));
    EXPECT_EQ("1:7: something stands behind the end of what belongs here", parse_error("rm \\a \\b"));
    EXPECT_EQ("1:9: \"int\": no such type; there are long, double, string, bool, raw, none",
              parse_error("set \\a  int 1"));
    EXPECT_EQ("1:19: \"x\" isn't a whole number from -2147483648 to 2147483647, which long asks for",
              parse_error("set \\a loose long x"));
    EXPECT_EQ("1:4: the text has no closing quote", parse_error("rm \"\\\\a"));
    EXPECT_EQ("1:7: a blank belongs behind a path", parse_error("rm \"a\"b"));
    EXPECT_EQ("1:4: a path can't hold a zero", parse_error("rm \"\\u0000\""));
    EXPECT_EQ("2:5: this isn't UTF-8", parse_error("\nrm \\\xff"));
    EXPECT_EQ("1:9: a target is one path, without asterisks", parse_error("mv \\a \\*"));
}

TEST(EditLine, ReadsBack) {
    RandomTree random(7);
    for (int i = 0; i < 3000; ++i) {
        Edit edit{
            static_cast<Edit::Verb>(random.below(4)), '\\' + escaped(to_utf8(random.name())), {}, {}, 1};
        if (edit.verb == Edit::Verb::set) edit.value = random.stored();
        if (edit.verb > Edit::Verb::remove) edit.target = '\\' + escaped(to_utf8(random.name())) + '\\';
        const std::string line = edit_line(edit);
        EXPECT_EQ(std::string::npos, line.find('\n'));
        EXPECT_TRUE(parse_script(line) == std::vector<Edit>{edit}) << line;
    }
}

TEST(EditLine, QuotesAPathThatIsNoBareWord) {
    const auto line = [](const char* path) { return edit_line({Edit::Verb::remove, path, {}, {}, 1}); };
    EXPECT_EQ("rm \"\"", line(""));
    EXPECT_EQ("rm \"\\\"a\"", line("\"a"));
    EXPECT_EQ("rm \"#a\"", line("#a"));
    EXPECT_EQ("rm a#\"", line("a#\""));
    EXPECT_EQ("rm \"a b\"", line("a b"));
    EXPECT_EQ("rm \"a\\u007f\"", line("a\x7F"));
    EXPECT_EQ("rm \"a\uFEFF\"", line("a\uFEFF"));
    EXPECT_EQ("rm \"a\\ud800\"", line("a\xED\xA0\x80"));
    EXPECT_EQ("rm \"a\uFFFD\"", line("a\xFF"));
}

TEST(Script, TurnsTheFirstTreeIntoTheSecondExactly) {
    RandomTree random(8);
    for (int i = 0; i < 400; ++i) {
        const Tree a = random.make(40);
        Tree b = i % 4 == 0 ? random.make(40) : copy(a);
        random.change(b, 8);
        Tree c = copy(a);
        const std::string text = script(compare(a, b));
        apply_edits(c, parse_script(text));
        ASSERT_THAT(compare(c, b), IsEmpty()) << text;
    }
}

TEST(Script, LeavesOutWhatTheComparisonDidNotCount) {
    Tree a;
    Tree b;
    a.set("\\x", 1);
    a.set("\\y", 1);
    b.set("\\y", 1);
    b.set("\\x", 2);
    EXPECT_EQ("set \\x long 2\n", script(compare(a, b, {.order = false})));
    EXPECT_EQ("set \\x long 2\nmv \\x \\x\n", script(compare(a, b)));
}

// A tree with 200 properties and as many children of the same names, and 300 moves to the end of some of
// them.
struct ManyMoves {
    ManyMoves() {
        std::mt19937 random(5);
        tree.set("\\m\\p*\\x", 0, 0);
        for (int i = 0; i < 200; ++i) {
            tree.set("\\n\\p*", i, i);
            tree.set("\\n\\p*\\x", 0.5 * i, i);
        }
        for (int i = 0; i < 300; ++i) {
            const auto name = random() % 180;
            properties += fmt::format("mv \\n\\p{0} \\n\\p{0}\n", name);
            nodes += fmt::format("mv \\n\\p{0}\\ \\n\\p{0}\\\n", name);
        }
    }
    void expect_same(const std::string& script) const {
        const std::vector<Edit> edits = parse_script(script);
        Tree one_by_one = copy(tree);
        for (const Edit& edit : edits) {
            apply_edit(one_by_one, edit);
        }
        EXPECT_THAT(compare(one_by_one, applied(tree, edits)), IsEmpty());
        EXPECT_FALSE(identical(tree, one_by_one));
    }

    Tree tree;
    std::string properties;
    std::string nodes;
};

TEST(MovesToTheEnd, InALongRunAreAsOneByOne) {
    const ManyMoves moves;
    moves.expect_same(moves.properties);
    moves.expect_same(moves.nodes);
    moves.expect_same(moves.nodes + moves.properties + moves.nodes);
    moves.expect_same(moves.properties + "mv \\m\\p0 \\m\\p0\n" + moves.properties);
    moves.expect_same(moves.properties + "mv \\n\\p7 \\m\\\nrm \\n\\p8\n" + moves.nodes);
}

TEST(MovesToTheEnd, BehindALongRunAreToldWithTheirLine) {
    const ManyMoves moves;
    EXPECT_EQ("301: \\n\\p200: there is no such property or node", error_of([&] {
                  (void)applied(moves.tree, parse_script(moves.properties + "mv \\n\\p200 \\n\\p200\n"));
              }));
    EXPECT_EQ("301: \\n\\p200\\: there is no such node", error_of([&] {
                  (void)applied(moves.tree, parse_script(moves.nodes + "mv \\n\\p200\\ \\n\\p200\\\n"));
              }));
}

// Of so many properties of these paths, against the same in the other order.
void expect_turned_around(const char* path, int count) {
    Tree a;
    Tree b;
    for (int i = 0; i < count; ++i) {
        a.set(path, 1, i);
        b.set(path, 1, count - 1 - i);
    }
    apply_edits(a, parse_script(script(compare(a, b))));
    EXPECT_TRUE(identical(a, b));
}

TEST(Script, TurnsALongListOfPropertiesAround) {
    expect_turned_around("\\n\\p*", 30000);
}

TEST(Script, TurnsALongListOfNodesAround) {
    expect_turned_around("\\n*\\p", 5000);
}

} // namespace
} // namespace pm::kit::test
