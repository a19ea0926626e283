#include "edited_file.h"
#include "failure.h"
#include "text.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <iostream>
#include <memory>
#include <pm/kit/difference.h>
#include <pm/kit/error.h>
#include <pm/kit/json.h>
#include <system_error>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct EditOptions {
    SourceOptions source;
    TargetOptions target;
};

std::string editor() {
    for (const char* name : {"VISUAL", "EDITOR"}) {
        if (const std::optional<std::string> command = environment(name)) return *command;
    }
    return usual_editor();
}

// Asks on the terminal; no without one.
bool ask(const std::string& question) {
    if (!is_terminal(Stream::in)) return false;
    print_error(question + " [Y/n] ");
    std::fflush(stderr);
    std::string answer;
    if (!std::getline(std::cin, answer)) return false;
    return answer.empty() || answer.starts_with('y') || answer.starts_with('Y');
}

void run_editor(const std::string& file) {
    const std::string command = editor();
    const int status = run_command(command, file);
    if (status != 0) throw Failure(fmt::format("the editor {} ended with {}", in_quotes(command), status));
}

// What the editor left, tried again as long as it has mistakes and somebody wants to mend them.
pm::Tree edited_tree(EditorFile& file) {
    while (true) {
        run_editor(file.name());
        try {
            return kit::from_json(read_whole(file.name()));
        } catch (const kit::Error& e) {
            complain(fmt::format("{}:{}:{}: {}", file.name(), e.line(), e.column(), e.what()));
            if (ask("Edit again?")) continue;
            file.release();
            throw Failure(fmt::format("not written; what was edited stays in {}", file.name()));
        }
    }
}

pm::Tree tree_of(const SourceOptions& options) {
    TargetOptions look;
    look.dry_run = true; // nothing is locked while somebody thinks
    const EditedFile file(options, look);
    pm::Tree tree;
    kit::copy(file.root(), tree, "\\");
    return tree;
}

void show(const std::vector<kit::Difference>& differences) {
    for (const kit::Difference& difference : differences) {
        fmt::print("{}\n", kit::difference_text(difference));
    }
    std::fflush(stdout);
}

int edit(const EditOptions& options) try {
    if (options.source.file == "-") throw Mistake("standard input can't be edited");
    const pm::Tree before = tree_of(options.source);
    EditorFile file(".json", kit::to_json(before));
    const pm::Tree after = edited_tree(file);
    const std::vector<kit::Difference> differences = kit::compare(before, after);
    if (differences.empty()) {
        complain(options.source.file + ": nothing was changed");
        return exit_ok;
    }
    if (!options.target.dry_run) show(differences);
    EditedFile target(options.source, options.target);
    if (!kit::identical(target.root(), before.root())) {
        file.release();
        throw Failure(
            fmt::format("{}: somebody else has changed the file meanwhile; what was edited stays in {}",
                        options.source.file, file.name()));
    }
    const int status = target.replace(after);
    if (status != exit_ok) {
        file.release();
        complain("what was edited stays in " + file.name());
    }
    return status;
} catch (const std::system_error& e) {
    throw system_failure("the file for the editor", e.code().value());
}

constexpr Verb verb = {
    "edit", "change", "edit the tree as JSON in an editor",
    R"(Opens the tree, as "dump" writes it, in the editor that VISUAL or EDITOR names. What was edited is checked, shown as a diff and written as with "set"; at a mistake the editor opens again. The file isn't locked meanwhile: if somebody else changes it, nothing is written and what was edited stays.)",
    R"(pmtool edit plotter.pia
EDITOR='code --wait' pmtool edit all.dpia --section Office)"};

} // namespace

void add_edit(Commands& commands) {
    const auto options = std::make_shared<EditOptions>();
    VerbLine line = commands.add(verb, [options] { return edit(*options); });
    add_source(line, options->source);
    add_other_output(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
