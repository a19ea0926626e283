#include "rule_example.h"

#include "support/temp_folder.h"
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fmt/format.h>
#include <fstream>
#include <map>
#include <pm/kit/check.h>
#include <pm/pm.h>
#include <sstream>
#include <stdexcept>

namespace pm::kit::test {

namespace fs = std::filesystem;

namespace {

struct Cell {
    std::string kind;
    std::vector<std::string> spans;
};

Cell take_apart(std::string_view example) {
    Cell cell;
    std::size_t at = example.find('`');
    cell.kind = example.substr(0, at);
    while (cell.kind.ends_with(' ')) {
        cell.kind.pop_back();
    }
    while (at != std::string_view::npos) {
        const std::size_t end = example.find('`', at + 1);
        cell.spans.emplace_back(example.substr(at + 1, end - at - 1));
        at = example.find('`', end + 1);
    }
    return cell;
}

std::uint32_t number_in(std::string_view text, int base = 10) {
    std::uint32_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number, base);
    return number;
}

std::string word(std::uint32_t value) {
    std::string bytes;
    for (int byte = 0; byte < 4; ++byte) {
        bytes += static_cast<char>(value >> (8 * byte) & 0xFFU);
    }
    return bytes;
}

std::string joined(const std::vector<std::string>& spans, std::string text) {
    for (std::size_t at = 0; at < spans.size(); ++at) {
        if (at > 0) text += '\n';
        text += unescaped(spans[at]);
    }
    return text;
}

// A line of an example that changes something: its first word, and the rest.
std::pair<std::string, std::string> first_word(const std::string& span) {
    const std::size_t blank = span.find(' ');
    return {span.substr(0, blank), blank == std::string::npos ? std::string() : span.substr(blank + 1)};
}

std::string dpia_of(const std::vector<std::string>& spans) {
    std::uint32_t version = 0x20000;
    std::uint32_t count = 0;
    std::uint32_t longer = 0;
    std::string entries;
    std::string data;
    std::int64_t offset = 0;
    std::optional<std::uint32_t> told;
    for (const std::string& span : spans) {
        const auto [what, rest] = first_word(span);
        if (what == "gap") {
            data.append(number_in(rest), '-');
            offset += number_in(rest);
        } else if (what == "back") {
            offset -= number_in(rest);
        } else if (what == "longer") {
            longer = number_in(rest);
        } else if (what == "end") {
            data.append(number_in(rest), '-');
        } else if (what == "version") {
            version = number_in(rest, 16);
        } else if (what == "count") {
            told = number_in(rest, 16);
        } else {
            const std::size_t colon = span.find(": ");
            const std::string name = unescaped(span.substr(0, colon));
            const std::string body = "PIAFILEVERSION_2.0\n" + unescaped(span.substr(colon + 2)) + "\n";
            const auto size = static_cast<std::uint32_t>(body.size());
            entries += word(static_cast<std::uint32_t>(name.size())) + name + word(0);
            entries += word(static_cast<std::uint32_t>(offset)) + word(size + longer);
            data += body;
            offset += size;
            ++count;
        }
    }
    return word(version) + word(told.value_or(count)) + entries + data;
}

std::string doc_of(const std::vector<std::string>& spans) {
    const pm::test::TempFolder folder;
    const std::string name = (folder.path() / "example.doc").string();
    Tree tree;
    tree.set("\\media\\copies", 2);
    tree.set("\\media\\roll", "A0");
    save(tree, name, {.type = PM_Object::FILE_DOC});
    std::ifstream stream(name, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(stream), {}};
    for (const std::string& span : spans) {
        const auto [what, rest] = first_word(span);
        if (what == "cut") {
            bytes.resize(number_in(rest, 16));
        } else if (what == "end") {
            bytes.append(number_in(rest), '-');
        } else {
            std::size_t at = number_in(what, 16);
            std::istringstream digits(rest);
            for (std::string byte; digits >> byte;) {
                bytes.at(at++) = static_cast<char>(number_in(byte, 16));
            }
        }
    }
    return bytes;
}

// The tables of a description and how many columns their headings name.
const std::map<std::string, std::size_t>& table_widths() {
    static const std::map<std::string, std::size_t> widths{{"Custom Capability", 9},
                                                           {"Dithering Method", 12},
                                                           {"Protocol ", 5},
                                                           {"IO Method", 14},
                                                           {"Media Collating", 3},
                                                           {"Media Cutting", 3},
                                                           {"Media Description", 18},
                                                           {"Media Destination", 10},
                                                           {"Media Folding", 4},
                                                           {"Media Size", 5},
                                                           {"Media Source Entry", 6},
                                                           {"Media Source", 5},
                                                           {"Media Stapling", 5},
                                                           {"Media Type", 5},
                                                           {"Memory Area", 4},
                                                           {"Raster Capability", 2},
                                                           {"Resolution", 10},
                                                           {"Resolution Color Memory", 9},
                                                           {"Misc Non-Localizable Info", 2},
                                                           {"Misc Localizable Information", 2},
                                                           {"Line Type Capabilities", 2}};
    return widths;
}

std::string with_tabs(std::string text) {
    constexpr std::string_view arrow = "\xE2\x86\x92";
    for (std::size_t at = text.find(arrow); at != std::string::npos; at = text.find(arrow)) {
        text.replace(at, arrow.size(), "\t");
    }
    return text;
}

class DescriptionFiles {
public:
    DescriptionFiles() {
        for (const auto& [name, width] : table_widths()) {
            const std::string heading = "heading" + std::string(width - 1, '\t') + "\n";
            m_files[name] = heading + heading;
        }
        m_form.assign(68, "label");
    }
    void take(const std::string& span) {
        const auto [what, rest] = first_word(span);
        if (what == "without") {
            m_files.erase(rest);
        } else if (what == "blank") {
            m_files[rest].clear();
        } else if (what == "form") {
            m_form.at(number_in(rest) - 1) = with_tabs(unescaped(rest.substr(rest.find(": ") + 2)));
        } else {
            add_row(span, what, rest);
        }
    }
    void write(const pm::test::TempFolder& folder) const {
        for (const auto& [name, bytes] : m_files) {
            folder.write(name + ".pdt", name == "Misc Non-Localizable Info" ? form() : bytes);
        }
        folder.write("strings.pdt", m_strings.empty() ? "; none\n" : m_strings);
    }

private:
    void add_row(const std::string& span, const std::string& what, const std::string& rest) {
        const bool marked = what == "bare" || what == "unended";
        const std::string& text = marked ? rest : span;
        const std::size_t colon = text.find(": ");
        const std::string name = text.substr(0, colon);
        std::string row = with_tabs(unescaped(text.substr(colon + 2)));
        if (name == "strings") {
            m_strings += row + (what == "unended" ? "" : "\n");
            return;
        }
        const auto width = table_widths().find(name);
        if (width == table_widths().end()) throw std::invalid_argument(name);
        const auto tabs = static_cast<std::size_t>(std::count(row.begin(), row.end(), '\t'));
        if (what != "bare" && tabs + 1 < width->second) row.append(width->second - tabs - 1, '\t');
        m_files[name] += row + (what == "unended" ? "" : "\n");
    }
    std::string form() const {
        std::string text;
        for (const std::string& line : m_form) {
            text += line + "\n";
        }
        return text;
    }

