#pragma once

#include "commands.h"
#include <optional>
#include <string>

// The options that verbs share: each has the same name and meaning everywhere.
namespace pmtool {

// A file to read.
struct SourceOptions {
    std::string file;
    std::string from = {};    // empty: by content
    std::string section = {}; // empty: all
    bool keep_going = false;
    bool takes_from = false; // --from is an option of the verb
    bool exclusive = false;  // kit::Input::exclusive: for a file that is changed in place
};

// How a file is written.
struct TargetOptions {
    std::string file = {}; // empty: the one that was read
    std::string to = {};   // empty: by extension, or as it was
    bool compress = false;
    bool utf8 = false;
    std::optional<std::string> tag = {};
    unsigned code_page = 0; // 0: the one for reading
    bool lossy = false;
    bool dry_run = false;
    std::optional<std::string> backup = {}; // the suffix
};

// FILE
void add_file_argument(VerbLine& line, SourceOptions& options);
// --from
void add_from(VerbLine& line, SourceOptions& options);
// --keep-going
void add_keep_going(VerbLine& line, SourceOptions& options);
// FILE, --from, --section: of a verb that writes what it reads, to which bad lines are losses
void add_edited(VerbLine& line, SourceOptions& options);
// Those and --keep-going
void add_source(VerbLine& line, SourceOptions& options);
// --lossy, --dry-run, --backup
void add_saving(VerbLine& line, TargetOptions& options);
// --utf8 and those
void add_writing(VerbLine& line, TargetOptions& options);
// --to, --compress, --tag, --out-code-page
void add_form(VerbLine& line, TargetOptions& options);
// -o of a verb that else writes to FILE
void add_other_output(VerbLine& line, TargetOptions& options);
// --color
void add_color(VerbLine& line, std::string& when);

} // namespace pmtool
