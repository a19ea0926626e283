#pragma once

#include "support/temp_folder.h"
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <pm_test_paths.h>
#include <string>
#include <vector>

namespace pm::test {

// How to run the program, beside its arguments.
struct ToolSetting {
    bool privileged = true;                    // with root's right to open any file, if root runs it
    std::optional<std::string> input = {};     // standard input; without one that of the test
    std::vector<std::string> environment = {}; // "NAME=VALUE", added
    std::string output = {};                   // a file for standard output; "closed" closes it
};

struct ToolRun {
    int status = -1; // exit code; -1 if the program ended otherwise
    std::string out;
    std::string err;
};

// Runs pmtool with its files in a folder of its own.
class ToolTest : public ::testing::Test {
protected:
    ToolRun run(const std::vector<std::string>& arguments) const;
    // The same without root's right to open any file.
    ToolRun run_unprivileged(const std::vector<std::string>& arguments) const;

    ToolRun run(const std::vector<std::string>& arguments, const ToolSetting& setting) const;
    // With this on standard input.
    ToolRun run_with_input(const std::vector<std::string>& arguments, const std::string& input) const;

    // Expect a run that ends well with this output, an answer of no, or trouble told in one line.
    void expect_output(const std::vector<std::string>& arguments, const std::string& out) const;
    void expect_no(const std::vector<std::string>& arguments, const std::string& out) const;
    void expect_trouble(const std::vector<std::string>& arguments, const std::string& line) const;

    void copy_sample(const std::string& sample, const std::string& name) const;
    std::vector<std::string> file_names() const;

    TempFolder folder;

    // Expect code 1 with nothing on standard output and this line on standard error.
    void expect_not_found(const std::vector<std::string>& arguments, const std::string& line) const;
};

// With its drive, where there are drives: programs run in folders of other ones.
inline const std::string sample_folder = std::filesystem::absolute(PM_SAMPLES).generic_string();

// A name with the system's own separators, as files that are found in a folder are shown.
inline std::string as_found(const std::string& name) {
    return std::filesystem::path(name).make_preferred().string();
}

} // namespace pm::test
