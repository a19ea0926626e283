#pragma once

#include <kit/report/markup.h>
#include <pm/kit/report.h>
#include <string>
#include <string_view>

namespace pm_test {

// The page of a description, read back.
Markup page_of(const pm::Tree& description);
// The page of a configuration alone.
Markup settings_of(const pm::Tree& configuration);

// A look of a rule that passed.
pm::kit::Look passed(std::string rule, std::string setting, std::string path, std::string capability);
// A finding that names no values.
pm::kit::Finding finding(pm::kit::Severity severity, std::string rule, std::string path,
                         std::string capability, std::string message);

} // namespace pm_test
