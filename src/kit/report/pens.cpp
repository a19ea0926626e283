#include <algorithm>
#include <fmt/format.h>
#include <report/pens.h>
#include <report/picture.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

// As wide as on paper where a pixel is 1/96 inch.
constexpr double pixels_a_mm = 96 / 25.4;

struct PenWidth {
    std::string_view title;
    std::string_view item;
};

void write_widths(Page& page, const Node& pens) {
    Html& html = page.html;
    const Element list(html, "ul", {{"class", "cards pens"}});
    for (const auto& [title, item] :
         {PenWidth{"Narrowest", "min_width"}, PenWidth{"By default", "default_width"},
          PenWidth{"Widest", "max_width"}}) {
        const auto width = number(pens, item);
        if (!width) {
            continue;
        }
        const std::string path = path_of(pens, item);
        const Element card(html, "li", {{"class", marked_class(page, "card pen", path)}});
        {
            const Element line(html, "p", {{"class", "name"}});
            html.text(fmt::format("{}: {} mm", title, shown(*width)));
            write_badges(page, path);
        }
        write_line_sample(html, 0, *width * pixels_a_mm, fmt::format("A line {} mm wide", shown(*width)));
    }
}

void write_speed(Page& page, const Node& pens) {
    const auto low = number(pens, "min_speed");
    const auto high = number(pens, "max_speed");
    const auto by_default = number(pens, "default_speed");
    Html& html = page.html;
    if (low && high && by_default) {
        const Element figure(html, "figure", {{"class", "range-figure"}});
        {
            const Element caption(html, "figcaption");
            html.text(fmt::format("Speed: {} mm/s by default, {} to {} mm/s", shown(*by_default), shown(*low),
                                  shown(*high)));
            write_badges(page, path_of(pens, "min_speed"));
            write_badges(page, path_of(pens, "max_speed"));
        }
        write_range(html, {*low, *high, *by_default}, "Speed", " mm/s");
        return;
    }
    Facts facts(page);
    facts.add_property("Lowest speed", pens, "min_speed", " mm/s");
    facts.add_property("Highest speed", pens, "max_speed", " mm/s");
    facts.add_property("Speed by default", pens, "default_speed", " mm/s");
}

void write_pen_facts(Page& page, const Node& pens) {
    Facts facts(page);
    facts.add_property("Most pens", pens, "max_npens");
    facts.add_property("Pens by default", pens, "default_npens");
    facts.add_property("Widths can be set", pens, "programmable_widths");
    facts.add_property("Speeds can be set", pens, "programmable_speeds");
    facts.add_property("Fills areas itself", pens, "hardware_fills");
    facts.add_property("Corrects area fills", pens, "area_fill_corr");
    if (const auto best = integer(pens, "max_optimization")) {
        facts.add("Best optimization", word(Code::optimization, *best), path_of(pens, "max_optimization"));
    }
    if (const auto by_default = integer(pens, "default_optimization")) {
        facts.add("Optimization by default", word(Code::optimization, *by_default),
                  path_of(pens, "default_optimization"));
    }
}

// Whether the digits tell of a line type: four to a digit, the first in its lowest bit.
bool is_offered(const std::string& digits, long line_type) {
    const auto at = static_cast<std::size_t>(line_type / 4);
    if (at >= digits.size()) {
        return false;
    }
    const char digit = digits[at];
    const int value = digit >= '0' && digit <= '9'   ? digit - '0'
                      : digit >= 'A' && digit <= 'F' ? digit - 'A' + 10
                                                     : 0;
    return (value >> (line_type % 4) & 1) != 0;
}

void write_line_type(Page& page, const Node& lines, long line_type) {
    Html& html = page.html;
    const auto font = below(lines, {"font", fmt::to_string(line_type)});
    const auto width = font ? number(*font, "width") : std::nullopt;
    const std::string path = fmt::format("{}\\font\\{}", lines.path(), line_type);
    const std::string name = word(Code::line_type, line_type);
    const Element card(html, "li", {{"class", marked_class(page, "card line-type", path)}});
    {
        const Element line(html, "p", {{"class", "name"}});
        html.text(name);
        write_badges(page, path);
    }
    write_line_sample(html, line_type, 2, name);
    html.element("p", {{"class", "muted"}},
                 width ? fmt::format("from {} mm", shown(*width)) : "no width given");
}

void write_line_types(Page& page, const Node& lines) {
    const std::string digits = text(lines, "capabilities");
    std::vector<long> offered = numbers(Code::line_type);
    std::erase_if(offered, [&](long line_type) { return !is_offered(digits, line_type); });
    Html& html = page.html;
    html.element("h3", "Line types");
    if (offered.empty()) {
        html.element("p", "The device draws none itself.");
        return;
    }
    const Element list(html, "ul", {{"class", "cards line-types"}});
    for (const long line_type : offered) {
        write_line_type(page, lines, line_type);
    }
}

} // namespace

bool has_pens(const Node& description) {
    const auto pens = below(description, {"physical_pen"});
    return (pens && (number(*pens, "max_npens") || number(*pens, "max_width"))) ||
           below(description, {"linetype", "font"});
}

void write_pens(Page& page, const Node& description) {
    const Section section(page, "pens", "Pens and line types");
    if (const auto pens = below(description, {"physical_pen"})) {
        write_pen_facts(page, *pens);
        write_widths(page, *pens);
        write_speed(page, *pens);
    }
    if (const auto lines = below(description, {"linetype"})) {
        write_line_types(page, *lines);
    }
}

} // namespace pm::kit::report
