#include "help/help_text.h"

#include "failure.h"
#include "help/manual.h"
#include "text.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>

namespace pmtool {

namespace {

struct HelpOptions {
    std::string verb;
    bool manual = false;
};

int show_help(const Commands& commands, const HelpOptions& options) {
    if (options.manual) {
        fmt::print("{}", manual_page(commands, options.verb));
    } else if (options.verb.empty()) {
        fmt::print("{}", help_text(commands));
    } else if (const VerbEntry* entry = commands.find(options.verb)) {
        fmt::print("{}", help_text(commands, *entry));
    } else {
        throw Failure(fmt::format("{}: there is no such verb; see pmtool --help", options.verb));
    }
    return exit_ok;
}

constexpr Verb verb = {
    "help", "help", "tell about the program or a verb",
    R"(The same as "pmtool VERB --help". With --man it prints the source of a manual page: pmtool(1), or for the name of a group of verbs pmtool-NAME(1).)",
    R"(pmtool help set
pmtool help --man look | man -l -)"};

} // namespace

void add_help(Commands& commands) {
    const auto options = std::make_shared<HelpOptions>();
    VerbLine line = commands.add(verb, [options, &commands] { return show_help(commands, *options); });
    line.optional_argument("VERB", options->verb, "The verb");
    line.flag("--man", options->manual, "The source of a manual page");
}

} // namespace pmtool
