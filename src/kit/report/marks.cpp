#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <report/marks.h>

namespace pm::kit::report {

namespace {

struct Place {
    std::string_view path;
    std::string_view section;
};

// The first that fits counts.
constexpr std::array<Place, 15> places{{{"\\media\\source", "flow"},
                                        {"\\media\\default_source", "flow"},
                                        {"\\media\\destination", "flow"},
                                        {"\\media\\default_destination", "flow"},
                                        {"\\media", "media"},
                                        {"\\res_color_mem\\dithering_list", "dither"},
                                        {"\\res_color_mem", "resolution"},
                                        {"\\io", "io"},
                                        {"\\physical_pen", "pens"},
                                        {"\\linetype", "pens"},
                                        {"\\RASTER", "ownership"},
                                        {"\\init_term", "ownership"},
                                        {"\\meta\\model_abilities", "ownership"},
                                        {"\\custom_name", "custom"},
                                        {"\\meta", ""}}};

bool is_within(std::string_view path, std::string_view outer) {
    return path.starts_with(outer) && (path.size() == outer.size() || path[outer.size()] == '\\');
}

void insert(std::vector<Origin>& origins, Origin origin) {
    if (origins.empty() || origins.back() != origin) {
        origins.push_back(origin);
    }
}

// What a configuration chooses by a rule: where that passes, the path is that of the thing chosen.
struct Choice {
    std::string_view rule;
    std::string_view setting;
};
constexpr std::array<Choice, 19> choices{{{"media-size", "size"},
                                          {"media-source", "source"},
                                          {"media-loaded", "loaded"},
                                          {"media-type", "type"},
                                          {"media-destination", "destination"},
                                          {"collating", "collating"},
                                          {"collating", "collate"},
                                          {"cutting", "cutting"},
                                          {"folding", "folding"},
                                          {"stapling", "stapling"},
                                          {"colour-mode", "mode"},
                                          {"resolution", "resolution_x"},
                                          {"resolution", "resolution_y"},
                                          {"resolution", "resolution"},
                                          {"memory", "memory"},
                                          {"dithering", "dithering"},
                                          {"io-method", "io_type"},
                                          {"io-protocol", "protocol"},
                                          {"io-baud-rate", "baud_rate"}}};

bool is_choice(const Look& look) {
    return (look.outcome == "passed" || look.outcome == "found") &&
           (look.setting == "custom" || look.setting == "line_type" ||
            std::ranges::any_of(choices, [&](const Choice& choice) {
                return choice.rule == look.rule && choice.setting == look.setting;
            }));
}

// The thing itself where the path is that of the property that names it.
std::string chosen_thing(const std::string& path) {
    for (const std::string_view property : {"\\name", "\\canonical_name", "\\rate", "\\value", "\\width"}) {
        if (path.ends_with(property)) {
            return path.substr(0, path.size() - property.size());
        }
    }
    return path;
}

// Calls for the path and for all above it, "\media\size\0", "\media\size" and "\media".
template<class Function>
void with_outer_paths(std::string path, Function function) {
    while (!path.empty()) {
        function(path);
        path.erase(std::min(path.size(), path.find_last_of('\\')));
    }
}

} // namespace

std::string letter(Origin origin) {
    return origin < 26 ? std::string(1, static_cast<char>('A' + origin)) : fmt::to_string(origin + 1);
}

std::string_view section_of(std::string_view path) {
    if (path.ends_with("\\ui_owner")) {
        return "ownership";
    }
    const auto found =
        std::ranges::find_if(places, [&](const Place& place) { return is_within(path, place.path); });
    return found == places.end() ? std::string_view() : found->section;
}

Marks::Marks(const ReportInput& input) {
    std::size_t base = 0;
    if (input.description) {
        const std::string path = input.description->root.path();
        base = path == "\\" ? 0 : path.size();
        add(input.description->check, defaults, base);
    }
    for (Origin origin = 0; origin < input.configurations.size(); ++origin) {
        add(input.configurations[origin].check, origin, base);
    }
}

void Marks::add(const ExplainedFindings& check, Origin origin, std::size_t base) {
    for (const Look& look : check.looks) {
        if (origin != defaults && is_choice(look)) {
            insert(m_marks[chosen_thing(look.description_path)].chosen, origin);
        }
    }
    for (const Finding& finding : check.findings) {
        const std::string& path = finding.description_path;
        m_sections[std::string(section_of(std::string_view(path).substr(std::min(base, path.size()))))]
            .push_back({origin, &finding});
        if (finding.severity == Severity::error) {
            with_outer_paths(path,
                             [&](const std::string& outer) { insert(m_marks[outer].impossible, origin); });
        }
    }
}

const Mark& Marks::at(const std::string& path) const {
    static const Mark none;
    const auto found = m_marks.find(path);
    return found == m_marks.end() ? none : found->second;
}

const std::vector<PlacedFinding>& Marks::of_section(const std::string& section) const {
    static const std::vector<PlacedFinding> none;
    const auto found = m_sections.find(section);
    return found == m_sections.end() ? none : found->second;
}

} // namespace pm::kit::report
