#include <array>
#include <fmt/format.h>
#include <report/page.h>

namespace pm::kit::report {

namespace {

std::string_view verdict(Severity severity) {
    static constexpr std::array<std::string_view, 3> words{"Note", "Doubtful", "Not possible"};
    return words[static_cast<std::size_t>(severity)];
}

std::string origin_name(const ReportInput& input, Origin origin) {
    if (origin == defaults) {
        return "Defaults of the device";
    }
    const std::string& name = input.configurations[origin].name;
    return input.configurations.size() == 1 ? name : fmt::format("{}: {}", letter(origin), name);
}

void write_offers(Html& html, const Finding& finding) {
    if (finding.offers.empty()) {
        return;
    }
    constexpr std::size_t most = 8;
    const Element line(html, "p", {{"class", "offers"}});
    html.text("Offered instead: ");
    for (std::size_t at = 0; at < std::min(finding.offers.size(), most); ++at) {
        const Offer& offer = finding.offers[at];
        html.text(at == 0 ? "" : ", ");
        html.text(offer.text.empty() ? offer.value : offer.text);
        if (!offer.text.empty() && offer.text != offer.value) {
            html.text(" ");
            write_code(html, offer.value);
        }
    }
    if (finding.offers.size() > most) {
        html.text(fmt::format(" and {} more", finding.offers.size() - most));
    }
}

void write_finding(Html& html, const PlacedFinding& placed, const ReportInput& input) {
    const Finding& finding = *placed.finding;
    const Element item(html, "li", {{"class", fmt::format("finding {}", severity_name(finding.severity))}});
    {
        const Element line(html, "p");
        html.element("strong", {{"class", "verdict"}}, verdict(finding.severity));
        html.text(" ");
        html.text(finding.message);
    }
    {
        const Element line(html, "p", {{"class", "where"}});
        html.text(origin_name(input, placed.origin));
        html.text(" · ");
        write_code(html, finding.configuration_path);
        if (!finding.configured.empty()) {
            html.text(" = ");
            html.element("span", {{"class", "value"}}, finding.configured);
            if (!finding.text.empty() && finding.text != finding.configured) {
                html.text(fmt::format(" ({})", finding.text));
            }
        }
        html.text(" · rule ");
        write_code(html, finding.rule);
    }
    write_offers(html, finding);
}

void write_list(Html& html, std::span<const PlacedFinding> findings, const ReportInput& input,
                Severity severity) {
    std::vector<PlacedFinding> those;
    for (const PlacedFinding& placed : findings) {
        if (placed.finding->severity == severity) {
            those.push_back(placed);
        }
    }
    if (those.empty()) {
        return;
    }
    const bool folded = severity != Severity::error && those.size() > 3;
    if (folded) {
        html.open("details", {{"class", "notes"}});
        html.element("summary",
                     fmt::format("{} {}", those.size(), severity == Severity::note ? "notes" : "doubtful"));
    }
    {
        const Element list(html, "ul", {{"class", "findings"}});
        for (const PlacedFinding& placed : those) {
            write_finding(html, placed, input);
        }
    }
    if (folded) {
        html.close();
    }
}

} // namespace

Section::Section(Page& page, std::string_view id, std::string_view title)
    : m_section(page.html, "section",
                {{"id", std::string(id)}, {"aria-labelledby", fmt::format("{}-title", id)}}) {
    page.html.element("h2", {{"id", fmt::format("{}-title", id)}}, title);
    write_findings(page.html, page.marks.of_section(std::string(id)), page.input);
}

void Facts::add(std::string_view name, std::string_view value, const std::string& path) {
    if (value.empty()) {
        return;
    }
    const Element pair(m_page.html, "div", {{"class", marked_class(m_page, "fact", path)}});
    m_page.html.element("dt", name);
    const Element content(m_page.html, "dd");
    m_page.html.text(value);
    write_badges(m_page, path);
}

void Facts::add_property(std::string_view name, const Node& node, std::string_view property_name,
                         std::string_view unit) {
    if (const auto found = property(node, property_name)) {
        const std::string value = shown(*found);
        add(name, value.empty() ? "(empty)" : value + std::string(unit), path_of(node, property_name));
    }
}

Table::Table(Html& html, std::string_view caption, const std::vector<std::string_view>& columns)
    : m_frame(
          html, "div",
          {{"class", "scroll"}, {"role", "region"}, {"tabindex", "0"}, {"aria-label", std::string(caption)}}),
      m_table(html, "table") {
    html.element("caption", caption);
    const Element head(html, "thead");
    const Element row(html, "tr");
    for (const std::string_view column : columns) {
        html.element("th", {{"scope", "col"}}, column);
    }
}

std::string marked_class(const Page& page, std::string_view name, const std::string& path) {
    const Mark& mark = page.marks.at(path);
    return fmt::format("{}{}{}", name, mark.chosen.empty() ? "" : " chosen",
                       mark.impossible.empty() ? "" : " impossible");
}

void write_badges(Page& page, const std::string& path) {
    const Mark& mark = page.marks.at(path);
    const bool alone = page.input.configurations.size() == 1;
    const auto write = [&](Origin origin, std::string_view kind, std::string_view word) {
        const std::string text = origin == defaults ? fmt::format("default {}", word)
                                 : alone            ? std::string(word)
                                 : kind == "chosen" ? letter(origin)
                                                    : fmt::format("{} {}", letter(origin), word);
        page.html.text(" ");
        page.html.element("span",
                          {{"class", fmt::format("badge {} c{}", kind, origin == defaults ? 0 : origin % 2)},
                           {"title", fmt::format("{}: {}", origin_name(page.input, origin), word)}},
                          text);
    };
    for (const Origin origin : mark.chosen) {
        if (std::ranges::find(mark.impossible, origin) == mark.impossible.end()) {
            write(origin, "chosen", "chosen");
        }
    }
    for (const Origin origin : mark.impossible) {
        write(origin, "bad", "not possible");
    }
}

void write_tag(Html& html, std::string_view word) {
    html.text(" ");
    html.element("span", {{"class", "tag"}}, word);
}

void write_chips(Html& html, std::span<const std::string> texts) {
    const Element list(html, "ul", {{"class", "chips"}});
    for (const std::string& text : texts) {
        html.element("li", text);
    }
}

void write_code(Html& html, std::string_view name) {
    html.element("code", name);
}

void write_findings(Html& html, std::span<const PlacedFinding> findings, const ReportInput& input) {
    for (const Severity severity : {Severity::error, Severity::warning, Severity::note}) {
        write_list(html, findings, input, severity);
    }
}

std::string path_of(const Node& node, std::string_view property) {
    const std::string path = node.path();
    return fmt::format("{}\\{}", path == "\\" ? "" : path, property);
}

std::string product(const std::optional<double>& a, const std::optional<double>& b) {
    return a && b ? fmt::format("{} × {}", shown(*a), shown(*b)) : std::string();
}

} // namespace pm::kit::report
