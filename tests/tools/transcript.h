#pragma once

#include <string>
#include <string_view>
#include <vector>

// Pages of docs/ with transcripts: fenced blocks "console" that are run, one after the other, in one folder
// that begins with the sample files.
//
//     $ pmtool get plotter.pia '\media\copies'      a command for the shell
//     1                                             what it prints, on either stream
//     [exit code 1]                                 where it isn't 0
namespace pm::test {

struct TranscriptStep {
    int line = 0; // in the page
    std::string command;
    std::string output; // as the page tells it
};

[[nodiscard]] std::vector<TranscriptStep> transcript_of(std::string_view page);

// Runs the transcripts of docs/<name>.md and expects what they tell.
void expect_page(const std::string& name);

} // namespace pm::test
