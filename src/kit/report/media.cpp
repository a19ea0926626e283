#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <map>
#include <report/media.h>
#include <report/picture.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

struct Bounds {
    double left, bottom, right, top;
};

// A size, joined with the description of its area.
struct Size {
    Node node;
    std::string path;
    std::string name;
    std::string title;
    std::optional<double> width, height;
    std::optional<Bounds> printable;
    std::optional<double> part; // of the area that is printable, up to 1
    std::vector<std::string> sources = {};
};

std::optional<Bounds> printable_bounds(const Node& area) {
    const auto left = number(area, "printable_bounds_llx");
    const auto bottom = number(area, "printable_bounds_lly");
    const auto right = number(area, "printable_bounds_urx");
    const auto top = number(area, "printable_bounds_ury");
    return left && bottom && right && top ? std::optional(Bounds{*left, *bottom, *right, *top})
                                          : std::nullopt;
}

// The titles of the sources that can be loaded with a size, by its name.
std::map<std::string, std::vector<std::string>> sources_of_sizes(const Node& media) {
    std::map<std::string, std::vector<std::string>> sources;
    for (const Node& source : children(media, {"source"})) {
        const std::string source_title = title(source, source.name());
        for (const Node& entry : children(source, {"entry"})) {
            for (const Node& size : children(entry, {"size_names"})) {
                auto& titles = sources[text(size, "name")];
                if (titles.empty() || titles.back() != source_title) {
                    titles.push_back(source_title);
                }
            }
        }
    }
    return sources;
}

std::vector<Size> read_sizes(const Node& media) {
    const Index areas(children(media, {"description"}), "name");
    const auto sources = sources_of_sizes(media);
    std::vector<Size> sizes;
    for (const Node& node : children(media, {"size"})) {
        Size size{node, node.path(), text(node, "name"), {}, number(node, "width"), number(node, "height"),
                  {},   {}};
        size.title = title(node, size.name.empty() ? "(no name)" : size.name);
        if (const auto area = areas.find(text(node, "media_description_name"))) {
            size.width = number(*area, "media_bounds_urx");
            size.height = number(*area, "media_bounds_ury");
            size.printable = printable_bounds(*area);
            size.part = number(*area, "printable_area");
        }
        if (const auto found = sources.find(size.name); found != sources.end()) {
            size.sources = found->second;
        }
        sizes.push_back(std::move(size));
    }
    return sizes;
}

bool is_drawable(const Size& size) {
    const auto in_range = [](const std::optional<double>& length) {
        return length && *length >= 0.1 && *length < 1e6;
    };
    return in_range(size.width) && in_range(size.height);
}

std::string printable_text(const Bounds& bounds) {
    return fmt::format("{} × {} mm", shown(bounds.right - bounds.left), shown(bounds.top - bounds.bottom));
}

std::string dimensions(const Size& size) {
    const std::string text = product(size.width, size.height);
    return text.empty() ? "no bounds given" : text + " mm";
}

// The title without the dimensions, which some descriptions repeat in it.
std::string short_title(const Size& size) {
    const std::string repeated = fmt::format(" ({})", dimensions(size));
    const bool repeats = size.title.size() > repeated.size() && size.title.ends_with(repeated);
    return repeats ? size.title.substr(0, size.title.size() - repeated.size()) : size.title;
}

void write_size_picture(Page& page, const Size& size, double pixels_a_mm) {
    const double width = *size.width * pixels_a_mm;
    const double height = *size.height * pixels_a_mm;
    std::string title = fmt::format("{}: {}", size.title, dimensions(size));
    if (size.printable) {
        title += ", printable " + printable_text(*size.printable);
    }
    Picture picture(page.html, title, {width + 2, height + 2}, "medium");
    picture.rectangle(1, 1, width, height, "paper");
    if (size.printable) {
        const Bounds& bounds = *size.printable;
        picture.rectangle(1 + bounds.left * pixels_a_mm, 1 + (*size.height - bounds.top) * pixels_a_mm,
                          (bounds.right - bounds.left) * pixels_a_mm,
                          (bounds.top - bounds.bottom) * pixels_a_mm, "printable");
    }
}

