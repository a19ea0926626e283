#pragma once

#include "check/findings.h"
#include "check/pdt/columns.h"
#include "check/source_text.h"
#include <string>
#include <string_view>
#include <vector>

namespace pm::kit {

// A row of a table: its line, and its fields without comments.
struct TableRow {
    SourceLine line;
    std::vector<std::string_view> fields;
    std::size_t width = 0; // fields that stand in the line
    std::size_t moved = 0; // places by which a comment moves the fields behind it

    // Empty past the end of the line.
    [[nodiscard]] std::string_view at(std::size_t column) const {
        return column < fields.size() ? fields[column] : std::string_view();
    }
    [[nodiscard]] std::string_view at(char letter) const {
        return at(static_cast<std::size_t>(letter - 'A'));
    }
};

// The fields of a line.
[[nodiscard]] TableRow split_row(const SourceLine& line);
// A cell as a name: without the blanks at its end and a quote at each end, "_" for each blank.
[[nodiscard]] std::string name_of_cell(std::string_view cell);

// A table's file: what its bytes and lines are like, and its rows.
class TableFile {
public:
    // `table` may be null for a file that nothing reads. All are borrowed, the content too.
    TableFile(const Table* table, std::string_view content, const NarrowText& narrow, const Place& where);

    // Rules of bytes, lines and widths.
    void check(Findings& findings);
    // Behind the headings; all lines of a form.
    [[nodiscard]] const std::vector<TableRow>& rows() const { return m_rows; }
    [[nodiscard]] const Table* table() const { return m_table; }
    [[nodiscard]] const SourceText& source() const { return m_source; }

private:
    void read_rows();
    void check_headings(Findings& findings) const;
    void check_widths(Findings& findings) const;
    void check_row_names(Findings& findings) const;

    const Table* m_table;
    SourceText m_source;
    std::vector<SourceLine> m_lines;
    std::vector<TableRow> m_rows;
    std::size_t m_columns = 0; // that the headings name
};

// Rules of any file of a description: random-bytes, lines that are too long.
void check_table_bytes(const SourceText& source, std::size_t longest, Findings& findings);

} // namespace pm::kit
