#pragma once

#include <string_view>

namespace pm::kit::report {

// The style sheet of the page: light and dark, narrow and wide, screen and paper. Text has a contrast of 4.5
// to 1 or more on whatever it stands.
[[nodiscard]] std::string_view style_sheet();

} // namespace pm::kit::report
