#pragma once

#include <report/settings.h>

// The settings of one configuration, in groups by its nodes.
namespace pm::kit::report {

void write_configuration(Page& page, const Settings& settings, Origin configuration);

} // namespace pm::kit::report
