#include <array>
#include <pm/kit/diagnostic.h>

namespace pm::kit {

std::string_view severity_name(Severity severity) noexcept {
    static constexpr std::array<std::string_view, 3> names{"note", "warning", "error"};
    return names[static_cast<std::size_t>(severity)];
}

} // namespace pm::kit
