#pragma once

#include "options.h"
#include "source.h"
#include "target.h"
#include <optional>
#include <pm/kit/edit.h>
#include <pm/kit/pattern.h>
#include <span>
#include <string>
#include <vector>

namespace pmtool {

// A file, or one section of a DPIA file, that is changed in place or written changed to another: what set,
// rm, mv, cp, apply and edit have in common. The file is locked while this lives if it is changed in place.
class EditedFile {
public:
    // Reads it. Failure if the file is of a format that isn't written, unless it goes to another one.
    EditedFile(const SourceOptions& source, const TargetOptions& target);

    // The tree that the paths of edits are in: of the file, or of its section.
    pm::Node root() const;
    const pm::Tree& tree() const { return m_source.content.tree; }
    // A pattern or path in the file's tree for one of the user's.
    std::string full(const std::string& path) const;

    // What a pattern of the user's matches; a Failure with the code of a negative answer if nothing does.
    std::vector<pm::kit::Match> require(const std::string& path) const;

    // Makes the changes and writes them by the rule; the exit code.
    int change(std::span<const pm::kit::Edit> edits);
    // Puts another tree in the place of root() and writes it.
    int replace(const pm::Tree& tree);

private:
    int write(const pm::Tree& changed, std::span<const pm::kit::Edit> edits);

    TargetOptions m_target;
    std::optional<TargetLock> m_lock;
    Source m_source;
    std::string m_base; // the path of the section's node, without a backslash at its end; empty for the root
};

} // namespace pmtool
