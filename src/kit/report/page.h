#pragma once

#include <report/html.h>
#include <report/marks.h>
#include <report/reading.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What all sections of the page have in common.
namespace pm::kit::report {

struct Page {
    Html html;
    const ReportInput& input;
    Marks marks;
};

// A section with its heading and, below it, the findings that belong there; as long as this lives.
class Section {
public:
    Section(Page& page, std::string_view id, std::string_view title);

private:
    Element m_section;
};

// Names and values, two columns. A value whose path a check looked at has marks.
class Facts {
public:
    explicit Facts(Page& page) : m_page(page), m_list(page.html, "dl", {{"class", "facts"}}) {}
    // Nothing for an empty value.
    void add(std::string_view name, std::string_view value, const std::string& path = {});
    // The value of a property of that node with a unit, " mm"; nothing without it.
    void add_property(std::string_view name, const Node& node, std::string_view property,
                      std::string_view unit = {});

private:
    Page& m_page;
    Element m_list;
};

// A table that scrolls by itself where it is too wide; as long as this lives.
class Table {
public:
    Table(Html& html, std::string_view caption, const std::vector<std::string_view>& columns);

private:
    Element m_frame;
    Element m_table;
};

// "chosen", "impossible" or both, behind `name`: the classes of an element for what stands at that path.
[[nodiscard]] std::string marked_class(const Page& page, std::string_view name, const std::string& path);
// Who chose what stands at that path, and for whom it is impossible.
void write_badges(Page& page, const std::string& path);
// A word in a box: "default".
void write_tag(Html& html, std::string_view word);
// A list of short things in boxes.
void write_chips(Html& html, std::span<const std::string> texts);
// A name as the tree has it.
void write_code(Html& html, std::string_view name);
void write_findings(Html& html, std::span<const PlacedFinding> findings, const ReportInput& input);

// The path of a property of a node.
[[nodiscard]] std::string path_of(const Node& node, std::string_view property);
// "914 × 610"; empty unless both are there.
[[nodiscard]] std::string product(const std::optional<double>& a, const std::optional<double>& b);

} // namespace pm::kit::report