    std::map<std::string, std::string> m_files;
    std::vector<std::string> m_form;
    std::string m_strings;
};

std::string said(const Diagnostic& each, Severity usual) {
    std::string text;
    if (each.place.file != "file") text += fs::path(each.place.file).filename().string() + " ";
    if (!each.place.section.empty()) text += "[" + each.place.section + "] ";
    if (each.place.line > 0) text += fmt::format("{}:{} ", each.place.line, each.place.column);
    if (each.number != 0) text += fmt::format("{} ", each.number);
    if (each.severity != usual) text += fmt::format("{} ", severity_name(each.severity));
    return text + (each.path.empty() ? "" : each.path + ": ") + each.message;
}

std::vector<Diagnostic> check_as(PM_Object::FileType type, const std::string& content, CheckOptions options) {
    options.type = type;
    return check_content(content, "file", options);
}

std::vector<Diagnostic> check_example(const Cell& cell, CheckOptions options) {
    const std::size_t page = cell.kind.find(" in ");
    const std::string kind = cell.kind.substr(0, page);
    if (page != std::string::npos) options.code_page = number_in(cell.kind.substr(page + 4));
    const auto text = [&](const std::string& head) { return joined(cell.spans, head); };
    if (kind == "PIA") return check_as(PM_Object::FILE_PIA, text("PIAFILEVERSION_2.0\n"), options);
    if (kind == "PIA file") return check_as(PM_Object::FILE_PIA, text(""), options);
    if (kind == "PC2") return check_as(PM_Object::FILE_PC2, text("PC2Version 2.0\n"), options);
    if (kind == "PC2 file") return check_as(PM_Object::FILE_PC2, text(""), options);
    if (kind == "PCP") return check_as(PM_Object::FILE_PCP, text(";Created by Draftex\n"), options);
    if (kind == "PCP file") return check_as(PM_Object::FILE_PCP, text(""), options);
    if (kind == "CFG") return check_as(PM_Object::FILE_CFG, text(""), options);
    if (kind == "DPIA") return check_as(PM_Object::FILE_DPIA, dpia_of(cell.spans), options);
    if (kind == "DOC") return check_as(PM_Object::FILE_DOC, doc_of(cell.spans), options);
    if (kind.starts_with("table ")) return check_content(text(""), kind.substr(6) + ".pdt", options);
    if (kind == "any") return check_content(text(""), "file", options);
    if (kind == "no file") return check_file("there/is/no/such/file", options);
    if (kind != "PDT") throw std::invalid_argument(kind);
    DescriptionFiles description;
    for (const std::string& span : cell.spans) {
        description.take(span);
    }
    const pm::test::TempFolder folder;
    description.write(folder);
    return check_file(folder.path().string(), options);
}

} // namespace

std::string unescaped(std::string_view text) {
    const std::map<char, char> simple{{'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'0', '\0'}, {'\\', '\\'}};
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            out += text[at];
        } else if (text[++at] == 'x') {
            out += static_cast<char>(number_in(text.substr(at + 1, 2), 16));
            at += 2;
        } else {
            out += simple.at(text[at]);
        }
    }
    return out;
}

std::vector<std::string> run_example(std::string_view rule, std::string_view example) {
    const CheckRule* const known = find_check_rule(rule);
    if (known == nullptr) throw std::invalid_argument(std::string(rule));
    CheckOptions options;
    options.rules = {std::string(rule)};
    options.round_trip = rule == "round-trip";
    std::vector<std::string> lines;
    for (const Diagnostic& each : check_example(take_apart(example), options)) {
        lines.push_back(said(each, known->severity));
    }
    return lines;
}

} // namespace pm::kit::test
