#include "failure.h"
#include "help/manual.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>

namespace pmtool {

namespace {

constexpr Verb verb = {"completion", "help", "print what a shell needs to complete command lines",
                       R"(Prints a script for bash, zsh or fish, made from the same table as the help.)",
                       R"(pmtool completion bash > ~/.local/share/bash-completion/completions/pmtool
pmtool completion fish > ~/.config/fish/completions/pmtool.fish)"};

} // namespace

void add_completion(Commands& commands) {
    const auto shell = std::make_shared<std::string>();
    VerbLine line = commands.add(verb, [shell, &commands] {
        fmt::print("{}", completion_script(commands, *shell));
        return exit_ok;
    });
    line.argument("SHELL", *shell, "bash, zsh or fish");
}

} // namespace pmtool
