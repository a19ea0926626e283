#include <check/pia/body.h>
#include <gmock/gmock.h>

namespace pm::kit {
namespace {

TEST(PiaBody, LibraryCountsTheLinesThatHoldMoreThanBlanks) {
    const NarrowText narrow(1252);
    SourceText source("a=1\n\n \t\n;x\nb{\n}", narrow, {}, 3);
    Findings findings({});
    PiaBody body(source, findings);
    body.check();
    EXPECT_THAT(body.counted_lines(), testing::ElementsAre(3U, 6U, 7U, 8U));
}

} // namespace
} // namespace pm::kit
