#include "check/pc2_check.h"

#include "check/encoding.h"
#include "check/legacy_line.h"
#include "check/library_load.h"
#include "check/numbers.h"
#include "check/pc2_keys.h"
#include <cstdlib>
#include <fmt/format.h>
#include <map>
#include <memory>
#include <pm/error_number.h>
#include <pm/value_text.h>
#include <set>

namespace pm::kit {

namespace {

constexpr std::string_view version_start = "PC2Version";
constexpr std::size_t longest_section = 512;

std::string_view unquoted(std::string_view value) {
    if (value.size() >= 2 && value.starts_with('"') && value.ends_with('"')) {
        return value.substr(1, value.size() - 2);
    }
    return value;
}

// The section that a name of a CFG file stands for in its plotter.
struct SectionName {
    std::string section;
    std::optional<std::int32_t> plotter;
};

SectionName section_of(std::string_view name, bool of_plotters) {
    const std::size_t mark = of_plotters ? name.find('#') : std::string_view::npos;
    if (mark == std::string_view::npos) return {std::string(name), std::nullopt};
    std::string section(name.substr(0, mark));
    const std::size_t slash = name.find('/');
    if (slash != std::string_view::npos) section += name.substr(slash);
    return {section, read_integer(name.substr(mark + 1), Signs::both).value};
}

// The lines of a PC2 file behind its version line, or of a CFG file.
class KeyLines {
public:
    KeyLines(SourceText& source, bool of_plotters, Findings& findings)
        : m_source(source), m_of_plotters(of_plotters), m_findings(findings) {}

    // The keys of other plotters aren't looked at.
    void only(std::int32_t plotter) { m_only = plotter; }
    void take_line(const LegacyLine& line);
    // What the library is to see: of a CFG file one plotter that has all sections.
    [[nodiscard]] const std::string& shown_to_library() const { return m_shown; }
    [[nodiscard]] const std::set<std::int32_t>& plotters() const { return m_plotters; }

private:
    void section_line(std::string_view text);
    void key_line(std::string_view text, std::size_t equals);
    void check_key(std::string_view written, const Pc2Keys::Key& key);
    void check_repeated(std::string_view written);
    // Whether the value is one, and is stored.
    [[nodiscard]] bool check_value(std::string_view value, const Pc2Keys::Key& key);
    [[nodiscard]] bool check_integer(std::string_view value, bool hexadecimal);
    void check_read_integer(std::string_view value, const IntegerText& number, bool hexadecimal);
    [[nodiscard]] bool check_number(std::string_view value);
    [[nodiscard]] bool check_raw(std::string_view value);
    [[nodiscard]] std::string quoted(std::string_view part) const { return m_source.quoted(part); }
    void say(Rule rule, std::string_view part, std::string message, std::uint32_t number = 0,
             std::optional<Severity> severity = {}) {
        Place place = m_source.place(m_line, part.data());
        if (m_plotter) place.section = std::to_string(*m_plotter);
        m_findings.add({rule, std::move(place), std::move(message), m_path, number, severity});
    }

