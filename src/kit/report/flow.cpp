#include <array>
#include <fmt/format.h>
#include <report/flow.h>
#include <report/picture.h>
#include <report/words.h>

namespace pm::kit::report {

namespace {

// A kind of finishing, as it stands below an output, in the order of the work.
struct Finishing {
    std::string_view node;
    std::string_view title;
    std::string_view default_item;
    void (*write_icon)(Html& html, const Node& step);
    std::string (*text)(const Node& step);
};

void write_collation_icon(Html& html, const Node& step) {
    write_collation(html, integer(step, "collating_type").value_or(-1));
}

void write_cut_icon(Html& html, const Node& step) {
    write_cut(html, integer(step, "when").value_or(0));
}

void write_fold_icon(Html& html, const Node& step) {
    write_fold(html, integer(step, "folding_type").value_or(-1));
}

void write_staple_icon(Html& html, const Node& step) {
    write_staple(html, integer(step, "location").value_or(0), number(step, "orientation").value_or(0));
}

std::string collating_text(const Node& step) {
    return word(Code::collating_type, integer(step, "collating_type").value_or(-1));
}

std::string cutting_text(const Node& step) {
    return word(Code::finishing_time, integer(step, "when").value_or(0));
}

std::string folding_text(const Node& step) {
    return fmt::format("{}, {}", word(Code::folding_type, integer(step, "folding_type").value_or(-1)),
                       word(Code::finishing_time, integer(step, "when").value_or(0)));
}

std::string stapling_text(const Node& step) {
    const long when = integer(step, "when").value_or(-1);
    if (when == 0) {
        return word(Code::stapling_time, when);
    }
    return fmt::format("{}, {}°, {}", word(Code::stapling_location, integer(step, "location").value_or(0)),
                       shown(number(step, "orientation").value_or(0)), word(Code::stapling_time, when));
}

constexpr std::array<Finishing, 4> finishing{{
    {"cutting", "Cutting", "default_cutting", write_cut_icon, cutting_text},
    {"collating", "Collating", "default_collating", write_collation_icon, collating_text},
    {"folding", "Folding", "default_folding", write_fold_icon, folding_text},
    {"stapling", "Stapling", "default_stapling", write_staple_icon, stapling_text},
}};

void write_arrow(Html& html, std::string_view css_class) {
    const Element frame(html, "div", {{"class", std::string(css_class)}, {"aria-hidden", "true"}});
    const Element svg(html, "svg", {{"width", "36"}, {"height", "24"}, {"viewBox", "0 0 36 24"}});
    html.empty("path", {{"d", "M2 12h28M23 5l8 7-8 7"}, {"class", "arrow-line"}});
}

// A translated text with the marks and, below it, the name and what else there is.
void write_head(Page& page, std::string_view element, const Node& node, bool is_default,
                std::string_view more = {}) {
    Html& html = page.html;
    const std::string name = node.name();
    {
        const Element line(html, element, {{"class", "name"}});
        html.text(title(node, name));
        if (is_default) {
            write_tag(html, "default");
        }
        write_badges(page, node.path());
    }
    const Element line(html, "p", {{"class", "muted"}});
    write_code(html, name);
    if (!more.empty()) {
        html.text(" · ");
        html.text(more);
    }
}

void write_entry(Page& page, const Node& entry, bool is_default) {
    Html& html = page.html;
    const Element item(html, "li", {{"class", marked_class(page, "entry", entry.path())}});
    std::string facts = product(number(entry, "width"), number(entry, "frame_height"));
    if (!facts.empty()) {
        facts += " mm";
    }
    const std::vector<Node> sizes = children(entry, {"size_names"});
    if (!sizes.empty()) {
        facts += fmt::format("{}{} {}", facts.empty() ? "" : ", ", sizes.size(),
                             sizes.size() == 1 ? "size" : "sizes");
    }
    write_head(page, "p", entry, is_default, facts);
    if (const std::string size = text(entry, "default_size"); !size.empty()) {
        const Element line(html, "p", {{"class", "muted"}});
        html.text("by default ");
        write_code(html, size);
    }
}

void write_source(Page& page, const Node& source, const std::string& default_source) {
    Html& html = page.html;
    const Element card(html, "li", {{"class", marked_class(page, "card", source.path())}});
    const auto feed = integer(source, "feed");
    write_head(page, "h4", source, source.name() == default_source,
               feed ? word(Code::feed, *feed) : std::string());
    const std::string default_entry = text(source, "default_entry");
    const std::vector<Node> entries = children(source, {"entry"});
    if (entries.empty()) {
        return;
    }
    const Element list(html, "ul", {{"class", "entries"}});
    for (const Node& entry : entries) {
        write_entry(page, entry, entry.name() == default_entry);
    }
}

void write_step(Page& page, const Finishing& kind, const Node& step, bool is_default) {
    Html& html = page.html;
    const std::string path = step.path();
    const Element item(html, "li", {{"class", marked_class(page, "step", path)}});
    kind.write_icon(html, step);
    const Element texts(html, "div");
    {
        const Element line(html, "p", {{"class", "name"}});
        html.text(title(step, step.name()));
        if (is_default) {
            write_tag(html, "default");
        }
        write_badges(page, path);
    }
    html.element("p", {{"class", "muted"}}, kind.text(step));
}

// Each kind of finishing of an output, with arrows from one to the next.
void write_finishing(Page& page, const Node& output) {
    Html& html = page.html;
    const Element way(html, "div", {{"class", "way"}});
    for (const Finishing& kind : finishing) {
        const std::vector<Node> steps = children(output, {kind.node});
        if (steps.empty()) {
            continue;
        }
        {
            const Element box(html, "div", {{"class", "finishing"}});
            html.element("h5", kind.title);
            const std::string by_default = text(output, kind.default_item);
            const Element list(html, "ul");
            for (const Node& step : steps) {
                write_step(page, kind, step, step.name() == by_default);
            }
        }
        write_arrow(html, "arrow");
    }
    const Element box(html, "div", {{"class", "tray"}});
    html.element("p", {{"class", "name"}}, title(output, output.name()));
}

void write_output(Page& page, const Node& output, const std::string& default_output) {
    const Element card(page.html, "li", {{"class", marked_class(page, "card output", output.path())}});
    write_head(page, "h4", output, output.name() == default_output);
    write_finishing(page, output);
}

std::string device_name(const Page& page, const Node& description) {
    const auto meta = below(description, {"meta"});
    for (const std::string_view name : {"localized_model_name", "canonical_model_name"}) {
        if (std::string found = meta ? text(*meta, name) : std::string(); !found.empty()) {
            return found;
        }
    }
    return page.input.description->name;
}

} // namespace

bool has_flow(const Node& description) {
    return below(description, {"media", "source"}) || below(description, {"media", "destination"});
}

void write_flow(Page& page, const Node& description) {
    const Section section(page, "flow", "Sources, outputs and finishing");
    Html& html = page.html;
    const auto media = below(description, {"media"});
    if (!media) {
        return;
    }
    {
        html.element("h3", "Sources");
        const Element list(html, "ul", {{"class", "cards sources"}});
        for (const Node& source : children(*media, {"source"})) {
            write_source(page, source, text(*media, "default_source"));
        }
    }
    write_arrow(html, "arrow down");
    {
        const Element box(html, "div", {{"class", "device"}});
        html.element("p", {{"class", "name"}}, device_name(page, description));
    }
    write_arrow(html, "arrow down");
    html.element("h3", "Outputs");
    const Element list(html, "ul", {{"class", "cards"}});
    for (const Node& output : children(*media, {"destination"})) {
        write_output(page, output, text(*media, "default_destination"));
    }
}

} // namespace pm::kit::report
