#include "edited_file.h"
#include "failure.h"
#include "verbs/verbs.h"
#include <fmt/format.h>
#include <memory>
#include <pm/kit/error.h>
#include <system_error>

namespace pmtool {

namespace {

namespace kit = pm::kit;

struct ApplyOptions {
    SourceOptions source;
    TargetOptions target;
    std::string script;
};

std::string script_text(const std::string& file) {
    try {
        return file == "-" ? read_standard_input() : read_whole(file);
    } catch (const std::system_error& e) {
        throw system_failure(file == "-" ? "standard input" : file, e.code().value());
    }
}

std::vector<kit::Edit> read_script(const std::string& file) {
    const std::string text = script_text(file);
    try {
        return kit::parse_script(text);
    } catch (const kit::Error& e) {
        throw Failure(fmt::format("{}:{}:{}: {}", file == "-" ? "standard input" : file, e.line(), e.column(),
                                  e.what()));
    }
}

int apply(const ApplyOptions& options) {
    if (options.script == "-" && options.source.file == "-") {
        throw Mistake("only one of FILE and SCRIPT can be standard input");
    }
    const std::vector<kit::Edit> edits = read_script(options.script);
    return EditedFile(options.source, options.target).change(edits);
}

constexpr Verb verb = {
    "apply", "change", "apply a script of changes, all or nothing",
    R"(Makes the changes of a script, one after the other, and writes the file once; if one of them can't be made, nothing is written; exit code 1 if nothing has its path. "diff --script" prints such scripts. A line is one of

  set PATH TYPE VALUE     set \media\copies long 2
  set PATH\               makes a node
  rm PATH
  mv FROM TO
  cp FROM TO

Empty lines and those that begin with "#" don't count. A string stands in double quotes as in JSON, and so does a path with blanks. Paths match as with "ls" and are taken as with "mv".)",
    R"(pmtool diff old.pia new.pia --script | pmtool apply other.pia -)"};

} // namespace

void add_apply(Commands& commands) {
    const auto options = std::make_shared<ApplyOptions>();
    VerbLine line = commands.add(verb, [options] { return apply(*options); });
    add_edited(line, options->source);
    line.argument("SCRIPT", options->script, "The file with the changes; \"-\" is standard input");
    add_other_output(line, options->target);
    add_writing(line, options->target);
}

} // namespace pmtool
