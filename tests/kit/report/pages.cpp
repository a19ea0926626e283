#include <kit/report/pages.h>

namespace pm_test {

Markup page_of(const pm::Tree& description) {
    pm::kit::ReportInput input;
    input.description = pm::kit::ReportDescription{"device", description.root()};
    return Markup(pm::kit::report_page(input));
}

Markup settings_of(const pm::Tree& configuration) {
    pm::kit::ReportInput input;
    input.configurations.push_back({"office.pia", configuration.root()});
    return Markup(pm::kit::report_page(input));
}

pm::kit::Look passed(std::string rule, std::string setting, std::string path, std::string capability) {
    return {std::move(rule), std::move(setting), std::move(path), std::move(capability), "passed"};
}

pm::kit::Finding finding(pm::kit::Severity severity, std::string rule, std::string path,
                         std::string capability, std::string message) {
    pm::kit::Finding made;
    made.rule = std::move(rule);
    made.severity = severity;
    made.configuration_path = std::move(path);
    made.description_path = std::move(capability);
    made.message = std::move(message);
    return made;
}

} // namespace pm_test
