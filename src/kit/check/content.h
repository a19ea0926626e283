#pragma once

#include "check/findings.h"
#include <string>
#include <string_view>

namespace pm::kit {

// A file on its way to the check of its format.
struct CheckedContent {
    std::string_view bytes;
    std::string name; // as diagnostics call it
    std::string file; // by which the library can open it; empty for content at hand
};

// By its kind, told or found.
void check_content(const CheckedContent& content, const CheckOptions& options, Findings& findings);
// That it can't be read, for which the number stands.
void say_unreadable(std::string_view name, std::uint32_t number, Findings& findings);
// That a section was asked for, and its format has none.
void say_no_sections(std::string_view name, PM_Object::FileType type, Findings& findings);
// A file that isn't a folder.
void check_named(std::string_view file, const CheckOptions& options, Findings& findings);
// The same, but for one of no known kind, which is passed over.
void check_if_known(std::string_view file, const CheckOptions& options, Findings& findings);

} // namespace pm::kit
