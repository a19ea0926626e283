#include <algorithm>
#include <fmt/format.h>
#include <report/comparison.h>

namespace pm::kit::report {

namespace {

// A setting by its path below the configuration's node, with what each configuration has there.
struct Row {
    std::string path;
    std::string group;
    std::vector<std::optional<Property>> values;
    std::vector<std::string> full_paths;
    bool differs = false;
    bool is_silent = false; // missing, 0 or empty in all of them
};

std::string group_of(std::string_view path) {
    const std::size_t end = path.find('\\', 1);
    return end == std::string_view::npos ? std::string() : std::string(path.substr(1, end - 1));
}

std::string below_group(const Row& row) {
    return row.group.empty() ? row.path : row.path.substr(row.group.size() + 1);
}

bool are_equal(const Property& a, const Property& b) {
    return a.type() == b.type() && std::ranges::equal(a.bytes(), b.bytes());
}

class Rows {
public:
    explicit Rows(const ReportInput& input) : m_count(input.configurations.size()) {
        for (std::size_t at = 0; at < m_count; ++at) {
            add(input.configurations[at].root, at);
        }
        for (Row& row : m_rows) {
            judge(row);
        }
        gather_groups();
    }
    // Of one group after the other.
    [[nodiscard]] const std::vector<Row>& all() const { return m_rows; }

private:
    void add(const Node& root, std::size_t configuration) {
        const std::string root_path = root.path();
        const std::size_t cut = root_path == "\\" ? 0 : root_path.size();
        for (const auto& [node, depth] : root.walk()) {
            for (const Property& property : node.properties()) {
                std::string full_path = path_of(node, property.name());
                std::string path = full_path.substr(cut);
                const auto [found, is_new] = m_by_path.emplace(path, m_rows.size());
                if (is_new) {
                    std::string group = group_of(path);
                    m_rows.push_back({std::move(path), std::move(group),
                                      std::vector<std::optional<Property>>(m_count),
                                      std::vector<std::string>(m_count)});
                }
                Row& row = m_rows[found->second];
                row.values[configuration] = property;
                row.full_paths[configuration] = std::move(full_path);
            }
        }
    }

    static void judge(Row& row) {
        const auto& first = row.values.front();
        row.differs = std::ranges::any_of(row.values, [&](const std::optional<Property>& value) {
            return value.has_value() != first.has_value() || (value && !are_equal(*value, *first));
        });
        row.is_silent = std::ranges::all_of(
            row.values, [](const std::optional<Property>& value) { return !value || says_nothing(*value); });
    }

    void gather_groups() {
        std::unordered_map<std::string, std::size_t> order;
        for (const Row& row : m_rows) {
            order.emplace(row.group, order.size());
        }
        std::ranges::stable_sort(m_rows, {}, [&](const Row& row) { return order.at(row.group); });
    }

    std::size_t m_count;
    std::vector<Row> m_rows;
    std::unordered_map<std::string, std::size_t> m_by_path;
};

class Writer {
public:
    Writer(Page& page, const Settings& settings) : m_page(page), m_settings(settings) {
        m_columns.emplace_back("Setting");
        for (Origin origin = 0; origin < page.input.configurations.size(); ++origin) {
            m_columns.push_back(
                fmt::format("{}: {}", letter(origin), page.input.configurations[origin].name));
        }
    }

    // The rows of one kind, a body of the table for each group.
    void write(std::string_view caption, const std::vector<const Row*>& rows) {
        Html& html = m_page.html;
        const Element card(html, "div", {{"class", "card"}});
        const Table table(html, caption, {m_columns.begin(), m_columns.end()});
        for (std::size_t at = 0; at < rows.size();) {
            const Element body(html, "tbody");
            const std::string& group = rows[at]->group;
            {
                const Element row(html, "tr", {{"class", "group"}});
                html.element("th", {{"scope", "rowgroup"}, {"colspan", fmt::to_string(m_columns.size())}},
                             group.empty() ? "General" : group_title(group));
            }
            for (; at < rows.size() && rows[at]->group == group; ++at) {
                write_row(*rows[at]);
            }
        }
    }

private:
    // What tells a value apart where another configuration's, which differs, looks the same.
    static std::string apart(const Row& row, Origin origin) {
        const Property& own = *row.values[origin];
        bool is_alike = false;
        bool has_other_type = false;
        for (const auto& other : row.values) {
            if (!other || are_equal(own, *other) || shown_exactly(own) != shown_exactly(*other)) {
                continue;
            }
            is_alike = true;
            has_other_type = has_other_type || own.type() != other->type();
        }
        return is_alike ? distinction(own, has_other_type) : std::string();
    }

    void write_row(const Row& row) {
        Html& html = m_page.html;
        const Element line(html, "tr", {{"class", row.differs ? "setting differs" : "setting"}});
        {
            const Element head(html, "th", {{"scope", "row"}});
            if (row.differs) {
                html.element("span", {{"class", "unequal"}, {"role", "img"}, {"aria-label", "differs"}}, "≠");
                html.text(" ");
            }
            html.text(spoken_path(below_group(row)));
        }
        for (Origin origin = 0; origin < row.values.size(); ++origin) {
            const bool bad = m_settings.verdict(origin, row.full_paths[origin]) == Verdict::impossible;
            const Element cell(html, "td", {{"class", bad ? "impossible" : ""}});
            if (row.values[origin]) {
                m_settings.write(html, origin, row.full_paths[origin], *row.values[origin],
                                 row.differs ? apart(row, origin) : std::string());
            } else {
                html.element("span", {{"class", "muted"}}, "not there");
            }
        }
    }

    Page& m_page;
    const Settings& m_settings;
    std::vector<std::string> m_columns;
};

} // namespace

void write_comparison(Page& page, const Settings& settings) {
    const Section section(page, "configuration", "Configurations side by side");
    const Rows rows(page.input);
    std::vector<const Row*> differing;
    std::vector<const Row*> alike;
    std::size_t silent = 0;
    for (const Row& row : rows.all()) {
        if (row.is_silent) {
            ++silent;
        } else if (row.differs) {
            differing.push_back(&row);
        } else {
            alike.push_back(&row);
        }
    }
    Html& html = page.html;
    html.element("p", fmt::format("{} settings differ, {} are alike.", differing.size(), alike.size()));
    if (page.input.description) {
        write_legend(html);
    }
    Writer writer(page, settings);
    if (!differing.empty()) {
        html.element("h3", "What differs");
        writer.write("Settings that differ", differing);
    }
    if (!alike.empty()) {
        const Element details(html, "details");
        html.element("summary", fmt::format("{} settings that are alike", alike.size()));
        writer.write("Settings that are alike", alike);
    }
    if (silent > 0) {
        html.element(
            "p", {{"class", "muted"}},
            fmt::format("Not shown: {} settings that are missing, 0 or empty in all of them.", silent));
    }
}

} // namespace pm::kit::report
