#pragma once

#include "report_handler.h"
#include <cstddef>
#include <pm/pm.h>
#include <string>
#include <string_view>
#include <vector>

namespace pmtool {

// Tells where in a text file the line of a report stands.
//
// The library counts all lines of PC2, CFG and PCP files, those of a PC2 file from the one behind its version
// line. In the other formats its count leaves out blank lines, and for some lines it tells no number at all;
// there the finder looks for the text of the line instead.
class LineFinder {
public:
    // Finds in the text of a file.
    LineFinder(std::string_view content, PM_Object::FileType type);
    // Finds in a file; one that can't be read has no lines to find.
    static LineFinder of_file(const std::string& path, PM_Object::FileType type);

    // The line's number from 1, or the report's own if the text isn't found. Reports of one load come in the
    // order of their lines, so that each is looked for behind the one before.
    int find(const Report& report);
    // The same, with 0 for a text that isn't found.
    int find_text(const Report& report);
    // How many lines that aren't blank stand behind the one of this number.
    std::size_t lines_behind(int line) const;

private:
    bool matches(std::size_t line, const Report& report, const std::string& wanted) const;

    std::vector<std::string> m_lines;
    std::size_t m_next = 0;
    bool m_all_counted = false;
    int m_uncounted = 0; // lines in front of the first one that is counted
};

} // namespace pmtool
