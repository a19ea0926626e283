#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <pm/kit/diagnostic.h>
#include <pm/kit/export.h>
#include <pm/object.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A linter of files: what the library reports while it loads them, each at its true place, and what it reads
// without a word though it was hardly meant so. docs/check.md tells each rule with an example.
//
//     for (const pm::kit::Diagnostic& each : pm::kit::check_file("plotter.pia")) {
//         std::printf("%s:%llu: %s\n", each.place.file.c_str(), each.place.line, each.message.c_str());
//     }
//
// A check reads on behind a bad line. A line is one of the file as an editor counts; one of a compressed body
// is counted on from the header, as if the body stood there as text.
namespace pm::kit {

// A rule as docs/check.md has it. The texts are static.
struct CheckRule {
    std::string_view name;    // small letters and hyphens
    Severity severity;        // the usual one; a diagnostic of less weight may be a note
    std::string_view formats; // "PIA DPIA", or "all"
    std::string_view meaning; // one sentence
};

// All rules, by name.
[[nodiscard]] PM_KIT_API std::span<const CheckRule> check_rules() noexcept;
// The rule of that name, or null.
[[nodiscard]] PM_KIT_API const CheckRule* find_check_rule(std::string_view name) noexcept;

struct CheckOptions {
    // What the file is; without one its content tells. For a folder it counts for each file that is met.
    std::optional<PM_Object::FileType> type = {};
    // The one section of a DPIA file, by name, or plotter of a CFG file, by number; all if empty.
    std::string section = {};
    // Of narrow text, with the meaning of code_page.h; 0 is the system's as it is set. Another one is set for
    // the time of the check, for the calling thread alone.
    unsigned code_page = 0;
    // Names of rules: the only ones, all if empty, and those that are left out.
    std::vector<std::string> rules = {};
    std::vector<std::string> without = {};
    // Whether to load, save, load again and compare: rule "round-trip". It counts for formats that are saved.
    bool round_trip = false;
};

// What there is to say of a file, in the order of its lines; of a folder, of each file of a known kind in it
// and in the folders below, links to folders apart. A folder with a string file is one description of a
// device, and so is the string file itself; any other table is checked with the description in its folder.
//
// `file` is UTF-8, or the bytes that the system knows the file by. What can't be read is a diagnostic of the
// rule "unreadable" with the library's number, and what is of no known kind one of "unknown-kind". Throws
// Error for the name of a rule that isn't there (find_check_rule()), std::bad_alloc, PM_Memory_Exception (55)
// or PM_Severe number 64 for want of memory, and PM_Error number 78 for a code page that the machine can't
// convert.
//
// Several threads may check at once.
[[nodiscard]] PM_KIT_API std::vector<Diagnostic> check_file(std::string_view file,
                                                            const CheckOptions& options = {});

// The same for content at hand; `name` is what diagnostics call it. Of a device description only the lines of
// the one table or string file are looked at.
[[nodiscard]] PM_KIT_API std::vector<Diagnostic>
check_content(std::string_view content, std::string_view name, const CheckOptions& options = {});

// The same for a stream, which is read to its end and needn't be able to seek. One that fails is unreadable.
[[nodiscard]] PM_KIT_API std::vector<Diagnostic> check_stream(std::istream& stream, std::string_view name,
                                                              const CheckOptions& options = {});

} // namespace pm::kit
