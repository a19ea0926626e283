#pragma once

#include "source.h"
#include <optional>
#include <pm/kit/compatibility.h>
#include <string>
#include <vector>

// Descriptions of devices against themselves.
namespace pmtool {

struct DefaultFinding {
    std::string file;    // as it was told, or as it was found in a folder
    std::string section; // of a DPIA file; empty for a file of one tree
    pm::kit::Finding finding;
};

// What isn't possible of the own defaults of descriptions: of a file's, of those in each of its sections, or
// of those in a folder and the folders below, links to folders apart. Paths are those of the section. Nothing
// for what isn't a description, or can't be read. `content` is what was read of the file already, if
// anything.
std::vector<DefaultFinding> findings_of_defaults(const SourceOptions& options,
                                                 const std::optional<std::string>& content);

// Failure if several sections of a DPIA file hold descriptions: nobody says which is meant.
void require_one_description(const Source& source);

} // namespace pmtool
