#include "tools/transcript.h"

#include "support/temp_folder.h"
#include <array>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <pm_test_paths.h>
#include <sstream>
#include <sys/wait.h>

namespace pm::test {

namespace {

constexpr std::string_view prompt = "$ ";

std::string quoted(const std::string& text) {
    return '\'' + text + '\'';
}

// Everything that the command prints, and its exit code if it isn't 0. What the user has set for git counts
// for nothing.
std::string run(const std::string& command, const std::filesystem::path& folder) {
    const std::string tool_folder = std::filesystem::path(PMTOOL).parent_path();
    const std::string line =
        "export LC_ALL=C.UTF-8 GIT_CONFIG_NOSYSTEM=1 GIT_CONFIG_GLOBAL=/dev/null HOME=" + quoted(folder) +
        "; unset XDG_CONFIG_HOME; cd " + quoted(folder) + " && PATH=" + quoted(tool_folder) +
        ":$PATH && unset VISUAL EDITOR && { " + command + "\n} 2>&1";
    std::FILE* stream = popen(line.c_str(), "r");
    std::string output;
    std::array<char, 4096> block{};
    std::size_t count = 0;
    while ((count = std::fread(block.data(), 1, block.size(), stream)) > 0) {
        output.append(block.data(), count);
    }
    const int status = pclose(stream);
    if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
        output += "[exit code " + std::to_string(WEXITSTATUS(status)) + "]\n";
    }
    return output;
}

} // namespace

std::vector<TranscriptStep> transcript_of(std::string_view page) {
    std::vector<TranscriptStep> steps;
    std::istringstream stream{std::string(page)};
    std::string line;
    bool in_block = false;
    for (int number = 1; std::getline(stream, line); ++number) {
        if (line.starts_with("```")) {
            in_block = !in_block && line == "```console";
        } else if (in_block && line.starts_with(prompt)) {
            steps.push_back({number, line.substr(prompt.size()), ""});
        } else if (in_block && !steps.empty() && steps.back().command.ends_with('\\')) {
            steps.back().command += '\n' + line;
        } else if (in_block && !steps.empty()) {
            steps.back().output += line + '\n';
        }
    }
    return steps;
}

void expect_page(const std::string& name) {
    const TempFolder folder;
    std::filesystem::copy(PM_SAMPLES, folder.path(), std::filesystem::copy_options::recursive);
    const std::string page = TempFolder::read_file(std::filesystem::path(PM_DOCS) / (name + ".md"));
    const std::vector<TranscriptStep> steps = transcript_of(page);
    EXPECT_FALSE(steps.empty());
    for (const TranscriptStep& step : steps) {
        EXPECT_EQ(step.output, run(step.command, folder.path()))
            << name << ".md:" << step.line << ": " << step.command;
    }
}

} // namespace pm::test
