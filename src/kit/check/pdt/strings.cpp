#include "check/pdt/strings.h"

#include "check/encoding.h"
#include "check/numbers.h"
#include <algorithm>
#include <fmt/format.h>

namespace pm::kit {

namespace {

constexpr std::size_t longest_line = 2047; // bytes
constexpr std::size_t longest_text = 255;  // characters
constexpr std::string_view key_start = "DRFX_";

std::string key_of(const Table& table, char column, std::uint64_t line) {
    return fmt::format("{}{}{}", table.prefix, column, line);
}

} // namespace

StringFile::StringFile(std::string_view content, const NarrowText& narrow, const Place& where)
    : m_source(content, narrow, where) {}

void StringFile::check(Findings& findings) {
    check_table_bytes(m_source, longest_line, findings);
    check_encoding(m_source.content(), m_source.narrow(), m_source.where(), 1, findings);
    SourceLine line;
    while (m_source.next_line(line)) {
        if (skip(line.text, " ").starts_with(key_start)) take_line(line, findings);
    }
}

void StringFile::take_line(const SourceLine& line, Findings& findings) {
    if (!line.ended) {
        findings.add(
            {Rule::unread_line, m_source.place(line), "The last line has no line feed and isn't read."});
        return;
    }
    const std::string_view text = skip(line.text, " ");
    const std::size_t quote = text.find('"');
    const std::size_t end = quote == std::string_view::npos ? quote : text.find('"', quote + 1);
    if (end == std::string_view::npos) {
        findings.add({Rule::bad_line, m_source.place(line, text.data()),
                      "The line has a key and no text in double quotes, and isn't read."});
        return;
    }
    check_text(line, text.substr(quote + 1, end - quote - 1), skip(text.substr(end + 1), " \t\r"), findings);
    take_key(line, cut_end(text.substr(0, quote), " "), findings);
}

void StringFile::check_text(const SourceLine& line, std::string_view text, std::string_view behind,
                            Findings& findings) {
    if (m_source.is_longer(text, longest_text)) {
        findings.add({Rule::cut_text, m_source.place(line, text.data()),
                      fmt::format("The text has {} characters, and {} are used.", m_source.units(text),
                                  longest_text)});
    }
    if (behind.empty()) return;
    findings.add({Rule::ignored_text, m_source.place(line, behind.data()),
                  fmt::format("{} behind the text isn't read.", m_source.quoted(behind))});
}

void StringFile::take_key(const SourceLine& line, std::string_view key, Findings& findings) {
    const Place place = m_source.place(line, key.data());
    const auto [known, is_new] = m_texts.try_emplace(std::string(key), Text{place});
    if (is_new) {
        m_order.emplace_back(key);
        return;
    }
    findings.add({Rule::repeated_name, place,
                  fmt::format("{} stands on line {} already, and that text is lost.", m_source.quoted(key),
                              known->second.place.line)});
    known->second.place = place;
}

bool StringFile::use(const std::string& key) {
    const auto found = m_texts.find(key);
    if (found == m_texts.end()) return false;
    found->second.used = true;
    return true;
}

// A row without a text of its own has that of the row above which has one. That is meant where the cells
// agree.
void StringFile::check_texts(const TableFile& table, Findings& findings) {
    const Table& kind = *table.table();
    if (kind.prefix.empty()) return;
    if (kind.form) return check_form_texts(table, findings);
    const TableRow* last = nullptr;
    bool first = true;
    for (const TableRow& row : table.rows()) {
        const bool named = !row.at('A').empty();
        const std::string key = key_of(kind, kind.text, row.line.number);
        const bool found = (named || first) && use(key);
        if (named) first = false;
        if (found) last = &row;
        if (!named || found) continue;
        const std::string_view cell = row.at(kind.text);
        if (last != nullptr && (cell.empty() || cell == last->at(kind.text))) continue;
        findings.add({Rule::missing_translation, table.source().place(row.line),
                      last == nullptr
                          ? fmt::format("\"{}\" isn't in the string file, and no row above has a text.", key)
                          : fmt::format("\"{}\" isn't in the string file, and the text of line {} is shown.",
                                        key, last->line.number)});
    }
}

// Its keys count the lines that have a value.
void StringFile::check_form_texts(const TableFile& table, Findings& findings) {
    const std::vector<TableRow>& rows = table.rows();
    std::uint64_t next = 3;
    for (std::size_t line = 3; line <= std::min<std::size_t>(5, rows.size()); ++line) {
        const TableRow& row = rows[line - 1];
        if (row.at('B').empty()) continue;
        const std::string key = key_of(*table.table(), 'B', next++);
        if (use(key)) continue;
        findings.add({Rule::missing_translation, table.source().place(row.line),
                      fmt::format("\"{}\" isn't in the string file.", key)});
    }
}

void StringFile::check_unused(Findings& findings) const {
    for (const std::string& key : m_order) {
        const Text& text = m_texts.at(key);
        if (text.used) continue;
        findings.add(
            {Rule::unused_translation, text.place, fmt::format("{} belongs to no cell.", in_quotes(key))});
    }
}

} // namespace pm::kit
