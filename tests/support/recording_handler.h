#pragma once

#include "platform/code_page.h"
#include <cstdint>
#include <gmock/gmock.h>
#include <ostream>
#include <pm/error_handler.h>
#include <string>
#include <string_view>
#include <vector>

namespace pm::test {

struct Report {
    int kind = 0; // of the exception
    std::uint32_t number = 0;
    std::u16string place;
    std::u16string detail;

    friend void PrintTo(const Report& report, std::ostream* out) {
        *out << "kind " << report.kind << ", " << report.number << " at \""
             << to_narrow(report.place, utf8_code_page) << "\" with \""
             << to_narrow(report.detail, utf8_code_page) << '"';
    }
};

// EXPECT_THAT(handler.reports, ElementsAre(is_report(1, PM_ERR_BAD_LINE, place, u"")))
inline testing::Matcher<const Report&> is_report(int kind, std::uint32_t number, const std::u16string& place,
                                                 const std::u16string& detail) {
    return testing::AllOf(
        testing::Field("kind", &Report::kind, kind), testing::Field("number", &Report::number, number),
        testing::Field("place", &Report::place, place), testing::Field("detail", &Report::detail, detail));
}

inline std::vector<std::uint32_t> numbers_of(const std::vector<Report>& reports) {
    std::vector<std::uint32_t> all;
    all.reserve(reports.size());
    for (const Report& report : reports) {
        all.push_back(report.number);
    }
    return all;
}

// Keeps every report and answers each with `answer`.
class RecordingHandler : public ReportHandler {
public:
    explicit RecordingHandler(int given_answer = 1) : answer(given_answer) {}

    Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                     std::u16string_view detail) override {
        reports.push_back({kind, number, std::u16string(place), std::u16string(detail)});
        return static_cast<Answer>(answer);
    }

    std::vector<std::uint32_t> numbers() const { return numbers_of(reports); }

    int answer;
    std::vector<Report> reports;
};

// Keeps what a report has beside these too: its source, and the count of its arguments.
class SourceRecordingHandler : public ZT_Error_Handler {
public:
    void on_kind_0(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const char16_t* source) override {
        record(0, number, place, detail, source);
    }
    int on_warning(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const char16_t* source) override {
        return record(1, number, place, detail, source);
    }
    void on_severe(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const char16_t* source) override {
        record(4, number, place, detail, source);
    }
    int on_error(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                 const char16_t* source) override {
        return record(2, number, place, detail, source);
    }
    int on_kind_3(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                  const char16_t* source) override {
        return record(3, number, place, detail, source);
    }
    void on_kind_5(std::uint64_t, std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const char16_t* source) override {
        record(5, number, place, detail, source);
    }
    void set_arguments(const std::uint64_t*, std::int32_t count) override {
        argument_counts.push_back(count);
    }

    std::vector<std::uint32_t> numbers() const { return numbers_of(reports); }

    std::vector<Report> reports;
    std::vector<std::u16string> sources; // of the reports, in their order
    std::vector<std::int32_t> argument_counts;

private:
    int record(int kind, std::uint32_t number, const char16_t* place, const char16_t* detail,
               const char16_t* source) {
        reports.push_back({kind, number, place, detail});
        sources.emplace_back(source);
        return 1;
    }
};

} // namespace pm::test
