#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <report/picture.h>
#include <report/reading.h>
#include <report/words.h>
#include <vector>

namespace pm::kit::report {

namespace {

// Dashes and gaps of each line type, in pixels.
constexpr std::array<std::string_view, 18> dashes{"",           "12 6",
                                                  "1.5 5",      "12 5 1.5 5",
                                                  "6 6",        "12 8",
                                                  "20 8",       "6 6 6 12",
                                                  "12 8 12 16", "20 8 20 16",
                                                  "12 8 20 8",  "12 5 5 5 5 5",
                                                  "20 6 6 6",   "20 5 1.5 5 1.5 5",
                                                  "20 5 1.5 5", "12 5 1.5 5 5 5 1.5 5",
                                                  "1.5 14",     "3 3 9 3"};

struct Line {
    double x1, y1, x2, y2;
};

// Where a sheet of 28 to 20 is folded.
std::vector<Line> folds(long folding_type) {
    const auto upright = [](double x) { return Line{x, 4, x, 24}; };
    switch (folding_type) {
    case 0:
        return {upright(11), upright(20)}; // letter
    case 1:
        return {upright(9), upright(16), upright(23)}; // Z
    case 2:
        return {upright(9), upright(16), upright(23.5)}; // double gate
    case 3:
        return {upright(9)};
    case 4:
        return {upright(23)};
    case 5:
        return {upright(16)};
    case 6:
        return {upright(16), {2, 14, 30, 14}};
    default:
        return {};
    }
}

struct Point {
    double x, y;
};

} // namespace

std::string coordinate(double value) {
    constexpr double most = 1e6;
    if (std::isnan(value)) {
        return "0";
    }
    std::string text = fmt::format("{:.2f}", std::clamp(value, -most, most));
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text == "-0" ? "0" : text;
}

Picture::Picture(Html& html, std::string_view title, Box size, std::string_view css_class)
    : Picture(html, title, size, size, css_class) {}

Picture::Picture(Html& html, std::string_view title, Box size, Box units, std::string_view css_class)
    : m_html(html),
      m_svg(html, "svg",
            {{"class", std::string(css_class)},
             {"role", "img"},
             {"width", coordinate(size.width)},
             {"height", coordinate(size.height)},
             {"viewBox", fmt::format("0 0 {} {}", coordinate(units.width), coordinate(units.height))}}) {
    html.element("title", title);
}

void Picture::rectangle(double x, double y, double width, double height, std::string_view css_class) {
    m_html.empty("rect", {{"x", coordinate(x)},
                          {"y", coordinate(y)},
                          {"width", coordinate(std::max(width, 0.0))},
                          {"height", coordinate(std::max(height, 0.0))},
                          {"class", std::string(css_class)}});
}

void Picture::line(double x1, double y1, double x2, double y2, std::string_view css_class) {
    m_html.empty("line", {{"x1", coordinate(x1)},
                          {"y1", coordinate(y1)},
                          {"x2", coordinate(x2)},
                          {"y2", coordinate(y2)},
                          {"class", std::string(css_class)}});
}

void Picture::path(std::string_view commands, std::string_view css_class) {
    m_html.empty("path", {{"d", std::string(commands)}, {"class", std::string(css_class)}});
}

void Picture::text(double x, double y, std::string_view anchor, std::string_view text) {
    m_html.element("text", {{"x", coordinate(x)}, {"y", coordinate(y)}, {"text-anchor", std::string(anchor)}},
                   text);
}

void write_line_sample(Html& html, long line_type, double width, std::string_view title) {
    const double thickness = std::clamp(std::isnan(width) ? 1.0 : width, 0.75, 60.0);
    const double height = std::max(12.0, thickness + 4);
    const Picture picture(html, title, {150, height}, "sample");
    const bool known = line_type >= 0 && line_type < static_cast<long>(dashes.size());
    html.empty("line",
               {{"x1", "0"},
                {"y1", coordinate(height / 2)},
                {"x2", "150"},
                {"y2", coordinate(height / 2)},
                {"class", "pen-line"},
                {"stroke-width", coordinate(thickness)},
                {"stroke-dasharray", std::string(known ? dashes[static_cast<std::size_t>(line_type)] : "")}});
}

void write_range(Html& html, const Range& range, std::string_view title, std::string_view unit) {
    const double span = range.high - range.low;
    const double at = span > 0 ? std::clamp((range.by_default - range.low) / span, 0.0, 1.0) : 0.5;
    constexpr double left = 8;
    constexpr double length = 184;
    const double x = left + at * length;
    Picture picture(html,
                    fmt::format("{}: from {} to {}{}, by default {}{}", title, shown(range.low),
                                shown(range.high), unit, shown(range.by_default), unit),
                    {200, 42}, "range");
    picture.line(left, 14, left + length, 14, "scale");
    picture.line(left, 9, left, 19, "scale");
    picture.line(left + length, 9, left + length, 19, "scale");
    html.empty("circle", {{"cx", coordinate(x)}, {"cy", "14"}, {"r", "6"}, {"class", "knob"}});
    picture.text(left - 6, 37, "start", shown(range.low));
    picture.text(left + length + 6, 37, "end", shown(range.high));
    if (at > 0.2 && at < 0.8) {
        picture.text(x, 37, "middle", shown(range.by_default));
    }
}

void write_fold(Html& html, long folding_type) {
    Picture picture(html, fmt::format("Fold: {}", word(Code::folding_type, folding_type)), {32, 28}, "icon");
    picture.rectangle(2, 4, 28, 20, "sheet");
    for (const Line& fold : folds(folding_type)) {
        picture.line(fold.x1, fold.y1, fold.x2, fold.y2, "crease");
    }
}

void write_staple(Html& html, long location, double orientation) {
    const bool landscape = location >= 4;
    Picture picture(html, fmt::format("Staple: {}", word(Code::stapling_location, location)), {32, 32},
                    "icon");
    const Point size = landscape ? Point{28, 20} : Point{20, 28};
    const Point corner{16 - size.x / 2, 16 - size.y / 2};
    picture.rectangle(corner.x, corner.y, size.x, size.y, "sheet");
    const auto staple = [&](Point at) {
        html.empty("line", {{"x1", coordinate(at.x - 3)},
                            {"y1", coordinate(at.y)},
                            {"x2", coordinate(at.x + 3)},
                            {"y2", coordinate(at.y)},
                            {"class", "staple"},
                            {"transform", fmt::format("rotate({} {} {})", coordinate(-orientation),
                                                      coordinate(at.x), coordinate(at.y))}});
    };
    switch (location) {
    case 1:
    case 4:
        staple({corner.x + 5, corner.y + 5});
        break;
    case 2:
    case 5:
        staple({corner.x + size.x - 5, corner.y + 5});
        break;
    case 3:
        picture.line(16, corner.y, 16, corner.y + size.y, "crease");
        staple({16, corner.y + 8});
        staple({16, corner.y + size.y - 8});
        break;
    default:
        break;
    }
}

void write_cut(Html& html, long when) {
    Picture picture(html, fmt::format("Cut {}", word(Code::finishing_time, when)), {32, 28}, "icon");
    picture.rectangle(2, 3, 20, 9, "sheet");
    picture.rectangle(2, 16, 20, 9, "sheet");
    picture.line(0, 14, 25, 14, "cut");
    picture.path("M25 14l6-4M25 14l6 4", "blade");
}

void write_collation(Html& html, long collating_type) {
    Picture picture(html, fmt::format("Collating: {}", word(Code::collating_type, collating_type)), {32, 28},
                    "icon");
    const double shift = collating_type == 2 ? 4 : 0;
    for (int sheet = 0; sheet < 4; ++sheet) {
        const bool second_set = collating_type == 0 ? false : sheet >= 2;
        const double gap = collating_type == 1 && second_set ? 4 : 0;
        picture.rectangle(3 + (second_set ? shift : 0), 20 - 4 * sheet - gap, 20, 3, "sheet");
    }
}

} // namespace pm::kit::report
