#pragma once

#include "codecs/codec_run.h"
#include "support/allocation_failures.h"
#include <gmock/gmock.h>

namespace pm::test {

// A failure is told once, as severe, with its name as place and detail.
inline void expect_failure(const CodecRun& run, std::uint32_t number, const std::u16string& name = u"") {
    EXPECT_FALSE(run.ok);
    ASSERT_EQ(1U, run.reports.size());
    const Report& report = run.reports.front();
    EXPECT_EQ(4, report.kind); // severe
    EXPECT_EQ(number, report.number);
    EXPECT_EQ(name, report.place);
    EXPECT_EQ(name, report.detail);
    EXPECT_THAT(run.sources, testing::ElementsAre(u"$Workfile: pm_compress $ $Revision: #1 $"));
    EXPECT_THAT(run.argument_counts, testing::ElementsAre(0));
}

// The names told while each allocation of a call fails in turn.
template<class Codec>
std::vector<std::u16string> failed_allocations(CodecOperation<Codec> operation, const std::string& data) {
    std::vector<std::u16string> names;
    fail_each_allocation([&](int) {
        const CodecRun run = run_codec(operation, data);
        if (!FailingAllocation::was_hit()) {
            EXPECT_TRUE(run.ok);
            return;
        }
        ASSERT_EQ(1U, run.reports.size());
        expect_failure(run, PM_ERR_NO_MEMORY, run.reports.front().place);
        names.push_back(run.reports.front().place);
    });
    return names;
}

} // namespace pm::test
