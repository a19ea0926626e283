#include "help/manual.h"

#include "failure.h"
#include "help/words.h"
#include <algorithm>
#include <fmt/format.h>

namespace pmtool {

namespace {

// Text as man(7) takes it: a backslash and a hyphen are characters of its own language, and so are a point or
// an apostrophe at the start of a line.
std::string escaped(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '\\') {
            out += "\\e";
        } else if (c == '-') {
            out += "\\-";
        } else {
            out += c;
        }
    }
    if (out.starts_with('.') || out.starts_with('\'')) out.insert(0, "\\&");
    return out;
}

std::string title(const std::string& name) {
    std::string upper = name;
    std::ranges::transform(upper, upper.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return fmt::format(".TH {} 1 \"\" \"pmtool {}\" \"User Commands\"\n", upper, PMTOOL_VERSION);
}

std::string section(std::string_view name) {
    return fmt::format(".SH {}\n", name);
}

void append_text(std::string& out, std::string_view text) {
    for (const std::string& paragraph : paragraphs(text)) {
        const bool is_line = paragraph.front() == ' ';
        out += is_line ? fmt::format(".br\n{}\n", escaped(paragraph.substr(paragraph.find_first_not_of(' '))))
                       : fmt::format(".PP\n{}\n", escaped(paragraph));
    }
}

void append_options(std::string& out, const std::vector<OptionWords>& options) {
    for (const OptionWords& option : options) {
        out += fmt::format(".TP\n.B {}\n{}\n", escaped(option.term()), escaped(option.description));
    }
}

void append_examples(std::string& out, std::string_view text) {
    for (const Example& example : examples_of(text)) {
        out += fmt::format(".TP\n.B {}\n{}\n", escaped(example.command), escaped(example.text));
    }
}

void append_verb(std::string& out, const VerbEntry& entry) {
    out += fmt::format(".SS {}\n.B {}\n.PP\n{}.\n", escaped(usage_line(entry).substr(7)),
                       escaped(entry.verb.name), escaped(entry.verb.summary));
    append_text(out, entry.verb.text);
    append_options(out, entry.options);
    append_examples(out, entry.verb.examples);
}

std::string see_also() {
    std::string out = section("SEE ALSO") + ".BR pmtool (1)";
    for (const VerbGroup& group : verb_groups) {
        out += fmt::format(",\n.BR pmtool\\-{} (1)", group.name);
    }
    return out + '\n';
}

std::string main_page(const Commands& commands) {
    std::string out = title("pmtool") + section("NAME") +
                      "pmtool \\- show, change, convert and check files of the property manager\n" +
                      section("SYNOPSIS") + ".B pmtool\n[OPTIONS] VERB ...\n" + section("VERBS");
    for (const VerbGroup& group : verb_groups) {
        out += fmt::format(".SS {} (see pmtool\\-{}(1))\n", group.title, group.name);
        for (const auto& entry : commands.all()) {
            const Verb& verb = entry->verb;
            if (verb.group != group.name) continue;
            out += fmt::format(".TP\n.B {}\n{}\n", escaped(verb.name), escaped(verb.summary));
        }
    }
    out += section("OPTIONS");
    append_options(out, commands.common_options());
    out += section("EXIT STATUS") + ".TP\n.B 0\ndone\n.TP\n.B 1\nthe answer is no\n.TP\n.B 2\ntrouble\n";
    return out + see_also();
}

std::string group_page(const Commands& commands, const VerbGroup& group) {
    const std::string name = fmt::format("pmtool-{}", group.name);
    std::string out = title(name) + section("NAME") + fmt::format("{} \\- {}\n", escaped(name), group.title) +
                      section("VERBS");
    for (const auto& entry : commands.all()) {
        if (entry->verb.group == group.name) append_verb(out, *entry);
    }
    out += section("OPTIONS OF ALL VERBS");
    append_options(out, commands.common_options());
    return out + see_also();
}

} // namespace

std::string manual_page(const Commands& commands, const std::string& group) {
    if (group.empty()) return main_page(commands);
    const auto* found = std::ranges::find(verb_groups, group, &VerbGroup::name);
    if (found != std::ranges::end(verb_groups)) return group_page(commands, *found);
    throw Mistake(fmt::format("{}: there is no such group of verbs", group));
}

} // namespace pmtool
