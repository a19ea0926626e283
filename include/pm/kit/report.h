#pragma once

#include <optional>
#include <pm/kit/compatibility.h>
#include <pm/kit/export.h>
#include <pm/tree.h>
#include <string>
#include <vector>

// A page to look at: what a device can do, what configurations ask of it, and whether that fits.
//
//     pm::kit::ReportInput input;
//     input.description = {"DX-4200", device.root()};
//     input.configurations.push_back({"office.pia", office.root(), explain_compatibility(office, device)});
//     std::ofstream("page.html") << pm::kit::report_page(input);
//
// docs/report.md tells what stands on the page.
namespace pm::kit {

// A description as FILE_PDT makes it, or one that was saved from it: its node, and the check of its defaults.
struct ReportDescription {
    std::string name;             // as the page shows it, such as a file name; UTF-8
    Node root;                    // not read after the call
    ExplainedFindings check = {}; // of explain_description()
};

// The paths of `check` are those of the trees, whichever node of them is shown.
struct ReportConfiguration {
    std::string name;
    Node root;
    ExplainedFindings check = {}; // of explain_compatibility() with the page's description
};

// Of both at least one. Configurations are named A, B and so on, in their order.
struct ReportInput {
    std::optional<ReportDescription> description = {};
    std::vector<ReportConfiguration> configurations = {};
};

// One HTML document in UTF-8 with its style and pictures inside; it loads nothing and runs no script. The
// same input gives the same bytes. Values of other types than those of a description are shown as missing;
// only std::bad_alloc comes out.
[[nodiscard]] PM_KIT_API std::string report_page(const ReportInput& input);

} // namespace pm::kit
