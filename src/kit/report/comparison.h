#pragma once

#include <report/settings.h>

// Two configurations or more side by side: first what differs, then what is alike.
namespace pm::kit::report {

void write_comparison(Page& page, const Settings& settings);

} // namespace pm::kit::report
