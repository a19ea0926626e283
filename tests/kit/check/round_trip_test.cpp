#include "check/round_trip.h"

#include "platform/compound_writer.h"
#include "rule_example.h"
#include "support/system.h"
#include <algorithm>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <pm/kit/check.h>
#include <pm/value.h>
#include <string>
#include <vector>

namespace {

using pm::kit::CheckOptions;
using pm::kit::test::run_example;
using Lines = std::vector<std::string>;

struct Row {
    std::string_view file;
    Lines said;
};

void expect_said(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        EXPECT_EQ(row.said, run_example("round-trip", row.file)) << row.file;
    }
}

// A tab in front of a name stays with it behind a backslash alone: what is written of it is white space.
TEST(RoundTrip, PropertyThatComesBackUnderAnotherNameIsLostAndNew) {
    expect_said({
        {R"(PIA `n\\b=1` `}` `n\\c=2`)", {}},
        {R"(PIA `n\\\tb=1`)",
         {"\\n\\\tb: The property is lost.", "\\n\\b: The property wasn't there before."}},
        {R"(PIA `n\\;b=1` `}` `c=2`)", {"\\n\\;b: The property is lost."}},
    });
}

TEST(RoundTrip, ChangedValueOfEachTypeIsShown) {
    expect_said({
        {R"(PIA `n\\b=1` `}` `n\\\tb=5`)", {"\\n\\b: 1 comes back as 5.", "\\n\\\tb: The property is lost."}},
        {R"(PIA `n\\b=1.5` `}` `n\\\tb=2.25`)",
         {"\\n\\b: 1.5 comes back as 2.25.", "\\n\\\tb: The property is lost."}},
        {R"(PIA `n\\b="one` `}` `n\\\tb="two`)",
         {"\\n\\b: \"one\" comes back as \"two\".", "\\n\\\tb: The property is lost."}},
        {R"(PIA `n\\b=TRUE` `}` `n\\\tb=FALSE`)",
         {"\\n\\b: TRUE comes back as FALSE.", "\\n\\\tb: The property is lost."}},
        {R"(PIA `n\\b=\\01\\` `}` `n\\\tb=\\010203\\`)",
         {"\\n\\b: 1 byte comes back as 3 bytes.", "\\n\\\tb: The property is lost."}},
    });
}

