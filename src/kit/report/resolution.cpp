#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <report/picture.h>
#include <report/resolution.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

// Inks of each colour system, as classes of the style sheet.
constexpr std::array<std::array<std::string_view, 8>, 5> swatches{{
    {"palette-1", "palette-2", "palette-3", "palette-4", "palette-5", "palette-6", "palette-7", "palette-8"},
    {"rgb-1", "rgb-2", "rgb-3", "rgb-4", "rgb-5", "rgb-6", "rgb-7", "rgb-8"},
    {"black", "black", "black", "black", "white", "white", "white", "white"},
    {"grey-1", "grey-2", "grey-3", "grey-4", "grey-5", "grey-6", "grey-7", "grey-8"},
    {"cyan", "cyan", "magenta", "magenta", "yellow", "yellow", "black", "black"},
}};

void write_swatch(Html& html, long color_system) {
    if (color_system < 0 || color_system >= static_cast<long>(swatches.size())) {
        return;
    }
    Picture picture(html, "Colours: " + word(Code::color_system, color_system), {130, 18}, "swatch");
    double x = 1;
    for (const std::string_view ink : swatches[static_cast<std::size_t>(color_system)]) {
        picture.rectangle(x, 1, 16, 16, ink);
        x += 16;
    }
}

std::string pair_of(const Node& resolution, std::string_view name) {
    const std::string text =
        product(number(resolution, std::string(name) + "_x"), number(resolution, std::string(name) + "_y"));
    return text.empty() ? "–" : text;
}

// What memory areas are called, by their names.
struct Areas {
    explicit Areas(const Node& colors) {
        for (const Node& area : children(colors, {"mem_area_list"})) {
            titles.emplace(area.name(), title(area, area.name()));
        }
    }
    [[nodiscard]] std::string title_of(const std::string& name) const {
        const auto found = titles.find(name);
        return found == titles.end() ? name : found->second;
    }
    std::map<std::string, std::string> titles;
};

void write_memory_cell(Page& page, const Node& resolution, const Areas& areas) {
    Html& html = page.html;
    const Element cell(html, "td");
    const std::string by_default = text(resolution, "default_mem_area");
    const Element list(html, "ul", {{"class", "plain"}});
    for (const Node& area : children(resolution, {"mem_area"})) {
        const std::string name = text(area, "name");
        const std::string path = area.path();
        const Element item(html, "li", {{"class", marked_class(page, "area", path)}});
        html.text(areas.title_of(name));
        if (!name.empty() && name == by_default) {
            write_tag(html, "default");
        }
        write_badges(page, path);
    }
}

std::string dithering_title(const Node& colors, const Node& resolution) {
    const auto nested = below(resolution, {"res_color_mem"});
    const std::string name = nested ? text(*nested, "dithering_list") : std::string();
    const auto method = name.empty() ? std::nullopt : below(colors, {"dithering_list", name});
    return name.empty() ? "–" : method ? title(*method, name) : name;
}

void write_resolution(Page& page, const Node& colors, const Node& resolution, const Areas& areas,
                      bool is_default) {
    Html& html = page.html;
    const std::string path = resolution.path();
    const Element row(html, "tr", {{"class", marked_class(page, "resolution", path)}});
    {
        const Element head(html, "th", {{"scope", "row"}});
        html.text(title(resolution, resolution.name()));
        if (is_default) {
            write_tag(html, "default");
        }
        write_badges(page, path);
        html.empty("br");
        write_code(html, resolution.name());
    }
    html.element("td", pair_of(resolution, "physical_resolution"));
    html.element("td", pair_of(resolution, "addressable_resolution"));
    html.element("td", pair_of(resolution, "effective_resolution"));
    html.element("td", dithering_title(colors, resolution));
    write_memory_cell(page, resolution, areas);
}

std::string depth_text(const Node& mode) {
    std::vector<std::string> parts;
    if (const auto colors = integer(mode, "number_of_colors")) {
        parts.push_back(grouped(*colors) + " colours");
    }
    if (const auto depth = integer(mode, "color_depth")) {
        parts.push_back(fmt::format("{} bit", *depth));
    }
    if (const auto pure = integer(mode, "undithered_colors")) {
        parts.push_back(grouped(*pure) + " without dithering");
    }
    return joined(parts);
}

