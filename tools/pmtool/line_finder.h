#pragma once

#include "report_handler.h"
#include <string>
#include <string_view>
#include <vector>

namespace pmtool {

// Tells where in a text file the line of a report stands.
//
// The library counts the lines that it reads, which leaves out blank ones in some formats, and tells no
// number at all for others. The finder looks for the text of the line instead.
class LineFinder {
public:
    // Finds in the text of a file.
    explicit LineFinder(std::string_view content);
    // Finds in a file; one that can't be read has no lines to find.
    static LineFinder of_file(const std::string& path);

    // The line's number from 1, or the report's own if the text isn't found. Reports of one load come in the
    // order of their lines, so that each is looked for behind the one before.
    int find(const Report& report);
    // The same, with 0 for a text that isn't found.
    int find_text(const Report& report);

private:
    bool matches(std::size_t line, const Report& report, const std::string& wanted) const;

    std::vector<std::string> m_lines;
    std::size_t m_next = 0;
};

} // namespace pmtool