void write_size(Page& page, const Size& size, double pixels_a_mm, const std::string& default_size) {
    Html& html = page.html;
    const Element card(html, "li", {{"class", marked_class(page, "card size", size.path)}});
    {
        const Element frame(html, "div", {{"class", "drawing"}});
        if (is_drawable(size)) {
            write_size_picture(page, size, pixels_a_mm);
        } else {
            html.element("span", {{"class", "muted"}}, "not drawn");
        }
    }
    html.element("p", {{"class", "name"}}, short_title(size));
    html.element("p", {{"class", "muted"}}, dimensions(size));
    if (size.part) {
        html.element("p", {{"class", "muted"}}, shown(std::round(*size.part * 1000) / 10) + " % printable");
    }
    const bool is_default = !size.name.empty() && size.name == default_size;
    if (is_default || !page.marks.at(size.path).chosen.empty() ||
        !page.marks.at(size.path).impossible.empty()) {
        const Element line(html, "p", {{"class", "marks"}});
        if (is_default) {
            write_tag(html, "default");
        }
        write_badges(page, size.path);
    }
}

// A round length that takes some 40 to 100 pixels.
double scale_length(double pixels_a_mm) {
    for (double decade = 0.01;; decade *= 10) {
        for (const double length : {decade, 2 * decade, 5 * decade}) {
            if (length * pixels_a_mm >= 40) {
                return length;
            }
        }
    }
}

void write_scale(Page& page, double pixels_a_mm) {
    const double length = scale_length(pixels_a_mm);
    const double pixels = length * pixels_a_mm;
    const std::string text = shown(length) + " mm";
    Picture picture(page.html, "Scale: " + text, {pixels + 90, 16}, "scale-bar");
    picture.line(1, 8, 1 + pixels, 8, "scale");
    picture.line(1, 3, 1, 13, "scale");
    picture.line(1 + pixels, 3, 1 + pixels, 13, "scale");
    picture.text(pixels + 8, 12, "start", text);
}

// Sizes of one group, all to one scale.
void write_group(Page& page, const std::string& name, std::vector<const Size*>& sizes,
                 const std::string& default_size) {
    constexpr double longest = 100;
    double length = 0;
    for (const Size* size : sizes) {
        length = is_drawable(*size) ? std::max({length, *size->width, *size->height}) : length;
    }
    const double pixels_a_mm = length > 0 ? longest / length : 1;
    Html& html = page.html;
    {
        const Element line(html, "div", {{"class", "group-head"}});
        html.element("h3", name);
        if (length > 0) {
            write_scale(page, pixels_a_mm);
        }
    }
    const Element list(html, "ul", {{"class", "cards sizes"}});
    for (const Size* size : sizes) {
        write_size(page, *size, pixels_a_mm, default_size);
    }
}

void write_legend(Html& html) {
    const Element line(html, "p", {{"class", "muted legend"}});
    {
        Picture picture(html, "Legend: the medium", {22, 16});
        picture.rectangle(1, 1, 20, 14, "paper");
    }
    html.text("medium");
    {
        Picture picture(html, "Legend: its printable area", {22, 16});
        picture.rectangle(1, 1, 20, 14, "printable");
    }
    html.text("printable area; each group has its own scale");
}

void write_groups(Page& page, const std::vector<Size>& sizes, const std::string& default_size) {
    std::map<long, std::vector<const Size*>> groups;
    constexpr long no_group = 1000000;
    for (const Size& size : sizes) {
        groups[integer(size.node, "media_group").value_or(no_group)].push_back(&size);
    }
    for (auto& [group, members] : groups) {
        write_group(page, group == no_group ? "Of no group" : word(Code::media_group, group), members,
                    default_size);
    }
}

