#include <pm/kit/error.h>

namespace pm::kit {

Error::Error(const std::string& message, std::uint64_t line, std::uint64_t column)
    : std::runtime_error(message), m_line(line), m_column(column) {}

Error::~Error() = default;

} // namespace pm::kit
