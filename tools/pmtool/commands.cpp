#include "commands.h"

#include "text.h"
#include <algorithm>
#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <pm/text.h>

namespace pmtool {

namespace {

std::vector<std::string> split_names(const std::string& names) {
    std::vector<std::string> result;
    for (std::size_t at = 0; at < names.size();) {
        const std::size_t end = std::min(names.find(',', at), names.size());
        result.push_back(names.substr(at, end - at));
        at = end + 1;
    }
    return result;
}

CLI::App& app_of(void* parser) {
    return *static_cast<CLI::App*>(parser);
}

bool is_option(const std::string& word, const std::vector<OptionWords>& options) {
    const std::string name = word.substr(0, word.find('='));
    return std::ranges::any_of(options, [&](const OptionWords& option) {
        return std::ranges::find(option.names, name) != option.names.end();
    });
}

// What the parser would take for a number: nothing at all for 0, a NaN, what is below 0.
std::string number_mistake(const std::string& text) {
    double number = 0;
    const bool is_number = !text.empty() && CLI::detail::lexical_cast(text, number) && number >= 0;
    return is_number ? std::string() : fmt::format("{} is no number from 0 on", in_quotes(text));
}

// A value such as -x was taken for an option.
bool may_miss_the_mark(const CLI::ParseError& e, const std::vector<std::string>& words,
                       const VerbEntry& entry, const std::vector<OptionWords>& common) {
    const bool is_such = dynamic_cast<const CLI::ExtrasError*>(&e) != nullptr ||
                         dynamic_cast<const CLI::RequiredError*>(&e) != nullptr;
    if (!is_such || std::ranges::find(words, "--") != words.end()) return false;
    return std::any_of(words.begin() + 1, words.end(), [&](const std::string& word) {
        return word.size() > 1 && word.front() == '-' && !word.starts_with("--") &&
               !is_option(word, entry.options) && !is_option(word, common);
    });
}

} // namespace

std::string OptionWords::term() const {
    if (is_argument()) return is_repeated ? value + "..." : value;
    std::string text = fmt::format("{}", fmt::join(names, ", "));
    if (value.empty()) return text;
    return value_is_optional ? fmt::format("{}[={}]", text, value) : fmt::format("{} {}", text, value);
}

std::vector<std::string> VerbEntry::names() const {
    std::vector<std::string> all{std::string(verb.name)};
    all.insert(all.end(), other_names.begin(), other_names.end());
    return all;
}

OptionWords& VerbLine::note(const std::string& names, const std::string& value,
                            const std::string& description) {
    m_entry.options.push_back({split_names(names), value, description});
    return m_entry.options.back();
}

VerbLine& VerbLine::other_name(const std::string& name) {
    app_of(m_parser).alias(name);
    m_entry.other_names.push_back(name);
    return *this;
}

VerbLine& VerbLine::argument(const std::string& name, std::string& text, const std::string& description) {
    app_of(m_parser).add_option(name, text)->required();
    note("", name, description).is_required = true;
    return *this;
}

VerbLine& VerbLine::optional_argument(const std::string& name, std::string& text,
                                      const std::string& description) {
    app_of(m_parser).add_option(name, text);
    note("", name, description);
    return *this;
}

VerbLine& VerbLine::arguments(const std::string& name, std::vector<std::string>& texts,
                              const std::string& description) {
    app_of(m_parser).add_option(name, texts)->required();
    OptionWords& words = note("", name, description);
    words.is_required = words.is_repeated = true;
    return *this;
}

VerbLine& VerbLine::optional_arguments(const std::string& name, std::vector<std::string>& texts,
                                       const std::string& description) {
    app_of(m_parser).add_option(name, texts);
    note("", name, description).is_repeated = true;
    return *this;
}

VerbLine& VerbLine::flag(const std::string& names, bool& value, const std::string& description) {
    app_of(m_parser).add_flag(names, value);
    note(names, "", description);
    return *this;
}

VerbLine& VerbLine::text(const std::string& names, std::string& text, const std::string& value,
                         const std::string& description) {
    app_of(m_parser).add_option(names, text);
    note(names, value, description);
    return *this;
}

VerbLine& VerbLine::required_text(const std::string& names, std::string& text, const std::string& value,
                                  const std::string& description) {
    app_of(m_parser).add_option(names, text)->required();
    note(names, value, description).is_required = true;
    return *this;
}

VerbLine& VerbLine::text(const std::string& names, std::optional<std::string>& text, const std::string& value,
                         const std::string& description) {
    app_of(m_parser).add_option(names, text);
    note(names, value, description);
    return *this;
}

VerbLine& VerbLine::texts(const std::string& names, std::vector<std::string>& texts, const std::string& value,
                          const std::string& description) {
    app_of(m_parser).add_option(names, texts)->type_size(1)->allow_extra_args(false);
    note(names, value, description).is_repeated = true;
    return *this;
}

VerbLine& VerbLine::text_or(const std::string& names, std::optional<std::string>& text,
                            const std::string& usual, const std::string& value,
                            const std::string& description) {
    // A flag, so that the next word isn't taken for its value.
    const auto set = [&text, usual](const CLI::results_t& results) {
        text = results.front() == "true" ? usual : results.front();
        return true;
    };
    CLI::Option* option = app_of(m_parser).add_option(names, set);
    option->expected(0)->type_size(0)->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    note(names, value, description).value_is_optional = true;
    return *this;
}

VerbLine& VerbLine::utf8() {
    return check([](const std::string& text) {
        return pm::to_utf8(pm::to_utf16(text)) == text ? std::string() : "this isn't UTF-8: " + text;
    });
}

VerbLine& VerbLine::not_empty() {
    return check(
        [](const std::string& text) { return text.empty() ? std::string("this can't be empty") : ""; });
}

VerbLine& VerbLine::check(const std::function<std::string(const std::string&)>& mistake) {
    app_of(m_parser).get_options().back()->check(mistake);
    return *this;
}

VerbLine& VerbLine::number(const std::string& names, int& number, int lowest, int highest,
                           const std::string& description) {
    app_of(m_parser).add_option(names, number)->check(CLI::Range(lowest, highest));
    note(names, "N", description);
    return *this;
}

VerbLine& VerbLine::number(const std::string& names, unsigned& number, const std::string& description) {
    app_of(m_parser).add_option(names, number)->check(number_mistake);
    note(names, "N", description);
    return *this;
}

VerbLine& VerbLine::number(const std::string& names, double& number, const std::string& description) {
    app_of(m_parser).add_option(names, number)->check(number_mistake);
    note(names, "N", description);
    return *this;
}

struct Commands::Parser {
    CLI::App app{"", "pmtool"};
    std::vector<CLI::App*> verbs; // as Commands::all()
    std::optional<unsigned> code_page;
    bool help = false;
    bool version = false;
};

Commands::Commands() : m_parser(std::make_unique<Parser>()) {
    CLI::App& app = m_parser->app;
    app.set_help_flag("-h,--help");
    app.add_flag("--version", m_parser->version);
    app.add_option("--code-page", m_parser->code_page)->check(number_mistake);
    app.require_subcommand(0, 1);           // a path may be called like a verb
    app.allow_windows_style_options(false); // a path may begin with "/"
    m_common = {{{"-h", "--help"}, "", "Tell about the program or a verb"},
                {{"--version"}, "", "Tell the version"},
                {{"--code-page"}, "N", "Code page of narrow text in files; 65001 is UTF-8"}};
}

Commands::~Commands() = default;

VerbLine Commands::add(const Verb& verb, std::function<int()> action) {
    CLI::App* parser = m_parser->app.add_subcommand(std::string(verb.name));
    parser->fallthrough();
    m_parser->verbs.push_back(parser);
    m_entries.push_back(std::make_unique<VerbEntry>(VerbEntry{verb}));
    m_entries.back()->action = std::move(action);
    return {*m_entries.back(), parser};
}

const VerbEntry* Commands::find(const std::string& name) const {
    for (const std::unique_ptr<VerbEntry>& entry : m_entries) {
        if (entry->verb.name == name ||
            std::ranges::find(entry->other_names, name) != entry->other_names.end()) {
            return entry.get();
        }
    }
    return nullptr;
}

Request Commands::parse(const std::vector<std::string>& words) {
    CLI::App& app = m_parser->app;
    Request request;
    const auto note_verb = [&] {
        if (!app.get_subcommands().empty()) request.entry = find(app.get_subcommands().front()->get_name());
    };
    try {
        std::vector<std::string> reversed(words.rbegin(), words.rend() - 1);
        app.parse(std::move(reversed));
    } catch (const CLI::CallForHelp&) {
        note_verb();
        request.help = true;
        return request;
    } catch (const CLI::ParseError& e) {
        if (m_parser->version) return {.version = true};
        note_verb();
        std::string text = e.what();
        const std::string name(request.entry == nullptr ? "" : request.entry->verb.name);
        if (request.entry != nullptr && may_miss_the_mark(e, words, *request.entry, m_common)) {
            text += fmt::format(
                "; a value that begins with \"-\" stands behind \"--\": pmtool {} ... -- VALUE", name);
        }
        throw UsageError(text, name);
    }
    note_verb();
    if (m_parser->version) return {.version = true};
    if (request.entry == nullptr) throw UsageError("a verb is missing", "");
    request.code_page = m_parser->code_page;
    return request;
}

} // namespace pmtool
