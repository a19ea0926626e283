#pragma once

#include <cstdint>
#include <pm/kit/export.h>
#include <string>
#include <string_view>

// What a check says of a file or a tree: which rule, how bad, where, and in words.
namespace pm::kit {

enum class Severity {
    note,    // worth knowing; nothing is wrong
    warning, // read, but hardly as it was meant
    error    // not read, lost, or not possible
};

// "note", "warning" or "error".
[[nodiscard]] PM_KIT_API std::string_view severity_name(Severity severity) noexcept;

// Where in a file. What isn't known is empty or 0.
struct Place {
    std::string file;       // as the caller named it; of a description the one of its files, with its folder
    std::string section;    // of a DPIA file or the number of a plotter
    std::uint64_t line = 0; // as an editor counts, from 1
    std::uint32_t column = 0; // in characters, from 1

    bool operator==(const Place&) const = default;
};

// Texts are UTF-8. `rule` is a name of small letters and hyphens that stays the same from version to version.
struct Diagnostic {
    std::string rule;
    Severity severity = Severity::error;
    Place place;
    std::string path;         // of the node or property it concerns, "\media\copies"; empty if there is none
    std::string message;      // one sentence without the place, the rule and the number
    std::uint32_t number = 0; // error_number.h, if the library said it; else 0

    bool operator==(const Diagnostic&) const = default;
};

} // namespace pm::kit
