#pragma once

#include "formats.h"
#include <functional>
#include <pm/pm.h>
#include <string>
#include <vector>

namespace pmtool {

// A file to read, as the command line tells it.
struct SourceOptions {
    std::string file;
    std::string from;    // empty: by content
    std::string section; // empty: none
};

// A file to read whose format is known.
struct Source {
    std::string file;    // as it was told
    std::string path;    // what the library is given: the string file of a folder of driver tables
    std::string section; // empty: none
    const Format* format;
};

// Failure if the file can't be read, its format isn't told or it can't have the section that is named.
Source find_source(const SourceOptions& options);

// Loads a file, or its section, under the node `base`. A DPIA file without a section gives its directory, a
// CFG file its only plotter. Exceptions of the library pass as they are.
void load(PM_Object& object, const Source& source, const std::u16string& base);

// As load(), but an exception of the library, a bad line too, becomes a Failure.
void load_strictly(PM_Object& object, const Source& source, const std::u16string& base = u"\\");

// As load_strictly(), but a DPIA file must have a section named: it holds several trees.
void load_one_tree(PM_Object& object, const Source& source, const std::u16string& base = u"\\");

// Runs `action`; an exception of the library becomes a Failure about `file`, which the library knows as
// `path`.
void translating(const std::string& file, const std::string& path, const std::function<void()>& action);
// The same for reading a source, whose format tells how lines are counted.
void translating(const Source& source, const std::function<void()>& action);

struct Section {
    std::string name;
    std::string info;
};

// The sections of a DPIA file, or the plotters of a CFG file. Failure for other formats.
std::vector<Section> sections_of(const Source& source);

// The parts that together hold all that is in a file: the sections of a DPIA file after its directory, the
// plotters of a CFG file, else the file itself.
std::vector<Source> parts_of(const Source& source);

} // namespace pmtool
