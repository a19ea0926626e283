#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pm::kit::test {

// One example of the rules' page: a kind of file, and what it holds as code spans, with the escapes \n, \r,
// \t, \0,
// \\ and \x with two digits:
//
//     PIA       lines behind an ordinary header; "PIA file" is whole; "in 65001" behind either sets the code
//     page PC2       lines behind a version line; "PC2 file" is whole PCP       lines behind the comment that
//     marks a file; "PCP file" is whole CFG, any  whole; "any" is of the kind that its content tells table T
//     the table of that name by itself DPIA      sections "name: body" of plain text; between them "gap n",
//     "back n" and "longer n" move the next one or
//               make it longer, "end n" adds bytes at the end, "version n" and "count n" change words
//     DOC       the worked example of the format's page: "offset: bytes", "cut offset", "end n"
//     PDT       a description of headings alone and its rows, told as "table: row" with an arrow for a tab,
//     "form n:",
//               "strings:", "bare table:" for a row that isn't filled up, "unended table:", "without table",
//               "blank table" for one of no bytes
//
// Gives what one rule says, each as "file [section] line:column number severity path: message", without what
// is not known or usual.
std::vector<std::string> run_example(std::string_view rule, std::string_view example);

// The text of a code span.
std::string unescaped(std::string_view text);

} // namespace pm::kit::test
