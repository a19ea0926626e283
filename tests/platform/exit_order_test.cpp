#include "support/temp_folder.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

struct Outcome {
    int status = -1;
    std::string output;
};

Outcome run(const char* program, const std::vector<std::string>& arguments) {
    const pm::test::TempFolder folder;
    const int status = pm::test::run_program({program, arguments, {}, folder / "out", folder / "err"});
    return {status, folder.read("out")};
}

// Both ways of linking: the order of destruction differs.
void expect_kept(const std::vector<std::string>& arguments) {
    for (const char* program : {PM_EXIT_ORDER, PM_EXIT_ORDER_SHARED}) {
        const Outcome outcome = run(program, arguments);
        EXPECT_EQ(0, outcome.status) << program;
        EXPECT_EQ("kept", outcome.output) << program;
    }
}

} // namespace

TEST(ExitOrder, GlobalObjectMaySaveWhenItDies) {
    expect_kept({"global"});
    expect_kept({"global", "early"});
}

TEST(ExitOrder, StaticObjectMaySaveWhenItDies) {
    expect_kept({"static"});
    expect_kept({"static", "early"});
}

TEST(ExitOrder, ThreadLocalObjectMaySaveWhenItDies) {
    expect_kept({"thread_local"});
    expect_kept({"thread_local", "early"});
}

TEST(ExitOrder, HandlerOfTheExitMaySave) {
    expect_kept({"atexit"});
    expect_kept({"atexit", "early"});
}
