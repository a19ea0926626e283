#pragma once

#include <cstddef>
#include <map>
#include <pm/kit/report.h>
#include <string>
#include <string_view>
#include <vector>

// What the checks say of each place of the description.
namespace pm::kit::report {

// Where a finding or a choice comes from: a configuration by its number, or the description's own defaults.
using Origin = std::size_t;
inline constexpr Origin defaults = static_cast<Origin>(-1);

// "A", "B"; "27" behind "Z".
[[nodiscard]] std::string letter(Origin origin);

struct Mark {
    std::vector<Origin> chosen;     // configurations whose choice stands there, rising
    std::vector<Origin> impossible; // of any origin, those with an error there or below
};

struct PlacedFinding {
    Origin origin = defaults;
    const Finding* finding = nullptr;
};

// Answers by paths of the description. Refers to the input.
class Marks {
public:
    explicit Marks(const ReportInput& input);

    // Of the node or property of that path.
    [[nodiscard]] const Mark& at(const std::string& path) const;
    // In the order of the configurations, the defaults first. Of the empty section are those that concern
    // none.
    [[nodiscard]] const std::vector<PlacedFinding>& of_section(const std::string& section) const;

private:
    void add(const ExplainedFindings& check, Origin origin, std::size_t base);

    std::map<std::string, Mark, std::less<>> m_marks;
    std::map<std::string, std::vector<PlacedFinding>, std::less<>> m_sections;
};

// The section of the page that shows a path below the description's node: "media", "flow"; empty if none
// does.
[[nodiscard]] std::string_view section_of(std::string_view path);

} // namespace pm::kit::report
