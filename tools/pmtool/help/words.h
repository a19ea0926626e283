#pragma once

#include "commands.h"
#include <string>
#include <string_view>
#include <vector>

// What help, manual pages and completions have in common: the parts of a verb as texts.
namespace pmtool {

// "pmtool set [OPTIONS] FILE PATH VALUE"
std::string usage_line(const VerbEntry& entry);

// Paragraphs of a text, an empty line between two in it. A line that begins with a blank stays a line of its
// own.
std::vector<std::string> paragraphs(std::string_view text);

// A line of examples: the command, and what it does, which may be empty.
struct Example {
    std::string command;
    std::string text;
};
std::vector<Example> examples_of(std::string_view text);

// The values that the option takes, if there are few: for shells. Empty where any text may stand.
std::vector<std::string> values_of(const OptionWords& option);

} // namespace pmtool
