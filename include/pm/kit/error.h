#pragma once

#include <cstdint>
#include <pm/kit/export.h>
#include <stdexcept>
#include <string>

namespace pm::kit {

// What is wrong with something the kit was given: a JSON text, a script, a path, a file of no known kind.
// What the library raises passes as it is (ZT_Exception of exception.h), and so does std::bad_alloc. What is
// damaged within a file of a known kind is no Error but a report, a diagnostic or a loss.
class PM_KIT_API Error : public std::runtime_error {
public:
    // `message` is one sentence in words, UTF-8, without the line. Line and column count from 1, a column in
    // bytes; 0 where there is none.
    explicit Error(const std::string& message, std::uint64_t line = 0, std::uint64_t column = 0);
    Error(const Error&) = default;
    Error& operator=(const Error&) = default;
    ~Error() override;

    [[nodiscard]] std::uint64_t line() const noexcept { return m_line; }
    [[nodiscard]] std::uint64_t column() const noexcept { return m_column; }

private:
    std::uint64_t m_line;
    std::uint64_t m_column;
};

} // namespace pm::kit
