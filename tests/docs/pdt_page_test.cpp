#include "docs/addition.h"
#include "docs/outcome.h"
#include "docs/page.h"
#include "pdt/description.h"
#include "pdt/enum_tables.h"
#include <fstream>
#include <gmock/gmock.h>
#include <map>
#include <pm_test_paths.h>
#include <regex>
#include <set>
#include <sstream>

namespace {

using namespace pm::test;
using pm::Section;

std::string with_tabs(std::string text) {
    const std::string arrow = "\u2192";
    for (std::size_t at = text.find(arrow); at != std::string::npos; at = text.find(arrow, at)) {
        text.replace(at, arrow.size(), "\t");
    }
    return text;
}

bool take_start(std::string& text, const std::string& start) {
    if (!text.starts_with(start)) return false;
    text.erase(0, start.size());
    return true;
}

// Lines of tables, each behind the name of its own: "Media Size: A4", "form 3: Pens\t8", "strings: KEY ...".
// "unended Media Size: A4" is a row without its line feed.
class RowsOfDescription {
public:
    explicit RowsOfDescription(const std::string& input) {
        std::istringstream lines(with_tabs(input));
        for (std::string line; std::getline(lines, line);) {
            take_line(line);
        }
        for (const auto& [number, cells] : m_form) {
            while (m_form_lines < number - 3) {
                add("Misc Non-Localizable Info", "\n");
                ++m_form_lines;
            }
            add("Misc Non-Localizable Info", cells + '\n');
            ++m_form_lines;
        }
        m_description.strings(m_strings);
    }
    const Description& description() const { return m_description; }

private:
    void take_line(std::string line) {
        const bool ended = !take_start(line, "unended ");
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos) throw std::runtime_error("a row without a table");
        std::string table = line.substr(0, colon);
        std::string cells = line.substr(std::min(colon + 2, line.size()));
        if (take_start(table, "form ")) {
            m_form[std::stoi(table)] = cells;
        } else if (table == "strings") {
            m_strings += ended ? cells + '\n' : cells;
        } else {
            add(table, ended ? cells + '\n' : cells);
        }
    }
    void add(const std::string& table, const std::string& text) {
        for (int section = 0; section < pm::section_count; ++section) {
            if (Description::file_of(static_cast<Section>(section)) != table + ".pdt") continue;
            m_description.append(static_cast<Section>(section), text);
            return;
        }
        throw std::runtime_error("no such table: " + table);
    }

    Description m_description;
    std::string m_strings;
    std::map<int, std::string> m_form;
    int m_form_lines = 0;
};

const AdditionTo& empty_description() {
    static const AdditionTo addition = [] {
        PM_Object plain;
        Description().load(plain);
        return AdditionTo(plain);
    }();
    return addition;
}

bool is_flags(const TreeItem& item) {
    return item.path.ends_with("\\abilities");
}

// What rows add to the tree, but for the items `caps_type`, which are all 0, and the flags.
std::string run_rows(const std::string& input) {
    const RowsOfDescription rows(input);
    const auto is_untold = [](const TreeItem& item) {
        return is_flags(item) || item.path.ends_with("\\caps_type");
    };
    return outcome_of([&](PM_Object& object) {
        try {
            empty_description().load_and_compare(object,
                                                 [&](PM_Object& each) { rows.description().load(each); });
        } catch (...) {
            delete_items(object, is_untold);
            throw;
        }
        delete_items(object, is_untold);
    });
}

// The flags that rows mark: "media 5, 6; io 0".
std::string run_flags(const std::string& input) {
    const RowsOfDescription rows(input);
    PM_Object object;
    rows.description().load(object);
    std::string outcome;
    for (const TreeItem& item : tree_items(object)) {
        if (!is_flags(item)) continue;
        std::string marks;
        for (const int mark : DescriptionLoad::marks_in(pm::to_wide(item.text(), pm::utf8_code_page))) {
            if (item.path == "media\\abilities" && mark == pm::MediaAbility::form_read) continue;
            marks += (marks.empty() ? " " : ", ") + std::to_string(mark);
        }
        const std::string set = item.path.substr(0, item.path.rfind('\\'));
        if (!marks.empty()) outcome += (outcome.empty() ? "" : "; ") + set + marks;
    }
    return outcome.empty() ? "none" : outcome;
}

const Runs runs{{"rows", run_rows}, {"rows of flags", run_flags}};

PM_PAGE_ROWS(pdt, runs);

