#include "check/legacy_line.h"

#include "check/numbers.h"
#include <fmt/format.h>
#include <pm/error_number.h>

namespace pm::kit {

namespace {

constexpr std::size_t longest_line = 1023; // bytes

} // namespace

bool next_legacy_line(SourceText& source, LegacyLine& line, Findings& findings) {
    if (!source.next_line(line.line)) return false;
    const std::string_view whole = line.line.text;
    line.too_long = whole.size() > longest_line;
    line.text = whole.substr(0, std::min(whole.find('\0'), longest_line));
    if (line.too_long) {
        findings.add({.rule = Rule::bad_line,
                      .place = source.place(line.line),
                      .message = fmt::format("The line has {} bytes, and {} are read at most.", whole.size(),
                                             longest_line),
                      .number = PM_ERR_BAD_LINE});
    } else if (!skip(whole.substr(line.text.size()), std::string_view("\0 \t\r", 4)).empty()) {
        findings.add({Rule::ignored_text, source.place(line.line, whole.data() + line.text.size()),
                      "What stands behind a zero byte in the line isn't read."});
    }
    if (line.text.ends_with('\r')) line.text.remove_suffix(1);
    line.text = skip(cut_end(line.text, " "), " \t");
    return true;
}

} // namespace pm::kit
