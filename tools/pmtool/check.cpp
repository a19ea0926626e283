#include "check.h"

#include "failure.h"
#include "line_finder.h"
#include "report_handler.h"
#include <algorithm>
#include <fmt/format.h>
#include <optional>

namespace pmtool {

namespace {

// Numbers that say something about the file's content. All others are trouble with getting at it.
constexpr std::uint32_t content_numbers[] = {51, 53, 54, 57, 66, 69, 82, 83, 84, 88, 89, 92, 96, 97, 99};

struct PartCheck {
    std::vector<Report> reports;
    bool stopped = false; // the last report ended the reading
};

PartCheck check_part(const Source& part) {
    ReportHandler handler(part.path);
    PM_Object object(&handler);
    PartCheck result;
    std::optional<Report> last;
    try {
        load(object, part, u"\\");
    } catch (const ZT_Exception& e) {
        last = make_report(e, part.path);
        if (std::ranges::find(content_numbers, last->number) == std::end(content_numbers)) {
            throw Failure(describe(*last, part.file));
        }
        result.stopped = true;
    }
    result.reports = handler.reports();
    if (last) result.reports.push_back(*last);
    return result;
}

std::string name_of(const Source& part) {
    if (part.section.empty() || part.format->type == PM_Object::FILE_CFG) return part.file;
    return fmt::format("{}[{}]", part.file, part.section);
}

struct Found {
    int line;
    std::string text;
    bool operator==(const Found&) const = default;
};

void append_found(const Source& part, std::vector<Found>& all) {
    PartCheck result = check_part(part);
    LineFinder finder(part.format->is_text ? part.path : "");
    for (std::size_t i = 0; i < result.reports.size(); ++i) {
        Report& report = result.reports[i];
        if (is_bad_line(report)) report.line = finder.find(report);
        Found found{report.line, describe(report, name_of(part))};
        if (result.stopped && i + 1 == result.reports.size()) found.text += "; reading stops here";
        // A line that belongs to no plotter is bad in each of them.
        if (std::ranges::find(all, found) == all.end()) all.push_back(std::move(found));
    }
}

} // namespace

std::vector<std::string> find_bad_lines(const Source& source) {
    std::vector<Found> all;
    for (const Source& part : parts_of(source))
        append_found(part, all);
    if (source.format->type == PM_Object::FILE_CFG) std::ranges::stable_sort(all, {}, &Found::line);
    std::vector<std::string> lines;
    for (Found& found : all)
        lines.push_back(std::move(found.text));
    return lines;
}

} // namespace pmtool