class pdt_tables_page : public testing::TestWithParam<PageRow> {};
TEST_P(pdt_tables_page, RowIsAsTold) {
    expect_row(GetParam(), runs);
}
INSTANTIATE_TEST_SUITE_P(docs, pdt_tables_page, testing::ValuesIn(read_page("pdt-tables").rows),
                         [](const auto& row) { return row_test_name(row.param); });

// The tables of keywords, as the page calls them.
const std::map<std::string, pm::KeywordTable> keyword_tables = {
    {"types of IO Method", pm::keywords::io_type},
    {"parity", pm::keywords::parity},
    {"data bits", pm::keywords::data_bits},
    {"stop bits", pm::keywords::stop_bits},
    {"handshakes", pm::keywords::handshake},
    {"status", pm::keywords::bidi_status},
    {"dithering types", pm::keywords::dithering_type},
    {"media groups", pm::keywords::media_group},
    {"feeds", pm::keywords::feed},
    {"collating types", pm::keywords::collating_type},
    {"stapling locations", pm::keywords::stapling_location},
    {"stapling times", pm::keywords::stapling_time},
    {"folding types", pm::keywords::folding_type},
    {"folding times", pm::keywords::folding_time},
    {"cutting times", pm::keywords::cutting_time},
    {"raster abilities", pm::keywords::raster_ability},
    {"raster orientations", pm::keywords::raster_orientation},
    {"colour systems", pm::keywords::color_system},
    {"selection methods", pm::keywords::selection_method},
    {"duplexing modes", pm::keywords::duplexing_mode},
    {"optimizations", pm::keywords::pen_optimization},
    {"line types", pm::keywords::linetype},
    {"line type abilities", pm::keywords::linetype_user_flags},
    {"owners of start strings", pm::keywords::init_term_user_flags},
    {"owners of pens", pm::keywords::pen_user_flags},
    {"owners of colours", pm::keywords::res_color_mem_user_flags},
    {"owners of io", pm::keywords::io_user_flags},
    {"owners of media", pm::keywords::media_user_flags},
};

// "`None` 0, `Odd` 0x1" as pairs of text and number.
std::vector<std::pair<std::string, unsigned long>> told_keywords(const std::string& cell) {
    std::vector<std::pair<std::string, unsigned long>> keywords;
    const std::regex keyword("`([^`]*)` (0x[0-9A-Fa-f]+|[0-9]+)");
    for (std::sregex_iterator at(cell.begin(), cell.end(), keyword), end; at != end; ++at) {
        keywords.emplace_back((*at)[1], std::stoul((*at)[2], nullptr, 0));
    }
    return keywords;
}

TEST(PdtPage, KeywordsAreThoseOfTheReader) {
    std::ifstream page(PM_DOCS "/pdt-tables.md", std::ios::binary);
    std::set<std::string> seen;
    const std::regex row(R"(\| ([^|]*) \| (`[^|]*) \|)");
    for (std::string line; std::getline(page, line);) {
        std::smatch cells;
        if (!std::regex_match(line, cells, row)) continue;
        std::string name = cells[1];
        std::erase(name, '`');
        const auto table = keyword_tables.find(name);
        if (table == keyword_tables.end()) continue;
        seen.insert(name);
        std::vector<std::pair<std::string, unsigned long>> wanted;
        for (const pm::Keyword& each : table->second) {
            wanted.emplace_back(pm::test::utf8(each.text), each.code);
        }
        EXPECT_EQ(told_keywords(cells[2]), wanted) << name;
    }
    EXPECT_EQ(seen.size(), keyword_tables.size());
}

TEST(PdtPage, ExampleIsDecodedAsTold) {
    const Page page = read_page("pdt");
    Description description;
    for (const auto& [name, section] : {std::pair("Media Size.pdt", Section::media_size),
                                        std::pair("Media Description.pdt", Section::media_description)}) {
        ASSERT_TRUE(page.bytes.contains(name)) << name;
        description.whole(section, page.bytes.at(name));
    }
    ASSERT_TRUE(page.bytes.contains("strings.pdt") && page.trees.contains("media"));
    description.strings(page.bytes.at("strings.pdt"));
    PM_Object object;
    description.load(object);
    delete_items(object, [](const TreeItem& item) { return !item.path.starts_with("media\\"); });
    EXPECT_EQ(tree_lines(object), page.trees.at("media"));
}

TEST(PdtPage, TreeOfAnEmptyDescriptionIsAsTold) {
    const Page page = read_page("pdt");
    ASSERT_TRUE(page.trees.contains("empty"));
    PM_Object object;
    Description().load(object);
    EXPECT_EQ(tree_lines(object), page.trees.at("empty"));
}

} // namespace
