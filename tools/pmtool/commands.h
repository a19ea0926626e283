#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace pmtool {

// What a verb is told as, in help, in manual pages and to shells.
struct Verb {
    std::string_view name;
    std::string_view group;    // the name of one of verb_groups
    std::string_view summary;  // "set the value of a property"
    std::string_view text;     // paragraphs, with an empty line between two
    std::string_view examples; // a line each: command, two or more blanks, what it does; may be empty
};

struct VerbGroup {
    std::string_view name;  // of its manual page: pmtool-NAME
    std::string_view title; // "Look at files"
};
// In the order of help.
inline constexpr VerbGroup verb_groups[] = {
    {"look", "Look at files"},
    {"change", "Change files"},
    {"compare", "Compare and check"},
    {"convert", "Convert and pack"},
    {"sections", "Several trees in a file"},
    {"help", "Help"},
};

// An argument or option as it is shown.
struct OptionWords {
    std::vector<std::string> names; // "-o", "--output"; none for an argument
    std::string value;              // "FILE"; empty for a flag
    std::string description;
    bool value_is_optional = false; // told with "=" if at all
    bool is_required = false;
    bool is_repeated = false;

    bool is_argument() const { return names.empty(); }
    // "-o, --output FILE", "FILE..."
    std::string term() const;
};

// A verb with its arguments and options, in the order of help.
struct VerbEntry {
    Verb verb;
    std::vector<std::string> other_names = {};
    std::vector<OptionWords> options = {};
    std::function<int()> action = {};

    // Its name and the other ones.
    std::vector<std::string> names() const;
};

// Takes the arguments and options of a verb: each call adds one and fills the variable from the command line.
// "-o,--output" are the names of an option, VALUE what its text is called in help.
class VerbLine {
public:
    // Another name for the verb.
    VerbLine& other_name(const std::string& name);

    VerbLine& argument(const std::string& name, std::string& text, const std::string& description);
    VerbLine& optional_argument(const std::string& name, std::string& text, const std::string& description);
    // One or more.
    VerbLine& arguments(const std::string& name, std::vector<std::string>& texts,
                        const std::string& description);
    VerbLine& optional_arguments(const std::string& name, std::vector<std::string>& texts,
                                 const std::string& description);

    VerbLine& flag(const std::string& names, bool& value, const std::string& description);
    VerbLine& text(const std::string& names, std::string& text, const std::string& value,
                   const std::string& description);
    VerbLine& required_text(const std::string& names, std::string& text, const std::string& value,
                            const std::string& description);
    VerbLine& text(const std::string& names, std::optional<std::string>& text, const std::string& value,
                   const std::string& description);
    // May be repeated.
    VerbLine& texts(const std::string& names, std::vector<std::string>& texts, const std::string& value,
                    const std::string& description);
    // The value may be missing: then `usual` is taken.
    VerbLine& text_or(const std::string& names, std::optional<std::string>& text, const std::string& usual,
                      const std::string& value, const std::string& description);
    // Of the option or argument that was added last: it must be valid UTF-8, as what the tree holds is. Other
    // texts, such as names of files, may be any bytes.
    VerbLine& utf8();
    // Of the same: it must not be empty.
    VerbLine& not_empty();

    VerbLine& number(const std::string& names, int& number, int lowest, int highest,
                     const std::string& description);
    VerbLine& number(const std::string& names, unsigned& number, const std::string& description);
    VerbLine& number(const std::string& names, double& number, const std::string& description);

private:
    friend class Commands;
    struct Parser;
    VerbLine(VerbEntry& entry, void* parser) : m_entry(entry), m_parser(parser) {}
    OptionWords& note(const std::string& names, const std::string& value, const std::string& description);
    // `mistake` tells what is wrong with a text; empty for nothing.
    VerbLine& check(const std::function<std::string(const std::string&)>& mistake);

    VerbEntry& m_entry;
    void* m_parser; // the parser's own of this verb
};

// The command line is wrong. what() says how, in a sentence without a full stop.
class UsageError : public std::runtime_error {
public:
    UsageError(const std::string& text, std::string verb)
        : std::runtime_error(text), m_verb(std::move(verb)) {}
    // The verb that was named; empty if none was.
    const std::string& verb() const { return m_verb; }

private:
    std::string m_verb;
};

// What a command line asks for.
struct Request {
    const VerbEntry* entry = nullptr; // null: help or version of the program
    bool help = false;
    bool version = false;
    std::optional<unsigned> code_page = {};
};

// The verbs of the program.
class Commands {
public:
    Commands();
    ~Commands();
    Commands(const Commands&) = delete;
    Commands& operator=(const Commands&) = delete;

    VerbLine add(const Verb& verb, std::function<int()> action);
    // Reads a command line, whose first word is the program's name, and fills the variables of its verb.
    // Throws UsageError.
    Request parse(const std::vector<std::string>& words);

    // In the order in which they were added.
    const std::vector<std::unique_ptr<VerbEntry>>& all() const { return m_entries; }
    // Null if there is none of that name.
    const VerbEntry* find(const std::string& name) const;
    // Options that every verb takes.
    const std::vector<OptionWords>& common_options() const { return m_common; }

private:
    struct Parser;
    std::unique_ptr<Parser> m_parser;
    std::vector<std::unique_ptr<VerbEntry>> m_entries;
    std::vector<OptionWords> m_common;
};

} // namespace pmtool
