#pragma once

#include "support/exceptions.h"
#include "support/recording_handler.h"
#include <cstdint>
#include <functional>
#include <gmock/gmock.h>
#include <pm/object.h>
#include <string>

namespace pm::test {

// What a load tells of once.
struct ReportOutcome {
    std::string content; // names the case in a failure
    int kind = 0;
    std::uint32_t number = 0;
    std::u16string place;
    std::u16string detail;
};

// Looks at what a load left behind; `whole` tells that it went on to the end.
using LoadCheck = std::function<void(const PM_Object& object, bool whole)>;

// Expects of a load that meets `expected` the three things that can become of a report: thrown as a plain
// exception without a handler, passed over by a handler that goes on, cancelled by one that doesn't.
inline void expect_report(const ReportOutcome& expected, const std::function<void(PM_Object&)>& load,
                          const LoadCheck& check = {}, const char* file = __builtin_FILE(),
                          int line = __builtin_LINE()) {
    const testing::ScopedTrace trace(file, line, expected.content);
    const auto look = [&](const PM_Object& object, bool whole) {
        if (check) check(object, whole);
    };
    const auto expected_reports =
        testing::ElementsAre(is_report(expected.kind, expected.number, expected.place, expected.detail));

    PM_Object without;
    expect_thrown<ZT_Exception>([&] { load(without); }, expected.number, expected.place, expected.detail);
    look(without, false);

    RecordingHandler goes_on(1);
    PM_Object passed(&goes_on);
    load(passed);
    EXPECT_THAT(goes_on.reports, expected_reports);
    look(passed, true);

    RecordingHandler stops(0);
    PM_Object stopped(&stops);
    expect_thrown<ZT_Canceled_Error>([&] { load(stopped); }, expected.number, expected.place,
                                     expected.detail);
    EXPECT_THAT(stops.reports, expected_reports);
    look(stopped, false);
}

} // namespace pm::test
