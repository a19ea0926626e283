#pragma once

#include <cstdint>
#include <pm/pm.h>
#include <string>
#include <string_view>
#include <vector>

namespace pmtool {

// What an exception or a report of the library says, taken apart for display.
struct Report {
    std::uint32_t number = 0;
    int line = 0;        // 0: not known
    std::string subject; // the bad line, or what else it concerns; may be empty
    bool cut = false;    // the subject's end is missing
};

// `file` is the file's name as the library was given it.
Report make_report(std::uint32_t number, std::u16string_view place, std::u16string_view detail,
                   const std::string& file);
Report make_report(const ZT_Exception& exception, const std::string& file);

// Whether the report is about one line of a text file.
bool is_bad_line(const Report& report);

// "file:12: The line isn't valid (error 57): the line"
std::string describe(const Report& report, const std::string& file);

// Keeps all reports and lets every operation go on.
class ReportHandler : public pm::ReportHandler {
public:
    explicit ReportHandler(std::string file) : m_file(std::move(file)) {}

    pm::Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                         std::u16string_view detail) override;

    const std::vector<Report>& reports() const { return m_reports; }

private:
    std::string m_file;
    std::vector<Report> m_reports;
};

} // namespace pmtool
