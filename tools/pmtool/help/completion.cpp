#include "help/manual.h"

#include "failure.h"
#include "help/words.h"
#include "text.h"
#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace pmtool {

namespace {

// In single quotes for a shell.
std::string quoted(std::string_view text) {
    std::string out = "'";
    for (const char c : text) {
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return out + '\'';
}

// The options of a verb with those that all have.
std::vector<OptionWords> all_options(const Commands& commands, const VerbEntry& entry) {
    std::vector<OptionWords> all;
    std::ranges::copy_if(entry.options, std::back_inserter(all),
                         [](const OptionWords& option) { return !option.is_argument(); });
    all.insert(all.end(), commands.common_options().begin(), commands.common_options().end());
    return all;
}

std::string option_names(const std::vector<OptionWords>& options) {
    std::string names;
    for (const OptionWords& option : options) {
        names += fmt::format("{}{}", names.empty() ? "" : " ", fmt::join(option.names, " "));
    }
    return names;
}

std::string verb_names(const Commands& commands) {
    std::string names;
    for (const auto& entry : commands.all()) {
        names += fmt::format("{}{}", names.empty() ? "" : " ", fmt::join(entry->names(), " "));
    }
    return names;
}

void append_bash_values(std::string& out, const std::vector<OptionWords>& options) {
    for (const OptionWords& option : options) {
        const std::vector<std::string> values = values_of(option);
        if (values.empty()) continue;
        out += fmt::format("        {}) COMPREPLY=($(compgen -W '{}' -- \"$word\")); return;;\n",
                           fmt::join(option.names, "|"), fmt::join(values, " "));
    }
}

// Passes the values of options that stand in front of the verb.
void append_skip(std::string& out, const std::vector<OptionWords>& options) {
    std::vector<std::string> names;
    for (const OptionWords& option : options) {
        if (option.value.empty() || option.value_is_optional) continue;
        names.insert(names.end(), option.names.begin(), option.names.end());
    }
    if (!names.empty()) out += fmt::format("        {}) ((++i));;\n", fmt::join(names, "|"));
}

std::string bash(const Commands& commands) {
    std::string out = "# bash completion of pmtool\n"
                      "_pmtool() {\n"
                      "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} verb= i\n"
                      "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
                      "        case ${COMP_WORDS[i]} in\n";
    append_skip(out, commands.common_options());
    out += "        -*) ;;\n"
           "        *) verb=${COMP_WORDS[i]}; break;;\n"
           "        esac\n"
           "    done\n"
           "    COMPREPLY=()\n"
           "    if [[ -z $verb ]]; then\n";
    out += fmt::format("        COMPREPLY=($(compgen -W '{} {}' -- \"$word\"))\n        return\n    fi\n",
                       verb_names(commands), option_names(commands.common_options()));
    out += "    case $verb in\n";
    for (const auto& entry : commands.all()) {
        const std::vector<OptionWords> options = all_options(commands, *entry);
        std::string cases;
        append_bash_values(cases, options);
        out += fmt::format("    {})\n", fmt::join(entry->names(), "|"));
        if (!cases.empty()) out += "        case $before in\n" + cases + "        esac\n";
        out += fmt::format(
            "        if [[ $word == -* ]]; then COMPREPLY=($(compgen -W '{}' -- \"$word\")); fi;;\n",
            option_names(options));
    }
    return out + "    esac\n}\ncomplete -o default -F _pmtool pmtool\n";
}

// What zsh's _arguments takes for an option: '(-o --output)'{-o,--output}'[text]:FILE:_files'
void append_zsh_option(std::string& out, const OptionWords& option) {
    std::string text;
    for (const char c : option.description) {
        text += c == '[' || c == ']' || c == ':' || c == '\\' ? ' ' : c;
    }
    std::string action;
    const std::vector<std::string> values = values_of(option);
    if (!option.value.empty() && !option.value_is_optional) {
        action = fmt::format(":{}:{}", option.value,
                             values.empty() ? "_files" : fmt::format("({})", fmt::join(values, " ")));
    }
    for (const std::string& name : option.names) {
        out += fmt::format(" \\\n            {}", quoted(fmt::format("{}[{}]{}", name, text, action)));
    }
}

std::string zsh(const Commands& commands) {
    std::string out = "#compdef pmtool\n_pmtool() {\n    local -a verbs\n    verbs=(\n";
    for (const auto& entry : commands.all()) {
        for (const std::string& name : entry->names()) {
            out += fmt::format("        {}\n", quoted(fmt::format("{}:{}", name, entry->verb.summary)));
        }
    }
    out += "    )\n    local verb= i\n"
           "    for ((i = 2; i < CURRENT; ++i)); do\n"
           "        case $words[i] in\n";
    append_skip(out, commands.common_options());
    out += "        -*) ;;\n"
           "        *) verb=$words[i]; break;;\n"
           "        esac\n"
           "    done\n"
           "    if [[ -z $verb ]]; then\n        _describe verb verbs\n        return\n    fi\n"
           "    case $verb in\n";
    for (const auto& entry : commands.all()) {
        out += fmt::format("    {})\n        _arguments -s", fmt::join(entry->names(), "|"));
        for (const OptionWords& option : all_options(commands, *entry)) {
            append_zsh_option(out, option);
        }
        out += " \\\n            '*:file:_files';;\n";
    }
    return out + "    esac\n}\n_pmtool \"$@\"\n";
}

void append_fish_option(std::string& out, std::string_view condition, const OptionWords& option) {
    out += "complete -c pmtool";
    if (!condition.empty()) out += " -n " + quoted(condition);
    for (const std::string& name : option.names) {
        out += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (const std::vector<std::string> values = values_of(option); !values.empty()) {
        out += fmt::format(" -x -a '{}'", fmt::join(values, " "));
    } else if (!option.value.empty() && !option.value_is_optional) {
        out += " -r";
    }
    out += " -d " + quoted(option.description) + '\n';
}

std::string fish(const Commands& commands) {
    std::string out = "# fish completion of pmtool\n";
    for (const OptionWords& option : commands.common_options()) {
        append_fish_option(out, "", option);
    }
    for (const auto& entry : commands.all()) {
        for (const std::string& name : entry->names()) {
            out += fmt::format("complete -c pmtool -n __fish_use_subcommand -a {} -d {}\n", name,
                               quoted(entry->verb.summary));
        }
        const std::string condition =
            fmt::format("__fish_seen_subcommand_from {}", fmt::join(entry->names(), " "));
        for (const OptionWords& option : entry->options) {
            if (!option.is_argument()) append_fish_option(out, condition, option);
        }
    }
    return out;
}

struct Shell {
    std::string_view name;
    std::string (*script)(const Commands& commands);
};
constexpr Shell shells[] = {{"bash", bash}, {"zsh", zsh}, {"fish", fish}};

} // namespace

std::string completion_script(const Commands& commands, const std::string& shell) {
    for (const Shell& each : shells) {
        if (each.name == shell) return each.script(commands);
    }
    throw Mistake(fmt::format("{}: no such shell; there are bash, zsh and fish", in_quotes(shell)));
}

} // namespace pmtool
