#include "check/pdt/cells.h"

#include "check/numbers.h"
#include <algorithm>
#include <fmt/format.h>

namespace pm::kit {

namespace {

constexpr std::size_t matrix_name = 7; // characters that count
constexpr std::size_t last_form_line = 68;

// What a cell is to hold, of a column or of a line of the form.
struct Wanted {
    Cell cell;
    const keywords::Words* words;
    std::string_view table;
};

class CellCheck {
public:
    CellCheck(const TableFile& table, const DescriptionNames& names, Findings& findings)
        : m_table(table), m_names(names), m_findings(findings) {}

    void check_table();
    void check_form();

private:
    void check_row(const TableRow& row);
    void check_behind(const TableRow& row, const Column& column);
    void check_form_line(const FormLine& form, const TableRow& row);
    void check_places();
    void check(const TableRow& row, const Wanted& wanted, std::string_view cell);
    void check_integer(std::string_view cell);
    void check_number(std::string_view cell);
    void check_flag(std::string_view cell, std::string_view taken);
    void check_keyword(std::string_view cell, keywords::Words words, bool named);
    void check_reference(std::string_view cell, std::string_view table, bool raw);
    void check_type(std::string_view cell);
    void check_typed(std::string_view cell);
    void check_raw(std::string_view cell);
    void say(Rule rule, std::string_view cell, std::string message) {
        m_findings.add({rule, m_table.source().place(m_row->line, cell.data()), std::move(message)});
    }
    [[nodiscard]] std::string shown(std::string_view cell) const { return m_table.source().quoted(cell); }

