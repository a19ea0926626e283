#pragma once

#include <optional>
#include <pm/pm.h>
#include <string>
#include <string_view>

namespace pmtool {

struct Format {
    std::string_view name; // as --from and --to take it
    std::string_view title;
    std::string_view extension;              // of an output, with its dot
    std::optional<PM_Object::FileType> type; // nothing for JSON, which is the tool's own
    bool is_written;                         // whether the tool writes it
    bool is_text;                            // lines of text that can be found by their number

    bool is(PM_Object::FileType other) const { return type == other; }
    bool is_json() const { return !type; }
};

// "doc, dpia, pia": the names of all formats, or of those that are written.
std::string format_names(bool written_only);

// Failure if there is no such format.
const Format& format_named(const std::string& name);
const Format& format_of(PM_Object::FileType type);

// The format of an output: that of `to` if it isn't empty, else by the extension of the name, without regard
// to case. Failure if neither tells a format that is written.
const Format& format_of_output(const std::string& file, const std::string& to);

// Failure if the name's extension is that of another format, which nobody would look for behind it. `advice`
// is what to do about it beside another name; empty for nothing.
void require_extension(const std::string& file, const Format& format, std::string_view advice = {});
// The same for a page in HTML.
void require_page_extension(const std::string& file);

struct Identity {
    const Format* format;
    std::string evidence;
};

// By content. Failure if the file can't be read or is of no known format, which advises --from if the verb
// takes that.
Identity identify(const std::string& file, bool takes_from);
// The same for content at hand.
Identity identify_content(const std::string& file, std::string_view content, bool takes_from);

} // namespace pmtool
