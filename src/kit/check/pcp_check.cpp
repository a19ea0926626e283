#include "check/pcp_check.h"

#include "check/encoding.h"
#include "check/legacy_line.h"
#include "check/library_load.h"
#include "check/numbers.h"
#include <algorithm>
#include <fmt/format.h>
#include <future>
#include <map>
#include <pm/error_number.h>
#include <set>

namespace pm::kit {

namespace {

constexpr std::string_view marker = ";Created by Draftex";

enum class Takes { number, integer, text, pen_number, pen_integer, pen_weight, own, begin, end };

struct Keyword {
    std::string_view name;
    Takes takes;
    std::string_view what; // that a value has to be
};

constexpr Keyword keywords[] = {
    {"VERSION", Takes::number, "a number with a point"},
    {"PEN_WIDTH", Takes::number, "a number with a point"},
    {"ROTATE", Takes::integer, "a whole number"},
    {"OPTIMIZE_LEVEL", Takes::integer, "a whole number"},
    {"PLOT_FILE", Takes::text, "a text that begins with a letter"},
    {"UNITS", Takes::own, "\"I\" or \"M\""},
    {"HIDE", Takes::own, "\"Y\" or \"N\""},
    {"FILL_ADJUST", Takes::own, "\"Y\" or \"N\""},
    {"ORIGIN", Takes::own, "two numbers with a point and a comma between"},
    {"SIZE", Takes::own, "a text, or a name, a colon, one blank and two numbers with a comma between"},
    {"SCALE", Takes::own, "\"F\", or two numbers with \"=\" between"},
    {"BEGIN_COLOR", Takes::begin, "a whole number or \"DEFAULT\""},
    {"END_COLOR", Takes::end, "nothing"},
    {"PEN_NUMBER", Takes::pen_number, "a whole number"},
    {"HW_LINETYPE", Takes::pen_integer, "a whole number"},
    {"PEN_SPEED", Takes::pen_integer, "a whole number"},
    {"PEN_WEIGHT", Takes::pen_weight, "a number with a point"},
};

bool is_of_pens(const Keyword& keyword) {
    return keyword.takes == Takes::pen_number || keyword.takes == Takes::pen_integer ||
           keyword.takes == Takes::pen_weight;
}

const Keyword* find_keyword(std::string_view name) {
    const auto* found = std::find_if(std::begin(keywords), std::end(keywords), [&](const Keyword& each) {
        return equals_ignoring_case(each.name, name);
    });
    return found != std::end(keywords) ? found : nullptr;
}

// Whether a line that was taken sets two numbers, and the node below the keyword that they have to
// themselves.
struct PairText {
    bool is_one = false;
    std::string_view node;
};

PairText pair_in(std::string_view text, std::string_view name) {
    const std::string_view value = skip(text.substr(text.find('=')), " =\t");
    if (equals_ignoring_case(name, "SIZE")) {
        const std::size_t colon = value.find(':');
        return colon == std::string_view::npos ? PairText{} : PairText{true, value.substr(0, colon)};
    }
    if (equals_ignoring_case(name, "SCALE")) return {!equals_ignoring_case(skip(value, "_ =\t"), "F"), {}};
    return {equals_ignoring_case(name, "ORIGIN"), {}};
}

// A default block that a file leaves open stays with the thread that loads, so this one has a thread of its
// own.
std::vector<Heard> hear_apart(std::string_view content) {
    return std::async(std::launch::async, [&] { return hear(content, PM_Object::FILE_PCP); }).get();
}

class PcpLines {
public:
    PcpLines(SourceText& source, Findings& findings, const std::set<std::uint64_t>& refused)
        : m_source(source), m_findings(findings), m_refused(refused) {}

