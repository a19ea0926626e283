#pragma once

#include <optional>
#include <pm/pm.h>
#include <string>
#include <string_view>

namespace pmtool {

struct Format {
    std::string_view name; // as --from and --to take it
    std::string_view title;
    std::string_view extension; // of an output, with its dot
    PM_Object::FileType type;
    bool is_written; // whether the library writes it
    bool is_text;    // lines of text that can be found by their number
};

// "pia, dpia, doc": the names of all formats, or of those that are written.
std::string format_names(bool written_only);

// Failure if there is no such format.
const Format& format_named(const std::string& name);

// By the extension of an output's name, without regard to case; Failure if that tells no written format.
const Format& format_of_output(const std::string& file);

struct Identity {
    const Format* format;
    std::string evidence;
};

// By content. Failure if the file can't be read or is of no known format.
Identity identify(const std::string& file);

// The string file in a folder of driver tables, with its path; nothing if there is none.
std::optional<std::string> find_string_file(const std::string& folder);

} // namespace pmtool
