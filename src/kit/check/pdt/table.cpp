#include "check/pdt/table.h"

#include "check/encoding.h"
#include "check/numbers.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <unordered_map>

namespace pm::kit {

namespace {

constexpr std::size_t longest_line = 2047; // bytes
constexpr std::string_view separators("\t\0", 2);

bool is_text_byte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 || c == '\t' || c == '\r' || c == '\n';
}

// One field as it stands in the line: "//" begins a comment, and one at its start makes further fields.
void add_field(std::string_view raw, TableRow& row) {
    const std::size_t comment = raw.find("//");
    if (comment == std::string_view::npos) {
        row.fields.push_back(raw);
        return;
    }
    const std::string_view front = cut_end(raw.substr(0, comment), " ");
    if (!front.empty()) {
        row.fields.push_back(front);
        return;
    }
    row.fields.resize(row.fields.size() + comment + 1, raw.substr(0, 0));
    row.fields.push_back(raw.substr(comment + 1));
    row.moved += comment + 1;
}

std::size_t width_of(std::string_view line) {
    const auto is_separator = [](char c) { return c == '\t' || c == '\0'; };
    return static_cast<std::size_t>(std::count_if(line.begin(), line.end(), is_separator)) + 1;
}

bool is_blank_row(const TableRow& row) {
    return std::all_of(row.fields.begin(), row.fields.end(),
                       [](std::string_view field) { return field.empty(); });
}

} // namespace

TableRow split_row(const SourceLine& line) {
    TableRow row{line, {}, 0, 0};
    std::string_view rest = line.text;
    if (rest.ends_with('\r')) rest.remove_suffix(1);
    row.width = width_of(rest);
    while (true) {
        const std::size_t end = rest.find_first_of(separators);
        add_field(rest.substr(0, end), row);
        if (end == std::string_view::npos) return row;
        rest.remove_prefix(end + 1);
    }
}

std::string name_of_cell(std::string_view cell) {
    cell = cut_end(cell, " ");
    if (cell.ends_with('"')) cell.remove_suffix(1);
    if (cell.starts_with('"')) cell.remove_prefix(1);
    std::string name(cell);
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

TableFile::TableFile(const Table* table, std::string_view content, const NarrowText& narrow,
                     const Place& where)
    : m_table(table), m_source(content, narrow, where) {
    SourceLine line;
    while (m_source.next_line(line)) {
        m_lines.push_back(line);
    }
    read_rows();
}

void TableFile::read_rows() {
    const bool form = m_table != nullptr && m_table->form;
    for (std::size_t at = 0; at < std::min<std::size_t>(2, m_lines.size()); ++at) {
        m_columns = std::max(m_columns, split_row(m_lines[at]).width);
    }
    for (std::size_t at = form ? 0 : 2; at < m_lines.size(); ++at) {
        if (form || m_lines[at].ended) m_rows.push_back(split_row(m_lines[at]));
    }
}

void TableFile::check(Findings& findings) {
    check_table_bytes(m_source, longest_line, findings);
    check_encoding(m_source.content(), m_source.narrow(), m_source.where(), 1, findings);
    check_headings(findings);
    if (m_table == nullptr) return;
    if (!m_table->form) check_widths(findings);
    if (!m_table->form) check_row_names(findings);
}

void TableFile::check_headings(Findings& findings) const {
    const bool form = m_table != nullptr && m_table->form;
    if (m_lines.empty()) {
        findings.add({Rule::empty_table, m_source.where(), "The table is empty and has no headings."});
    } else if (m_lines.size() < 2) {
        findings.add({Rule::empty_table, m_source.where(),
                      "The table has one line, and two of headings stand in front of its rows."});
    } else if (m_lines.size() == 2) {
        findings.add({.rule = Rule::empty_table,
                      .place = m_source.where(),
                      .message = "The table has headings only.",
                      .severity = Severity::note});
    }
    if (form || m_lines.empty() || m_lines.back().ended) return;
    findings.add({Rule::unread_line, m_source.place(m_lines.back()),
                  "The last line has no line feed and isn't read."});
}

void TableFile::check_widths(Findings& findings) const {
    for (const TableRow& row : m_rows) {
        if (row.moved > 0) {
            findings.add({Rule::long_row, m_source.place(row.line),
                          fmt::format("A comment at the start of a field moves the fields behind it by {}.",
                                      row.moved)});
        }
        if (is_blank_row(row) || m_columns < 2) continue;
        if (row.width < m_columns) {
            findings.add({Rule::short_row, m_source.place(row.line),
                          fmt::format("The row has {} fields, and the headings {}.", row.width, m_columns)});
        }
        if (m_table->unbounded) continue;
        for (std::size_t at = m_columns; at < row.fields.size(); ++at) {
            if (row.moved > 0 || row.fields[at].empty()) continue;
            findings.add({Rule::long_row, m_source.place(row.line, row.fields[at].data()),
                          fmt::format("{} stands behind the last column.", m_source.quoted(row.fields[at]))});
            break;
        }
    }
}

void TableFile::check_row_names(Findings& findings) const {
    std::unordered_map<std::string, std::uint64_t> first;
    for (const TableRow& row : m_rows) {
        if (row.at('A').empty()) continue;
        const auto [known, is_new] = first.try_emplace(name_of_cell(row.at('A')), row.line.number);
        if (is_new) continue;
        findings.add(
            {Rule::repeated_name, m_source.place(row.line, row.at('A').data()),
             fmt::format("{} stands on line {} already.", m_source.quoted(row.at('A')), known->second)});
    }
}

void check_table_bytes(const SourceText& source, std::size_t longest, Findings& findings) {
    SourceText lines(source.content(), source.narrow(), source.where());
    SourceLine line;
    std::size_t odd = 0;
    Place first;
    while (lines.next_line(line)) {
        const auto count = static_cast<std::size_t>(
            std::count_if(line.text.begin(), line.text.end(), [](char c) { return !is_text_byte(c); }));
        if (count > 0 && odd == 0) {
            const auto at = std::find_if_not(line.text.begin(), line.text.end(), is_text_byte);
            first = lines.place(line, line.text.data() + (at - line.text.begin()));
        }
        odd += count;
        if (line.text.size() <= longest) continue;
        findings.add({.rule = Rule::bad_line,
                      .place = lines.place(line),
                      .message = fmt::format("The line has {} bytes, and {} are read at most.",
                                             line.text.size(), longest),
                      .number = PM_ERR_NOT_OPENED});
    }
    if (odd == 0) return;
    findings.add(
        {Rule::random_bytes, first, fmt::format("{} bytes that no text has stand in the table.", odd)});
}

} // namespace pm::kit
