#pragma once

#include "check/findings.h"
#include "check/source_text.h"

namespace pm::kit {

// A line of a PC2, CFG or PCP file as a load takes it: without blanks, and up to a zero byte.
struct LegacyLine {
    SourceLine line;
    std::string_view text;
    bool too_long = false;

    [[nodiscard]] bool is_idle() const { return text.empty() || text.front() == ';'; }
};

// The next line; what the form of lines itself has to say is added.
bool next_legacy_line(SourceText& source, LegacyLine& line, Findings& findings);

} // namespace pm::kit
