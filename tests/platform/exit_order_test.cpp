#include <array>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

namespace {

struct Outcome {
    int status = -1;
    std::string output;
};

Outcome run(const std::string& command) {
    Outcome outcome;
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return outcome;
    std::array<char, 256> buffer{};
    while (const std::size_t got = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
        outcome.output.append(buffer.data(), got);
    }
    outcome.status = pclose(pipe);
    return outcome;
}

// Both ways of linking: the order of destruction differs.
void expect_kept(const std::string& arguments) {
    for (const char* program : {PM_EXIT_ORDER, PM_EXIT_ORDER_SHARED}) {
        const Outcome outcome = run(std::string(program) + " " + arguments);
        EXPECT_EQ(0, outcome.status) << program;
        EXPECT_EQ("kept\n", outcome.output) << program;
    }
}

} // namespace

TEST(ExitOrder, GlobalObjectMaySaveWhenItDies) {
    expect_kept("global");
    expect_kept("global early");
}

TEST(ExitOrder, StaticObjectMaySaveWhenItDies) {
    expect_kept("static");
    expect_kept("static early");
}

TEST(ExitOrder, ThreadLocalObjectMaySaveWhenItDies) {
    expect_kept("thread_local");
    expect_kept("thread_local early");
}

TEST(ExitOrder, HandlerOfTheExitMaySave) {
    expect_kept("atexit");
    expect_kept("atexit early");
}
