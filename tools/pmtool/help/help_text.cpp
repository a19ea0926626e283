#include "help/help_text.h"

#include "help/words.h"
#include "text.h"
#include <algorithm>
#include <fmt/format.h>

namespace pmtool {

namespace {

constexpr std::size_t line_width = 80;
constexpr std::size_t term_width = 24; // of what stands in front of a description

constexpr std::string_view description =
    "Shows, changes, converts and checks the files of the property manager.";

constexpr std::string_view common_text =
    R"(Formats are told from the content of an input and from the extension of an output. "-" is standard input or output. A path such as '\media\copies' names nodes and, last, a property; its first backslash may be left out.

Exit codes: 0 done, 1 the answer is no (bad lines, trees that differ, nothing found), 2 trouble, told on standard error.

A value that begins with "-" stands behind "--".)";

constexpr std::string_view common_examples = R"(
pmtool tree plotter.pia                         show the whole tree
pmtool get plotter.pia '\media\default_size'    print one value
pmtool set plotter.pia '\media\copies' 2        change one value
pmtool diff old.pia new.pia                     what has changed
pmtool convert plotter.pia small.pia --compress
pmtool check pens.pcp                           list all that is wrong
pmtool extract all.dpia Office -o office.pia
)";

// Words from `column` on, each line indented by `indent`.
void append_wrapped(std::string& out, std::string_view text, std::size_t column, std::size_t indent) {
    bool first = true;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (!first && column + 1 + word.size() > line_width) {
            out += '\n';
            out.append(indent, ' ');
            column = indent;
            first = true;
        }
        if (!first) {
            out += ' ';
            ++column;
        }
        out += word;
        column += word.size();
        first = false;
    }
    out += '\n';
}

void append_text(std::string& out, std::string_view text) {
    for (const std::string& paragraph : paragraphs(text)) {
        const bool is_line = paragraph.front() == ' ';
        if (!is_line && !out.ends_with("\n\n")) out += '\n';
        if (is_line) {
            out += paragraph + '\n';
        } else {
            append_wrapped(out, paragraph, 0, 0);
        }
    }
}

void append_term(std::string& out, const std::string& term, std::string_view text) {
    const std::string start = "  " + term;
    out += start;
    if (text.empty()) {
        out += '\n';
        return;
    }
    if (start.size() + 2 > term_width) {
        out += '\n';
        out.append(term_width, ' ');
    } else {
        out.append(term_width - start.size(), ' ');
    }
    append_wrapped(out, text, term_width, term_width);
}

void append_options(std::string& out, const std::vector<OptionWords>& options, bool arguments) {
    std::string part;
    for (const OptionWords& option : options) {
        if (option.is_argument() == arguments) append_term(part, option.term(), option.description);
    }
    if (!part.empty()) out += (arguments ? "\nArguments:\n" : "\nOptions:\n") + part;
}

void append_examples(std::string& out, std::string_view text) {
    const std::vector<Example> examples = examples_of(text);
    if (examples.empty()) return;
    std::size_t width = 0;
    for (const Example& example : examples) {
        width = std::max(width, example.command.size());
    }
    out += "\nExamples:\n";
    for (const Example& example : examples) {
        const std::string line = fmt::format("  {:{}}  {}", example.command, width, example.text);
        if (example.text.empty()) {
            out += "  " + example.command + '\n';
        } else if (line.size() <= line_width) {
            out += line + '\n';
        } else {
            out += "  " + example.command + "\n      ";
            append_wrapped(out, example.text, 6, 6);
        }
    }
}

} // namespace

std::string help_text(const Commands& commands) {
    std::string out = "Usage: pmtool [OPTIONS] VERB ...\n\n";
    append_wrapped(out, description, 0, 0);
    for (const VerbGroup& group : verb_groups) {
        out += fmt::format("\n{}:\n", group.title);
        for (const auto& entry : commands.all()) {
            const Verb& verb = entry->verb;
            if (verb.group == group.name) append_term(out, std::string(verb.name), verb.summary);
        }
    }
    append_options(out, commands.common_options(), false);
    append_text(out, common_text);
    append_examples(out, common_examples);
    out += "\n\"pmtool help VERB\" tells more about a verb.\n";
    return out;
}

std::string help_text(const Commands& commands, const VerbEntry& entry) {
    std::string out;
    append_wrapped(out, "Usage: " + usage_line(entry), 0, 14);
    out += '\n';
    append_wrapped(out, fmt::format("{}: {}.", entry.verb.name, entry.verb.summary), 0, 0);
    for (const std::string& name : entry.other_names) {
        append_wrapped(out, fmt::format("Its other name is {}.", name), 0, 0);
    }
    append_text(out, entry.verb.text);
    append_options(out, entry.options, true);
    append_options(out, entry.options, false);
    out += "\nOptions of all verbs:\n";
    for (const OptionWords& option : commands.common_options()) {
        append_term(out, option.term(), option.description);
    }
    append_examples(out, entry.verb.examples);
    return out;
}

} // namespace pmtool
