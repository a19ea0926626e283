#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <pm/kit/compatibility.h>
#include <pm_test_paths.h>

// docs/compatibility.md and the tables of the check say the same.
namespace {

using namespace pm::kit;

std::string page() {
    std::ifstream file(PM_DOCS "/compatibility.md", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The lines of the table under a heading.
std::vector<std::string> rows_under(const std::string& heading) {
    const std::string text = page();
    std::vector<std::string> rows;
    std::size_t at = text.find("| " + heading + " |");
    for (int line = 0; at != std::string::npos && text[at] == '|'; ++line) {
        const std::size_t end = text.find('\n', at);
        if (line >= 2) rows.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return rows;
}

template<class List>
std::string code_list(const List& items) {
    std::string text;
    for (const auto& item : items)
        text += (text.empty() ? "`" : ", `") + std::string(item) + '`';
    return text;
}

TEST(CompatibilityPage, ListsTheRules) {
    std::vector<std::string> rows;
    for (const CompatibilityRule& rule : compatibility_rules()) {
        rows.push_back("| `" + std::string(rule.name) + "` | " + std::string(rule.group) + " | " +
                       std::string(severity_name(rule.severity)) + " | " + std::string(rule.meaning) + " | " +
                       code_list(rule.settings) + " | " + code_list(rule.capabilities) + " |");
    }
    EXPECT_EQ(rows_under("rule"), rows);
}

std::string more_of(const SettingPath& path) {
    static constexpr const char* forms[] = {"as-is",       "name",   "length", "yes-no",
                                            "orientation", "colour", "unit"};
    std::vector<std::string> parts;
    if (path.form != SettingForm::as_is)
        parts.push_back(std::string("`") + forms[static_cast<int>(path.form)] + '`');
    if (path.is_default) parts.emplace_back("default");
    if (path.zero_is_unset) parts.emplace_back("unset if zero");
    if (path.any_case) parts.emplace_back("any case");
    if (!path.key.empty()) parts.push_back("key `" + path.key + '`');
    for (const auto& [number, code] : path.codes)
        parts.push_back("code " + std::to_string(number) + " is " + std::to_string(code));
    if (!path.owner.empty())
        parts.push_back("owner digit " + std::to_string(path.owner_digit) + " of `" + path.owner + '`');
    std::string text;
    for (const std::string& part : parts)
        text += (text.empty() ? "" : ", ") + part;
    return text;
}

TEST(CompatibilityPage, ListsTheBuiltInMap) {
    std::vector<std::string> rows;
    for (const SettingPath& path : built_in_map().settings) {
        rows.push_back("| `" + path.setting + "` | `" + path.path + "` | " + more_of(path) + " |");
    }
    EXPECT_EQ(rows_under("setting"), rows);
}

TEST(CompatibilityPage, HasAMapThatCanBeLoaded) {
    const std::string text = page();
    const std::size_t begin = text.find("```json\n") + 8;
    const CompatibilityMap map = load_map(text.substr(begin, text.find("```", begin) - begin));
    EXPECT_EQ(map.settings.size(), built_in_map().settings.size() + 4);
    EXPECT_EQ(map.rules.at(0).name, "site-glue");
}

} // namespace
