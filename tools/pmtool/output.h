#pragma once

#include "formats.h"
#include "source.h"
#include "tree_compare.h"
#include <optional>
#include <pm/pm.h>
#include <string>
#include <vector>

namespace pmtool {

// A file to write, as the command line tells it.
struct OutputOptions {
    std::string file;
    std::string to; // empty: by extension
    bool compress = false;
    bool utf8 = false;
    std::optional<std::string> tag;
};

struct Output {
    std::string file;
    const Format* format;
    std::u16string tag;
    bool utf8 = false;
};

// The format of an output; Failure if it isn't told, or if an option is set that only a PIA file has.
const Format& output_format(const OutputOptions& options);

// The free text in the header of a PIA file, without the word that asks for compression; empty for other
// formats.
std::string tag_of(const Source& source);
bool is_compressed(const Source& source);
std::string with_compression(const std::string& tag);

// Writes the whole tree; the target is untouched on failure. What the written file doesn't give back as it
// was is told on standard error.
void save_tree(const PM_Object& object, const Output& output);

// Tells on standard error what of `file` reads back other than it was, at most ten lines.
void warn_of_losses(const std::string& file, const std::vector<Difference>& losses);

} // namespace pmtool
