#include "rule_example.h"

#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pm/kit/check.h>
#include <pm_test_paths.h>
#include <string>
#include <vector>

namespace {

using pm::kit::CheckRule;
using pm::kit::test::run_example;

// One rule on its page.
struct PageRule {
    std::string name;
    std::string head; // "error, PIA DPIA. One sentence."
    struct Row {
        std::string example;
        std::vector<std::string> said;
    };
    std::vector<Row> rows;

    // A name for a test's parameter that doesn't change from build to build.
    friend void PrintTo(const PageRule& rule, std::ostream* stream) { *stream << rule.name; }
};

std::vector<std::string> code_spans(std::string_view text) {
    std::vector<std::string> spans;
    for (std::size_t at = text.find('`'); at != std::string_view::npos;) {
        const std::size_t end = text.find('`', at + 1);
        spans.emplace_back(text.substr(at + 1, end - at - 1));
        at = text.find('`', end + 1);
    }
    return spans;
}

std::vector<PageRule> read_page() {
    std::ifstream stream(PM_DOCS "/check.md");
    std::vector<PageRule> rules;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with("### `")) {
            rules.push_back({line.substr(5, line.size() - 6), {}, {}});
        } else if (!rules.empty() && rules.back().head.empty() && !line.empty()) {
            rules.back().head = line;
        } else if (!rules.empty() && line.starts_with("| ") && line != "| file | says |") {
            const std::size_t middle = line.find(" | ");
            rules.back().rows.push_back({line.substr(2, middle - 2), code_spans(line.substr(middle))});
        }
    }
    return rules;
}

std::string name_of(const testing::TestParamInfo<PageRule>& info) {
    std::string name;
    for (const char c : info.param.name) {
        name += c == '-' ? '_' : c;
    }
    return name;
}

class RulesPage : public testing::TestWithParam<PageRule> {};

TEST_P(RulesPage, TellsWhatTheRuleIs) {
    const CheckRule* const rule = pm::kit::find_check_rule(GetParam().name);
    ASSERT_NE(rule, nullptr);
    EXPECT_EQ(GetParam().head, std::string(pm::kit::severity_name(rule->severity)) + ", " +
                                   std::string(rule->formats) + ". " + std::string(rule->meaning));
}

TEST_P(RulesPage, TellsWhatTheRuleSaysOfEachExample) {
    for (const PageRule::Row& row : GetParam().rows) {
        EXPECT_THAT(run_example(GetParam().name, row.example), testing::ContainerEq(row.said)) << row.example;
    }
}

TEST_P(RulesPage, HasAnExampleThatFailsAndOneThatPasses) {
    const auto fails = [](const PageRule::Row& row) { return !row.said.empty(); };
    const auto& rows = GetParam().rows;
    EXPECT_TRUE(std::any_of(rows.begin(), rows.end(), fails));
    EXPECT_FALSE(std::all_of(rows.begin(), rows.end(), fails));
}

INSTANTIATE_TEST_SUITE_P(All, RulesPage, testing::ValuesIn(read_page()), name_of);

TEST(RulesPage, HasEveryRuleByName) {
    std::vector<std::string> told;
    for (const PageRule& rule : read_page()) {
        told.push_back(rule.name);
    }
    std::vector<std::string> known;
    for (const CheckRule& rule : pm::kit::check_rules()) {
        known.emplace_back(rule.name);
    }
    EXPECT_EQ(told, known);
}

} // namespace
