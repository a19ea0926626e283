#include "docs/page.h"

#include "pm_test_paths.h"
#include <algorithm>
#include <charconv>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace pm::test {

namespace {

// What a page holds that can't be read.
struct PageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

unsigned hex_number(std::string_view digits) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size()) {
        throw PageError("no hexadecimal number: " + std::string(digits));
    }
    return value;
}

// The byte of the escape at the front of `rest`, which is taken off.
char take_escape(std::string_view& rest) {
    constexpr std::string_view letters = "nrt0\\";
    constexpr std::string_view bytes("\n\r\t\0\\", 5);
    const std::size_t found = rest.size() < 2 ? std::string_view::npos : letters.find(rest[1]);
    if (found != std::string_view::npos) {
        rest.remove_prefix(2);
        return bytes[found];
    }
    if (rest.size() < 4 || rest[1] != 'x') throw PageError("unknown escape: " + std::string(rest));
    const unsigned byte = hex_number(rest.substr(2, 2));
    rest.remove_prefix(4);
    return static_cast<char>(byte);
}

std::string unescape(std::string_view text) {
    std::string bytes;
    while (!text.empty()) {
        if (text.front() == '\\') {
            bytes += take_escape(text);
        } else {
            bytes += text.front();
            text.remove_prefix(1);
        }
    }
    return bytes;
}

// The code spans of a cell that holds nothing else, each with its escapes resolved, as lines.
std::string input_of(std::string_view cell) {
    if (cell == "(empty)") return "";
    std::string input;
    for (bool first = true; first || !cell.empty(); first = false) {
        const std::size_t end = cell.find('`', 1);
        if (cell.empty() || cell.front() != '`' || end == std::string_view::npos) {
            throw PageError("an input that isn't a code span");
        }
        if (!first) input += '\n';
        input += unescape(cell.substr(1, end - 1));
        cell = trim(cell.substr(end + 1));
    }
    return input;
}

std::vector<std::string_view> cells_of(std::string_view line) {
    std::vector<std::string_view> cells;
    line = trim(line);
    line.remove_prefix(1);
    if (line.ends_with('|')) line.remove_suffix(1);
    while (true) {
        const std::size_t bar = line.find('|');
        cells.push_back(trim(line.substr(0, bar)));
        if (bar == std::string_view::npos) return cells;
        line.remove_prefix(bar + 1);
    }
}

// Reads a page line by line.
class PageReader {
public:
    PageReader(const std::string& name, std::string_view text) : m_name(name), m_rest(text) {}

    Page read() {
        while (next_line()) {
            try {
                read_line();
            } catch (const PageError& error) {
                add_trouble(error.what());
            }
        }
        if (m_fence == Fence::none && m_page.rows.empty()) add_trouble("the page has no rows to run");
        if (m_fence != Fence::none) add_trouble("a fenced block has no end");
        return std::move(m_page);
    }

private:
    enum class Fence { none, hex, tree, other };

    bool next_line() {
        if (m_rest.empty()) return false;
        const std::size_t feed = m_rest.find('\n');
        m_text = m_rest.substr(0, feed);
        m_rest.remove_prefix(feed == std::string_view::npos ? m_rest.size() : feed + 1);
        ++m_line;
        return true;
    }

    void read_line() {
        if (m_text.starts_with("```")) {
            m_columns.clear();
            m_fence = m_fence == Fence::none ? open_fence(m_text.substr(3)) : Fence::none;
        } else if (m_fence == Fence::hex) {
            read_bytes();
        } else if (m_fence == Fence::tree) {
            m_page.trees[m_block].emplace_back(m_text);
        } else if (m_fence == Fence::none) {
            read_table_line();
        }
    }

    Fence open_fence(std::string_view info) {
        const std::size_t blank = info.find(' ');
        const std::string_view kind = info.substr(0, blank);
        if (kind != "hex" && kind != "tree") return Fence::other;
        m_block = blank == std::string_view::npos ? "" : std::string(trim(info.substr(blank)));
        if (m_block.empty()) add_trouble("a block without a name");
        m_gap = false;
        const bool first = kind == "hex" ? m_page.bytes.try_emplace(m_block).second
                                         : m_page.trees.try_emplace(m_block).second;
        if (!first) add_trouble("two blocks of one name");
        return kind == "hex" ? Fence::hex : Fence::tree;
    }

    void read_bytes() {
        std::string& bytes = m_page.bytes[m_block];
        if (m_text == "...") {
            m_gap = true;
            return;
        }
        const std::size_t offset_end = m_text.find("  ");
        const std::size_t offset = hex_number(m_text.substr(0, offset_end));
        if (m_gap && offset > bytes.size()) bytes.resize(offset);
        if (offset != bytes.size()) throw PageError("an offset that isn't that of the bytes");
        m_gap = false;
        const std::string_view rest = m_text.substr(std::min(offset_end + 2, m_text.size()));
        std::string_view digits = rest.substr(0, rest.find("  "));
        while (!digits.empty()) {
            if (digits.size() < 2 || (digits.size() > 2 && digits[2] != ' ')) throw PageError("no bytes");
            bytes += static_cast<char>(hex_number(digits.substr(0, 2)));
            digits.remove_prefix(std::min<std::size_t>(3, digits.size()));
        }
    }

    void read_table_line() {
        if (!m_text.starts_with('|')) {
            m_columns.clear();
            return;
        }
        const std::vector<std::string_view> cells = cells_of(m_text);
        if (m_columns.empty()) {
            m_columns.assign(cells.begin(), cells.end());
            m_table_row = 0;
        } else if (++m_table_row > 1 && outcome_column()) {
            add_row(cells);
        }
    }

    std::optional<std::size_t> outcome_column() const {
        const auto found = std::find(m_columns.begin(), m_columns.end(), "outcome");
        if (found == m_columns.end()) return std::nullopt;
        return static_cast<std::size_t>(found - m_columns.begin());
    }

    void add_row(const std::vector<std::string_view>& cells) {
        if (cells.size() != m_columns.size())
            throw PageError("a row of another number of cells than its table");
        PageRow row{
            m_name, m_line, m_columns.front(), input_of(cells.front()), std::string(cells[*outcome_column()]),
            ""};
        if (row.outcome.empty()) throw PageError("a row without an outcome");
        m_page.rows.push_back(std::move(row));
    }

    void add_trouble(const std::string& what) { m_page.rows.push_back({m_name, m_line, "", "", "", what}); }

    std::string m_name;
    std::string_view m_rest;
    std::string_view m_text; // the line
    int m_line = 0;
    Fence m_fence = Fence::none;
    std::string m_block;
    bool m_gap = false; // a "..." stands in front
    std::vector<std::string> m_columns;
    int m_table_row = 0;
    Page m_page;
};

} // namespace

Page parse_page(const std::string& name, std::string_view text) {
    return PageReader(name, text).read();
}

Page read_page(const std::string& name) {
    std::ifstream file(PM_DOCS "/" + name + ".md", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return parse_page(name, text);
}

std::string row_test_name(const PageRow& row) {
    return "line_" + std::to_string(row.line);
}

void expect_row(const PageRow& row, const Runs& runs) {
    ASSERT_EQ(row.trouble, "");
    const auto run = runs.find(row.kind);
    ASSERT_NE(run, runs.end()) << "no way to run a table of \"" << row.kind << '"';
    EXPECT_EQ(run->second(row.input), row.outcome);
}

} // namespace pm::test
