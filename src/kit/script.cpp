#include "text_reader.h"
#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <pm/kit/edit.h>
#include <pm/kit/error.h>
#include <pm/kit/pattern.h>
#include <pm/kit/stored.h>

namespace pm::kit {

namespace {

constexpr std::array<std::string_view, 4> verbs{"set", "rm", "mv", "cp"}; // in the order of Edit::Verb
constexpr std::string_view loose_word = "loose";

// Whether a path needs no quotes.
bool is_bare(std::string_view path) {
    if (path.empty() || path.front() == '"' || path.front() == '#') return false;
    constexpr std::string_view byte_order_mark = "\uFEFF";
    return path.find(' ') == std::string_view::npos && path.find(byte_order_mark) == std::string_view::npos &&
           printable_text(path) == path;
}

std::string path_word(std::string_view path) {
    return is_bare(path) ? std::string(path) : quoted_text(path);
}

// One line of a script.
class LineReader {
public:
    LineReader(std::string_view text, std::uint64_t line)
        : m_text(text), m_line(line), m_reader(text, line) {}

    // Nothing for a line that holds no edit.
    std::optional<Edit> read() {
        m_reader.require_utf8();
        m_reader.skip_blanks();
        if (m_reader.at_end() || m_reader.peek() == '#') return std::nullopt;
        Edit edit;
        edit.line = m_line;
        edit.verb = take_verb();
        edit.path = take_path("a path is missing");
        if (edit.verb == Edit::Verb::set) {
            edit.value = take_value();
        } else if (edit.verb != Edit::Verb::remove) {
            edit.target = take_path("a target is missing");
            if (!Pattern(edit.target).is_literal()) m_reader.fail("a target is one path, without asterisks");
        }
        m_reader.require_end();
        return edit;
    }

private:
    Edit::Verb take_verb() {
        const std::size_t position = m_reader.position();
        const std::string_view word = m_reader.take_word();
        const auto found = std::ranges::find(verbs, word);
        if (found != verbs.end()) return static_cast<Edit::Verb>(found - verbs.begin());
        m_reader.fail_at(position,
                         fmt::format("{}: a line begins with set, rm, mv or cp", quoted_text(word)));
    }

    std::string take_path(const char* missing) {
        m_reader.skip_blanks();
        if (m_reader.at_end()) m_reader.fail(missing);
        const std::size_t position = m_reader.position();
        std::string path =
            m_reader.peek() == '"' ? m_reader.take_quoted() : std::string(m_reader.take_word());
        if (path.find('\0') != std::string::npos) m_reader.fail_at(position, "a path can't hold a zero");
        if (!m_reader.at_end() && m_reader.peek() != ' ' && m_reader.peek() != '\t') {
            m_reader.fail("a blank belongs behind a path");
        }
        return path;
    }

    // Nothing where the line ends.
    std::optional<Stored> take_value() {
        m_reader.skip_blanks();
        if (m_reader.at_end()) return std::nullopt;
        bool strict = true;
        std::size_t begin = m_reader.position();
        if (m_reader.take_word() == loose_word) {
            strict = false;
            m_reader.skip_blanks();
            begin = m_reader.position();
        }
        try {
            Stored value = parse_value(m_text.substr(begin));
            value.strict = strict;
            m_reader = TextReader(std::string_view(), m_line);
            return value;
        } catch (const Error& e) {
            throw Error(e.what(), m_line, begin + e.column());
        }
    }

    std::string_view m_text;
    std::uint64_t m_line;
    TextReader m_reader;
};

} // namespace

std::vector<Edit> parse_script(std::string_view text) {
    std::vector<Edit> edits;
    for (std::uint64_t line = 1; !text.empty(); ++line) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view content = text.substr(0, end);
        if (content.ends_with('\r')) content.remove_suffix(1);
        if (std::optional<Edit> edit = LineReader(content, line).read()) edits.push_back(std::move(*edit));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return edits;
}

std::string edit_line(const Edit& edit) {
    std::string line = fmt::format("{} {}", verbs[static_cast<std::size_t>(edit.verb)], path_word(edit.path));
    if (!edit.target.empty()) line += ' ' + path_word(edit.target);
    if (edit.value) line += fmt::format(" {}{}", edit.value->strict ? "" : "loose ", value_text(*edit.value));
    return line;
}

std::string script(std::span<const Difference> differences) {
    std::string text;
    for (const Edit& edit : edits_of(differences)) {
        (text += edit_line(edit)) += '\n';
    }
    return text;
}

} // namespace pm::kit