    const TableFile& m_table;
    const DescriptionNames& m_names;
    Findings& m_findings;
    const TableRow* m_row = nullptr;
    char m_type = '\0'; // of the setting that rows add values to
    bool m_named = false;
};

void CellCheck::check_table() {
    for (const TableRow& row : m_table.rows()) {
        check_row(row);
    }
}

void CellCheck::check_row(const TableRow& row) {
    m_row = &row;
    m_named = !row.at('A').empty();
    const Table& table = *m_table.table();
    const std::string_view type = row.at('G');
    if (m_named && type.size() > 3 && std::string_view("SLDBR").find(type[3]) != std::string_view::npos) {
        m_type = type[3];
    }
    for (const Column& column : std::span(table.columns, table.column_count)) {
        if (!m_named && !column.each_row) continue;
        check(row, {column.cell, column.words, column.table}, row.at(column.letter));
    }
    if (table.behind != nullptr) check_behind(row, *table.behind);
}

void CellCheck::check_behind(const TableRow& row, const Column& column) {
    for (auto at = static_cast<std::size_t>(column.letter - 'A'); at < row.fields.size(); ++at) {
        check(row, {column.cell, column.words, column.table}, row.fields[at]);
    }
}

void CellCheck::check(const TableRow& row, const Wanted& wanted, std::string_view cell) {
    m_row = &row;
    if (cell.empty()) return;
    switch (wanted.cell) {
    case Cell::integer:
        return check_integer(cell);
    case Cell::number:
        return check_number(cell);
    case Cell::yes:
        return check_flag(cell, "YyNn");
    case Cell::big_yes:
        return check_flag(cell, "YNn");
    case Cell::landscape:
        return check_flag(cell, "LP");
    case Cell::keyword:
        return check_keyword(cell, *wanted.words, false);
    case Cell::named_keyword:
        return check_keyword(cell, *wanted.words, true);
    case Cell::reference:
        return check_reference(cell, wanted.table, false);
    case Cell::raw_reference:
        return check_reference(cell, wanted.table, true);
    case Cell::data_type:
        return check_type(cell);
    case Cell::typed:
        return check_typed(cell);
    case Cell::matrix:
        if (!m_table.source().is_longer(cell, matrix_name)) return;
        say(Rule::cut_text, cell,
            fmt::format("Of the name {} the first {} characters count.", shown(cell), matrix_name));
    }
}

void CellCheck::check_integer(std::string_view cell) {
    const IntegerText number = read_integer(cell, Signs::both);
    if (number.length == 0) {
        return say(Rule::partial_number, cell, fmt::format("{} has no number and reads as 0.", shown(cell)));
    }
    if (!skip(cell.substr(number.length), " ").empty()) {
        return say(Rule::partial_number, cell, fmt::format("{} reads as {}.", shown(cell), number.value));
    }
    if (number.held) {
        say(Rule::lossy_value, cell,
            fmt::format("{} is beyond 32 bits and reads as {}.", shown(cell), number.value));
    }
}

void CellCheck::check_number(std::string_view cell) {
    const DecimalText number = read_decimal(cell, Signs::both);
    if (number.length == 0) {
        return say(Rule::partial_number, cell, fmt::format("{} has no number and reads as 0.", shown(cell)));
    }
    if (!skip(cell.substr(number.length), " ").empty()) {
        return say(Rule::partial_number, cell, fmt::format("{} reads as {}.", shown(cell), number.value));
    }
    const std::optional<std::string> loss = decimal_loss(cell.substr(0, number.length), number.value);
    if (loss) say(Rule::lossy_value, cell, fmt::format("{} {}.", shown(cell), *loss));
}

void CellCheck::check_flag(std::string_view cell, std::string_view taken) {
    if (taken.find(cell.front()) != std::string_view::npos) return;
    const std::string_view words = taken == "LP" ? "neither \"L\" nor \"P\"" : "neither \"Y\" nor \"N\"";
    say(Rule::unknown_value, cell, fmt::format("{} begins with {}, and reads as no.", shown(cell), words));
}

void CellCheck::check_keyword(std::string_view cell, keywords::Words words, bool named) {
    const std::string text = named ? name_of_cell(cell) : std::string(cell);
    if (std::find(words.begin(), words.end(), text) != words.end()) return;
    const std::string trimmed = name_of_cell(cell);
    const auto near = std::find_if(words.begin(), words.end(), [&](std::string_view word) {
        return equals_ignoring_case(name_of_cell(word), trimmed);
    });
    say(Rule::unknown_keyword, cell,
        near == words.end() ? fmt::format("{} is no keyword of its column.", shown(cell))
                            : fmt::format("{} is no keyword of its column; \"{}\" is.", shown(cell), *near));
}

// Nothing is said of a table that isn't at hand.
void CellCheck::check_reference(std::string_view cell, std::string_view table, bool raw) {
    const auto names = m_names.find(table);
    if (names == m_names.end()) return;
    const std::string name = name_of_cell(cell);
    if (!names->second.read.contains(name)) {
        if (!name.empty()) {
            say(Rule::unknown_reference, cell,
                fmt::format("{} is no name in \"{}.pdt\".", shown(cell), table));
        }
    } else if (raw && name != cell) {
        say(Rule::unknown_reference, cell,
            fmt::format("{} finds nothing in \"{}.pdt\", whose name is \"{}\".", shown(cell), table,
                        readable(name)));
    }
}

void CellCheck::check_type(std::string_view cell) {
    constexpr std::string_view types[] = {"PT_String", "PT_Long", "PT_Double", "PT_Bool", "PT_Raw"};
    if (std::find(std::begin(types), std::end(types), cell) != std::end(types)) return;
    const bool known = cell.size() > 3 && std::string_view("SLDBR").find(cell[3]) != std::string_view::npos;
    say(Rule::unknown_keyword, cell,
        known ? fmt::format("{} is no type; its fourth character tells one.", shown(cell))
              : fmt::format("{} is no type, and that of the setting above counts.", shown(cell)));
}

void CellCheck::check_typed(std::string_view cell) {
    switch (m_type) {
    case 'L':
        return check_integer(cell);
    case 'D':
        return check_number(cell);
    case 'B':
        return check_flag(cell, "YNn");
    case 'R':
        return check_raw(cell);
    default:
        return;
    }
}

void CellCheck::check_raw(std::string_view cell) {
    const std::string_view digits = cell.substr(std::min<std::size_t>(2, cell.size()));
    const bool capital = std::all_of(digits.begin(), digits.end(),
                                     [](char c) { return is_digit(c) || (c >= 'A' && c <= 'F'); });
    if (capital && digits.size() % 2 == 0 && cell.starts_with("0x")) return;
    say(Rule::lossy_value, cell,
        fmt::format("{} isn't \"0x\" and pairs of capital hexadecimal digits, and reads as other bytes.",
                    shown(cell)));
}

void CellCheck::check_form() {
    const std::vector<TableRow>& rows = m_table.rows();
    for (const FormLine& form : form_lines()) {
        if (form.line <= rows.size()) check_form_line(form, rows[form.line - 1]);
    }
    check_places();
}

void CellCheck::check_form_line(const FormLine& form, const TableRow& row) {
    const std::size_t end = form.list ? row.fields.size() : std::min<std::size_t>(2, row.fields.size());
    for (std::size_t column = 1; column < end && !row.fields[column].empty(); ++column) {
        const std::string_view cell = row.fields[column];
        if (form.owners && cell == "ALL") continue;
        check(row, {form.cell, form.words, form.table}, cell);
    }
}

// The value of the last line is looked for at the place of the one above.
void CellCheck::check_places() {
    const std::vector<TableRow>& rows = m_table.rows();
    if (rows.size() < last_form_line) return;
    const TableRow& above = rows[last_form_line - 2];
    const TableRow& last = rows[last_form_line - 1];
    if (above.at('B').empty() || last.at('B').empty()) return;
    const auto place = [](const TableRow& row) { return row.at('B').data() - row.line.text.data(); };
    if (place(above) == place(last)) return;
    m_row = &last;
    say(Rule::odd_boolean, last.at('B'),
        fmt::format("The value is read at column {}, where that of the line above begins.",
                    place(above) + 1));
}

} // namespace

TableNames names_of(const TableFile& table) {
    TableNames names;
    for (const TableRow& row : table.rows()) {
        if (!row.at('A').empty()) names.read.insert(name_of_cell(row.at('A')));
    }
    return names;
}

void check_cells(const TableFile& table, const DescriptionNames& names, Findings& findings) {
    if (table.table() == nullptr) return;
    CellCheck check(table, names, findings);
    if (!table.table()->form) {
        check.check_table();
    } else if (table.table()->prefix.empty()) {
        check.check_form();
    }
}

} // namespace pm::kit