void write_mode(Page& page, const Node& colors, const Node& mode, const Areas& areas, bool is_default) {
    Html& html = page.html;
    const std::string name = mode.name();
    const std::string mode_title = title(mode, name);
    const Element card(html, "div", {{"class", marked_class(page, "card mode", mode.path())}});
    {
        const Element head(html, "div", {{"class", "group-head"}});
        {
            const Element heading(html, "h3");
            html.text(mode_title);
            if (is_default) {
                write_tag(html, "default");
            }
            write_badges(page, mode.path());
        }
        if (const auto system = integer(mode, "color_system")) {
            write_swatch(html, *system);
            html.element("span", {{"class", "muted"}}, word(Code::color_system, *system));
        }
    }
    {
        const Element line(html, "p", {{"class", "muted"}});
        write_code(html, name);
        html.text(" · " + depth_text(mode));
    }
    const std::vector<Node> resolutions = children(mode, {"resolution_list"});
    if (resolutions.empty()) {
        html.element("p", "No resolutions.");
        return;
    }
    const std::string by_default = text(mode, "default_resolution");
    const Table table(
        html, "Resolutions of " + mode_title,
        {"Resolution", "Physical (dpi)", "Addressable (dpi)", "Effective (dpi)", "Dithering", "Memory"});
    const Element body(html, "tbody");
    for (const Node& resolution : resolutions) {
        write_resolution(page, colors, resolution, areas, resolution.name() == by_default);
    }
}

void write_bar(Html& html, double value, double most, std::string_view title) {
    const double share = most > 0 ? std::clamp(value / most, 0.0, 1.0) : 0;
    Picture picture(html, title, {120, 12}, "bar");
    picture.rectangle(0, 1, 120, 10, "track");
    picture.rectangle(0, 1, 120 * share, 10, "fill");
}

// The value with a bar of its share of the largest.
void write_bar_cell(Html& html, const std::optional<double>& value, double most, std::string_view unit) {
    const Element cell(html, "td", {{"class", "bar-cell"}});
    if (!value) {
        html.text("–");
        return;
    }
    const std::string text = shown(*value) + std::string(unit);
    write_bar(html, *value, most, text);
    html.text(" " + text);
}

void write_memory(Page& page, const Node& colors) {
    const std::vector<Node> areas = children(colors, {"mem_area_list"});
    if (areas.empty()) {
        return;
    }
    double memory = 0;
    double length = 0;
    for (const Node& area : areas) {
        memory = std::max(memory, number(area, "device_memory").value_or(0));
        length = std::max(length, number(area, "printable_area").value_or(0));
    }
    Html& html = page.html;
    html.element("h3", "Memory");
    const Table table(html, "Memory areas", {"Memory", "Name", "Size", "Longest plot"});
    const Element body(html, "tbody");
    for (const Node& area : areas) {
        const Element row(html, "tr", {{"class", marked_class(page, "memory", area.path())}});
        {
            const Element head(html, "th", {{"scope", "row"}});
            html.text(title(area, area.name()));
            write_badges(page, area.path());
        }
        {
            const Element cell(html, "td");
            write_code(html, area.name());
        }
        write_bar_cell(html, number(area, "device_memory"), memory, " MB");
        write_bar_cell(html, number(area, "printable_area"), length, " mm");
    }
}

} // namespace

bool has_resolutions(const Node& description) {
    return below(description, {"res_color_mem", "rcm_list"}) ||
           below(description, {"res_color_mem", "mem_area_list"});
}

void write_resolutions(Page& page, const Node& description) {
    const Section section(page, "resolution", "Colours, resolutions and memory");
    const auto colors = below(description, {"res_color_mem"});
    if (!colors) {
        return;
    }
    const Areas areas(*colors);
    const std::string by_default = text(*colors, "default_name");
    for (const Node& mode : children(*colors, {"rcm_list"})) {
        write_mode(page, *colors, mode, areas, mode.name() == by_default);
    }
    write_memory(page, *colors);
    Facts facts(page);
    facts.add_property("Memory changes the printable area", *colors, "memory_changes_print_area");
}

} // namespace pm::kit::report
