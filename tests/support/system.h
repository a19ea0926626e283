#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace pm::test {

// What the tests need of the operating system.

// Makes a new, empty folder where temporary files lie.
std::filesystem::path make_temp_folder();

// Sets a variable of the environment, or removes it.
void set_variable(const std::string& name, const std::optional<std::string>& value);

// The variable that says where temporary files lie.
extern const char* const temp_folder_variable;

// Zeros that take no memory until they are looked at.
class ZeroPages {
public:
    explicit ZeroPages(std::size_t size);
    ~ZeroPages();
    ZeroPages(const ZeroPages&) = delete;
    ZeroPages& operator=(const ZeroPages&) = delete;

    const unsigned char* data() const { return static_cast<const unsigned char*>(m_pages); }

private:
    std::size_t m_size;
    void* m_pages;
};

// The C library's strtod, with a zero of no sign where there is no number; mingw-w64's gives "-" one.
double c_number(const char* text, char** end);
// What it prints for a NaN: "-nan" for one with a sign, which mingw-w64's forgets.
std::string c_nan_text(double value);

// While one lives, what the process prints goes nowhere.
class Silence {
public:
    Silence();
    ~Silence();
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    int m_out;
    int m_err;
};

// A program that is run to its end.
struct ProgramRun {
    std::filesystem::path program;
    std::vector<std::string> arguments; // in UTF-8
    std::filesystem::path folder;       // that it runs in; empty for that of the test
    std::filesystem::path out;          // what takes its standard output; empty: it has none
    std::filesystem::path err;
    bool privileged = true;                    // false: without root's right to open any file
    std::filesystem::path in = {};             // its standard input; empty for that of the test
    std::vector<std::string> environment = {}; // "NAME=VALUE", beside that of the test
};
// The exit code; -1 if it ended otherwise.
int run_program(const ProgramRun& run);

// Gives up the rights of root; false if there are none. Throws if they stay.
bool drop_rights_of_root();
void take_back_rights_of_root();

// A file that can't be read while one lives.
class UnreadableFile {
public:
    explicit UnreadableFile(const std::filesystem::path& path);
    ~UnreadableFile();
    UnreadableFile(const UnreadableFile&) = delete;
    UnreadableFile& operator=(const UnreadableFile&) = delete;

private:
    std::intptr_t m_state;
};

} // namespace pm::test
