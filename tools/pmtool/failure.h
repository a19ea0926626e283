#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace pmtool {

constexpr int exit_ok = 0;
constexpr int exit_negative = 1; // the answer to the question that was asked is no
constexpr int exit_trouble = 2;  // the question couldn't be answered, or the work not be done

// Ends a verb, as a rule with exit_trouble; what() is the one line that is shown for it.
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& text, int exit_code = exit_trouble)
        : std::runtime_error(text), m_exit_code(exit_code) {}

    int exit_code() const { return m_exit_code; }

private:
    int m_exit_code;
};

// The command line asks for what can't be: what is shown ends with where the verb's help is.
class Mistake : public Failure {
public:
    explicit Mistake(const std::string& text) : Failure(text) {}
};

// "The file doesn't exist (error 63)", or "error 63" if the message library isn't there.
std::string number_text(std::uint32_t number);

// The number that stands for an error code of the system's, as the library maps it.
std::uint32_t number_of_system_error(int code);

// Nothing in the file has this path: a negative answer.
Failure no_such_path(const std::string& file, const std::string& path);

// A failure of a file, from an error code of the system's.
Failure system_failure(const std::string& file, int code);

} // namespace pmtool
