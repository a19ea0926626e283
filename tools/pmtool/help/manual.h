#pragma once

#include "commands.h"
#include <string>

namespace pmtool {

// The source of a manual page, as man(7) tells it: pmtool(1) for an empty name, else that of a group of
// verbs, pmtool-NAME(1). Failure if there is no such group.
std::string manual_page(const Commands& commands, const std::string& group);

// What a shell reads to complete the words of a command line: bash, zsh or fish. Failure for another.
std::string completion_script(const Commands& commands, const std::string& shell);

} // namespace pmtool
