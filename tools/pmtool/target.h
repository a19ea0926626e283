#pragma once

#include "formats.h"
#include "options.h"
#include "source.h"
#include "system.h"
#include <initializer_list>
#include <optional>
#include <pm/kit/loss.h>
#include <string>
#include <vector>

// Writing by the rule: the bytes are made and read back, and what would be lost is told; without --lossy
// nothing is written then.
namespace pmtool {

// What is to be written.
struct Writing {
    const pm::Tree& tree;                  // the intended one
    const Format& format;                  // of the output
    pm::kit::WriteOptions form;            // its type is that of the format
    std::vector<std::string> dropped = {}; // what sources couldn't give: losses too
    const pm::Tree* before = nullptr;      // what --dry-run compares with; null: the target as it is
    // The file that is written anew, for what changes in form only.
    const pm::kit::FileContent* rewritten = nullptr;
    std::vector<std::string> notes = {}; // what else is told and no loss
};

// With --lossy bad lines are losses that are told; without it the first of them ends a verb that makes a new
// file.
Damage damage_by(const TargetOptions& options);

// Keeps other edits of a target that is there away from before the sources are read until it is written, so
// that none is lost. A source that is the target is read as what is changed in place. Nothing with --dry-run.
class TargetLock {
public:
    TargetLock(const TargetOptions& target, std::initializer_list<SourceOptions*> sources);

private:
    std::optional<FileLock> m_lock;
};

// Writes to the target, or shows with --dry-run what would change there. The exit code: 0, or 2 if something
// would be lost. Failure if the target can't be written.
int write_by_rule(const Writing& writing, const TargetOptions& options);

// The form of an output as the options tell it; `source` gives what they don't. Failure for an option that is
// only for PIA files.
pm::kit::WriteOptions form_of(const Format& format, const TargetOptions& options, const Source& source);
// The form that a file has already, with what the options change of it.
pm::kit::WriteOptions same_form(const Source& source, const TargetOptions& options);

// What an output of another form has no place for, a line each: items of a PIA tag that ask for compression
// and tell something else, too; info texts of sections.
std::vector<std::string> dropped_tag_items(const Source& source, const pm::kit::WriteOptions& form);
std::vector<std::string> dropped_info_texts(const Source& source);

} // namespace pmtool