    SourceText& m_source;
    bool m_of_plotters;
    Findings& m_findings;
    std::optional<std::int32_t> m_only;
    SourceLine m_line;
    std::string m_path;
    std::string m_written;                  // the section as the file has it, without a plotter
    const std::string* m_section = nullptr; // as the tables have it
    std::optional<std::int32_t> m_plotter;
    bool m_any_section = false;
    std::set<std::int32_t> m_plotters;
    std::map<std::tuple<std::optional<std::int32_t>, std::string, std::string>, std::uint64_t> m_set;
    std::string m_shown;
    std::string m_instead; // of the line, if the library isn't to see it
};

void KeyLines::take_line(const LegacyLine& line) {
    m_line = line.line;
    m_path.clear();
    m_instead = line.too_long ? ";" : std::string();
    if (!line.too_long && !line.is_idle()) {
        const std::size_t equals = line.text.find('=');
        if (equals != std::string_view::npos) {
            key_line(line.text, equals);
        } else if (line.text.find('[') != std::string_view::npos) {
            section_line(line.text);
        } else {
            say(Rule::bad_line, line.text,
                fmt::format("{} is no key, no section and no comment.", quoted(line.text)), PM_ERR_BAD_LINE);
        }
    }
    const auto offset = static_cast<std::size_t>(m_line.text.data() - m_source.text().data());
    m_shown += m_instead.empty() ? m_source.content().substr(offset, m_line.text.size())
                                 : std::string_view(m_instead);
    if (m_line.ended) m_shown += '\n';
}

void KeyLines::section_line(std::string_view text) {
    const std::string_view rest = text.substr(1);
    const std::string_view name = rest.substr(0, rest.find(']'));
    if (name.empty() || m_source.is_longer(name, longest_section)) {
        return say(Rule::bad_line, text,
                   name.empty() ? "The section has no name." : "The name of the section is too long.",
                   PM_ERR_BAD_LINE);
    }
    if (text.front() != '[') {
        say(Rule::odd_name, text,
            fmt::format("The name of the section is {}: it begins with the second character.", quoted(name)));
    }
    const std::string_view behind = skip(rest.substr(std::min(name.size() + 1, rest.size())), " \t");
    if (!behind.empty()) {
        say(Rule::ignored_text, behind, fmt::format("{} behind the section isn't read.", quoted(behind)));
    }
    m_any_section = true;
    SectionName section = section_of(name, m_of_plotters);
    m_plotter = section.plotter;
    if (m_plotter) m_plotters.insert(*m_plotter);
    m_written = std::move(section.section);
    m_section = Pc2Keys::all().find_section(m_written);
    if (m_plotter) m_instead = '[' + (m_written.empty() ? std::string("#") : m_written) + ']';
    if (m_section == nullptr) {
        say(Rule::unknown_section, name,
            fmt::format("{} is no section, and its keys aren't read.", quoted(name)));
    } else if (*m_section != m_written) {
        say(Rule::odd_name, name,
            fmt::format("{} isn't spelled \"{}\", and is another node.", quoted(name), *m_section));
    }
}

void KeyLines::key_line(std::string_view text, std::size_t equals) {
    const std::string_view written = text.substr(0, equals);
    if (m_only && m_plotter && *m_plotter != *m_only) {
        m_instead = ";";
        return;
    }
    if (!m_any_section) {
        return say(Rule::unknown_key, text,
                   fmt::format("{} stands in front of the first section and isn't read.", quoted(written)));
    }
    if (m_section == nullptr) return;
    const Pc2Keys::Key* const key = Pc2Keys::all().find(*m_section, written);
    if (key == nullptr) {
        return say(Rule::unknown_key, text,
                   fmt::format("{} is no key of \"{}\" and isn't read.", quoted(written), *m_section));
    }
    m_path = '\\' + m_written + '\\' + m_source.utf8(written);
    const bool hexadecimal = key->hexadecimal && !m_of_plotters;
    if (key->hexadecimal && m_of_plotters) m_instead = ";";
    const std::string_view value = skip(text.substr(equals), " =");
    if (value.empty()) return say(Rule::bad_line, text, "The key has no value.", PM_ERR_BAD_LINE);
    check_key(written, *key);
    Pc2Keys::Key read = *key;
    read.hexadecimal = hexadecimal;
    if (check_value(value, read)) check_repeated(written);
}

void KeyLines::check_key(std::string_view written, const Pc2Keys::Key& key) {
    if (key.numbered) {
        say(Rule::odd_name, written, fmt::format("{} has a number that no default has.", quoted(written)), 0,
            Severity::note);
    } else if (written != key.name) {
        say(Rule::odd_name, written,
            fmt::format("{} isn't spelled \"{}\", and is another property.", quoted(written), key.name));
    }
}

void KeyLines::check_repeated(std::string_view written) {
    const auto [known, is_new] =
        m_set.try_emplace({m_plotter, m_written, std::string(written)}, m_line.number);
    if (is_new) return;
    say(Rule::repeated_name, written,
        fmt::format("{} is set on line {} already, and that value is lost.", quoted(written), known->second));
    known->second = m_line.number;
}

bool KeyLines::check_value(std::string_view value, const Pc2Keys::Key& key) {
    switch (key.type) {
    case PROP_LONG:
        return check_integer(value, key.hexadecimal);
    case PROP_DOUBLE:
        return check_number(value);
    case PROP_VOID:
        return check_raw(value);
    default:
        return true;
    }
}

bool KeyLines::check_integer(std::string_view value, bool hexadecimal) {
    const IntegerText number =
        read_integer(value, Signs::both, hexadecimal ? Base::hexadecimal : Base::by_prefix);
    if (number.length == 0) {
        say(Rule::bad_line, value,
            fmt::format("{} is no {} number.", quoted(value), hexadecimal ? "hexadecimal" : "whole"),
            hexadecimal ? PM_ERR_NOT_HEXADECIMAL : PM_ERR_BAD_LINE);
        return false;
    }
    check_read_integer(value, number, hexadecimal);
    return true;
}

void KeyLines::check_read_integer(std::string_view value, const IntegerText& number, bool hexadecimal) {
    if (!skip(value.substr(number.length), " \t\r").empty()) {
        return say(Rule::partial_number, value, fmt::format("{} reads as {}.", quoted(value), number.value));
    }
    if (number.held) {
        return say(Rule::lossy_value, value,
                   fmt::format("{} is beyond 32 bits and reads as {}.", quoted(value), number.value));
    }
    const std::string_view digits = skip(value, "+- \t");
    if (hexadecimal || digits.size() < 2 || digits.front() != '0' || lower(digits[1]) == 'x') return;
    say(Rule::lossy_value, value, fmt::format("{} is octal and reads as {}.", quoted(value), number.value), 0,
        Severity::note);
}

bool KeyLines::check_number(std::string_view value) {
    const std::optional<ExactForm> exact = exact_form(value);
    if (exact && exact->bits_count) return true;
    const std::string_view text = exact ? exact->number : value;
    const DecimalText number = read_decimal(text, Signs::both);
    if (number.length == 0 || number.length != text.size()) {
        say(Rule::bad_line, value, fmt::format("{} is no number.", quoted(value)), PM_ERR_BAD_LINE);
        return false;
    }
    if (exact) {
        say(Rule::stale_bits, value.substr(text.size() + 1),
            fmt::format("The bits aren't those of {}, which counts.", m_source.utf8(text)));
    }
    const std::optional<std::string> loss = decimal_loss(text, number.value);
    if (loss) say(Rule::lossy_value, value, fmt::format("{} {}.", quoted(text), *loss));
    return true;
}

bool KeyLines::check_raw(std::string_view value) {
    const std::string_view text = unquoted(value);
    char* bytes = nullptr;
    unsigned size = 0;
    const std::u16string wide = m_source.narrow().decode(text);
    if (stringtobinary(wide.c_str(), &bytes, &size) != 0) {
        std::free(bytes);
        return true;
    }
    say(Rule::bad_line, value, fmt::format("{} is no raw data, or its check value is wrong.", quoted(value)),
        PM_ERR_BAD_LINE);
    return false;
}

std::vector<std::uint64_t> lines_from(std::uint64_t first, std::uint64_t last) {
    std::vector<std::uint64_t> lines;
    for (std::uint64_t line = first; line <= last; ++line) {
        lines.push_back(line);
    }
    return lines;
}

// The first line that is neither empty nor a comment.
void check_version_line(SourceText& source, LegacyLine& line, Findings& findings) {
    while (next_legacy_line(source, line, findings)) {
        if (line.is_idle() && !line.too_long) continue;
        if (line.too_long || line.text.starts_with(version_start)) return;
        findings.add({.rule = Rule::bad_header,
                      .place = source.place(line.line, line.text.data()),
                      .message = fmt::format("{} is no version line.", source.quoted(line.text)),
                      .number = PM_ERR_UNKNOWN_VERSION});
        return;
    }
    findings.add({.rule = Rule::bad_header,
                  .place = source.where(),
                  .message = "There is no version line.",
                  .number = PM_ERR_BAD_LINE});
}

bool is_whole_number(std::string_view text) {
    return read_integer(text, Signs::both).length == text.size();
}

void say_missing_plotter(const std::string& plotter, const std::set<std::int32_t>& plotters,
                         const Place& where, Findings& findings) {
    const std::string message =
        is_whole_number(plotter)
            ? fmt::format("There is no plotter {}; there are: {}.", plotter,
                          plotters.empty() ? "none" : fmt::format("{}", fmt::join(plotters, ", ")))
            : fmt::format("A plotter is told by its number, not by {}.", in_quotes(plotter));
    findings.add({.rule = Rule::unreadable,
                  .place = {.file = where.file, .section = plotter},
                  .message = message,
                  .number = PM_ERR_NO_SUCH_SECTION});
}

} // namespace

void check_pc2(std::string_view content, const NarrowText& narrow, const Place& where, Findings& findings) {
    const std::size_t first = findings.count();
    check_encoding(content, narrow, where, 1, findings);
    SourceText source(content, narrow, where);
    LegacyLine line;
    check_version_line(source, line, findings);
    const std::uint64_t version = line.line.number;
    KeyLines lines(source, false, findings);
    while (next_legacy_line(source, line, findings)) {
        lines.take_line(line);
    }
    const std::string shown = std::string(version_start) + '\n' + lines.shown_to_library();
    add_unfound(hear(shown, PM_Object::FILE_PC2), lines_from(version + 1, line.line.number), where, first,
                findings);
    findings.sort_from(first);
}

void check_cfg(std::string_view content, const NarrowText& narrow, const std::string& plotter,
               const Place& where, Findings& findings) {
    const std::size_t first = findings.count();
    check_encoding(content, narrow, where, 1, findings);
    SourceText source(content, narrow, where);
    KeyLines lines(source, true, findings);
    const std::int32_t wanted = read_integer(plotter, Signs::both).value;
    if (!plotter.empty()) lines.only(wanted);
    LegacyLine line;
    while (next_legacy_line(source, line, findings)) {
        lines.take_line(line);
    }
    const bool is_there = is_whole_number(plotter) && lines.plotters().contains(wanted);
    if (!plotter.empty() && !is_there) say_missing_plotter(plotter, lines.plotters(), where, findings);
    const std::string shown = std::string(version_start) + '\n' + lines.shown_to_library();
    add_unfound(hear(shown, PM_Object::FILE_PC2), lines_from(1, line.line.number), where, first, findings);
    findings.sort_from(first);
}

} // namespace pm::kit
