#pragma once

#include "check/content.h"
#include "check/source_text.h"
#include <string_view>

namespace pm::kit {

// Whether a file is called as a table of a description is, or its string file: it ends in ".pdt".
[[nodiscard]] bool is_table_name(std::string_view file);

// A whole description, by its folder.
void check_description(std::string_view folder, Findings& findings);
// A table or string file: with the description in its folder if it has a file's name, or else alone.
void check_table_file(const CheckedContent& content, const NarrowText& narrow, Findings& findings);

} // namespace pm::kit
