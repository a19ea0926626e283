#pragma once

#include <string>
#include <vector>

namespace pm::test {

// What a verb did that was run within this process.
struct VerbRun {
    int status = 0;
    std::string out;
    std::string err;
};

// Takes standard output and standard error while it lives. One at a time.
class OutputTaker {
public:
    OutputTaker();
    ~OutputTaker();
    OutputTaker(const OutputTaker&) = delete;
    OutputTaker& operator=(const OutputTaker&) = delete;

    // Runs a verb: the words behind "pmtool".
    VerbRun run(std::vector<std::string> words) const;

private:
    int m_out;
    int m_err;
    int m_out_before;
    int m_err_before;
};

} // namespace pm::test