void write_size_table(Page& page, const std::vector<Size>& sizes) {
    Html& html = page.html;
    const Element details(html, "details");
    html.element("summary", fmt::format("All {} sizes as a table", sizes.size()));
    const Table table(html, "Media sizes",
                      {"Size", "Name", "Width × height", "Printable area", "Margins", "Sources"});
    const Element body(html, "tbody");
    for (const Size& size : sizes) {
        const Element row(html, "tr", {{"class", marked_class(page, "size-row", size.path)}});
        {
            const Element head(html, "th", {{"scope", "row"}});
            html.text(size.title);
            write_badges(page, size.path);
        }
        {
            const Element cell(html, "td");
            write_code(html, size.name);
        }
        html.element("td", dimensions(size));
        html.element("td", size.printable ? printable_text(*size.printable) : "–");
        if (size.printable && size.width && size.height) {
            const Bounds& bounds = *size.printable;
            html.element("td", fmt::format("left {}, right {}, top {}, bottom {} mm", shown(bounds.left),
                                           shown(*size.width - bounds.right),
                                           shown(*size.height - bounds.top), shown(bounds.bottom)));
        } else {
            html.element("td", "–");
        }
        html.element("td", size.sources.empty() ? "–" : joined(size.sources));
    }
}

void write_types(Page& page, const Node& media) {
    const std::vector<Node> types = children(media, {"type"});
    if (types.empty()) {
        return;
    }
    Html& html = page.html;
    html.element("h3", "Media types");
    const std::string default_type = text(media, "default_type");
    const Table table(html, "Media types", {"Type", "Name", "Best resolution", "Drying time"});
    const Element body(html, "tbody");
    for (const Node& type : types) {
        const std::string name = text(type, "name");
        const std::string path = type.path();
        const Element row(html, "tr", {{"class", marked_class(page, "type-row", path)}});
        {
            const Element head(html, "th", {{"scope", "row"}});
            html.text(title(type, name));
            if (!name.empty() && name == default_type) {
                write_tag(html, "default");
            }
            write_badges(page, path);
        }
        {
            const Element cell(html, "td");
            write_code(html, name);
        }
        const std::string resolution =
            product(number(type, "max_resolution_x"), number(type, "max_resolution_y"));
        html.element("td", resolution.empty() ? "–" : resolution + " dpi");
        const auto drying = number(type, "drying_time");
        html.element("td", drying ? shown(*drying) + " s" : "–");
    }
}

void write_facts(Page& page, const Node& media) {
    Facts facts(page);
    facts.add("Largest size", product(number(media, "size_max_x"), number(media, "size_max_y")) +
                                  (number(media, "size_max_x") && number(media, "size_max_y") ? " mm" : ""));
    facts.add_property("Longest piece of a roll", media, "max_roll_height", " mm");
    facts.add_property("Most copies", media, "max_number_of_copies");
    facts.add_property("Copies made by the device", media, "mediacopies");
    facts.add_property("Landscape and portrait", media, "landscape");
    if (const auto bits = integer(media, "selection_methods")) {
        facts.add("A size is selected", joined(words(Code::selection_bit, *bits)),
                  path_of(media, "selection_methods"));
    }
    if (const auto bits = integer(media, "default_selection_method")) {
        facts.add("By default", joined(words(Code::selection_bit, *bits)),
                  path_of(media, "default_selection_method"));
    }
    if (const auto bits = integer(media, "duplexing_modes")) {
        facts.add("Prints on", joined(words(Code::duplexing_bit, *bits)), path_of(media, "duplexing_modes"));
    }
    facts.add_property("Long plot reduction by default", media, "default_longplot_reduction");
}

} // namespace

bool has_media(const Node& description) {
    return below(description, {"media", "size"}) || below(description, {"media", "type"});
}

void write_media(Page& page, const Node& description) {
    const Section section(page, "media", "Media");
    const auto media = below(description, {"media"});
    if (!media) {
        return;
    }
    write_facts(page, *media);
    const std::vector<Size> sizes = read_sizes(*media);
    if (!sizes.empty()) {
        write_legend(page.html);
        write_groups(page, sizes, text(*media, "default_size"));
        write_size_table(page, sizes);
    }
    write_types(page, *media);
}

} // namespace pm::kit::report
