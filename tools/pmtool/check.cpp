#include "check.h"

#include "failure.h"
#include "files.h"
#include "line_finder.h"
#include "output.h"
#include "report_handler.h"
#include "text.h"
#include <algorithm>
#include <fmt/format.h>
#include <optional>
#include <pm/error_number.h>
#include <sstream>

namespace pmtool {

namespace {

// Numbers that say something about the file's content. All others are trouble with getting at it.
constexpr std::uint32_t content_numbers[] = {
    PM_ERR_BAD_PATH,      PM_ERR_BAD_RAW_DATA,    PM_ERR_WRONG_TYPE,     PM_ERR_BAD_LINE,
    PM_ERR_NOT_READ,      PM_ERR_UNKNOWN_VERSION, PM_ERR_STREAM_FAILED,  PM_ERR_NO_SUCH_SECTION,
    PM_ERR_NOT_DECODED,   PM_ERR_UNKNOWN_VALUE,   PM_ERR_NOT_A_HEADER,   PM_ERR_NO_BLOCK,
    PM_ERR_INFLATE_START, PM_ERR_INFLATE,         PM_ERR_NOT_HEXADECIMAL};

// One reading: what the handler heard, and what ended it.
struct Reading {
    std::vector<Report> reports;
    std::optional<Report> last;
};

template<class Load>
Reading read_with(const Source& part, Load load_object) {
    ReportHandler handler(part.path);
    PM_Object object(&handler);
    Reading reading;
    try {
        load_object(object);
    } catch (const ZT_Exception& e) {
        reading.last = make_report(e, part.path);
        if (std::ranges::find(content_numbers, reading.last->number) == std::end(content_numbers)) {
            throw Failure(describe(*reading.last, part.file));
        }
    }
    reading.reports = handler.reports();
    return reading;
}

Reading read_text(const Source& part, const std::vector<std::string>& lines) {
    std::stringstream stream(fmt::format("{}", fmt::join(lines, "\n")));
    return read_with(part, [&](PM_Object& object) { object.load(stream, part.format->type, u"\\"); });
}

// What a part of a file says, with the lines where they are known, in their order.
struct PartCheck {
    std::vector<Report> reports;
    bool stopped = false; // the last report ended the reading
};

PartCheck placed(Reading reading, LineFinder finder) {
    PartCheck result{std::move(reading.reports), reading.last.has_value()};
    if (reading.last) result.reports.push_back(*reading.last);
    for (Report& report : result.reports) {
        if (is_bad_line(report)) report.line = finder.find(report);
    }
    return result;
}

std::vector<std::string> lines_of(std::string_view content) {
    std::vector<std::string> lines;
    while (!content.empty()) {
        lines.emplace_back(take_line(content));
    }
    return lines;
}

// In lines of PIA text.
LineFinder finder_in(const std::vector<std::string>& lines) {
    return {fmt::format("{}", fmt::join(lines, "\n")), PM_Object::FILE_PIA};
}

LineFinder finder_of(const Source& part) {
    const PM_Object::FileType type = part.format->type;
    return part.format->is_text ? LineFinder::of_file(part.path, type) : LineFinder("", type);
}

// Where the report that ended a reading stands among the lines, from 1; 0 if that isn't seen.
int last_line(const Reading& reading, const std::vector<std::string>& lines) {
    if (!reading.last || !is_bad_line(*reading.last)) return 0;
    LineFinder finder = finder_in(lines);
    for (const Report& report : reading.reports) {
        if (is_bad_line(report)) (void)finder.find_text(report);
    }
    return finder.find_text(*reading.last);
}

// A line in place of one that ends the reading; one that opens a node still does.
const char* harmless_line(const std::string& line) {
    return line.find('{') != std::string::npos ? "_{" : ";";
}

// Each takes a reading of its own, so that a file of nothing but such lines would take very long.
constexpr std::size_t most_ended = 1000;

// The reading of PIA text ends at some bad lines. Each is made harmless in its turn, so that those behind it
// are found too.
PartCheck check_on(const Source& part, Reading reading) {
    std::vector<std::string> lines = lines_of(read_file(part.path));
    std::vector<Report> ended;
    while (ended.size() < most_ended) {
        const int line = last_line(reading, lines);
        if (line == 0) break;
        std::string& text = lines[static_cast<std::size_t>(line) - 1];
        text = harmless_line(text);
        ended.push_back(*reading.last);
        ended.back().line = line;
        reading = read_text(part, lines);
    }
    PartCheck result = placed(std::move(reading), finder_in(lines));
    result.reports.insert(result.reports.end(), ended.begin(), ended.end());
    if (!result.stopped) std::ranges::stable_sort(result.reports, {}, &Report::line);
    return result;
}

PartCheck check_part(const Source& part) {
    Reading reading = read_with(part, [&](PM_Object& object) { load(object, part, u"\\"); });
    const bool plain_text = part.format->type == PM_Object::FILE_PIA && !is_compressed(part);
    if (reading.last && plain_text) return check_on(part, std::move(reading));
    return placed(std::move(reading), finder_of(part));
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
    const PartCheck result = check_part(part);
    for (std::size_t i = 0; i < result.reports.size(); ++i) {
        const Report& report = result.reports[i];
        Found found{report.line, describe(report, name_of(part))};
        if (result.stopped && i + 1 == result.reports.size()) found.text += "; reading stops here";
        // A line that belongs to no plotter is bad in each of them.
        const bool many_plotters = part.format->type == PM_Object::FILE_CFG;
        if (many_plotters && std::ranges::find(all, found) != all.end()) continue;
        all.push_back(std::move(found));
    }
}

} // namespace

std::vector<std::string> find_bad_lines(const Source& source) {
    std::vector<Found> all;
    for (const Source& part : parts_of(source)) {
        append_found(part, all);
    }
    if (source.format->type == PM_Object::FILE_CFG) std::ranges::stable_sort(all, {}, &Found::line);
    std::vector<std::string> lines;
    lines.reserve(all.size());
    for (Found& found : all) {
        lines.push_back(std::move(found.text));
    }
    return lines;
}

} // namespace pmtool
