#pragma once

#include <report/html.h>
#include <string>
#include <string_view>

// Pictures in SVG: what several sections draw. Colours come from the style sheet, by classes.
namespace pm::kit::report {

// A coordinate or length, with at most two decimals, within a million; 0 for what is no number.
[[nodiscard]] std::string coordinate(double value);

// An <svg> that a screen reader tells by its title; as long as this lives. The size is in pixels.
class Picture {
public:
    struct Box {
        double width;
        double height;
    };
    Picture(Html& html, std::string_view title, Box size, std::string_view css_class = {});
    // The same size, with other units inside.
    Picture(Html& html, std::string_view title, Box size, Box units, std::string_view css_class = {});

    void rectangle(double x, double y, double width, double height, std::string_view css_class);
    void line(double x1, double y1, double x2, double y2, std::string_view css_class);
    void path(std::string_view commands, std::string_view css_class);
    // `anchor` is start, middle or end.
    void text(double x, double y, std::string_view anchor, std::string_view text);

private:
    Html& m_html;
    Element m_svg;
};

// A sample of a line type; width in pixels of the line.
void write_line_sample(Html& html, long line_type, double width, std::string_view title);
// The bounds of a value and what it is by default, "5 … 120 … 600 s".
struct Range {
    double low;
    double high;
    double by_default;
};
void write_range(Html& html, const Range& range, std::string_view title, std::string_view unit);

// Finishing, drawn on a page.
void write_fold(Html& html, long folding_type);
void write_staple(Html& html, long location, double orientation);
void write_cut(Html& html, long when);
void write_collation(Html& html, long collating_type);

} // namespace pm::kit::report