TEST(RoundTrip, WhatIsWrittenAndRefusedIsTold) {
    expect_said({
        {R"(PIA `n\\b=1` `}` `n\\\tb="two`)",
         {"54 What is saved can't be read whole: The type doesn't match: another one is required here.",
          "\\n\\\tb: The property is lost."}},
        {R"(PIA `a=1` `n\tm\\b=1`)",
         {"57 What is saved can't be read whole: The line isn't valid.", "\\n\tm\\b: The property is lost."}},
        {R"(PIA `a=1.5e400` `b=1`)",
         {"88 What is saved can't be read whole: The value is of no known type.",
          "\\a: The property is lost."}},
    });
}

TEST(RoundTrip, EachSectionInsideTheFileIsTried) {
    expect_said({
        {R"(DPIA `A: a=-0.0` `B: b=1`)", {"[A] \\a: -0 comes back as 0."}},
        {R"(DPIA `A: b=1` `longer 1` `B: a=-0.0`)", {}},
        {R"(DPIA `A: a=-0.0` `gap 9` `B: b=-0.0`)",
         {"[A] \\a: -0 comes back as 0.", "[B] \\b: -0 comes back as 0."}},
        {R"(DPIA `A: b=1` `back 100` `B: a=-0.0`)", {}},
        {R"(DPIA `count 9` `A: a=-0.0`)", {}},
    });
}

TEST(RoundTrip, SectionsOfMoreBytesThanTheFileAreNotTriedAgain) {
    const std::string name = "x";
    const std::string body = "PIAFILEVERSION_2.0\na=-0.0\n" + std::string(100, '\n');
    const auto word = [](std::size_t value) {
        return std::string{static_cast<char>(value), static_cast<char>(value >> 8), '\0', '\0'};
    };
    std::string file = word(0) + word(3);
    file[2] = '\1';
    for (const char* const each : {"A", "B", "C"}) {
        file += word(1) + each + word(0) + word(body.size());
    }
    Lines said;
    CheckOptions options{.type = PM_Object::FILE_DPIA, .rules = {"round-trip"}, .round_trip = true};
    for (const auto& each : pm::kit::check_content(file + body, "file", options)) {
        said.push_back(each.place.section);
    }
    EXPECT_EQ(said, Lines{"A"});
}

TEST(RoundTrip, IsNotTriedWhereTheRuleIsLeftOut) {
    const std::string content = "PIAFILEVERSION_2.0\na=-0.0\n";
    CheckOptions options{.round_trip = true};
    EXPECT_EQ(1U, pm::kit::check_content(content, "file", options).size());
    options.without = {"round-trip"};
    EXPECT_TRUE(pm::kit::check_content(content, "file", options).empty());
}

// A compound file with a long of each of these names in its root.
std::string file_of(const std::vector<std::u16string>& names) {
    pm::CompoundTree tree;
    const auto put = [&](const std::u16string& name, std::string_view record) {
        const auto* const bytes = reinterpret_cast<const std::byte*>(record.data());
        tree.create(tree.root(), name, pm::CompoundKind::stream)->data.assign(bytes, bytes + record.size());
    };
    put(u"Version", {"\0\0\x80\x3F", 4});
    for (const std::u16string& name : names) {
        put(name, {"\1\0\0\0\4\0\0\0\7\0\0\0", 12});
    }
    const auto bytes = pm::write_compound_file(tree);
    return {reinterpret_cast<const char*>(bytes->data()), bytes->size()};
}

Lines said_of_doc(const std::string& content) {
    Lines said;
    const CheckOptions options{.type = PM_Object::FILE_DOC, .rules = {"round-trip"}, .round_trip = true};
    for (const auto& each : pm::kit::check_content(content, "file", options)) {
        said.push_back(
            fmt::format("{} {} {}", pm::kit::severity_name(each.severity), each.path, each.message));
    }
    return said;
}

// What is told of a tree that comes back as another one.
Lines compared(const std::vector<std::pair<std::string, pm::Value>>& before,
               const std::vector<std::pair<std::string, pm::Value>>& after) {
    const auto tree_of = [](const auto& settings) {
        pm::Tree tree;
        for (const auto& [path, value] : settings) {
            tree.set(path, value);
        }
        return tree;
    };
    pm::kit::Findings findings{CheckOptions()};
    pm::kit::compare_trees(tree_of(before), tree_of(after), {.file = "file", .section = {}}, findings);
    Lines said;
    for (const auto& each : findings.take()) {
        said.push_back(
            fmt::format("{} {} {}", pm::kit::severity_name(each.severity), each.path, each.message));
    }
    return said;
}

TEST(RoundTrip, AnotherOrderAloneIsWorthANote) {
    EXPECT_EQ(compared({{"\\a", 1}, {"\\b", 2}}, {{"\\b", 2}, {"\\a", 1}}),
              Lines{"note  Nodes or properties come back in another order."});
    EXPECT_EQ(compared({{"\\a", 1}, {"\\b", 2}}, {{"\\a", 1}, {"\\b", 2}}), Lines());
    EXPECT_EQ(compared({{"\\a", 1}, {"\\b", 2}}, {{"\\b", 2}, {"\\c", 1}}),
              (Lines{"warning \\a The property is lost.", "warning \\c The property wasn't there before."}));
    EXPECT_EQ(compared({{"\\a", 1}}, {{"\\b", 2}, {"\\a", 1}}),
              Lines{"warning \\b The property wasn't there before."});
    EXPECT_EQ(compared({{"\\b", 2}, {"\\a", 1}}, {{"\\a", 1}}), Lines{"warning \\b The property is lost."});
}

TEST(RoundTrip, ValuesOfEachTypeAreShown) {
    EXPECT_EQ(compared({{"\\a", 1}}, {{"\\a", 1.5}}), Lines{"warning \\a 1 comes back as 1.5."});
    EXPECT_EQ(compared({{"\\a", true}}, {{"\\a", "TRUE"}}),
              Lines{"warning \\a TRUE comes back as \"TRUE\"."});
    EXPECT_EQ(compared({{"\\a", false}}, {{"\\a", 0}}), Lines{"warning \\a FALSE comes back as 0."});
    EXPECT_EQ(compared({{"\\a", ""}}, {{"\\a", pm::Bytes()}}),
              Lines{"warning \\a \"\" comes back as 0 bytes."});
    EXPECT_EQ(compared({{"\\a", pm::Bytes(2)}}, {{"\\a", pm::Bytes(1)}}),
              Lines{"warning \\a 2 bytes comes back as 1 byte."});
}

TEST(RoundTrip, CompoundFileNeedsAFolderForFiles) {
    const std::string content = file_of({u"a"});
    const std::string folder = std::filesystem::temp_directory_path().string();
    pm::test::set_variable(pm::test::temp_folder_variable, "/no/such/folder");
    const Lines said = said_of_doc(content);
    pm::test::set_variable(pm::test::temp_folder_variable, folder);
    EXPECT_EQ(said, Lines());
}

} // namespace
