#include "edited_file.h"
#include "failure.h"
#include "safe_save.h"
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

// What was edited is somebody's work: where it isn't written, its file stays and is named.
Failure kept(EditorFile& file, std::string_view reason, int exit_code = exit_trouble) {
    file.release();
    return Failure(fmt::format("{}; what was edited stays in {}", reason, file.name()), exit_code);
}

void run_editor(EditorFile& file, const std::string& given) {
    const std::string command = editor();
    const int status = run_command(command, file.name());
    if (status == 0) return;
    const std::string reason = fmt::format("the editor {} ended with {}", in_quotes(command), status);
    if (read_whole(file.name()) != given) throw kept(file, reason);
    throw Failure(reason);
}

// What the editor left, tried again as long as it has mistakes and somebody wants to mend them.
pm::Tree edited_tree(EditorFile& file, const std::string& given) {
    while (true) {
        run_editor(file, given);
        try {
            return kit::from_json(read_whole(file.name()));
        } catch (const kit::Error& e) {
            complain(fmt::format("{}:{}:{}: {}", file.name(), e.line(), e.column(), e.what()));
            if (ask("Edit again?")) continue;
            throw kept(file, "not written");
        }
    }
}

// Fails before somebody edits for nothing where the target can't be written.
pm::Tree tree_of(const EditOptions& options) {
    TargetOptions look = options.target;
    look.dry_run = true; // nothing is locked while somebody thinks
    const EditedFile file(options.source, look);
    if (!options.target.dry_run) require_target(look.file.empty() ? options.source.file : look.file);
    pm::Tree tree;
    kit::copy(file.root(), tree, "\\");
    return tree;
}

void show(const std::vector<kit::Difference>& differences) {
    std::string text;
    for (const kit::Difference& difference : differences) {
        text += kit::difference_text(difference) + '\n';
    }
    save_safely("-", text);
}

int write(const EditOptions& options, const pm::Tree& before, const pm::Tree& after,
          const std::vector<kit::Difference>& differences) {
    if (!options.target.dry_run) show(differences);
    EditedFile target(options.source, options.target);
    if (!kit::identical(target.root(), before.root())) {
        throw Failure(options.source.file + ": somebody else has changed the file meanwhile");
    }
    return target.replace(after);
}

template<class Work>
int write_or_keep(EditorFile& file, Work work) {
    try {
        const int status = work();
        if (status != exit_ok) {
            file.release();
            complain("what was edited stays in " + file.name());
        }
        return status;
    } catch (const Failure& e) {
        throw kept(file, e.what(), e.exit_code());
    } catch (...) {
        complain(kept(file, "not written").what());
        throw;
    }
}

int edit(const EditOptions& options) try {
    if (options.source.file == "-") throw Mistake("standard input can't be edited");
    const pm::Tree before = tree_of(options);
    const std::string given = kit::to_json(before);
    EditorFile file(".json", given);
    const pm::Tree after = edited_tree(file, given);
    const std::vector<kit::Difference> differences = kit::compare(before, after);
    if (differences.empty()) {
        complain(options.source.file + ": nothing was changed");
        return exit_ok;
    }
    return write_or_keep(file, [&] { return write(options, before, after, differences); });
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
    add_edited(line, options->source);
    add_other_output(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
