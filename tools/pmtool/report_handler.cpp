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

Report make_report(std::uint32_t number, const char16_t* place, const char16_t* detail,
                   const std::string& file) {
    Report report;
    report.number = number;
    const std::u16string_view wide = detail != nullptr ? detail : u"";
    if (number == PM_ERR_UNKNOWN_VALUE && wide.empty()) {
        report.subject = printable(to_utf8(place != nullptr ? place : u""));
        return report;
    }
    const std::string text = to_utf8(wide);
    if (take_line_context(text, wide.size() >= longest_detail, file, report)) return report;
    report.subject = printable(trim(text));
    if (report.subject == file) report.subject.clear();
    return report;
}

Report make_report(const ZT_Exception& exception, const std::string& file) {
    return make_report(exception.m_number, exception.m_place, exception.m_detail, file);
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

void ReportHandler::on_kind_0(std::uint64_t, std::uint32_t number, const char16_t* place,
                              const char16_t* detail, const char16_t*) {
    keep(number, place, detail);
}

int ReportHandler::on_warning(std::uint64_t, std::uint32_t number, const char16_t* place,
                              const char16_t* detail, const char16_t*) {
    return keep(number, place, detail);
}

void ReportHandler::on_severe(std::uint64_t, std::uint32_t number, const char16_t* place,
                              const char16_t* detail, const char16_t*) {
    keep(number, place, detail);
}

int ReportHandler::on_error(std::uint64_t, std::uint32_t number, const char16_t* place,
                            const char16_t* detail, const char16_t*) {
    return keep(number, place, detail);
}

int ReportHandler::on_kind_3(std::uint64_t, std::uint32_t number, const char16_t* place,
                             const char16_t* detail, const char16_t*) {
    return keep(number, place, detail);
}

void ReportHandler::on_kind_5(std::uint64_t, std::uint32_t number, const char16_t* place,
                              const char16_t* detail, const char16_t*) {
    keep(number, place, detail);
}

void ReportHandler::set_arguments(const std::uint64_t*, std::int32_t) {}

int ReportHandler::keep(std::uint32_t number, const char16_t* place, const char16_t* detail) {
    m_reports.push_back(make_report(number, place, detail, m_file));
    return 1;
}

} // namespace pmtool
