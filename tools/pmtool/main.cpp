#include "commands.h"
#include "failure.h"
#include "source.h"
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <new>
#include <pm/pm.h>
#include <string>
#include <vector>

namespace {

constexpr const char* description = "Shows, changes, converts and checks the files of the property manager.";

constexpr const char* footer = R"(
Formats are told from the content of an input and from the extension of an output.
Exit codes: 0 done, 1 the answer is no (bad lines, trees that differ), 2 trouble.

Examples:
  pmtool tree plotter.pia                        show the whole tree
  pmtool tree plotter.pia '\media' --depth 1     show a part of it
  pmtool get plotter.pia '\media\default_size'   print one value
  pmtool set plotter.pia '\media\copies' 2       change one value
  pmtool convert plotter.pia small.pia --compress
  pmtool check pens.pcp                          list all bad lines
  pmtool bundle -o all.dpia Office=a.pia Archive=b.pia
  pmtool extract all.dpia Office -o office.pia
  pmtool COMMAND --help                          tell more about a command
)";

void set_code_page(unsigned code_page) {
    try {
        pm_set_system_code_page(code_page);
    } catch (const ZT_Exception&) {
        throw pmtool::Failure(fmt::format("{}: this machine has no such code page", code_page));
    }
}

int run(const pmtool::Commands& commands, unsigned code_page) {
    set_code_page(code_page);
    const int status = commands.run();
    if (std::fflush(stdout) != 0) throw pmtool::Failure("the output can't be written");
    return status;
}

int trouble(const char* text) {
    std::fflush(stdout);
    fmt::print(stderr, "pmtool: {}\n", text);
    return pmtool::exit_trouble;
}

int guarded_run(const pmtool::Commands& commands, unsigned code_page) {
    try {
        return run(commands, code_page);
    } catch (const ZT_Exception& e) {
        return trouble(pmtool::number_text(e.m_number).c_str());
    } catch (const std::bad_alloc&) {
        return trouble("there is not enough memory");
    } catch (const std::exception& e) {
        return trouble(e.what());
    }
}

// Help and version are no errors; anything else that is wrong with the command line is one line of text.
int tell_usage(const CLI::App& app, const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) return app.exit(e);
    const std::vector<std::string> unused = app.remaining();
    const bool no_command =
        !unused.empty() && !unused.front().starts_with('-') && app.get_subcommands().empty();
    const std::string what = no_command ? unused.front() + ": there is no such command" : e.what();
    return trouble(fmt::format("{}; see pmtool --help", what).c_str());
}

} // namespace

int main(int argc, char** argv) {
    unsigned code_page = pm_system_code_page();
    CLI::App app(description, "pmtool");
    pmtool::Commands commands(app);
    app.footer(footer);
    app.set_version_flag("--version", "pmtool " PMTOOL_VERSION);
    app.add_option("--code-page", code_page, "Code page of narrow text in files; 65001 is UTF-8")
        ->capture_default_str();
    app.require_subcommand(1);
    pmtool::add_tree_commands(commands);
    pmtool::add_file_commands(commands);
    pmtool::add_section_commands(commands);
    pmtool::add_codec_commands(commands);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return tell_usage(app, e);
    }
    return guarded_run(commands, code_page);
}
