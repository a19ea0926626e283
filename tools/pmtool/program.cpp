#include "program.h"

#include "failure.h"
#include "help/help_text.h"
#include "source.h"
#include "system.h"
#include "text.h"
#include "verbs/verbs.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <functional>
#include <new>
#include <pm/kit/error.h>
#include <pm/pm.h>
#include <system_error>

namespace pmtool {

namespace {

struct VerbRow {
    std::string_view name;
    void (*add)(Commands&);
    bool tells_of_all = false; // it needs the other verbs
};

// In the order of help.
constexpr VerbRow all_verbs[] = {{"identify", add_identify},
                                 {"tree", add_tree},
                                 {"ls", add_ls},
                                 {"get", add_get},
                                 {"set", add_set},
                                 {"rm", add_rm},
                                 {"mv", add_mv},
                                 {"cp", add_cp},
                                 {"apply", add_apply},
                                 {"edit", add_edit},
                                 {"diff", add_diff},
                                 {"merge", add_merge},
                                 {"check", add_check},
                                 {"convert", add_convert},
                                 {"dump", add_dump},
                                 {"codec", add_codec},
                                 {"report", add_report},
                                 {"sections", add_sections},
                                 {"extract", add_extract},
                                 {"bundle", add_bundle},
                                 {"help", add_help, true},
                                 {"completion", add_completion, true}};

// Setting all of them up takes longer than most of what they do: where the first word is a verb's name, that
// verb is all.
void add_verbs(Commands& commands, const std::vector<std::string>& words) {
    const auto asked = words.size() > 1 ? std::ranges::find(all_verbs, words[1], &VerbRow::name)
                                        : std::ranges::end(all_verbs);
    if (asked != std::ranges::end(all_verbs) && !asked->tells_of_all) return asked->add(commands);
    for (const VerbRow& row : all_verbs) {
        row.add(commands);
    }
}

int trouble(const std::string& text, int status = exit_trouble) {
    std::fflush(stdout);
    complain(text);
    return status;
}

void flush_output() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::clearerr(stdout);
        throw system_failure("standard output", errno);
    }
}

std::string with_help(const std::string& text, const std::string& verb) {
    return fmt::format("{}; see pmtool {}--help", text, verb.empty() ? verb : verb + ' ');
}

int guarded(const std::string& verb, const std::function<int()>& action) {
    try {
        const int status = action();
        flush_output();
        return status;
    } catch (const Mistake& e) {
        return trouble(with_help(e.what(), verb));
    } catch (const Failure& e) {
        return trouble(e.what(), e.exit_code());
    } catch (const pm::kit::Error& e) {
        return trouble(e.what());
    } catch (const ZT_Exception& e) {
        return trouble(number_text(e.m_number));
    } catch (const std::bad_alloc&) {
        return trouble("there is not enough memory");
    } catch (const std::system_error& e) {
        // What was printed and filled the stream; failures of files have been made ones that name them.
        const int code = e.code().value();
        return trouble(std::ferror(stdout) != 0 ? system_failure("standard output", code).what() : e.what());
    } catch (const std::exception& e) {
        return trouble(e.what());
    }
}

int tell_usage(const Commands& commands, const UsageError& e, const std::vector<std::string>& words) {
    const auto word = std::find_if(words.begin() + 1, words.end(),
                                   [](const std::string& each) { return !each.starts_with('-'); });
    const bool is_unknown = e.verb().empty() && word != words.end() && commands.find(*word) == nullptr;
    const std::string text = is_unknown ? *word + ": there is no such verb" : e.what();
    return trouble(with_help(text, e.verb()));
}

int run(const Commands& commands, const Request& request) {
    if (request.version) {
        fmt::print("pmtool {}\n", PMTOOL_VERSION);
    } else if (request.help) {
        fmt::print("{}",
                   request.entry == nullptr ? help_text(commands) : help_text(commands, *request.entry));
    } else {
        if (request.code_page) set_code_page(*request.code_page);
        return request.entry->action();
    }
    return exit_ok;
}

} // namespace

int run_program(const std::vector<std::string>& words) {
    Commands commands;
    add_verbs(commands, words);
    try {
        const Request request = commands.parse(words);
        const std::string verb(request.entry == nullptr ? "" : request.entry->verb.name);
        return guarded(verb, [&] { return run(commands, request); });
    } catch (const UsageError& e) {
        return tell_usage(commands, e, words);
    }
}

} // namespace pmtool
