#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace pmtool {

constexpr int exit_ok = 0;
constexpr int exit_negative = 1; // the answer to the question that was asked is no
constexpr int exit_trouble = 2;  // the question couldn't be answered, or the work not be done

// Ends a command with exit_trouble; what() is the one line that is shown for it.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// "The file doesn't exist (error 63)", or "error 63" if the message library isn't there.
std::string number_text(std::uint32_t number);

// The number that stands for an error code of the system's, as the library maps it.
std::uint32_t number_of_system_error(int code);

// A failure of a file, from an error code of the system's.
Failure system_failure(const std::string& file, int code);

} // namespace pmtool
