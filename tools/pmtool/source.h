#pragma once

#include "formats.h"
#include "options.h"
#include <optional>
#include <pm/kit/file.h>
#include <string>
#include <vector>

namespace pmtool {

// What was read from a file.
struct Source {
    std::string file; // as it was told
    pm::kit::FileContent content = {};
    std::string section = {}; // the one that was asked for
    bool is_json = false;     // dumped by `dump`: there is a tree and nothing else
    unsigned code_page = 0;   // that the text turned out to be in, or was told; 0: the one that is set
    // What couldn't be read, a line each, with the file and the line in front.
    std::vector<std::string> dropped = {};
    std::optional<std::string> bytes = {}; // of what can't be read twice
};

enum class Damage {
    refuse, // a bad line, or anything else that can't be read, is a Failure
    keep    // it is noted in Source::dropped
};

// The content where it can't be read twice: of standard input, a pipe, a device.
// Reading it may take long: it is shown as `work`.
std::optional<std::string> content_at_hand(const std::string& file, std::string_view work = "reading");

// Reads a file of any format. Text outside ASCII that is UTF-8 throughout is read as UTF-8, unless a code
// page was told.
//
// With `keep`, or with --keep-going, what can be read counts, even if reading ends early. Failure if nothing
// can.
Source read_source(const SourceOptions& options, Damage damage = Damage::refuse);
// The same with the content that content_at_hand() gave.
Source read_source(const SourceOptions& options, const std::optional<std::string>& content,
                   Damage damage = Damage::refuse);

// A file that holds one tree, for an output that can't hold several: Failure for one of several sections,
// which says that `choice` chooses one.
Source read_one_tree(const SourceOptions& options, Damage damage, std::string_view choice = "--section");

// All that the file holds and the tree doesn't, a line each: what was dropped, and what the library passes
// over without a word, such as a repeated name or the end of a text that is too long.
std::vector<std::string> losses_of_reading(const Source& source);

// The same, but nothing with --keep-going: what couldn't be read was asked for then, so that it is told and
// keeps nothing from being written.
std::vector<std::string> losses_unless_told(const SourceOptions& options, const Source& source);

// Tells on standard error what was dropped.
void tell_dropped(const Source& source);

// The sections of a DPIA file, or the plotters of a CFG file, with as little as possible of it read. Failure
// for other formats.
std::vector<pm::kit::Section> sections_of(const SourceOptions& options);

// Set for the process by --code-page; without it the code page of a text may be found out.
void set_code_page(unsigned code_page);
// Whether it was.
bool is_code_page_told();

} // namespace pmtool