    void take_line(const LegacyLine& line);
    void check_unclosed();
    // A file without a line is taken, even if nothing marks it.
    void check_marker();

private:
    struct Block {
        SourceLine line;
        std::string_view at; // in it
        std::string name;
        bool is_default = false;
    };
    void keyword_line(std::string_view text);
    void check_refused(std::string_view text, std::string_view name, const Keyword* keyword);
    void begin_block(std::string_view text);
    void end_block(std::string_view text);
    void check_value(std::string_view text, std::string_view name, const Keyword& keyword);
    void check_plain(std::string_view value, const Keyword& keyword);
    void check_pen(std::string_view value, const Keyword& keyword);
    void check_repeated(std::string_view text, std::string_view name);
    [[nodiscard]] bool in_default() const { return !m_open.empty() && m_open.back().is_default; }
    [[nodiscard]] std::string path_of(std::string_view name, const Keyword& keyword) const;
    [[nodiscard]] std::string quoted(std::string_view part) const { return m_source.quoted(part); }
    void say(Rule rule, std::string_view part, std::string message, std::uint32_t number = 0,
             std::optional<Severity> severity = {}) {
        m_findings.add(
            {rule, m_source.place(m_line, part.data()), std::move(message), m_path, number, severity});
    }

    SourceText& m_source;
    Findings& m_findings;
    const std::set<std::uint64_t>& m_refused; // lines that the library told as number 57
    SourceLine m_line;
    std::string m_path;
    bool m_marked = false;
    bool m_refused_any = false; // for want of the marker
    bool m_lost = false;        // nothing is left of the base
    std::vector<Block> m_open;
    std::map<std::string, std::uint64_t> m_properties; // the line of each that is set
    std::map<std::string, std::uint64_t> m_pairs;      // of two numbers, by the node that holds them
};

void PcpLines::take_line(const LegacyLine& line) {
    m_line = line.line;
    m_path.clear();
    if (line.too_long || line.text.empty()) return;
    if (line.text.front() == ';') {
        m_marked = m_marked || starts_ignoring_case(line.text, marker);
    } else if (m_marked) {
        keyword_line(line.text);
    } else {
        m_refused_any = true;
        say(Rule::bad_header, line.text,
            "The line stands in front of \";Created by Draftex\" and isn't read.", PM_ERR_UNKNOWN_VERSION);
    }
}

void PcpLines::keyword_line(std::string_view text) {
    const bool equals = text.find('=') != std::string_view::npos;
    const std::string_view name = equals ? text.substr(0, text.find_first_of(" =")) : text;
    const Keyword* const keyword = find_keyword(name);
    if (m_refused.contains(m_line.number)) return check_refused(text, name, keyword);
    if (keyword == nullptr) return;
    if (keyword->takes == Takes::end) return end_block(text);
    m_path = path_of(name, *keyword);
    if (!equals) {
        return say(Rule::missing_equals, text,
                   "The line has no \"=\", and its value is looked for within the keyword.");
    }
    if (keyword->takes == Takes::begin) return begin_block(text);
    check_value(text, name, *keyword);
    check_repeated(text, name);
}

void PcpLines::check_refused(std::string_view text, std::string_view name, const Keyword* keyword) {
    if (name.empty()) return say(Rule::bad_line, text, "The line has no keyword.", PM_ERR_BAD_LINE);
    if (keyword == nullptr) {
        return say(Rule::unknown_key, text, fmt::format("{} is no keyword and isn't read.", quoted(name)),
                   PM_ERR_BAD_LINE, Severity::error);
    }
    m_path = path_of(name, *keyword);
    if (m_lost) {
        return say(Rule::bad_line, text, "An END_COLOR in front closed nothing, and values have no place.",
                   PM_ERR_BAD_LINE);
    }
    say(Rule::bad_line, text, fmt::format("{} takes {}.", quoted(name), keyword->what), PM_ERR_BAD_LINE);
}

void PcpLines::begin_block(std::string_view text) {
    if (in_default()) {
        return say(Rule::unclosed_block, text, "A block within the default block isn't opened.");
    }
    const std::string_view value = skip(text.substr(text.find('=')), " =\t");
    m_open.push_back({m_line, text, m_source.utf8(value), equals_ignoring_case(value, "DEFAULT")});
}

void PcpLines::end_block(std::string_view text) {
    m_lost = m_lost || m_open.empty();
    if (m_open.empty()) return say(Rule::unopened_block, text, "The END_COLOR closes no block.");
    m_open.pop_back();
}

void PcpLines::check_unclosed() {
    m_path.clear();
    for (const Block& block : m_open) {
        m_line = block.line;
        say(Rule::unclosed_block, block.at,
            fmt::format("The block of {} isn't closed.", in_quotes(block.name)));
    }
}

void PcpLines::check_marker() {
    if (m_marked || m_refused_any) return;
    m_findings.add({.rule = Rule::bad_header,
                    .place = m_source.where(),
                    .message = "There is no line \";Created by Draftex\".",
                    .severity = Severity::warning});
}

void PcpLines::check_value(std::string_view text, std::string_view name, const Keyword& keyword) {
    if (is_of_pens(keyword) && in_default()) {
        check_pen(skip(text.substr(text.find('=')), " =\t"), keyword);
    } else {
        check_plain(skip(text.substr(name.size()), " =_"), keyword);
    }
}

// A value that was taken: digits, perhaps none.
void PcpLines::check_plain(std::string_view value, const Keyword& keyword) {
    const bool integer = keyword.takes == Takes::integer || keyword.takes == Takes::pen_integer ||
                         keyword.takes == Takes::pen_number;
    const bool real = keyword.takes == Takes::number || keyword.takes == Takes::pen_weight;
    if (!integer && !real) return;
    if (std::none_of(value.begin(), value.end(), is_digit)) {
        return say(Rule::partial_number, value,
                   fmt::format("{} has no number and reads as 0.", quoted(value)));
    }
    if (integer) {
        const IntegerText number = read_integer(value, Signs::minus);
        if (number.held) {
            say(Rule::lossy_value, value,
                fmt::format("{} is beyond 32 bits and reads as {}.", quoted(value), number.value));
        }
        return;
    }
    const std::optional<std::string> loss = decimal_loss(value, read_decimal(value, Signs::minus).value);
    if (loss) say(Rule::lossy_value, value, fmt::format("{} {}.", quoted(value), *loss));
}

// In the default block the number at the start of a value counts.
void PcpLines::check_pen(std::string_view value, const Keyword& keyword) {
    if (keyword.takes == Takes::pen_number && (value == "*" || value == "MOD16")) return;
    const bool real = keyword.takes == Takes::pen_weight;
    const IntegerText integer = read_integer(value, Signs::both);
    const DecimalText decimal = read_decimal(value, Signs::both);
    const std::size_t length = real ? decimal.length : integer.length;
    if (length == value.size()) return;
    const std::string read = real ? fmt::format("{}", decimal.value) : fmt::format("{}", integer.value);
    say(Rule::partial_number, value,
        fmt::format("{} reads as {} in the default block.", quoted(value), read));
}

// A size and a scale are a text or two numbers, which stand beside each other; each size has a node of its
// own.
void PcpLines::check_repeated(std::string_view text, std::string_view name) {
    const PairText pair = pair_in(text, name);
    if (!pair.node.empty()) m_path += '\\' + m_source.utf8(pair.node);
    const auto [known, is_new] = (pair.is_one ? m_pairs : m_properties).try_emplace(m_path, m_line.number);
    if (is_new) return;
    say(Rule::repeated_name, name,
        fmt::format("{} is set on line {} already, and that value is lost.", quoted(name), known->second));
    known->second = m_line.number;
}

// What has no meaning of its own in the default block lands beside it.
std::string PcpLines::path_of(std::string_view name, const Keyword& keyword) const {
    const bool is_of_default = is_of_pens(keyword) || keyword.takes == Takes::begin;
    std::string path;
    for (const Block& block : m_open) {
        if (!block.is_default || is_of_default) path += '\\' + block.name;
    }
    return path + '\\' + m_source.utf8(name);
}

} // namespace

void check_pcp(std::string_view content, const NarrowText& narrow, const Place& where, Findings& findings) {
    const std::size_t first = findings.count();
    check_encoding(content, narrow, where, 1, findings);
    const std::vector<Heard> heard = hear_apart(content);
    std::set<std::uint64_t> refused;
    for (const Heard& each : heard) {
        if (each.number == PM_ERR_BAD_LINE) refused.insert(each.counted);
    }
    SourceText source(content, narrow, where);
    PcpLines lines(source, findings, refused);
    std::vector<std::uint64_t> numbers;
    LegacyLine line;
    while (next_legacy_line(source, line, findings)) {
        lines.take_line(line);
        numbers.push_back(line.line.number);
    }
    lines.check_unclosed();
    lines.check_marker();
    add_unfound(heard, numbers, where, first, findings);
    findings.sort_from(first);
}

} // namespace pm::kit
