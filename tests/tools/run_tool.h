#pragma once

#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <pm_test_paths.h>
#include <string>
#include <vector>

namespace pm::test {

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

    // Expect a run that ends well with this output, an answer of no, or trouble told in one line.
    void expect_output(const std::vector<std::string>& arguments, const std::string& out) const;
    void expect_no(const std::vector<std::string>& arguments, const std::string& out) const;
    void expect_trouble(const std::vector<std::string>& arguments, const std::string& line) const;

    void copy_sample(const std::string& sample, const std::string& name) const;
    std::vector<std::string> file_names() const;

    TempFolder folder;

private:
    ToolRun run_as(const std::vector<std::string>& arguments, bool privileged) const;
};

inline const std::string sample_folder = PM_SAMPLES;

} // namespace pm::test
