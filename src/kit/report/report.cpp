#include <array>
#include <fmt/format.h>
#include <pm/kit/report.h>
#include <report/comparison.h>
#include <report/configuration.h>
#include <report/connections.h>
#include <report/custom.h>
#include <report/dither.h>
#include <report/flow.h>
#include <report/media.h>
#include <report/ownership.h>
#include <report/page.h>
#include <report/pens.h>
#include <report/resolution.h>
#include <report/style.h>

namespace pm::kit {

namespace {

using namespace report;

struct Part {
    std::string_view id;
    std::string_view link;
    bool (*is_there)(const Node& description);
    void (*write)(Page& page, const Node& description);
};

constexpr std::array<Part, 8> parts{{
    {"media", "Media", has_media, write_media},
    {"flow", "Sources and outputs", has_flow, write_flow},
    {"resolution", "Colours and resolutions", has_resolutions, write_resolutions},
    {"dither", "Dithering", has_dithering, write_dithering},
    {"io", "Connections", has_connections, write_connections},
    {"pens", "Pens and line types", has_pens, write_pens},
    {"custom", "Settings of its own", has_custom, write_custom},
    {"ownership", "Ownership and abilities", has_ownership, write_ownership},
}};

// A section whose part of the description is missing stands there all the same if it has findings.
bool is_shown(const Page& page, const Part& part) {
    return page.input.description && (part.is_there(page.input.description->root) ||
                                      !page.marks.of_section(std::string(part.id)).empty());
}

std::string names(const ReportInput& input) {
    std::vector<std::string> list;
    for (const ReportConfiguration& configuration : input.configurations) {
        list.push_back(configuration.name);
    }
    return fmt::format("{}", fmt::join(list, ", "));
}

std::string meta_text(const ReportInput& input, std::string_view item) {
    const auto meta = input.description ? below(input.description->root, {"meta"}) : std::nullopt;
    return meta ? text(*meta, item) : std::string();
}

std::string page_title(const ReportInput& input) {
    if (!input.description) {
        return input.configurations.empty() ? "Nothing to show" : names(input);
    }
    for (const std::string_view item : {"localized_model_name", "canonical_model_name"}) {
        if (std::string name = meta_text(input, item); !name.empty()) {
            return name;
        }
    }
    return input.description->name;
}

void write_head(Page& page) {
    Html& html = page.html;
    html.raw("<!DOCTYPE html>\n");
    html.open("html", {{"lang", "en"}});
    const Element head(html, "head");
    html.raw(
        "<meta charset=\"utf-8\"><meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">");
    html.raw("<meta name=\"color-scheme\" content=\"light dark\">");
    std::string title = page_title(page.input);
    if (page.input.description && !page.input.configurations.empty()) {
        title += " – " + names(page.input);
    }
    html.element("title", title);
    html.raw("<style>");
    html.raw(style_sheet());
    html.raw("</style>");
}

void write_navigation(Page& page) {
    Html& html = page.html;
    const Element nav(html, "nav", {{"aria-label", "Sections"}});
    const Element list(html, "ul");
    const auto write = [&](std::string_view id, std::string_view title) {
        const Element item(html, "li");
        html.element("a", {{"href", "#" + std::string(id)}}, title);
    };
    if (page.input.description && !page.input.configurations.empty()) {
        write("fit", "Does it fit?");
    }
    if (!page.input.configurations.empty()) {
        write("configuration", page.input.configurations.size() == 1 ? "Settings" : "Side by side");
    }
    for (const Part& part : parts) {
        if (is_shown(page, part)) {
            write(part.id, part.link);
        }
    }
}

void write_header(Page& page) {
    Html& html = page.html;
    const Element header(html, "header");
    html.element("h1", page_title(page.input));
    if (const std::string line = meta_text(page.input, "driver_tag_line"); !line.empty()) {
        html.element("p", {{"class", "tagline"}}, line);
    }
    if (page.input.description) {
        html.open("div", {{"class", "device-facts"}});
        {
            Facts facts(page);
            const std::string family = meta_text(page.input, "localized_family_name");
            facts.add("Family", family.empty() ? meta_text(page.input, "canonical_family_name") : family);
            facts.add("Model", meta_text(page.input, "canonical_model_name"));
            facts.add("Version of the driver", meta_text(page.input, "driver_version"));
            facts.add("Description", page.input.description->name);
        }
        html.close();
    }
    write_navigation(page);
}

struct Count {
    std::string_view singular;
    std::string_view plural;
    Severity severity;
};

std::string verdicts(const ExplainedFindings& check) {
    static constexpr std::array<Count, 3> counts{
        {{"thing not possible", "things not possible", Severity::error},
         {"doubtful", "doubtful", Severity::warning},
         {"note", "notes", Severity::note}}};
    std::vector<std::string> told;
    for (const Count& count : counts) {
        const auto found = std::ranges::count(check.findings, count.severity, &Finding::severity);
        if (found > 0) {
            told.push_back(fmt::format("{} {}", found, found == 1 ? count.singular : count.plural));
        }
    }
    return told.empty() ? "fits" : fmt::format("{}", fmt::join(told, ", "));
}

bool is_possible(const ExplainedFindings& check) {
    return std::ranges::none_of(check.findings,
                                [](const Finding& finding) { return finding.severity == Severity::error; });
}

// How each configuration does, and what belongs to no section.
void write_fit(Page& page) {
    if (!page.input.description || page.input.configurations.empty()) {
        return;
    }
    const Section section(page, "fit", "Does it fit?");
    Html& html = page.html;
    {
        const Table table(html, "Configurations on this device", {"Configuration", "On this device", ""});
        const Element body(html, "tbody");
        for (Origin origin = 0; origin < page.input.configurations.size(); ++origin) {
            const ReportConfiguration& configuration = page.input.configurations[origin];
            const bool possible = is_possible(configuration.check);
            const Element row(html, "tr");
            html.element("th", {{"scope", "row"}},
                         page.input.configurations.size() == 1
                             ? configuration.name
                             : fmt::format("{}: {}", letter(origin), configuration.name));
            {
                const Element cell(html, "td");
                html.element("span", {{"class", possible ? "badge good" : "badge bad"}},
                             possible ? "possible" : "not possible");
            }
            html.element("td", verdicts(configuration.check));
        }
    }
    write_findings(html, page.marks.of_section(""), page.input);
}

void write_configurations(Page& page) {
    if (page.input.configurations.empty()) {
        return;
    }
    const Settings settings(page.input);
    if (page.input.configurations.size() == 1) {
        write_configuration(page, settings, 0);
    } else {
        write_comparison(page, settings);
    }
}

} // namespace

std::string report_page(const ReportInput& input) {
    Page page{{}, input, Marks(input)};
    write_head(page);
    Html& html = page.html;
    html.open("body");
    html.element("a", {{"class", "skip"}, {"href", "#main"}}, "To the content");
    write_header(page);
    {
        const Element main(html, "main", {{"id", "main"}});
        write_fit(page);
        write_configurations(page);
        for (const Part& part : parts) {
            if (is_shown(page, part)) {
                part.write(page, input.description->root);
            }
        }
    }
    return html.take() + "\n";
}

} // namespace pm::kit
