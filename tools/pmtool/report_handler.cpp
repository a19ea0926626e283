#include "report_handler.h"

#include "failure.h"
#include "text.h"
#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <pm/error_number.h>
#include <string_view>

namespace pmtool {

namespace {

constexpr std::size_t longest_detail = ZT_Exception::detail_capacity - 1;
constexpr std::string_view separator = ", ";

// Takes the longest end of `text` that is a beginning of `tail` off it: a cut detail has lost the rest.
void drop_cut_tail(std::string_view& text, const std::string& tail) {
    for (std::size_t length = std::min(tail.size(), text.size()); length > 0; --length) {
        if (!text.ends_with(std::string_view(tail).substr(0, length))) continue;
        text.remove_suffix(length);
        return;
    }
}

// The library's form of a bad line: line feed, line number, ", ", the line, ", ", file name.
bool take_line_context(std::string_view detail, bool full, const std::string& file, Report& report) {
    if (!detail.starts_with('\n')) return false;
    detail.remove_prefix(1);
    const auto [end, error] = std::from_chars(detail.data(), detail.data() + detail.size(), report.line);
    std::string_view rest = detail.substr(static_cast<std::size_t>(end - detail.data()));
    if (error != std::errc() || !rest.starts_with(separator)) return false;
    rest.remove_prefix(separator.size());
    const std::string tail = std::string(separator) + file;
    report.cut = full && !rest.ends_with(tail);
    if (rest.ends_with(tail)) {
        rest.remove_suffix(tail.size());
    } else if (full) {
        drop_cut_tail(rest, tail);
    } else if (rest.ends_with(separator)) {
        rest.remove_suffix(separator.size());
    }
    report.subject = printable(rest);
    return true;
}

} // namespace

Report make_report(std::uint32_t number, std::u16string_view place, std::u16string_view detail,
                   const std::string& file) {
    Report report;
    report.number = number;
    if (number == PM_ERR_UNKNOWN_VALUE && detail.empty()) {
        report.subject = printable(shown(place));
        return report;
    }
    const std::string text = shown(detail);
    if (take_line_context(text, detail.size() >= longest_detail, file, report)) return report;
    report.subject = printable(trim(text));
    if (report.subject == file) report.subject.clear();
    return report;
}

Report make_report(const ZT_Exception& exception, const std::string& file) {
    const char16_t* place = exception.m_place;
    return make_report(exception.m_number, place != nullptr ? place : u"", exception.m_detail, file);
}

bool is_bad_line(const Report& report) {
    return report.number == PM_ERR_BAD_LINE || report.number == PM_ERR_UNKNOWN_VALUE ||
           report.number == PM_ERR_NOT_HEXADECIMAL;
}

std::string describe(const Report& report, const std::string& file) {
    std::string text = file;
    if (report.line > 0) text += fmt::format(":{}", report.line);
    text += fmt::format(": {}", number_text(report.number));
    if (!report.subject.empty()) text += fmt::format(": {}{}", report.subject, report.cut ? "..." : "");
    return text;
}

pm::Answer ReportHandler::on_report(int, std::uint32_t number, std::u16string_view place,
                                    std::u16string_view detail) {
    m_reports.push_back(make_report(number, place, detail, m_file));
    return pm::Answer::go_on;
}

} // namespace pmtool
