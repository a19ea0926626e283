#pragma once

#include <gtest/gtest.h>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

// The pages of docs/ as data: what they promise in tables and in bytes is read here, and run by the tests.
//
// A table is run if one of its columns is called "outcome". The name of its first column tells how:
//
//     | body          | outcome                           | why
//     |---------------|-----------------------------------|----
//     | `a=1`         | `a: long = 1`                     | further columns are for people
//     | `a=x` `b=1`   | `b: long = 1`, reports 88         | several code spans are the input's lines
//
// Inputs are code spans with these escapes: \n \r \t \0 \\ and \x with two digits. A line feed stands between
// the code spans of one input. (empty) is an input without bytes.
//
// A fenced block "hex NAME" holds bytes: an offset, two blanks, the bytes, two blanks and what they mean. A
// line "..." stands for zero bytes up to the next offset. A fenced block "tree NAME" holds the lines of a
// tree, one property each.
namespace pm::test {

struct PageRow {
    std::string page; // its name without folder and ending
    int line = 0;
    std::string kind;    // the name of the table's first column
    std::string input;   // bytes
    std::string outcome; // as it stands in the page
    std::string trouble; // not empty: the row can't be read

    friend void PrintTo(const PageRow& row, std::ostream* out) {
        *out << "docs/" << row.page << ".md:" << row.line << ' ' << row.kind;
    }
};

struct Page {
    std::vector<PageRow> rows;
    std::map<std::string, std::string> bytes;              // of the "hex" blocks, by name
    std::map<std::string, std::vector<std::string>> trees; // of the "tree" blocks, by name
};

// The page's rows and blocks. What can't be read becomes a row with its trouble, as does a page without rows.
[[nodiscard]] Page parse_page(const std::string& name, std::string_view text);

// Of docs/<name>.md.
[[nodiscard]] Page read_page(const std::string& name);

// "line_12": names a row's test.
[[nodiscard]] std::string row_test_name(const PageRow& row);

// What becomes of an input, as the page writes it.
using Run = std::string (*)(const std::string& input);
using Runs = std::map<std::string, Run>;

// Runs the row's input in the way of its kind, and expects the outcome that the page tells.
void expect_row(const PageRow& row, const Runs& runs);

} // namespace pm::test

// One test for each row of docs/<page>.md: PM_PAGE_ROWS(pia, (Runs{{"body", run_body}}))
#define PM_PAGE_ROWS(page, runs)                                                                             \
    class page##_page : public testing::TestWithParam<pm::test::PageRow> {};                                 \
    TEST_P(page##_page, RowIsAsTold) {                                                                       \
        pm::test::expect_row(GetParam(), runs);                                                              \
    }                                                                                                        \
    INSTANTIATE_TEST_SUITE_P(docs, page##_page, testing::ValuesIn(pm::test::read_page(#page).rows),          \
                             [](const auto& row) { return pm::test::row_test_name(row.param); })
