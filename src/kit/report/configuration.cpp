#include <algorithm>
#include <charconv>
#include <fmt/format.h>
#include <map>
#include <report/configuration.h>

namespace pm::kit::report {

namespace {

// Longer lists are folded.
constexpr std::size_t most_rows = 24;

std::optional<long> decimal(std::string_view text) {
    long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// "Color" of "Color17"; empty for a name without both parts.
std::string_view stem(std::string_view name) {
    const std::size_t end = name.find_last_not_of("0123456789");
    return end == std::string_view::npos || end + 1 == name.size() ? std::string_view()
                                                                   : name.substr(0, end + 1);
}

bool is_leaf(const Node& node) {
    const Children range = node.children();
    return range.begin() == range.end();
}

bool has_properties(const Node& node) {
    const Properties range = node.properties();
    return range.begin() != range.end();
}

std::vector<std::string> property_names(const Node& node) {
    std::vector<std::string> names;
    for (const Property& property : node.properties()) {
        names.push_back(property.name());
    }
    return names;
}

// Several nodes side by side that hold the same properties: a table.
struct Records {
    std::vector<std::string> columns;
    std::vector<Node> nodes;
};

// The most numerous ones; of equally many the first.
Records records_of(const Node& node) {
    std::map<std::vector<std::string>, std::vector<Node>> kinds;
    for (const Node& child : node.children()) {
        if (std::vector<std::string> names = property_names(child); is_leaf(child) && !names.empty()) {
            kinds[std::move(names)].push_back(child);
        }
    }
    const auto most =
        std::ranges::max_element(kinds, {}, [](const auto& kind) { return kind.second.size(); });
    return most == kinds.end() || most->second.size() < 2 ? Records() : Records{most->first, most->second};
}

std::vector<std::string> spoken_columns(const Records& records) {
    std::vector<std::string> names{"Entry"};
    for (const std::string& column : records.columns) {
        names.push_back(spoken(column));
    }
    return names;
}

std::vector<std::string> values_of(const Node& node) {
    std::vector<std::string> values;
    for (const Property& property : node.properties()) {
        values.push_back(shown_exactly(property));
    }
    return values;
}

class Writer {
public:
    Writer(Page& page, const Settings& settings, Origin configuration)
        : m_page(page), m_settings(settings), m_configuration(configuration) {}

    void write_group(const Node& node, const std::string& title, bool with_children) {
        const Element card(m_page.html, "div", {{"class", "card"}});
        m_page.html.element("h3", title);
        write_rows(node, title, with_children);
    }

private:
    using Labelled = std::pair<std::string, Node>;

    // What stands below a node: nodes whose properties are rows, and tables.
    struct Contents {
        std::vector<Labelled> nodes;
        std::vector<std::pair<std::string, Records>> tables;
    };

    // Depth first, as the tree has it.
    static Contents contents_of(const Node& node, bool with_children) {
        Contents contents;
        std::vector<Labelled> open{{"", node}};
        while (!open.empty()) {
            const auto [label, at] = open.back();
            open.pop_back();
            contents.nodes.emplace_back(label, at);
            if (!with_children) {
                break;
            }
            Records records = records_of(at);
            std::vector<Labelled> rest;
            std::size_t next = 0;
            for (const Node& child : at.children()) {
                if (next < records.nodes.size() && records.nodes[next] == child) {
                    ++next;
                } else {
                    rest.emplace_back(label + (label.empty() ? "" : " › ") + spoken(child.name()), child);
                }
            }
            open.insert(open.end(), rest.rbegin(), rest.rend());
            if (!records.nodes.empty()) {
                contents.tables.emplace_back(label, std::move(records));
            }
        }
        return contents;
    }

    void write_rows(const Node& node, const std::string& title, bool with_children) {
        const Contents contents = contents_of(node, with_children);
        Html& html = m_page.html;
        if (std::ranges::any_of(contents.nodes,
                                [](const Labelled& one) { return has_properties(one.second); })) {
            const Table table(html, title, {"Setting", "Value"});
            const Element body(html, "tbody");
            for (const auto& [label, at] : contents.nodes) {
                write_properties(at, label);
            }
        }
        for (const auto& [label, records] : contents.tables) {
            write_records(label.empty() ? title : label, records);
        }
    }

    void write_properties(const Node& node, const std::string& label) {
        std::vector<Property> properties;
        for (const Property& property : node.properties()) {
            properties.push_back(property);
        }
        for (std::size_t at = 0; at < properties.size();) {
            const std::size_t end = end_of_series(properties, at);
            constexpr std::size_t least = 8;
            if (end - at >= least) {
                write_series(node, label, {properties.data() + at, end - at});
                at = end;
            } else {
                write_row(node, label, properties[at++]);
            }
        }
    }

    // "Color1", "Color2" and so on.
    static std::size_t end_of_series(const std::vector<Property>& properties, std::size_t at) {
        const std::string first = properties[at].name();
        const std::string_view common = stem(first);
        std::size_t end = at + 1;
        while (!common.empty() && end < properties.size() && stem(properties[end].name()) == common) {
            ++end;
        }
        return end;
    }

    void write_row(const Node& node, const std::string& label, const Property& property) {
        Html& html = m_page.html;
        const std::string name = property.name();
        const std::string path = path_of(node, name);
        const bool bad = m_settings.verdict(m_configuration, path) == Verdict::impossible;
        const Element row(html, "tr", {{"class", bad ? "setting impossible" : "setting"}});
        html.element("th", {{"scope", "row"}}, label + (label.empty() ? "" : " › ") + spoken(name));
        const Element cell(html, "td");
        m_settings.write(html, m_configuration, path, property);
    }

    // Equal neighbours in one: "9 to 255: 0".
    void write_series(const Node& node, const std::string& label, std::span<const Property> series) {
        Html& html = m_page.html;
        const std::string first = series.front().name();
        const std::string_view common = stem(first);
        const Element row(html, "tr", {{"class", "setting"}});
        html.element("th", {{"scope", "row"}},
                     fmt::format("{}{}{} {} to {}", label, label.empty() ? "" : " › ", common,
                                 first.substr(common.size()), series.back().name().substr(common.size())));
        const Element cell(html, "td");
        const Element list(html, "ul", {{"class", "chips"}});
        for (std::size_t at = 0; at < series.size();) {
            const std::string value = shown_exactly(series[at]);
            const std::string from = series[at].name();
            const Verdict verdict = m_settings.verdict(m_configuration, path_of(node, from));
            std::size_t end = at + 1;
            while (end < series.size() && shown_exactly(series[end]) == value &&
                   m_settings.verdict(m_configuration, path_of(node, series[end].name())) == verdict) {
                ++end;
            }
            const std::string numbers = end - at == 1
                                            ? from.substr(common.size())
                                            : fmt::format("{} to {}", from.substr(common.size()),
                                                          series[end - 1].name().substr(common.size()));
            html.element("li", {{"class", verdict == Verdict::impossible ? "chip impossible" : "chip"}},
                         fmt::format("{}: {}", numbers, value.empty() ? "(empty)" : value));
            at = end;
        }
    }

    // The last of the records from `at` on that hold the same under numbers that follow each other.
    [[nodiscard]] std::size_t end_of_run(const std::vector<Node>& nodes, std::size_t at) const {
        const std::vector<std::string> values = values_of(nodes[at]);
        auto number = decimal(nodes[at].name());
        std::size_t end = at + 1;
        while (number && end < nodes.size() && decimal(nodes[end].name()) == *number + 1 &&
               values_of(nodes[end]) == values) {
            ++*number;
            ++end;
        }
        return end;
    }

    void write_records(const std::string& label, const Records& records) {
        Html& html = m_page.html;
        const bool folded = records.nodes.size() > most_rows;
        if (folded) {
            html.open("details");
            html.element("summary", fmt::format("{}: {} entries", label, records.nodes.size()));
        } else {
            html.element("h4", label);
        }
        {
            const std::vector<std::string> names = spoken_columns(records);
            const Table table(html, label, {names.begin(), names.end()});
            const Element body(html, "tbody");
            for (std::size_t at = 0; at < records.nodes.size();) {
                const std::size_t end = end_of_run(records.nodes, at);
                write_record(records.nodes[at],
                             end - at == 1 ? std::string() : records.nodes[end - 1].name());
                at = end;
            }
        }
        if (folded) {
            html.close();
        }
    }

    void write_record(const Node& node, const std::string& last) {
        Html& html = m_page.html;
        const Element row(html, "tr");
        html.element("th", {{"scope", "row"}}, node.name() + (last.empty() ? "" : " to " + last));
        for (const Property& property : node.properties()) {
            const std::string path = path_of(node, property.name());
            const bool bad = m_settings.verdict(m_configuration, path) == Verdict::impossible;
            const Element cell(html, "td", {{"class", bad ? "impossible" : ""}});
            m_settings.write(html, m_configuration, path, property);
        }
    }

    Page& m_page;
    const Settings& m_settings;
    Origin m_configuration;
};

} // namespace

void write_configuration(Page& page, const Settings& settings, Origin configuration) {
    const ReportConfiguration& shown_one = page.input.configurations[configuration];
    const Section section(page, "configuration", "Settings of " + shown_one.name);
    if (page.input.description) {
        write_legend(page.html);
    }
    const Element grid(page.html, "div", {{"class", "grid"}});
    Writer writer(page, settings, configuration);
    const Node& root = shown_one.root;
    const Records records = records_of(root);
    const bool root_is_table = records.nodes.size() > most_rows;
    if (has_properties(root) || root_is_table) {
        writer.write_group(root, "General", root_is_table);
    }
    if (root_is_table) {
        return;
    }
    for (const Node& node : root.children()) {
        writer.write_group(node, group_title(node.name()), true);
    }
}

} // namespace pm::kit::report
