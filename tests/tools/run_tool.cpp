#include "tools/run_tool.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pm::test {

namespace {

void send_to(int descriptor, const std::filesystem::path& file) {
    const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (opened < 0 || dup2(opened, descriptor) < 0) _exit(126);
    close(opened);
}

void take_from(const std::filesystem::path& file) {
    const int opened = open(file.c_str(), O_RDONLY);
    if (opened < 0 || dup2(opened, STDIN_FILENO) < 0) _exit(126);
    close(opened);
}

// A program that root starts has no rights beyond this set.
void drop_file_rights() {
    prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
    prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH);
}

int exit_code(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

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
    std::vector<std::string> words{"pmtool"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    argv.reserve(words.size() + 1);
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        send_to(STDERR_FILENO, output / "err");
        if (setting.output == "closed") {
            close(STDOUT_FILENO);
        } else {
            send_to(STDOUT_FILENO, setting.output.empty() ? output / "out" : setting.output);
        }
        if (setting.input) take_from(output / "in");
        if (chdir(folder.path().c_str()) != 0) _exit(126);
        for (const std::string& variable : setting.environment) {
            putenv(strdup(variable.c_str()));
        }
        if (!setting.privileged) drop_file_rights();
        execv(PMTOOL, argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {exit_code(status), setting.output.empty() ? output.read("out") : "", output.read("err")};
}

void ToolTest::expect_refusal(const std::vector<std::string>& arguments, const std::string& target,
                              const std::string& err) const {
    const bool was_there = std::filesystem::exists(folder / target);
    const std::string before = was_there ? folder.read(target) : "";
    const ToolRun result = run(arguments);
    EXPECT_EQ(2, result.status);
    EXPECT_EQ(err, result.err);
    EXPECT_EQ(was_there, std::filesystem::exists(folder / target));
    if (was_there) EXPECT_EQ(before, folder.read(target));
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
