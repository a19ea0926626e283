#include "tools/run_tool.h"

#include <algorithm>

namespace pm::test {

ToolRun ToolTest::run(const std::vector<std::string>& arguments) const {
    return run(arguments, ToolSetting{});
}

ToolRun ToolTest::run_unprivileged(const std::vector<std::string>& arguments) const {
    return run(arguments, ToolSetting{.privileged = false});
}

ToolRun ToolTest::run_with_input(const std::vector<std::string>& arguments, const std::string& input) const {
    return run(arguments, ToolSetting{.input = input});
}

ToolRun ToolTest::run(const std::vector<std::string>& arguments, const ToolSetting& setting) const {
    const TempFolder output;
    if (setting.input) output.write("in", *setting.input);
    ProgramRun program{PMTOOL, arguments, folder.path(), output / "out", output / "err", setting.privileged};
    if (setting.output == "closed") {
        program.out.clear();
    } else if (!setting.output.empty()) {
        program.out = setting.output;
    }
    if (setting.input) program.in = output / "in";
    program.environment = setting.environment;
    const int status = run_program(program);
    return {status, setting.output.empty() ? output.read("out") : "", output.read("err")};
}

void ToolTest::expect_not_found(const std::vector<std::string>& arguments, const std::string& line) const {
    const ToolRun result = run(arguments);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_EQ("pmtool: " + line + "\n", result.err);
}

void ToolTest::expect_output(const std::vector<std::string>& arguments, const std::string& out) const {
    const ToolRun result = run(arguments);
    EXPECT_EQ(0, result.status);
    EXPECT_EQ(out, result.out);
    EXPECT_EQ("", result.err);
}

void ToolTest::expect_no(const std::vector<std::string>& arguments, const std::string& out) const {
    const ToolRun result = run(arguments);
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(out, result.out);
    EXPECT_EQ("", result.err);
}

void ToolTest::expect_trouble(const std::vector<std::string>& arguments, const std::string& line) const {
    const ToolRun result = run(arguments);
    EXPECT_EQ(2, result.status);
    EXPECT_EQ("", result.out);
    EXPECT_EQ("pmtool: " + line + "\n", result.err);
}

void ToolTest::copy_sample(const std::string& sample, const std::string& name) const {
    std::filesystem::copy_file(std::filesystem::path(sample_folder) / sample, folder / name);
}

std::vector<std::string> ToolTest::file_names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

} // namespace pm::test
